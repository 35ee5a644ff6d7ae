#include "render/DamageLog.h"

#include <algorithm>
#include <iterator>

namespace vantry {

namespace {

/// Nobody is helped by many short stretches in a row.
constexpr MediaTime closeTogether = std::chrono::seconds(1);

Damage::Of mediaOf(TrackKind role)
{
    return role == TrackKind::screen || role == TrackKind::camera ? Damage::Of::Pictures : Damage::Of::Sound;
}

} // namespace

void DamageLog::add(const Segment& segment, TimeRange source)
{
    const auto shift = segment.outputStart - segment.sourceStart;
    auto from = std::max(source.from + shift, segment.outputStart);
    auto to = std::min(source.to + shift, segment.outputEnd());
    if (from > to || from == segment.outputEnd())
        return;
    const std::lock_guard lock(m_mutex);
    auto& ranges = m_ranges[{ segment.file.filename().string(), mediaOf(segment.role) }];
    auto next = ranges.upper_bound(from);
    if (next != ranges.begin() && std::prev(next)->second + closeTogether >= from)
        --next;
    while (next != ranges.end() && next->first <= to + closeTogether) {
        from = std::min(from, next->first);
        to = std::max(to, next->second);
        next = ranges.erase(next);
    }
    ranges.emplace(from, to);
}

std::vector<Damage> DamageLog::found() const
{
    std::vector<Damage> found;
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& [track, ranges] : m_ranges)
            for (const auto& [from, to] : ranges)
                found.push_back({ track.first, track.second, { from, to } });
    }
    std::ranges::stable_sort(found, {}, [](const Damage& damage) { return damage.range.from; });
    return found;
}

DamageSink damageOf(const Segment& segment, DamageLog* log)
{
    if (!log)
        return {};
    return [&segment, log](TimeRange range) { log->add(segment, range); };
}

} // namespace vantry
