#include "project/IntervalTree.h"

#include <algorithm>
#include <limits>

namespace vantry {

namespace {

constexpr std::size_t usualNumberFound = 8;

} // namespace

IntervalTree::IntervalTree(const std::vector<Interval>& intervals)
{
    for (std::size_t position = 0; position < intervals.size(); ++position) {
        if (intervals[position].start < intervals[position].end)
            m_nodes.push_back({ .interval = intervals[position], .position = position });
    }
    std::ranges::sort(m_nodes, {}, [](const Node& node) { return node.interval.start; });
    link(0, m_nodes.size());
}

std::vector<std::size_t> IntervalTree::holding(double value) const
{
    std::vector<std::size_t> found;
    found.reserve(usualNumberFound);
    collect(0, m_nodes.size(), value, found);
    std::ranges::sort(found);
    return found;
}

double IntervalTree::link(std::size_t first, std::size_t last)
{
    if (first == last)
        return -std::numeric_limits<double>::infinity();
    const auto middle = first + (last - first) / 2;
    auto& node = m_nodes[middle];
    node.latestEnd = std::max({ node.interval.end, link(first, middle), link(middle + 1, last) });
    return node.latestEnd;
}

void IntervalTree::collect(std::size_t first, std::size_t last, double value, std::vector<std::size_t>& found) const
{
    while (first != last) {
        const auto middle = first + (last - first) / 2;
        const auto& node = m_nodes[middle];
        if (node.latestEnd <= value)
            return;
        if (node.interval.start <= value) {
            if (value < node.interval.end)
                found.push_back(node.position);
            collect(middle + 1, last, value, found);
        }
        last = middle;
    }
}

} // namespace vantry
