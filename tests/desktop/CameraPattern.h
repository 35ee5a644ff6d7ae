#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vantry {

/// What the test camera sees: eight upright colour bars (white, yellow, cyan, green, magenta, red, blue, black, each at 75 %),
/// across their middle a black box that moves on by a thirtieth of the width with every frame, and a white flash of the whole
/// picture on every 30th frame, the first one included. It repeats after 30 frames.
class CameraPattern {
public:
    static constexpr int period = 30;

    struct Color {
        uint8_t red;
        uint8_t green;
        uint8_t blue;
    };

    struct Size {
        int width; // even
        int height; // even
    };

    CameraPattern(Size size, uint64_t frame);

    Color at(int x, int y) const { return (isInBoxRow(y) ? m_boxRow : m_plainRow)[x]; }

    /// Each writes the whole picture without padding; Y'CbCr is BT.709 of limited range. `to` has room for it.
    void writeYuy2(std::byte* to) const;
    void writeNv12(std::byte* to) const;
    void writeI420(std::byte* to) const;
    void writeBgrx(std::byte* to) const;

private:
    using Row = std::vector<Color>;

    bool isInBoxRow(int y) const;
    template <typename Encode>
    std::byte* writeRows(std::byte* to, int step, Encode encode) const;

    Size m_size;
    // There are only two different rows in a picture: those that the box crosses and those that it does not.
    Row m_plainRow;
    Row m_boxRow;
};

} // namespace vantry
