#pragma once

namespace vantry {

class PictureBuffer;

/// How Y, Cb and Cr stand for colours.
struct YuvColours {
    enum class Matrix { Bt709, Bt601 } matrix = Matrix::Bt709;
    enum class Range { Limited, Full } range = Range::Limited;

    bool operator==(const YuvColours&) const = default;
};

/// What JPEG images have.
inline constexpr YuvColours jpegColours{ YuvColours::Matrix::Bt601, YuvColours::Range::Full };

/// Makes samples that mean colours in another way mean the same colours in ours: BT.709, limited range.
void convertColours(PictureBuffer& picture, YuvColours from);

} // namespace vantry
