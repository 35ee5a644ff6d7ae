#pragma once

#include "media/Picture.h"

#include <cstdint>
#include <memory>
#include <span>

namespace vantry {

/// Decodes the JPEG images of a camera, one by one. Odd sizes lose their last row or column. One thread at a time.
class JpegDecoder {
public:
    /// Throws AppError when the library has no such decoder.
    JpegDecoder();
    ~JpegDecoder();

    /// Throws AppError when the image is damaged.
    Picture decode(std::span<const std::uint8_t> image);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
