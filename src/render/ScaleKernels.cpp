#include "render/ScaleKernels.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace vantry {

namespace {

// A sample is taken with seven bits behind the point, a weight with fourteen; the product keeps six. What the second pass adds up
// has twenty.
constexpr int sampleShift = 7;
constexpr int resultShift = 20;

void verticalPortable(std::int16_t* out, const std::uint8_t* const* rows, const std::int16_t* weights, int taps, int count)
{
    for (int i = 0; i < count; ++i) {
        int sum = 0;
        for (int t = 0; t < taps; ++t)
            sum += ((rows[t][i] << sampleShift) * weights[t] + (1 << 14)) >> 15;
        out[i] = static_cast<std::int16_t>(sum);
    }
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

__attribute__((target("avx2"))) void verticalAvx2(
    std::int16_t* out, const std::uint8_t* const* rows, const std::int16_t* weights, int taps, int count)
{
    int i = 0;
    for (; i + 16 <= count; i += 16) {
        auto sum = _mm256_setzero_si256();
        for (int t = 0; t < taps; ++t) {
            const auto bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[t] + i));
            const auto samples = _mm256_slli_epi16(_mm256_cvtepu8_epi16(bytes), sampleShift);
            sum = _mm256_add_epi16(sum, _mm256_mulhrs_epi16(samples, _mm256_set1_epi16(weights[t])));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), sum);
    }
    for (; i < count; ++i) {
        int sum = 0;
        for (int t = 0; t < taps; ++t)
            sum += ((rows[t][i] << sampleShift) * weights[t] + (1 << 14)) >> 15;
        out[i] = static_cast<std::int16_t>(sum);
    }
}

/// The products of the eight values from `in` on, as four sums.
__attribute__((target("avx2"))) inline __m128i products(const std::int16_t* in, const std::int16_t* weights, int taps)
{
    auto sum = _mm_setzero_si128();
    for (int t = 0; t < taps; t += 8)
        sum = _mm_add_epi32(sum,
            _mm_madd_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in + t)),
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(weights + t))));
    return sum;
}

__attribute__((target("avx2"))) void horizontalAvx2(
    std::uint8_t* out, const std::int16_t* in, const int* starts, const std::int16_t* weights, int taps, int count)
{
    const auto half = _mm_set1_epi32(1 << (resultShift - 1));
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const auto* w = weights + static_cast<std::ptrdiff_t>(i) * taps;
        const auto first = _mm_hadd_epi32(products(in + starts[i], w, taps), products(in + starts[i + 1], w + taps, taps));
        const auto second =
            _mm_hadd_epi32(products(in + starts[i + 2], w + 2 * taps, taps), products(in + starts[i + 3], w + 3 * taps, taps));
        const auto sums = _mm_srai_epi32(_mm_add_epi32(_mm_hadd_epi32(first, second), half), resultShift);
        const auto words = _mm_packs_epi32(sums, sums);
        const int bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        std::memcpy(out + i, &bytes, 4);
    }
    horizontalPortable(out + i, in, starts + i, weights + static_cast<std::ptrdiff_t>(i) * taps, taps, count - i);
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
    static constexpr ScaleKernels avx2{ verticalAvx2, horizontalAvx2 };
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    if (hasAvx2)
        return avx2;
#endif
    return portableScaleKernels();
}

} // namespace vantry
