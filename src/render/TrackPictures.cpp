#include "render/TrackPictures.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantry {

namespace {

/// What lies further ahead is looked up: a clip has a keyframe every second, so it takes half a second's pictures on average.
constexpr MediaTime longestRead = std::chrono::milliseconds(500);

/// The latest output frame that shows the segment, up to the frame at `time`; nothing when it is too short for one.
std::optional<MediaTime> frameWithin(const Segment& segment, MediaTime time)
{
    if (time >= segment.outputEnd())
        time = (segment.outputEnd() - MediaTime(1)) / frameDuration * frameDuration;
    return time >= segment.outputStart ? std::optional(time) : std::nullopt;
}

} // namespace

TrackPictures::TrackPictures(std::vector<Segment> segments, Options options)
    : m_segments(std::move(segments))
    , m_options(options)
{
}

Picture TrackPictures::at(MediaTime time, const std::function<bool()>& isEnough)
{
    const auto later = std::ranges::upper_bound(m_segments, time, {}, &Segment::outputStart);
    for (auto segment = static_cast<std::size_t>(later - m_segments.begin()); segment-- > 0;)
        if (const auto frame = frameWithin(m_segments[segment], time))
            if (auto picture = pictureIn(segment, *frame, isEnough))
                return picture;
    return {};
}

/// The newest picture at or before an output time that lies within the segment.
Picture TrackPictures::pictureIn(std::size_t index, MediaTime time, const std::function<bool()>& isEnough)
{
    const auto& segment = m_segments[index];
    const auto sourceTime = segment.sourceStart + (time - segment.outputStart);
    try {
        if (m_current != index)
            open(index);
        reach(sourceTime, isEnough);
    } catch (...) {
        close(); // A decoder that has failed is not asked again.
        throw;
    }
    const auto following = std::ranges::upper_bound(m_decoded, sourceTime, {}, &TimedPicture::time);
    return following == m_decoded.begin() ? Picture() : std::prev(following)->picture;
}

void TrackPictures::open(std::size_t index)
{
    close();
    const auto& segment = m_segments[index];
    m_reader = std::make_unique<VideoReader>(segment.file, segment.track, damageOf(segment, m_options.damage));
    m_current = index;
}

void TrackPictures::close()
{
    m_current.reset();
    m_reader.reset();
    m_decoded.clear();
}

/// Sees to it that the newest picture at or before the time is among the decoded ones, and that it is known to be the newest.
void TrackPictures::reach(MediaTime sourceTime, const std::function<bool()>& isEnough)
{
    const auto isFarAhead = [&] { return !m_isAtEnd && sourceTime > m_sought && sourceTime > m_decoded.back().time + longestRead; };
    if (m_decoded.empty() || sourceTime < m_from || isFarAhead())
        seek(sourceTime);
    while (!m_isAtEnd && m_decoded.back().time <= sourceTime && !isEnough())
        readOne();
}

void TrackPictures::seek(MediaTime sourceTime)
{
    m_reader->seekKeyframe(sourceTime);
    m_decoded.clear();
    m_isAtEnd = false;
    m_sought = sourceTime;
    readOne();
    m_from = m_decoded.empty() ? sourceTime : std::min(sourceTime, m_decoded.front().time);
}

void TrackPictures::readOne()
{
    auto picture = m_reader->next();
    m_isAtEnd = !picture;
    if (m_isAtEnd)
        return;
    m_decoded.push_back(*std::move(picture));
    while (m_decoded.size() > std::max<std::size_t>(m_options.kept, 2)) {
        m_decoded.pop_front();
        m_from = m_decoded.front().time;
    }
}

} // namespace vantry
