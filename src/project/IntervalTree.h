#pragma once

#include <cstddef>
#include <vector>

namespace vantry {

/// Finds, among many half-open intervals, those that hold a value: the time of an answer grows with what it finds and with the
/// logarithm of the number of intervals, however they are nested. Immutable.
class IntervalTree {
public:
    /// From `start` on and before `end`. Without extent (or not a number) it holds nothing.
    struct Interval {
        double start = 0;
        double end = 0;
    };

    IntervalTree() = default;
    explicit IntervalTree(const std::vector<Interval>&);

    /// The positions, in the list that the tree was made from and in its order, of the intervals that hold `value`.
    std::vector<std::size_t> holding(double value) const;

private:
    /// The nodes are sorted by start. The middle of a range is the root of the tree of that range.
    struct Node {
        Interval interval;
        double latestEnd = 0; ///< Of this node and all below it.
        std::size_t position = 0;
    };

    double link(std::size_t first, std::size_t last);
    void collect(std::size_t first, std::size_t last, double value, std::vector<std::size_t>& found) const;

    std::vector<Node> m_nodes;
};

} // namespace vantry
