#include "media/RgbToYuv.h"

#include "media/Picture.h"

#include <cassert>
#include <cstring>

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace vantry {

namespace {

constexpr int lumaShift = 15;
constexpr int chromaShift = 15 + 2; // over the sum of four pixels

/// A coefficient in 1/32768. It has to fit 16 signed bits, which is what multiplies fastest.
constexpr std::int16_t fixed(double value)
{
    return static_cast<std::int16_t>(value * 32768 + (value < 0 ? -0.5 : 0.5));
}

// Y' = R Kr + G Kg + B Kb over 219 of 255 levels; Cb = (B - Y') / 2(1 - Kb) and Cr = (R - Y') / 2(1 - Kr) over 224 of them. Green
// is what the others leave, so that grey has no colour to the last bit.
constexpr double kr = 0.2126, kg = 0.7152, kb = 0.0722;
constexpr double lumaRange = 219.0 / 255, chromaRange = 224.0 / 255;
constexpr std::int16_t yr = fixed(kr * lumaRange), yg = fixed(kg * lumaRange), yb = fixed(kb * lumaRange);
constexpr std::int16_t cbr = fixed(-kr / (2 * (1 - kb)) * chromaRange), cbb = fixed(0.5 * chromaRange), cbg = -(cbr + cbb);
constexpr std::int16_t crb = fixed(-kb / (2 * (1 - kr)) * chromaRange), crr = fixed(0.5 * chromaRange), crg = -(crb + crr);

// The offset and one half, which makes the shift round.
constexpr std::int32_t lumaBase = (16 << lumaShift) + (1 << (lumaShift - 1));
constexpr std::int32_t chromaBase = (128 << chromaShift) + (1 << (chromaShift - 1));

/// Two rows of pixels and the samples they become.
struct RowPair {
    const std::uint8_t* rgb[2];
    std::uint8_t* y[2];
    std::uint8_t* cb;
    std::uint8_t* cr;
};

/// Stores and remembers whether it was a change.
void store(std::uint8_t& sample, std::int32_t value, unsigned& difference)
{
    const auto byte = static_cast<std::uint8_t>(value);
    difference |= static_cast<unsigned>(sample ^ byte);
    sample = byte;
}

/// Pixels `from` to `end` of the two rows.
bool drawPortable(const RowPair& rows, int from, int end)
{
    unsigned difference = 0;
    for (int x = from; x < end; x += 2) {
        int b = 0, g = 0, r = 0;
        for (int row = 0; row < 2; ++row) {
            for (int i = x; i < x + 2; ++i) {
                const auto* pixel = rows.rgb[row] + 4 * i;
                store(rows.y[row][i], (pixel[0] * yb + pixel[1] * yg + pixel[2] * yr + lumaBase) >> lumaShift, difference);
                b += pixel[0];
                g += pixel[1];
                r += pixel[2];
            }
        }
        store(rows.cb[x / 2], (b * cbb + g * cbg + r * cbr + chromaBase) >> chromaShift, difference);
        store(rows.cr[x / 2], (b * crb + g * crg + r * crr + chromaBase) >> chromaShift, difference);
    }
    return difference != 0;
}

#ifdef __x86_64__

#define AVX2 __attribute__((target("avx2"), always_inline)) inline

/// Eight pixels, or sums of pixels, as 16-bit numbers: blue and red of each in one 32-bit lane, green and the unused byte in
/// another.
struct Channels {
    __m256i blueRed;
    __m256i green;
};

AVX2 Channels loadPixels(const std::uint8_t* pixels)
{
    const auto bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
    const auto lowBytes = _mm256_set1_epi32(0x00FF00FF);
    return { _mm256_and_si256(bytes, lowBytes), _mm256_and_si256(_mm256_srli_epi16(bytes, 8), lowBytes) };
}

/// Two 16-bit coefficients for each 32-bit lane.
AVX2 __m256i coefficients(std::int16_t low, std::int16_t high)
{
    return _mm256_set1_epi32(static_cast<std::int32_t>(
        static_cast<std::uint16_t>(low) | static_cast<std::uint32_t>(static_cast<std::uint16_t>(high)) << 16));
}

/// Eight samples of 32 bits.
template <int Shift>
AVX2 __m256i weigh(const Channels& channels, __m256i blueRed, __m256i green, std::int32_t base)
{
    const auto sum = _mm256_add_epi32(_mm256_madd_epi16(channels.blueRed, blueRed), _mm256_madd_epi16(channels.green, green));
    return _mm256_srai_epi32(_mm256_add_epi32(sum, _mm256_set1_epi32(base)), Shift);
}

AVX2 __m256i lumaOf(const Channels& channels)
{
    return weigh<lumaShift>(channels, coefficients(yb, yr), coefficients(yg, 0), lumaBase);
}

/// The packing instructions work on halves of a register; this puts their 32-bit groups back into the order of the pixels.
AVX2 __m256i inOrder(__m256i packed)
{
    return _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

AVX2 void storeBytes(std::uint8_t* samples, __m256i bytes, __m256i& difference)
{
    auto* memory = reinterpret_cast<__m256i*>(samples);
    difference = _mm256_or_si256(difference, _mm256_xor_si256(_mm256_loadu_si256(memory), bytes));
    _mm256_storeu_si256(memory, bytes);
}

AVX2 void storeLuma(std::uint8_t* samples, const Channels (&row)[4], __m256i& difference)
{
    const auto first = _mm256_packs_epi32(lumaOf(row[0]), lumaOf(row[1]));
    const auto second = _mm256_packs_epi32(lumaOf(row[2]), lumaOf(row[3]));
    storeBytes(samples, inOrder(_mm256_packus_epi16(first, second)), difference);
}

/// Sums of four pixels: of both rows, then of neighbours. They stay below 1024, so no lane spills into the next.
AVX2 Channels sums(const Channels& upper0, const Channels& lower0, const Channels& upper1, const Channels& lower1)
{
    return { _mm256_hadd_epi32(_mm256_add_epi32(upper0.blueRed, lower0.blueRed), _mm256_add_epi32(upper1.blueRed, lower1.blueRed)),
        _mm256_hadd_epi32(_mm256_add_epi32(upper0.green, lower0.green), _mm256_add_epi32(upper1.green, lower1.green)) };
}

/// Sixteen samples of 16 bits.
AVX2 __m256i chromaOf(const Channels& first, const Channels& second, __m256i blueRed, __m256i green)
{
    return inOrder(_mm256_packs_epi32(
        weigh<chromaShift>(first, blueRed, green, chromaBase), weigh<chromaShift>(second, blueRed, green, chromaBase)));
}

AVX2 void storeHalf(std::uint8_t* samples, __m128i bytes, __m256i& difference)
{
    auto* memory = reinterpret_cast<__m128i*>(samples);
    const auto changed = _mm_xor_si128(_mm_loadu_si128(memory), bytes);
    difference = _mm256_or_si256(difference, _mm256_castsi128_si256(changed));
    _mm_storeu_si128(memory, bytes);
}

AVX2 void storeChroma(const RowPair& rows, int x, const Channels (&upper)[4], const Channels (&lower)[4], __m256i& difference)
{
    const auto first = sums(upper[0], lower[0], upper[1], lower[1]);
    const auto second = sums(upper[2], lower[2], upper[3], lower[3]);
    const auto cb = chromaOf(first, second, coefficients(cbb, cbr), coefficients(cbg, 0));
    const auto cr = chromaOf(first, second, coefficients(crb, crr), coefficients(crg, 0));
    const auto both = _mm256_permute4x64_epi64(_mm256_packus_epi16(cb, cr), _MM_SHUFFLE(3, 1, 2, 0));
    storeHalf(rows.cb + x / 2, _mm256_castsi256_si128(both), difference);
    storeHalf(rows.cr + x / 2, _mm256_extracti128_si256(both, 1), difference);
}

constexpr int avx2Step = 32;

/// The first pixels of the two rows, in whole steps.
__attribute__((target("avx2"))) bool drawAvx2(const RowPair& rows, int width)
{
    auto difference = _mm256_setzero_si256();
    for (int x = 0; x + avx2Step <= width; x += avx2Step) {
        Channels pixels[2][4];
        for (int row = 0; row < 2; ++row)
            for (int i = 0; i < 4; ++i)
                pixels[row][i] = loadPixels(rows.rgb[row] + 4 * (x + 8 * i));
        storeLuma(rows.y[0] + x, pixels[0], difference);
        storeLuma(rows.y[1] + x, pixels[1], difference);
        storeChroma(rows, x, pixels[0], pixels[1], difference);
    }
    return !_mm256_testz_si256(difference, difference);
}

#undef AVX2

#else

constexpr int avx2Step = 32;

bool drawAvx2(const RowPair& rows, int width)
{
    return drawPortable(rows, 0, width / avx2Step * avx2Step);
}

#endif

} // namespace

Arithmetic fastestArithmetic()
{
#ifdef __x86_64__
    static const auto fastest = __builtin_cpu_supports("avx2") ? Arithmetic::Avx2 : Arithmetic::Portable;
    return fastest;
#else
    return Arithmetic::Portable;
#endif
}

bool drawRgb(const RgbPixels& pixels, PictureBuffer& target, int x, int y, Arithmetic arithmetic)
{
    assert(x % 2 == 0 && y % 2 == 0 && pixels.width % 2 == 0 && pixels.height % 2 == 0);
    assert(x >= 0 && y >= 0 && x + pixels.width <= target.width() && y + pixels.height <= target.height());
    const auto luma = target.plane(PlaneY), cb = target.plane(PlaneCb), cr = target.plane(PlaneCr);
    const int portableFrom = arithmetic == Arithmetic::Avx2 ? pixels.width / avx2Step * avx2Step : 0;
    bool changed = false;
    for (int row = 0; row < pixels.height; row += 2) {
        const auto* rgb = pixels.data + row * pixels.stride;
        const RowPair rows{ .rgb = { rgb, rgb + pixels.stride },
            .y = { luma.row(y + row) + x, luma.row(y + row + 1) + x },
            .cb = cb.row((y + row) / 2) + x / 2,
            .cr = cr.row((y + row) / 2) + x / 2 };
        if (portableFrom > 0)
            changed |= drawAvx2(rows, pixels.width);
        changed |= drawPortable(rows, portableFrom, pixels.width);
    }
    return changed;
}

} // namespace vantry
