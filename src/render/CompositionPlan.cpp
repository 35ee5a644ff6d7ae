#include "render/CompositionPlan.h"

#include <algorithm>
#include <iterator>

namespace vantry {

std::vector<Segment> CompositionPlan::segmentsOf(TrackKind role) const
{
    std::vector<Segment> found;
    std::ranges::copy_if(segments, std::back_inserter(found), [&](const Segment& segment) { return segment.role == role; });
    return found;
}

bool CompositionPlan::hasSound() const
{
    return std::ranges::any_of(
        segments, [](const Segment& segment) { return segment.role == TrackKind::audio || segment.role == TrackKind::system; });
}

std::int64_t CompositionPlan::frameCount() const
{
    return (duration + frameDuration - MediaTime(1)) / frameDuration;
}

std::int64_t CompositionPlan::frameAt(MediaTime time) const
{
    return std::clamp<std::int64_t>(time / frameDuration, 0, std::max<std::int64_t>(frameCount() - 1, 0));
}

} // namespace vantry
