#pragma once

#include "project/IntervalTree.h"
#include "project/Project.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace vantry {

/// Answers what every frame asks about a project, for any time and in any order of times, without walking through its lists. Made
/// once from a project that does not change any more. Positions are those in that project's lists. Immutable, so safe on any
/// thread.
class ProjectIndex {
public:
    explicit ProjectIndex(const Project&);

    struct LayoutInForce {
        LayoutEvent event;
        std::optional<LayoutEvent> previous; ///< The event before it in the list, from which its transition starts.
    };

    /// The same event as `layoutInForce` of Timeline.h.
    LayoutInForce layoutAt(double time) const;

    /// The overlays that are on screen, from their start on and before their end, in drawing order.
    std::vector<std::size_t> visibleOverlays(double time) const { return m_overlays.holding(time); }

    struct ClipTime {
        std::size_t clip = 0;
        double time = 0; ///< Clip seconds.
    };

    /// What plays at a project time; nothing before the start and from the end on.
    std::optional<ClipTime> clipAt(double time) const;

private:
    std::vector<LayoutInForce> m_layouts; ///< Those that ever come into force, ascending by time.
    LayoutEvent m_firstLayout; ///< In force before all of them.
    IntervalTree m_overlays;
    IntervalTree m_clips;
    std::vector<double> m_clipStarts;
};

} // namespace vantry
