#pragma once

namespace vantry {

/// In pixels; both are even wherever a picture of ours is made.
struct PictureSize {
    int width = 0;
    int height = 0;

    bool operator==(const PictureSize&) const = default;
};

} // namespace vantry
