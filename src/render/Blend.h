#pragma once

#include <cstdint>

namespace vantry {

/// Opacity in 256ths: 256 is opaque.
using Opacity = int;

/// 0 … 1 as an opacity; from 0.999 on it is opaque.
Opacity opacityOf(double opacity);

/// Rows of premultiplied colour and its alpha over what is there, all of it faded.
void blendPremultiplied(std::uint8_t* row, const std::uint8_t* colour, const std::uint8_t* alpha, Opacity opacity, int count);

/// A row over what is there, faded.
void blendFaded(std::uint8_t* row, const std::uint8_t* colour, Opacity opacity, int count);

} // namespace vantry
