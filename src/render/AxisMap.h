#pragma once

#include <cstdint>
#include <vector>

namespace vantry {

/// How the samples along one axis of a plane are made from those of another: for each destination sample the first source sample
/// and the weights of it and its successors. Catmull-Rom when the plane grows, the same curve stretched when it shrinks.
class AxisMap {
public:
    /// Weights add up to this.
    static constexpr int unit = 1 << 14;

    /// The stretch of the source that lands on a stretch of the destination, in samples, at any fraction of one.
    struct Mapping {
        double sourceStart = 0;
        double sourceLength = 0;
        double destinationStart = 0;
        double destinationLength = 0;
    };

    AxisMap() = default;

    /// For the destination samples from `first` up to, not including, `last`. Source samples outside of the mapped stretch are not
    /// used (the edge sample stands in), so that what was cropped away cannot bleed in; `sourceSize` is how many there are at all.
    AxisMap(const Mapping& mapping, int first, int last, int sourceSize);

    int first() const { return m_first; }
    int last() const { return m_last; }
    int taps() const { return m_taps; }
    int paddedTaps() const { return m_paddedTaps; } ///< Four or a multiple of eight; the weights behind `taps` are zero.

    int start(int destination) const { return m_starts[static_cast<std::size_t>(destination - m_first)]; }
    const int* starts(int destination) const { return m_starts.data() + (destination - m_first); }
    const std::int16_t* weights(int destination) const
    {
        return m_weights.data() + static_cast<std::size_t>(destination - m_first) * m_paddedTaps;
    }

    /// Every destination sample is one source sample, at this distance in front of it. Nothing to compute then.
    bool isCopy() const { return m_isCopy; }

    /// The destination samples that the source samples from `sourceFirst` up to `sourceLast` contribute to, inside `first` and
    /// `last`.
    struct Range {
        int first = 0;
        int last = 0;
    };
    Range affected(int sourceFirst, int sourceLast) const;

private:
    int m_first = 0;
    int m_last = 0;
    int m_taps = 0;
    int m_paddedTaps = 0;
    bool m_isCopy = false;
    std::vector<int> m_starts;
    std::vector<std::int16_t> m_weights;
};

} // namespace vantry
