#pragma once

#include <cstdint>

namespace vantry {

/// The two inner loops of scaling a plane, in the fastest form that this processor has. All forms give the same bits.
struct ScaleKernels {
    /// out[i] = the sum over t of rows[t][i] * weights[t], with six bits behind the point.
    void (*vertical)(std::int16_t* out, const std::uint8_t* const* rows, const std::int16_t* weights, int taps, int count);

    /// out[i] = the sum over t of in[starts[i] + t] * weights[i * taps + t], rounded to a byte. `taps` is four or a multiple of
    /// eight, and so many values may be read from every start on.
    void (*horizontal)(
        std::uint8_t* out, const std::int16_t* in, const int* starts, const std::int16_t* weights, int taps, int count);
};

/// The form for this processor.
const ScaleKernels& scaleKernels();

/// The form that runs everywhere.
const ScaleKernels& portableScaleKernels();

} // namespace vantry
