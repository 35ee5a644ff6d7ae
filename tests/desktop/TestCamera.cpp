// testcamera [NAME [DESCRIPTION [FORMAT [WIDTHxHEIGHT [seconds|busy]]]]]
//
// A camera on the media server that shows CameraPattern at 30 frames a second, as YUY2, NV12, I420, BGRx or MJPG in three sizes, or
// only as FORMAT and in one size. As real cameras do, it drives its own graph, and each frame's header carries the time on
// CLOCK_MONOTONIC at which it was taken. It works only while somebody looks. With `seconds` it takes its frames at whole thirtieths
// of a second of that clock, and its flash is on the frame of each whole second. With `busy` it is there and refuses everyone.

#include "desktop/CameraPattern.h"
#include "desktop/PipeWireLoop.h"

#include <QBuffer>
#include <QImage>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <spa/param/video/format-utils.h>

namespace vantry {

namespace {

constexpr int framesPerSecond = 30;
constexpr int64_t second = 1000000000;
constexpr spa_rectangle allSizes[] = { { 1280, 720 }, { 640, 480 }, { 1920, 1080 } };

struct Format {
    std::string_view name;
    spa_video_format format; // unknown: compressed
};
constexpr Format allFormats[] = { { "YUY2", SPA_VIDEO_FORMAT_YUY2 }, { "NV12", SPA_VIDEO_FORMAT_NV12 },
    { "BGRx", SPA_VIDEO_FORMAT_BGRx }, { "I420", SPA_VIDEO_FORMAT_I420 }, { "MJPG", SPA_VIDEO_FORMAT_UNKNOWN } };

/// What the camera is called and what it can do.
struct Abilities {
    std::string name = "test-camera";
    std::string description = "Test camera";
    std::vector<Format> formats{ std::begin(allFormats), std::end(allFormats) };
    std::vector<spa_rectangle> sizes{ std::begin(allSizes), std::end(allSizes) };
    bool followsSeconds = false;
    bool isBusy = false;
};

int64_t now()
{
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

QByteArray jpegOf(CameraPattern::Size size, uint64_t frame)
{
    QImage image(size.width, size.height, QImage::Format_RGB32);
    CameraPattern(size, frame).writeBgrx(reinterpret_cast<std::byte*>(image.bits()));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "JPG", 85);
    return bytes;
}

/// One thing that the camera can do: `format` in any of the sizes, or compressed pictures where there is no format.
const spa_pod* offer(spa_pod_builder& builder, spa_video_format format, const std::vector<spa_rectangle>& sizes)
{
    const bool compressed = format == SPA_VIDEO_FORMAT_UNKNOWN;
    constexpr spa_fraction rate{ framesPerSecond, 1 };
    spa_pod_frame object;
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_add(&builder, SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype,
        SPA_POD_Id(compressed ? SPA_MEDIA_SUBTYPE_mjpg : SPA_MEDIA_SUBTYPE_raw), 0);
    if (!compressed)
        spa_pod_builder_add(&builder, SPA_FORMAT_VIDEO_format, SPA_POD_Id(format), 0);
    spa_pod_frame choice;
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
    spa_pod_builder_push_choice(&builder, &choice, sizes.size() > 1 ? SPA_CHOICE_Enum : SPA_CHOICE_None, 0);
    spa_pod_builder_rectangle(&builder, sizes[0].width, sizes[0].height); // the default, before all of them
    for (const auto& size : sizes)
        if (sizes.size() > 1)
            spa_pod_builder_rectangle(&builder, size.width, size.height);
    spa_pod_builder_pop(&builder, &choice);
    spa_pod_builder_add(&builder, SPA_FORMAT_VIDEO_framerate, SPA_POD_Fraction(&rate), 0);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

} // namespace

class TestCamera {
public:
    explicit TestCamera(const Abilities& abilities);
    void run() { m_loop.run(); }

private:
    void connect(const Abilities& abilities);
    void changeState(pw_stream_state state);
    void changeFormat(const spa_pod* parameter);
    void offerBuffers();
    void process();
    void setTimer(int64_t interval);
    int64_t takeFrame();

    int stride() const;
    uint32_t byteCount() const;
    uint32_t draw(std::byte* to, uint32_t room);
    uint32_t drawCompressed(std::byte* to, uint32_t room);

    PipeWireLoop m_loop;
    StreamPointer m_stream;
    const bool m_followsSeconds;
    const bool m_isBusy;
    spa_source* m_timer = nullptr; // belongs to the loop

    spa_video_format m_format = SPA_VIDEO_FORMAT_UNKNOWN; // unknown: compressed
    CameraPattern::Size m_size{};
    uint64_t m_frame = 0;
    // Compressed pictures of the size above, made when they are first needed: the pattern repeats.
    std::array<QByteArray, CameraPattern::period> m_compressed;
};

TestCamera::TestCamera(const Abilities& abilities)
    : m_followsSeconds(abilities.followsSeconds)
    , m_isBusy(abilities.isBusy)
{
    static const pw_stream_events events = {
        .version = PW_VERSION_STREAM_EVENTS,
        .state_changed = [](void* self, pw_stream_state, pw_stream_state state,
                             const char*) { static_cast<TestCamera*>(self)->changeState(state); },
        .param_changed =
            [](void* self, uint32_t id, const spa_pod* parameter) {
                if (parameter && id == SPA_PARAM_Format)
                    static_cast<TestCamera*>(self)->changeFormat(parameter);
            },
        .process = [](void* self) { static_cast<TestCamera*>(self)->process(); },
    };
    const auto tick = [](void* self, uint64_t) { pw_stream_trigger_process(static_cast<TestCamera*>(self)->m_stream.get()); };
    m_timer = pw_loop_add_timer(m_loop.loop(), tick, this);
    auto* properties = pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", PW_KEY_MEDIA_ROLE, "Camera", PW_KEY_NODE_NAME,
        abilities.name.c_str(), PW_KEY_NODE_DESCRIPTION, abilities.description.c_str(), nullptr);
    m_stream.reset(pw_stream_new_simple(m_loop.loop(), abilities.name.c_str(), properties, &events, this));
    connect(abilities);
}

void TestCamera::connect(const Abilities& abilities)
{
    std::array<std::byte, 4096> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    std::vector<const spa_pod*> offers;
    for (const auto& format : abilities.formats)
        offers.push_back(offer(builder, format.format, abilities.sizes));
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_MAP_BUFFERS);
    if (pw_stream_connect(m_stream.get(), PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, offers.data(), offers.size()) < 0)
        throw std::runtime_error("No connection to the media server.");
}

void TestCamera::changeState(pw_stream_state state)
{
    setTimer(state == PW_STREAM_STATE_STREAMING ? second / framesPerSecond : 0);
    if ((state == PW_STREAM_STATE_ERROR && !m_isBusy) || state == PW_STREAM_STATE_UNCONNECTED)
        m_loop.quit();
}

/// Ticks every `interval` nanoseconds from now on; 0 stops.
void TestCamera::setTimer(int64_t interval)
{
    const int64_t start = !interval ? 0 : m_followsSeconds ? (now() / second + 1) * second : now();
    timespec first{ start / second, static_cast<long>(start % second) };
    timespec repeat{ 0, static_cast<long>(interval) };
    pw_loop_update_timer(m_loop.loop(), m_timer, &first, &repeat, true);
}

/// Gives the time at which the next frame is taken. One that follows the seconds takes its number from the clock.
int64_t TestCamera::takeFrame()
{
    constexpr int64_t rounded = second / 1000; // The timer is never early by as much.
    const int64_t time = now();
    if (!m_followsSeconds)
        return time;
    m_frame = static_cast<uint64_t>((time + rounded) * framesPerSecond / second);
    return static_cast<int64_t>(m_frame) * second / framesPerSecond;
}

void TestCamera::changeFormat(const spa_pod* parameter)
{
    if (m_isBusy) {
        pw_stream_set_error(m_stream.get(), -EBUSY, "Device or resource busy");
        return;
    }
    uint32_t type = 0, subtype = 0;
    spa_format_parse(parameter, &type, &subtype);
    spa_rectangle size{};
    if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
        spa_video_info_mjpg info{};
        spa_format_video_mjpg_parse(parameter, &info);
        m_format = SPA_VIDEO_FORMAT_UNKNOWN;
        size = info.size;
    } else {
        spa_video_info_raw info{};
        spa_format_video_raw_parse(parameter, &info);
        m_format = info.format;
        size = info.size;
    }
    m_size = { static_cast<int>(size.width), static_cast<int>(size.height) };
    m_compressed = {};
    offerBuffers();
}

void TestCamera::offerBuffers()
{
    std::array<std::byte, 1024> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    const void* parameters[] = {
        spa_pod_builder_add_object(&builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
            SPA_POD_CHOICE_RANGE_Int(8, 2, 16), SPA_PARAM_BUFFERS_blocks, SPA_POD_Int(1), SPA_PARAM_BUFFERS_size,
            SPA_POD_Int(static_cast<int>(byteCount())), SPA_PARAM_BUFFERS_stride, SPA_POD_Int(stride()), SPA_PARAM_BUFFERS_dataType,
            SPA_POD_CHOICE_FLAGS_Int(1 << SPA_DATA_MemFd)),
        spa_pod_builder_add_object(&builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
            SPA_POD_Id(SPA_META_Header), SPA_PARAM_META_size, SPA_POD_Int(sizeof(spa_meta_header))),
    };
    pw_stream_update_params(m_stream.get(), reinterpret_cast<const spa_pod**>(parameters), std::size(parameters));
}

int TestCamera::stride() const
{
    switch (m_format) {
    case SPA_VIDEO_FORMAT_YUY2:
        return m_size.width * 2;
    case SPA_VIDEO_FORMAT_NV12:
    case SPA_VIDEO_FORMAT_I420:
        return m_size.width;
    case SPA_VIDEO_FORMAT_BGRx:
        return m_size.width * 4;
    default:
        return 0;
    }
}

uint32_t TestCamera::byteCount() const
{
    const bool isPlanar = m_format == SPA_VIDEO_FORMAT_NV12 || m_format == SPA_VIDEO_FORMAT_I420;
    const int chromaRows = isPlanar ? m_size.height / 2 : 0;
    const int bytes = stride() ? stride() * (m_size.height + chromaRows) : m_size.width * m_size.height;
    return static_cast<uint32_t>(bytes);
}

void TestCamera::process()
{
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream.get());
    if (!buffer)
        return;
    const int64_t takenAt = takeFrame();
    spa_data& data = buffer->buffer->datas[0];
    data.chunk->offset = 0;
    data.chunk->stride = stride();
    data.chunk->flags = 0;
    data.chunk->size = data.data ? draw(static_cast<std::byte*>(data.data), data.maxsize) : 0;
    const auto* header = spa_buffer_find_meta_data(buffer->buffer, SPA_META_Header, sizeof(spa_meta_header));
    if (header)
        *static_cast<spa_meta_header*>(
            const_cast<void*>(header)) = { .flags = 0, .offset = 0, .pts = takenAt, .dts_offset = 0, .seq = m_frame };
    ++m_frame;
    pw_stream_queue_buffer(m_stream.get(), buffer);
}

/// Draws the next frame and gives its size in bytes; 0 when there is no room.
uint32_t TestCamera::draw(std::byte* to, uint32_t room)
{
    if (m_format == SPA_VIDEO_FORMAT_UNKNOWN)
        return drawCompressed(to, room);
    if (room < byteCount())
        return 0;
    const CameraPattern pattern(m_size, m_frame);
    if (m_format == SPA_VIDEO_FORMAT_YUY2)
        pattern.writeYuy2(to);
    else if (m_format == SPA_VIDEO_FORMAT_NV12)
        pattern.writeNv12(to);
    else if (m_format == SPA_VIDEO_FORMAT_I420)
        pattern.writeI420(to);
    else
        pattern.writeBgrx(to);
    return byteCount();
}

uint32_t TestCamera::drawCompressed(std::byte* to, uint32_t room)
{
    QByteArray& jpeg = m_compressed[m_frame % CameraPattern::period];
    if (jpeg.isEmpty())
        jpeg = jpegOf(m_size, m_frame);
    if (room < static_cast<uint32_t>(jpeg.size()))
        return 0;
    std::memcpy(to, jpeg.constData(), jpeg.size());
    return static_cast<uint32_t>(jpeg.size());
}

namespace {

Abilities parse(const std::vector<std::string>& arguments)
{
    Abilities abilities;
    if (arguments.size() > 1)
        abilities.name = abilities.description = arguments[1];
    if (arguments.size() > 2)
        abilities.description = arguments[2];
    if (arguments.size() > 3)
        std::erase_if(abilities.formats, [&](const Format& format) { return format.name != arguments[3]; });
    spa_rectangle size{};
    if (arguments.size() > 4 && std::sscanf(arguments[4].c_str(), "%ux%u", &size.width, &size.height) == 2)
        abilities.sizes = { size };
    abilities.followsSeconds = arguments.size() > 5 && arguments[5] == "seconds";
    abilities.isBusy = arguments.size() > 5 && arguments[5] == "busy";
    return abilities;
}

} // namespace

} // namespace vantry

int main(int count, char** arguments)
{
    try {
        vantry::TestCamera(vantry::parse({ arguments, arguments + count })).run();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
