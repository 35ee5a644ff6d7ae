#include "media/VideoReader.h"

#include "media/Decoder.h"
#include "media/PictureConverter.h"

#include <deque>

namespace vantry {

struct VideoReader::State {
    Decoder decoder;
    PictureConverter converter{};
    std::deque<libav::FramePtr> ready{}; ///< Decoded while seeking, not given out yet.
};

VideoReader::VideoReader(const std::filesystem::path& movie, int track, Options options)
    : m_state(new State{ .decoder = { movie, track, { .media = TrackMedia::Video, .threads = options.threads } } })
{
}

VideoReader::~VideoReader() = default;

void VideoReader::seek(MediaTime time)
{
    auto& decoder = m_state->decoder;
    m_state->ready.clear();

    // A keyframe that is decoded before `time` may be shown after it: then the one before it is needed.
    auto from = time;
    libav::FramePtr newest;
    for (;; from -= std::chrono::seconds(1)) {
        decoder.seek(from);
        newest = decoder.next();
        if (!newest || decoder.time(*newest) <= time || from <= decoder.start())
            break;
    }
    while (newest) {
        auto following = decoder.next();
        if (following && decoder.time(*following) <= time) {
            newest = std::move(following);
            continue;
        }
        m_state->ready.push_back(std::move(newest));
        if (following)
            m_state->ready.push_back(std::move(following));
    }
}

std::optional<TimedPicture> VideoReader::next()
{
    libav::FramePtr frame;
    if (m_state->ready.empty()) {
        frame = m_state->decoder.next();
    } else {
        frame = std::move(m_state->ready.front());
        m_state->ready.pop_front();
    }
    if (!frame)
        return std::nullopt;
    const auto time = m_state->decoder.time(*frame);
    return TimedPicture{ m_state->converter.convert(std::move(frame)), time };
}

} // namespace vantry
