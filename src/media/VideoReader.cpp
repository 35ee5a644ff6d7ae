#include "media/VideoReader.h"

#include "media/Decoder.h"
#include "media/PictureConverter.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace vantry {

struct VideoReader::State {
    libav::FramePtr keyframeBefore(MediaTime time);

    Decoder decoder;
    PictureConverter converter{};
    std::deque<libav::FramePtr> ready{}; ///< Decoded while seeking, not given out yet.
};

/// Goes there. A keyframe that is decoded before `time` may be shown after it, or be damaged: then one before it is needed.
libav::FramePtr VideoReader::State::keyframeBefore(MediaTime time)
{
    ready.clear();
    auto from = time;
    for (MediaTime step = std::chrono::seconds(1);; step *= 2) {
        decoder.seek(from);
        auto keyframe = decoder.next();
        if ((keyframe && decoder.time(*keyframe) <= time) || from <= decoder.start())
            return keyframe;
        from = std::max(from - step, decoder.start());
    }
}

VideoReader::VideoReader(const std::filesystem::path& movie, int track, DamageSink onDamage)
    : m_state(new State{ .decoder = { movie, track, { .media = TrackMedia::Video, .onDamage = std::move(onDamage) } } })
{
}

VideoReader::~VideoReader() = default;

void VideoReader::seek(MediaTime time)
{
    auto& decoder = m_state->decoder;
    auto newest = m_state->keyframeBefore(time);
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

void VideoReader::seekKeyframe(MediaTime time)
{
    if (auto keyframe = m_state->keyframeBefore(time))
        m_state->ready.push_back(std::move(keyframe));
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
