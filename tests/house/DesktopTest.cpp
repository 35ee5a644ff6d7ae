// The private desktop itself: run by `./dev test`, these tests look at the one around them.

#include "desktop/CameraPattern.h"
#include "desktop/PipeWireLoop.h"
#include "support/Command.h"

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

#include <spa/param/video/format-utils.h>

namespace vantry {

namespace {

struct CameraFormat {
    const char* name;
    spa_video_format format; // unknown: compressed
    CameraPattern::Size size;
};

void PrintTo(const CameraFormat& format, std::ostream* out)
{
    *out << format.name << ' ' << format.size.width << 'x' << format.size.height;
}

int64_t now()
{
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

struct CameraFrame {
    std::vector<std::byte> bytes;
    int stride;
    uint64_t number;
    int64_t takenAt; // CLOCK_MONOTONIC, nanoseconds
    int64_t arrivedAt;
};

/// Looks through the test camera until it has seen `wanted` frames, or for ten seconds.
class CameraReader {
public:
    CameraReader(const CameraFormat& format, std::size_t wanted);

    std::vector<CameraFrame> frames;

private:
    void askForHeaders();
    void process();

    PipeWireLoop m_loop;
    StreamPointer m_stream;
    std::size_t m_wanted;
};

CameraReader::CameraReader(const CameraFormat& format, std::size_t wanted)
    : m_wanted(wanted)
{
    static const pw_stream_events events = {
        .version = PW_VERSION_STREAM_EVENTS,
        .param_changed =
            [](void* self, uint32_t id, const spa_pod* parameter) {
                if (parameter && id == SPA_PARAM_Format)
                    static_cast<CameraReader*>(self)->askForHeaders();
            },
        .process = [](void* self) { static_cast<CameraReader*>(self)->process(); },
    };
    auto* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE, "Camera",
        PW_KEY_TARGET_OBJECT, "test-camera", nullptr);
    m_stream.reset(pw_stream_new_simple(m_loop.loop(), "looks through the camera", properties, &events, this));

    std::array<std::byte, 1024> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    spa_video_info_raw raw = {
        .format = format.format,
        .size = { static_cast<uint32_t>(format.size.width), static_cast<uint32_t>(format.size.height) },
        .framerate = { 30, 1 },
    };
    spa_video_info_mjpg compressed = { .size = raw.size, .framerate = raw.framerate };
    const spa_pod* offer = format.format == SPA_VIDEO_FORMAT_UNKNOWN
        ? spa_format_video_mjpg_build(&builder, SPA_PARAM_EnumFormat, &compressed)
        : spa_format_video_raw_build(&builder, SPA_PARAM_EnumFormat, &raw);
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS);
    pw_stream_connect(m_stream.get(), PW_DIRECTION_INPUT, PW_ID_ANY, flags, &offer, 1);

    const auto giveUp = [](void* self, uint64_t) { static_cast<CameraReader*>(self)->m_loop.quit(); };
    timespec deadline{ 10, 0 };
    pw_loop_update_timer(m_loop.loop(), pw_loop_add_timer(m_loop.loop(), giveUp, this), &deadline, nullptr, false);
    m_loop.run();
}

/// A buffer has only what both sides ask for.
void CameraReader::askForHeaders()
{
    std::array<std::byte, 256> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    const void* headers = spa_pod_builder_add_object(&builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
        SPA_POD_Id(SPA_META_Header), SPA_PARAM_META_size, SPA_POD_Int(sizeof(spa_meta_header)));
    auto* parameter = static_cast<const spa_pod*>(headers);
    pw_stream_update_params(m_stream.get(), &parameter, 1);
}

void CameraReader::process()
{
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream.get());
    if (!buffer)
        return;
    const spa_data& data = buffer->buffer->datas[0];
    const auto* header =
        static_cast<const spa_meta_header*>(spa_buffer_find_meta_data(buffer->buffer, SPA_META_Header, sizeof(spa_meta_header)));
    if (header && frames.size() < m_wanted) {
        const auto* bytes = static_cast<const std::byte*>(data.data) + data.chunk->offset;
        frames.push_back({ { bytes, bytes + data.chunk->size }, data.chunk->stride, header->seq, header->pts, now() });
    }
    pw_stream_queue_buffer(m_stream.get(), buffer);
    if (frames.size() == m_wanted)
        m_loop.quit();
}

void expectPicture(const CameraFormat& format, const CameraFrame& frame)
{
    const CameraPattern pattern(format.size, frame.number);
    const auto pixels = static_cast<std::size_t>(format.size.width * format.size.height);
    std::vector<std::byte> expected(pixels * 4);
    switch (format.format) {
    case SPA_VIDEO_FORMAT_YUY2:
        pattern.writeYuy2(expected.data());
        expected.resize(pixels * 2);
        break;
    case SPA_VIDEO_FORMAT_NV12:
        pattern.writeNv12(expected.data());
        expected.resize(pixels * 3 / 2);
        break;
    default:
        pattern.writeBgrx(expected.data());
        break;
    }
    EXPECT_TRUE(frame.bytes == expected) << "frame " << frame.number;
}

/// In the middle of each bar, in the rows with the box and in those without it.
void expectCompressedPicture(const CameraFormat& format, const CameraFrame& frame)
{
    const CameraPattern pattern(format.size, frame.number);
    const auto image = QImage::fromData(reinterpret_cast<const uchar*>(frame.bytes.data()), static_cast<int>(frame.bytes.size()));
    ASSERT_EQ(image.size(), QSize(format.size.width, format.size.height));
    for (int y : { format.size.height / 4, format.size.height / 2 }) {
        for (int x = format.size.width / 16; x < format.size.width; x += format.size.width / 8) {
            EXPECT_NEAR(qRed(image.pixel(x, y)), pattern.at(x, y).red, 40) << x << ',' << y << " of frame " << frame.number;
            EXPECT_NEAR(qBlue(image.pixel(x, y)), pattern.at(x, y).blue, 40) << x << ',' << y << " of frame " << frame.number;
        }
    }
}

class CameraOfTheDesktop : public testing::TestWithParam<CameraFormat> { };

} // namespace

TEST(Desktop, hasAScreenAWindowManagerAndAPlaceOfItsOwn)
{
    EXPECT_THAT(test::runCommand("xdpyinfo"), testing::HasSubstr("1920x1080 pixels"));
    EXPECT_THAT(test::runCommand("xprop -root _NET_SUPPORTING_WM_CHECK"), testing::HasSubstr("window id"));
    EXPECT_THAT(std::string(getenv("HOME")), testing::StartsWith(getenv("VANTRY_SESSION")));
}

TEST(Desktop, keepsSecrets)
{
    EXPECT_EQ(test::runCommand(
                  "printf secret | secret-tool store --label=Test vantry desktop-test; secret-tool lookup vantry desktop-test"),
        "secret");
    EXPECT_EQ(test::runCommand("secret-tool clear vantry desktop-test; secret-tool lookup vantry desktop-test || true"), "");
}

TEST(Desktop, theMicrophoneHearsASteadyTone)
{
    const auto heard =
        test::runCommand("timeout 10 pw-record --target test-microphone --format f32 --channels 1 --rate 48000 - | head -c 400000");
    std::vector<float> samples(heard.size() / sizeof(float));
    std::memcpy(samples.data(), heard.data(), samples.size() * sizeof(float));
    const auto loud = std::ranges::find_if(samples, [](float sample) { return std::abs(sample) > 0.2F; });
    ASSERT_GT(samples.end() - loud, 48000);
    int rising = 0;
    for (auto sample = loud; sample < loud + 48000; ++sample)
        rising += sample[0] < 0 && sample[1] >= 0;
    EXPECT_NEAR(rising, 440, 1);
}

TEST_P(CameraOfTheDesktop, showsThePatternInTrueTime)
{
    const CameraReader reader(GetParam(), CameraPattern::period + 2);
    const auto& frames = reader.frames;
    ASSERT_EQ(frames.size(), std::size_t{ CameraPattern::period + 2 });
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_LE(frames[i].takenAt, frames[i].arrivedAt);
        if (i > 0) {
            EXPECT_GT(frames[i].takenAt, frames[i - 1].takenAt);
            EXPECT_GT(frames[i].number, frames[i - 1].number);
        }
        if (GetParam().format == SPA_VIDEO_FORMAT_UNKNOWN)
            expectCompressedPicture(GetParam(), frames[i]);
        else
            expectPicture(GetParam(), frames[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, CameraOfTheDesktop,
    testing::Values(CameraFormat{ "YUY2", SPA_VIDEO_FORMAT_YUY2, { 640, 480 } },
        CameraFormat{ "NV12", SPA_VIDEO_FORMAT_NV12, { 1280, 720 } }, CameraFormat{ "BGRx", SPA_VIDEO_FORMAT_BGRx, { 1920, 1080 } },
        CameraFormat{ "MJPG", SPA_VIDEO_FORMAT_UNKNOWN, { 1280, 720 } }));

} // namespace vantry
