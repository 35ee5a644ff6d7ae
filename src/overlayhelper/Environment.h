#pragma once

namespace vantry {

/// Makes a fragment look the same on every machine: no display, no GPU, two pixels for a CSS pixel, our own choice of fonts, no
/// language. To be called before the application object is made.
void setUpEnvironment();

} // namespace vantry
