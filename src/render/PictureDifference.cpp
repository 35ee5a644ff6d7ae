#include "render/PictureDifference.h"

#include <cstring>

namespace vantry {

namespace {

std::uint64_t load(const std::uint8_t* bytes)
{
    std::uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

/// Whether a tile's row of samples differs; short ones stand at the right edge.
bool rowsDiffer(const std::uint8_t* a, const std::uint8_t* b, int count)
{
    int i = 0;
    std::uint64_t difference = 0;
    for (; i + 8 <= count; i += 8)
        difference |= load(a + i) ^ load(b + i);
    for (; i < count; ++i)
        difference |= a[i] ^ b[i];
    return difference != 0;
}

void markPlane(const Plane& before, const Plane& now, int tile, TileMap& different)
{
    for (int y = 0; y < now.height; ++y) {
        const auto* a = before.row(y);
        const auto* b = now.row(y);
        for (int x = 0, column = 0; x < now.width; x += tile, ++column) {
            if (rowsDiffer(a + x, b + x, std::min(tile, now.width - x)))
                different.markTile(column, y / tile);
        }
    }
}

} // namespace

void markDifferentTiles(const Picture& before, const Picture& now, TileMap& different)
{
    markPlane(before.plane(PlaneY), now.plane(PlaneY), TileMap::tileSize, different);
    markPlane(before.plane(PlaneCb), now.plane(PlaneCb), TileMap::tileSize / 2, different);
    markPlane(before.plane(PlaneCr), now.plane(PlaneCr), TileMap::tileSize / 2, different);
}

} // namespace vantry
