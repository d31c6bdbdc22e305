// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include <cstring>

#include "fill/color_distance.h"

namespace brushwork {
namespace {

constexpr std::size_t fetchAhead = 2048;  // bytes

__m256i load32(const std::uint8_t* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

void store32(std::uint8_t* p, __m256i v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}

__m256i differences(__m256i a, __m256i b) {
    return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
}

// Weighed colour sums of eight pixels, 32 bits each, at most 765.
__m256i weighed(__m256i apart, __m256 alpha) {
    const __m256i pairs = _mm256_maddubs_epi16(apart, _mm256_set1_epi32(0x00010101));
    const __m256i sum = _mm256_madd_epi16(pairs, _mm256_set1_epi16(1));
    const __m256 product =
        _mm256_mul_ps(_mm256_mul_ps(_mm256_cvtepi32_ps(sum), alpha), _mm256_set1_ps(0.003921569f));
    return _mm256_cvttps_epi32(product);
}

// The target in the form that the kernels use.
struct Target {
    explicit Target(const ColorTarget& target)
        : value(_mm256_set1_epi32(static_cast<int>(target.value))),
          alpha(_mm256_set1_ps(static_cast<float>(target.alpha))) {}
    __m256i value;
    __m256 alpha;
};

// Distances of 32 pixels.
__m256i distancesOf32(const std::uint8_t* pixels, const Target& target) {
    // Pixels come from memory as a rule, faster than the processor fetches ahead by itself.
    _mm_prefetch(reinterpret_cast<const char*>(pixels + fetchAhead), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(pixels + fetchAhead + 64), _MM_HINT_T0);
    __m256i apart[4];
    __m256i sums[4];
    for (std::size_t part = 0; part < 4; ++part) {
        apart[part] = differences(load32(pixels + 32 * part), target.value);
        sums[part] = weighed(apart[part], target.alpha);
        apart[part] = _mm256_srli_epi32(apart[part], 24);
    }
    const __m256i colors = _mm256_packus_epi16(_mm256_packs_epi32(sums[0], sums[1]),
                                               _mm256_packs_epi32(sums[2], sums[3]));
    const __m256i alphas = _mm256_packus_epi16(_mm256_packs_epi32(apart[0], apart[1]),
                                               _mm256_packs_epi32(apart[2], apart[3]));
    // Packing works in halves of 16 bytes; the permutation puts the groups of four back in order.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    return _mm256_permutevar8x32_epi32(_mm256_max_epu8(colors, alphas), order);
}

// Which bytes of `values` are at most those of `most`.
__m256i atMost(__m256i values, __m256i most) {
    return _mm256_cmpeq_epi8(_mm256_max_epu8(values, most), most);
}

__m256i bytesOf(std::uint32_t value) {
    return _mm256_set1_epi8(static_cast<char>(value));
}

void four(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
          std::uint8_t* distances) {
    const Target wide(target);
    std::size_t i = 0;
    for (; i + 32 <= count; i += 32) store32(distances + i, distancesOf32(pixels + 4 * i, wide));
    if (i < count) distanceKernelsScalar.four(pixels + 4 * i, count - i, target, distances + i);
    noteKernelForm(VectorLevel::Avx2);
}

void one(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
         std::uint8_t* distances) {
    const __m256i value = _mm256_set1_epi8(static_cast<char>(target.value));
    std::size_t i = 0;
    for (; i + 32 <= count; i += 32) store32(distances + i, differences(load32(pixels + i), value));
    if (i < count) distanceKernelsScalar.one(pixels + i, count - i, target, distances + i);
    noteKernelForm(VectorLevel::Avx2);
}

void below(const std::uint8_t* bytes, std::size_t count, std::uint32_t limit, std::uint32_t* bits) {
    noteKernelForm(VectorLevel::Avx2);
    if (limit == 0) {
        std::memset(bits, 0, count / 8);
        return;
    }
    // Below the limit is at most the one before it.
    const __m256i most = bytesOf(limit - 1);
    for (std::size_t i = 0; i < count; i += 32)
        bits[i / 32] =
            static_cast<std::uint32_t>(_mm256_movemask_epi8(atMost(load32(bytes + i), most)));
}

bool openFour(const std::uint8_t* pixels, std::size_t count, const ColorTarget& target,
              const DistanceLimits& limits, std::uint32_t* bits) {
    noteKernelForm(VectorLevel::Avx2);
    const Target wide(target);
    const std::uint32_t anyOpen = limits.open > 0 ? ~std::uint32_t{0} : 0;
    const __m256i open = bytesOf(limits.open > 0 ? limits.open - 1 : 0);
    const bool hasBetween = limits.whole < limits.none;
    const __m256i least = bytesOf(hasBetween ? limits.whole : 255);
    const __m256i most = bytesOf(hasBetween ? limits.none - 1 : 0);
    __m256i between = _mm256_setzero_si256();
    for (std::size_t i = 0; i < count; i += 32) {
        const __m256i distances = distancesOf32(pixels + 4 * i, wide);
        bits[i / 32] =
            static_cast<std::uint32_t>(_mm256_movemask_epi8(atMost(distances, open))) & anyOpen;
        between = _mm256_or_si256(
            between, _mm256_and_si256(atMost(least, distances), atMost(distances, most)));
    }
    return _mm256_movemask_epi8(between) != 0;
}

}  // namespace

const DistanceKernels distanceKernelsAvx2 = {four, one, below, openFour};

}  // namespace brushwork
