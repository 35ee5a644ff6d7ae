#pragma once

#include "media/Picture.h"

#include <QColor>

namespace vantry::test {

/// Blocks of colours, and within them every pixel has a brightness of its own.
Picture colouredNoise(int width, int height);

/// The colour that the samples of a pixel stand for. Exact where the chroma around it is the same.
QColor colourAt(const Picture& picture, int x, int y);

/// Pixels that have the chroma of their neighbours, in `colouredNoise`.
bool isInsideBlock(int x, int y);

} // namespace vantry::test
