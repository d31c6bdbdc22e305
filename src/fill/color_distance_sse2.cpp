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

// The target in the form that the kernels use.
struct Target {
    explicit Target(const ColorTarget& target)
        : value(_mm_set1_epi32(static_cast<int>(target.value))),
          alpha(_mm_set1_ps(static_cast<float>(target.alpha))) {}
    __m128i value;
    __m128 alpha;
};

// Distances of 16 pixels.
__m128i distancesOf16(const std::uint8_t* pixels, const Target& target) {
    __m128i apart[4];
    __m128i sums[4];
    for (std::size_t part = 0; part < 4; ++part) {
        apart[part] = differences(load16(pixels + 16 * part), target.value);
        sums[part] = weighed(apart[part], target.alpha);
        apart[part] = _mm_srli_epi32(apart[part], 24);
    }
    const __m128i colors =
        _mm_packus_epi16(_mm_packs_epi32(sums[0], sums[1]), _mm_packs_epi32(sums[2], sums[3]));
    const __m128i alphas =
        _mm_packus_epi16(_mm_packs_epi32(apart[0], apart[1]), _mm_packs_epi32(apart[2], apart[3]));
    return _mm_max_epu8(colors, alphas);
}

// Which bytes of `values` are at most those of `most`.
__m128i atMost(__m128i values, __m128i most) {
    return _mm_cmpeq_epi8(_mm_max_epu8(values, most), most);
}

__m128i bytesOf(std::uint32_t value) {
    return _mm_set1_epi8(static_cast<char>(value));
}

std::uint32_t bitsOf(__m128i low, __m128i high) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(low)) |
           static_cast<std::uint32_t>(_mm_movemask_epi8(high)) << 16;
}

void four(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
          std::uint8_t* distances) {
    const Target wide(target);
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(distances + i),
                         distancesOf16(pixels + 4 * i, wide));
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
    const __m128i most = bytesOf(limit - 1);
    for (std::size_t i = 0; i < count; i += 32)
        bits[i / 32] =
            bitsOf(atMost(load16(bytes + i), most), atMost(load16(bytes + i + 16), most));
}

bool openFour(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
              const DistanceLimits& limits, std::uint32_t* bits) {
    noteKernelForm(VectorLevel::Sse2);
    const Target wide(target);
    const std::uint32_t anyOpen = limits.open > 0 ? ~std::uint32_t{0} : 0;
    const __m128i open = bytesOf(limits.open > 0 ? limits.open - 1 : 0);
    const bool hasBetween = limits.whole < limits.none;
    const __m128i least = bytesOf(hasBetween ? limits.whole : 255);
    const __m128i most = bytesOf(hasBetween ? limits.none - 1 : 0);
    __m128i between = _mm_setzero_si128();
    for (std::size_t i = 0; i < count; i += 32) {
        const __m128i low = distancesOf16(pixels + 4 * i, wide);
        const __m128i high = distancesOf16(pixels + 4 * i + 64, wide);
        bits[i / 32] = bitsOf(atMost(low, open), atMost(high, open)) & anyOpen;
        const __m128i lowBetween = _mm_and_si128(atMost(least, low), atMost(low, most));
        const __m128i highBetween = _mm_and_si128(atMost(least, high), atMost(high, most));
        between = _mm_or_si128(between, _mm_or_si128(lowBetween, highBetween));
    }
    return _mm_movemask_epi8(between) != 0;
}

}  // namespace

const DistanceKernels distanceKernelsSse2 = {four, one, below, openFour};

}  // namespace brushwork
