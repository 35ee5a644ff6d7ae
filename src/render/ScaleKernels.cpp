#include "render/ScaleKernels.h"

#include <algorithm>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace vantry {

namespace {

// A sample is taken with seven bits behind the point, a weight with fourteen; the product keeps six. What the second pass adds up
// has twenty.
constexpr int sampleShift = 7;
constexpr int resultShift = 20;

std::int16_t verticalSum(const std::uint8_t* const* rows, int column, const std::int16_t* weights, int taps)
{
    int sum = 0;
    for (int t = 0; t < taps; ++t)
        sum += ((rows[t][column] << sampleShift) * weights[t] + (1 << 14)) >> 15;
    return static_cast<std::int16_t>(sum);
}

void verticalPortable(std::int16_t* out, const std::uint8_t* const* rows, const std::int16_t* weights, int taps, int count)
{
    for (int i = 0; i < count; ++i)
        out[i] = verticalSum(rows, i, weights, taps);
}

void horizontalPortable(
    std::uint8_t* out, const std::int16_t* in, const int* starts, const std::int16_t* weights, int taps, int count)
{
    for (int i = 0; i < count; ++i, weights += taps) {
        int sum = 1 << (resultShift - 1);
        for (int t = 0; t < taps; ++t)
            sum += in[starts[i] + t] * weights[t];
        out[i] = static_cast<std::uint8_t>(std::clamp(sum >> resultShift, 0, 255));
    }
}

#if defined(__x86_64__)

constexpr int mostKeptTaps = 64; ///< So many weights are spread over a vector once a row instead of once a block.

/// Sixteen samples times a weight, with six bits behind the point.
__attribute__((target("avx2"))) inline __m256i weighted(const std::uint8_t* samples, __m256i weight)
{
    const auto words = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(samples)));
    return _mm256_mulhrs_epi16(_mm256_slli_epi16(words, sampleShift), weight);
}

/// `Taps` is their number where the compiler is to know it, or 0.
template <int Taps>
__attribute__((target("avx2"))) void verticalAvx2(
    std::int16_t* out, const std::uint8_t* const* rows, const std::int16_t* weights, int anyTaps, int count)
{
    const int taps = Taps ? Taps : anyTaps;
    __m256i spread[Taps ? Taps : mostKeptTaps];
    for (int t = 0; t < taps; ++t)
        spread[t] = _mm256_set1_epi16(weights[t]);
    int i = 0;
    for (; i + 32 <= count; i += 32) {
        auto first = _mm256_setzero_si256();
        auto second = _mm256_setzero_si256();
        for (int t = 0; t < taps; ++t) {
            first = _mm256_add_epi16(first, weighted(rows[t] + i, spread[t]));
            second = _mm256_add_epi16(second, weighted(rows[t] + i + 16, spread[t]));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), first);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i + 16), second);
    }
    for (; i < count; ++i)
        out[i] = verticalSum(rows, i, weights, taps);
}

void verticalAvx2Any(std::int16_t* out, const std::uint8_t* const* rows, const std::int16_t* weights, int taps, int count)
{
    if (taps == 4)
        verticalAvx2<4>(out, rows, weights, taps, count);
    else if (taps <= mostKeptTaps)
        verticalAvx2<0>(out, rows, weights, taps, count);
    else
        verticalPortable(out, rows, weights, taps, count);
}

__attribute__((target("avx2"))) inline __m256i loadTwo(const std::int16_t* low, const std::int16_t* high)
{
    const auto* lowHalf = reinterpret_cast<const __m128i*>(low);
    const auto* highHalf = reinterpret_cast<const __m128i*>(high);
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(lowHalf)), _mm_loadu_si128(highHalf), 1);
}

/// Four values from each of two places.
__attribute__((target("avx2"))) inline __m128i loadFours(const std::int16_t* low, const std::int16_t* high)
{
    const auto first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(low));
    return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(first), reinterpret_cast<const __m64*>(high)));
}

/// Four results of four taps side by side: two partial sums of each.
__attribute__((target("avx2"))) inline __m256i fourProducts(const std::int16_t* in, const int* starts, const std::int16_t* weights)
{
    const auto values = _mm256_inserti128_si256(
        _mm256_castsi128_si256(loadFours(in + starts[0], in + starts[1])), loadFours(in + starts[2], in + starts[3]), 1);
    return _mm256_madd_epi16(values, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(weights)));
}

/// Two results side by side: four partial sums of each.
__attribute__((target("avx2"))) inline __m256i twoProducts(
    const std::int16_t* in, const int* starts, const std::int16_t* weights, int taps)
{
    auto sum = _mm256_setzero_si256();
    for (int t = 0; t < taps; t += 8)
        sum = _mm256_add_epi32(
            sum, _mm256_madd_epi16(loadTwo(in + starts[0] + t, in + starts[1] + t), loadTwo(weights + t, weights + taps + t)));
    return sum;
}

__attribute__((target("avx2"))) inline __m256i rounded(__m256i sums)
{
    return _mm256_srai_epi32(_mm256_add_epi32(sums, _mm256_set1_epi32(1 << (resultShift - 1))), resultShift);
}

__attribute__((target("avx2"))) void horizontalFourTaps(
    std::uint8_t* out, const std::int16_t* in, const int* starts, const std::int16_t* weights, int count)
{
    int i = 0;
    for (; i + 8 <= count; i += 8, weights += 8 * 4) {
        // Results 0, 1, 4 and 5 end in the lower half, 2, 3, 6 and 7 in the upper.
        const auto sums =
            rounded(_mm256_hadd_epi32(fourProducts(in, starts + i, weights), fourProducts(in, starts + i + 4, weights + 4 * 4)));
        const auto words = _mm_packs_epi32(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
        const auto ordered = _mm_shuffle_epi32(words, _MM_SHUFFLE(3, 1, 2, 0));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(ordered, ordered));
    }
    horizontalPortable(out + i, in, starts + i, weights, 4, count - i);
}

__attribute__((target("avx2"))) void horizontalAvx2(
    std::uint8_t* out, const std::int16_t* in, const int* starts, const std::int16_t* weights, int taps, int count)
{
    if (taps == 4)
        return horizontalFourTaps(out, in, starts, weights, count);
    int i = 0;
    for (; i + 8 <= count; i += 8, weights += 8 * taps) {
        // Even results end in the lower half, odd ones in the upper.
        const auto a = twoProducts(in, starts + i, weights, taps);
        const auto b = twoProducts(in, starts + i + 2, weights + 2 * taps, taps);
        const auto c = twoProducts(in, starts + i + 4, weights + 4 * taps, taps);
        const auto d = twoProducts(in, starts + i + 6, weights + 6 * taps, taps);
        const auto sums = rounded(_mm256_hadd_epi32(_mm256_hadd_epi32(a, b), _mm256_hadd_epi32(c, d)));
        const auto even = _mm256_castsi256_si128(sums);
        const auto odd = _mm256_extracti128_si256(sums, 1);
        const auto words = _mm_packs_epi32(_mm_unpacklo_epi32(even, odd), _mm_unpackhi_epi32(even, odd));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(words, words));
    }
    horizontalPortable(out + i, in, starts + i, weights, taps, count - i);
}

#endif

} // namespace

const ScaleKernels& portableScaleKernels()
{
    static constexpr ScaleKernels kernels{ verticalPortable, horizontalPortable };
    return kernels;
}

const ScaleKernels& scaleKernels()
{
#if defined(__x86_64__)
    static constexpr ScaleKernels avx2{ verticalAvx2Any, horizontalAvx2 };
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    if (hasAvx2)
        return avx2;
#endif
    return portableScaleKernels();
}

} // namespace vantry
