#pragma once

#include "media/Picture.h"
#include "render/FixedPoint.h"
#include "render/PersonNetwork.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace vantry {

/// Where the person is: whole weight is person, none is background. The whole picture in a size of its own.
struct SoftMask {
    int width = 0;
    int height = 0;
    std::vector<Weight> samples; ///< Row by row.
};

/// Finds the person in pictures of any size. One thread at a time.
class PersonFinder {
public:
    /// From the network's file. Throws AppError when it cannot be used.
    explicit PersonFinder(std::span<const std::byte> networkFile);

    /// Of its masks.
    int width() const { return m_network.width(); }
    int height() const { return m_network.height(); }

    /// Valid until the next call. Throws AppError when it fails.
    const SoftMask& find(const Picture& picture);

private:
    void showPicture(const Picture& picture);

    PersonNetwork m_network;
    std::vector<float> m_planes[3]; ///< The picture in the network's size.
    std::vector<int> m_columns;
    SoftMask m_mask;
};

} // namespace vantry
