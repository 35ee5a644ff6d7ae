#include "render/TrackPictures.h"

#include <utility>

namespace vantry {

TrackPictures::TrackPictures(std::vector<Segment> segments, VideoReader::Options options)
    : m_segments(std::move(segments))
    , m_options(options)
{
}

Picture TrackPictures::at(MediaTime time)
{
    const auto* segment = segmentAt(time);
    if (!segment)
        return {};
    const auto sourceTime = segment->sourceStart + (time - segment->outputStart);
    if (!m_reader)
        open(*segment, sourceTime);
    while (m_following && m_following->time <= sourceTime) {
        m_shown = std::move(m_following->picture);
        m_following = m_reader->next();
    }
    return m_shown;
}

const Segment* TrackPictures::segmentAt(MediaTime time)
{
    while (m_current < m_segments.size() && m_segments[m_current].outputEnd() <= time) {
        ++m_current;
        m_reader.reset();
        m_shown = {};
        m_following.reset();
    }
    const bool isWithin = m_current < m_segments.size() && m_segments[m_current].outputStart <= time;
    return isWithin ? &m_segments[m_current] : nullptr;
}

void TrackPictures::open(const Segment& segment, MediaTime sourceTime)
{
    m_reader = std::make_unique<VideoReader>(segment.file, segment.track, m_options);
    m_reader->seek(sourceTime);
    m_following = m_reader->next();
}

} // namespace vantry
