#include "ScreenContent.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace vantry {

namespace {

struct Area {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

struct Colour {
    std::uint8_t y = 16;
    std::uint8_t cb = 128;
    std::uint8_t cr = 128;
};

constexpr Colour paper{ 225, 128, 128 };
constexpr Colour night{ 30, 132, 126 };
constexpr Colour desk{ 70, 150, 118 };
constexpr Colour bar{ 180, 126, 130 };

constexpr int glyphWidth = 9;
constexpr int lineHeight = 20;

std::uint32_t hash(std::uint32_t value)
{
    value = (value ^ (value >> 16)) * 0x45d9f3b;
    value = (value ^ (value >> 16)) * 0x45d9f3b;
    return value ^ (value >> 16);
}

void fillPlane(MutablePlane plane, Area area, std::uint8_t value)
{
    const int left = std::clamp(area.x, 0, plane.width);
    const int right = std::clamp(area.x + area.width, left, plane.width);
    const int bottom = std::clamp(area.y + area.height, 0, plane.height);
    for (int y = std::clamp(area.y, 0, plane.height); y < bottom; ++y)
        std::fill(plane.row(y) + left, plane.row(y) + right, value);
}

void fill(PictureBuffer& buffer, Area area, Colour colour)
{
    fillPlane(buffer.plane(PlaneY), area, colour.y);
    const Area half{ area.x / 2, area.y / 2, area.width / 2, area.height / 2 };
    fillPlane(buffer.plane(PlaneCb), half, colour.cb);
    fillPlane(buffer.plane(PlaneCr), half, colour.cr);
}

/// A made-up letter out of five strokes with soft edges, drawn within `clip`.
void drawGlyph(MutablePlane plane, int left, int top, std::uint32_t letter, std::uint8_t ink, Area clip)
{
    const std::array<Area, 5> strokes{ Area{ 0, 0, 2, 13 }, Area{ 5, 3, 2, 10 }, Area{ 1, 0, 5, 2 }, Area{ 1, 6, 5, 2 },
        Area{ 1, 11, 5, 2 } };
    for (std::size_t i = 0; i < strokes.size(); ++i) {
        if (!((letter >> i) & 1) && letter % 5 != i)
            continue;
        for (int y = top + strokes[i].y; y < top + strokes[i].y + strokes[i].height; ++y)
            for (int x = left + strokes[i].x; x < left + strokes[i].x + strokes[i].width; ++x)
                if (x >= std::max(clip.x, 0) && x < std::min(clip.x + clip.width, plane.width) && y >= std::max(clip.y, 0)
                    && y < std::min(clip.y + clip.height, plane.height)) {
                    auto& pixel = plane.row(y)[x];
                    const bool isEdge = x == left + strokes[i].x && i < 2;
                    pixel = static_cast<std::uint8_t>(isEdge ? (pixel + ink) / 2 : ink);
                }
    }
}

struct Text {
    std::uint32_t seed = 0;
    int scrolled = 0; ///< Pixels.
    int typedLines = 1 << 20; ///< Lines from the top that are complete; the one after has `typedLetters`.
    int typedLetters = 0;
    std::uint8_t ink = 30;
};

int lettersOf(std::uint32_t seed, int line, int most)
{
    const auto value = hash(seed + static_cast<std::uint32_t>(line));
    return value % 7 == 0 ? 0 : static_cast<int>(value / 8 % static_cast<std::uint32_t>(std::max(most, 1)));
}

void drawText(PictureBuffer& buffer, Area area, const Text& text)
{
    const auto plane = buffer.plane(PlaneY);
    const int columns = area.width / glyphWidth - 2;
    for (int line = text.scrolled / lineHeight; line * lineHeight - text.scrolled < area.height; ++line) {
        const int top = area.y + 4 + line * lineHeight - text.scrolled;
        const int letters = line < text.typedLines ? lettersOf(text.seed, line, columns)
            : line == text.typedLines              ? text.typedLetters
                                                   : 0;
        for (int i = 0; i < letters; ++i) {
            const auto letter = hash(text.seed * 31 + static_cast<std::uint32_t>(line * 1000 + i));
            if (letter % 6 != 0)
                drawGlyph(plane, area.x + (i + 1) * glyphWidth, top, letter, text.ink, area);
        }
    }
}

void drawWindow(PictureBuffer& buffer, Area area, Colour colour, const Text& text)
{
    fill(buffer, area, colour);
    fill(buffer, { area.x, area.y, area.width, 28 }, bar);
    drawText(buffer, { area.x, area.y + 28, area.width, area.height - 28 }, text);
}

/// Smooth hills with some grain on them, as a camera would see.
Picture photograph(int width, int height)
{
    PictureBuffer buffer(width, height);
    const auto hills = [](double x, double y) {
        return std::sin(x / 37 + std::sin(y / 53) * 2) + std::sin(y / 29 + x / 71) + std::sin((x + y) / 11) / 3;
    };
    const auto luma = buffer.plane(PlaneY);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto grain = static_cast<int>(hash(static_cast<std::uint32_t>(y * width + x)) % 9) - 4;
            luma.row(y)[x] = static_cast<std::uint8_t>(std::clamp(125 + static_cast<int>(40 * hills(x, y)) + grain, 16, 235));
        }
    for (int index : { PlaneCb, PlaneCr }) {
        const auto chroma = buffer.plane(index);
        for (int y = 0; y < chroma.height; ++y)
            for (int x = 0; x < chroma.width; ++x)
                chroma.row(y)[x] = static_cast<std::uint8_t>(128 + static_cast<int>(15 * hills(index * 90 + 2 * y, 2 * x)));
    }
    return std::move(buffer).share();
}

void copyFrom(PictureBuffer& buffer, const Picture& source, int left, int top)
{
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto target = buffer.plane(index);
        const auto from = source.plane(index);
        const int shift = index == PlaneY ? 0 : 1;
        for (int y = 0; y < target.height; ++y)
            std::copy_n(from.row(y + (top >> shift)) + (left >> shift), target.width, target.row(y));
    }
}

constexpr int photographMargin = 160;

int swing(int number, double period, double reach)
{
    return static_cast<int>(std::lround(reach * std::sin(number * 2 * std::numbers::pi / period)));
}

} // namespace

ScreenContent::ScreenContent(int width, int height, Activity activity)
    : m_width(width)
    , m_height(height)
    , m_activity(activity)
    , m_pool(width, height)
{
    if (activity == Activity::Motion)
        m_photograph = photograph(width + 2 * photographMargin, height + 2 * photographMargin);
}

Picture ScreenContent::picture(int number)
{
    return m_activity == Activity::Typing ? typing(number) : motion(number);
}

Picture ScreenContent::typing(int number)
{
    auto buffer = m_pool.make();
    buffer.fill(desk.y, desk.cb, desk.cr);
    const int typed = number / 2;
    const Text editor{ .seed = 7, .typedLines = 12 + typed / 60, .typedLetters = typed % 60 };
    drawWindow(buffer, { m_width / 32, m_height / 16, m_width * 9 / 16, m_height * 7 / 8 }, paper, editor);
    const Text log{ .seed = 99, .scrolled = 4 * number, .ink = 200 };
    drawWindow(buffer, { m_width * 5 / 8, m_height / 8, m_width * 5 / 16, m_height * 3 / 4 }, night, log);
    return std::move(buffer).share();
}

Picture ScreenContent::motion(int number)
{
    auto buffer = m_pool.make();
    copyFrom(buffer, m_photograph, photographMargin + swing(number, 97, 150), photographMargin + swing(number, 131, 150));
    for (int i = 0; i < 4; ++i) {
        const Area area{ m_width * (1 + 4 * i) / 18 + swing(number + 20 * i, 80 + 10 * i, 60),
            m_height * (1 + i) / 8 + swing(number, 60 + 13 * i, 50), m_width / 5, m_height / 2 };
        drawWindow(buffer, area, i % 2 ? night : paper,
            { .seed = static_cast<std::uint32_t>(i),
                .scrolled = (3 + 2 * i) * number,
                .ink = static_cast<std::uint8_t>(i % 2 ? 200 : 30) });
    }
    return std::move(buffer).share();
}

} // namespace vantry
