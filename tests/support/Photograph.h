#pragma once

#include "media/Picture.h"

namespace vantry::test {

/// A photograph of a person before a flag, covering a picture of this size. It comes with a package of the distribution.
Picture photograph(int width, int height);

/// The same with the noise of a camera, another one for each seed: `levels` is its standard deviation.
Picture noisy(const Picture& picture, double levels, unsigned seed);

} // namespace vantry::test
