#pragma once

#include "media/Sound.h"

#include <vector>

namespace vantry {

/// Makes one stream of sound a little longer or shorter without a seam between its pieces: a position moves through the samples by
/// steps of about one, and what lies between two samples is interpolated with all of the band in mind. As long as every step is
/// exactly one, samples pass unchanged and at once; later up to `reach` of them are held back. One thread at a time.
class DriftResampler {
public:
    /// Samples on either side that an interpolated one is made from.
    static constexpr int reach = 16;

    explicit DriftResampler(int channels);

    /// Takes a piece and gives what can be given by now, maybe nothing. `step` is how many samples are taken for one that is given.
    Sound resample(const Sound& piece, double step);

    /// How many samples were taken that are still to be given.
    double held() const { return static_cast<double>(frames()) - m_position; }

    /// Gives what is held back, as if silence followed. The next piece begins a new stream.
    Sound drain();

private:
    std::size_t frames() const { return m_windows.front().size(); }
    void take(const Sound& piece);
    void interpolate(Sound& to) const;
    void passUnchanged(Sound& to);
    void forgetWhatIsBehind();
    void beginAnew();

    std::vector<std::vector<float>> m_windows; ///< For each channel what the next sample is made from, and all not given yet.
    double m_position = 0; ///< Of the next sample, in the windows.
};

} // namespace vantry
