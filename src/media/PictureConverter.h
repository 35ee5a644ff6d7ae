#pragma once

#include "media/Libav.h"
#include "media/Picture.h"

#include <optional>

namespace vantry {

/// Decoded frames as pictures. What already is 4:2:0, BT.709 and limited is passed on without a copy; every other format, as
/// foreign files have them, is converted. For the sources of this room only. One thread at a time.
class PictureConverter {
public:
    /// Throws AppError when the format cannot be converted.
    Picture convert(libav::FramePtr frame);

private:
    /// What the scaler is made for.
    struct Source {
        int width = 0;
        int height = 0;
        int format = AV_PIX_FMT_NONE;
        AVColorSpace colours = AVCOL_SPC_UNSPECIFIED;
        AVColorRange range = AVCOL_RANGE_UNSPECIFIED;

        bool operator==(const Source&) const = default;
    };

    void prepare(const Source& source);

    Source m_source;
    libav::ScalerPtr m_scaler;
    std::optional<PicturePool> m_pool;
};

} // namespace vantry
