#include "capture/PictureTrack.h"

namespace vantry {

namespace {

/// Less than a second by one picture, so that with pictures at an uneven 30 a second keyframes are still at most a second apart.
constexpr MediaTime keyframeDistance = std::chrono::seconds(1) - frameDuration;

} // namespace

PictureTrack::PictureTrack(const VideoEncoderSettings& settings)
    : m_size{ settings.width, settings.height }
    , m_tick(MediaTime::period::den / settings.timescale)
    , m_encoder(settings)
    , m_scaler(m_size)
{
}

void PictureTrack::write(const Picture& picture, MediaTime time, const PacketSink& sink)
{
    if (m_last && time < *m_last + m_tick)
        return;
    const bool isKeyframe = !m_last || time - m_lastKeyframe >= keyframeDistance;
    m_encoder.encode(m_scaler.fit(picture), time, isKeyframe ? PictureKind::Keyframe : PictureKind::Any, sink);
    m_last = time;
    if (isKeyframe)
        m_lastKeyframe = time;
}

void PictureTrack::writeBlack(MediaTime time, const PacketSink& sink)
{
    PictureBuffer black(m_size.width, m_size.height);
    black.fill(16, 128, 128);
    write(std::move(black).share(), time, sink);
}

} // namespace vantry
