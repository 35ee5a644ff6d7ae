#include "render/TrackSound.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

SampleCount samplesAt(MediaTime time)
{
    return std::chrono::round<SampleCount>(time);
}

} // namespace

TrackSound::TrackSound(std::vector<Segment> segments, SampleCount from, DamageLog* damage)
    : m_segments(std::move(segments))
    , m_damage(damage)
    , m_position(from)
{
    while (m_current < m_segments.size() && samplesAt(m_segments[m_current].outputEnd()) <= from)
        ++m_current;
}

void TrackSound::addTo(Sound& mix, float gain)
{
    const auto end = m_position + mix.length();
    while (findPieceBefore(end)) {
        const auto from = std::max(m_piece->start, m_position);
        const auto to = std::min(m_piece->end(), end);
        const auto* source = m_piece->sound.samples.data() + (from - m_piece->start).count() * channels;
        auto* target = mix.samples.data() + (from - m_position).count() * channels;
        for (std::int64_t i = 0; i < (to - from).count() * channels; ++i)
            target[i] += gain * source[i];
        if (to < m_piece->end())
            break;
        m_piece.reset();
    }
    m_position = end;
}

/// Makes `m_piece` the next piece, if there is one that begins before `end`.
bool TrackSound::findPieceBefore(SampleCount end)
{
    while (!m_piece || m_piece->end() <= m_position) {
        if (m_current == m_segments.size() || samplesAt(m_segments[m_current].outputStart) >= end)
            return false;
        m_piece = readPiece(m_segments[m_current]);
        if (!m_piece) {
            m_reader.reset();
            ++m_current;
        }
    }
    return m_piece->start < end;
}

/// Nothing at the segment's end.
std::optional<TrackSound::Piece> TrackSound::readPiece(const Segment& segment)
{
    if (!m_reader) {
        m_reader = std::make_unique<AudioReader>(segment.file, segment.track, channels, damageOf(segment, m_damage));
        m_reader->seek(segment.sourceStart + std::max(m_position - samplesAt(segment.outputStart), SampleCount(0)));
    }
    auto read = m_reader->next();
    if (!read)
        return std::nullopt;
    Piece piece{ std::move(read->sound), samplesAt(segment.outputStart + (read->time - segment.sourceStart)) };
    const auto end = samplesAt(segment.outputEnd());
    if (piece.start >= end)
        return std::nullopt;
    auto& samples = piece.sound.samples;
    if (piece.end() > end)
        samples.resize(static_cast<std::size_t>((end - piece.start).count() * channels));
    if (const auto begin = samplesAt(segment.outputStart); piece.start < begin) {
        samples.erase(samples.begin(), samples.begin() + std::min(begin - piece.start, piece.sound.length()).count() * channels);
        piece.start = begin;
    }
    return piece;
}

} // namespace vantry
