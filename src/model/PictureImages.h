#pragma once

#include "media/Picture.h"

#include <QImage>
#include <QSize>

#include <memory>

namespace vantry {

class RgbScaler;

/// Makes images of pictures, for views that draw images. Sizes are in pixels. What there is no room or no memory for is a null
/// image. One thread at a time.
class PictureImages {
public:
    PictureImages();
    ~PictureImages();

    /// Covers the size with the picture in its own shape; what reaches over the edges is cut off.
    QImage covering(const Picture& picture, QSize size);

    /// The whole picture, stretched to the size.
    QImage filling(const Picture& picture, QSize size);

private:
    const std::unique_ptr<RgbScaler> m_scaler;
};

} // namespace vantry
