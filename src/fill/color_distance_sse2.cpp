#include <emmintrin.h>

#include <cstring>

#include "fill/color_distance.h"

namespace brushwork {
namespace {

__m128i load16(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

__m128i differences(__m128i a, __m128i b) {
    return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a));
}

// Weighed colour sums of four pixels, 32 bits each, at most 765.
__m128i weighed(__m128i apart, __m128 alpha) {
    const __m128i even = _mm_and_si128(apart, _mm_set1_epi32(0x00FF00FF));
    const __m128i green = _mm_and_si128(_mm_srli_epi16(apart, 8), _mm_set1_epi32(0x000000FF));
    const __m128i sum = _mm_madd_epi16(_mm_add_epi16(even, green), _mm_set1_epi16(1));
    const __m128 product =
        _mm_mul_ps(_mm_mul_ps(_mm_cvtepi32_ps(sum), alpha), _mm_set1_ps(0.003921569f));
    return _mm_cvttps_epi32(product);
}

void four(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
          std::uint8_t* distances) {
    const __m128i value = _mm_set1_epi32(static_cast<int>(target.value));
    const __m128 alpha = _mm_set1_ps(static_cast<float>(target.alpha));
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        __m128i apart[4];
        __m128i sums[4];
        for (std::size_t part = 0; part < 4; ++part) {
            apart[part] = differences(load16(pixels + 4 * i + 16 * part), value);
            sums[part] = weighed(apart[part], alpha);
            apart[part] = _mm_srli_epi32(apart[part], 24);
        }
        const __m128i colors =
            _mm_packus_epi16(_mm_packs_epi32(sums[0], sums[1]), _mm_packs_epi32(sums[2], sums[3]));
        const __m128i alphas = _mm_packus_epi16(_mm_packs_epi32(apart[0], apart[1]),
                                                _mm_packs_epi32(apart[2], apart[3]));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(distances + i), _mm_max_epu8(colors, alphas));
    }
    if (i < count) distanceKernelsScalar.four(pixels + 4 * i, count - i, target, distances + i);
    noteKernelForm(VectorLevel::Sse2);
}

void one(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
         std::uint8_t* distances) {
    const __m128i value = _mm_set1_epi8(static_cast<char>(target.value));
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(distances + i),
                         differences(load16(pixels + i), value));
    if (i < count) distanceKernelsScalar.one(pixels + i, count - i, target, distances + i);
    noteKernelForm(VectorLevel::Sse2);
}

void below(const std::uint8_t* bytes, std::size_t count, std::uint32_t limit, std::uint32_t* bits) {
    noteKernelForm(VectorLevel::Sse2);
    if (limit == 0) {
        std::memset(bits, 0, count / 8);
        return;
    }
    // Below the limit is at most the one before it.
    const __m128i most = _mm_set1_epi8(static_cast<char>(limit - 1));
    for (std::size_t i = 0; i < count; i += 32) {
        const __m128i low = load16(bytes + i);
        const __m128i high = load16(bytes + i + 16);
        const auto lowBits = static_cast<std::uint32_t>(
            _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(low, most), most)));
        const auto highBits = static_cast<std::uint32_t>(
            _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(high, most), most)));
        bits[i / 32] = lowBits | highBits << 16;
    }
}

}  // namespace

const DistanceKernels distanceKernelsSse2 = {four, one, below};

}  // namespace brushwork
