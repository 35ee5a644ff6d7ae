#include "capture/PictureTrack.h"

namespace vantry {

namespace {

constexpr MediaTime keyframeDistance = std::chrono::seconds(1);

/// It works on a few at the same time.
constexpr int heldByEncoder = 8;

} // namespace

PictureTrack::PictureTrack(const VideoEncoderSettings& settings)
    : m_size{ settings.width, settings.height }
    , m_tick(MediaTime::period::den / settings.timescale)
    , m_encoder(settings)
    , m_scaler(m_size)
{
}

bool PictureTrack::write(const Picture& picture, MediaTime time, const PacketSink& sink)
{
    if (m_held && time < m_held->time + m_tick)
        return false;
    if (m_held) {
        // The file rounds times to ticks.
        const bool isLastChance = !m_lastKeyframe || time - *m_lastKeyframe > keyframeDistance - m_tick;
        encodeHeld(isLastChance ? PictureKind::Keyframe : PictureKind::Any, sink);
    }
    m_held = TimedPicture{ picture, time };
    return true;
}

bool PictureTrack::writeBlack(MediaTime time, const PacketSink& sink)
{
    PictureBuffer black(m_size.width, m_size.height);
    black.fill(16, 128, 128);
    return write(std::move(black).share(), time, sink);
}

void PictureTrack::writeOut(MediaTime time, const PacketSink& sink)
{
    if (!m_held)
        return;
    const Picture picture = m_held->picture;
    for (int i = 0; i <= heldByEncoder; ++i)
        write(picture, time + i * m_tick, sink);
}

void PictureTrack::finish(const PacketSink& sink)
{
    if (m_held)
        encodeHeld(m_lastKeyframe ? PictureKind::Any : PictureKind::Keyframe, sink);
    m_encoder.finish(sink);
}

void PictureTrack::encodeHeld(PictureKind kind, const PacketSink& sink)
{
    m_encoder.encode(m_scaler.fit(m_held->picture), m_held->time, kind, sink);
    if (kind == PictureKind::Keyframe)
        m_lastKeyframe = m_held->time;
}

} // namespace vantry
