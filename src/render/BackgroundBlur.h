#pragma once

#include "media/Picture.h"
#include "render/PersonFinder.h"
#include "render/PlaneBlur.h"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace vantry {

/// Leaves the presenter sharp and blurs what is behind them. One thread at a time.
class BackgroundBlur {
public:
    /// The blur's standard deviation as a fraction of the picture's height.
    static constexpr double sigma = 0.025;

    /// With the network of this program, which is built when the first picture comes; another file is for tests. A network that
    /// cannot be used leaves every picture sharp.
    explicit BackgroundBlur(std::span<const std::byte> networkFile = ownNetwork());

    /// A picture of the same size; the same one again for the picture that was given last, which costs nothing. The picture itself
    /// when it fails.
    Picture apply(const Picture& picture);

    static std::span<const std::byte> ownNetwork();

private:
    void build();
    void prepare(const Picture& picture);
    Picture blurred(const Picture& picture);

    const std::span<const std::byte> m_networkFile;
    bool m_isBuilt = false; ///< Or cannot be.
    std::optional<PersonFinder> m_finder;
    std::optional<PicturePool> m_pool; ///< Of the pictures' size.
    std::vector<PlaneBlur> m_planes; ///< For the pictures' size.
    Picture m_source;
    Picture m_result;
};

} // namespace vantry
