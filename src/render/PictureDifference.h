#pragma once

#include "media/Picture.h"
#include "render/TileMap.h"

namespace vantry {

/// Marks the tiles in which two pictures of the same size, which is the map's, are not equal.
void markDifferentTiles(const Picture& before, const Picture& now, TileMap& different);

} // namespace vantry
