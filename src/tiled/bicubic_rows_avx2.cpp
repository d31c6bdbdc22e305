#include <immintrin.h>

#include "tiled/bicubic_rows.h"

namespace brushwork {
namespace {

void locateFour(const double* places, std::int32_t* whole, float* rest) {
    const __m256d furthest = _mm256_set1_pd(1 << 30);
    const __m256d place = _mm256_load_pd(places);
    const __m256d half = _mm256_set1_pd(0.5);
    __m256d base = _mm256_sub_pd(place, half);
    base = _mm256_max_pd(base, _mm256_sub_pd(_mm256_setzero_pd(), furthest));
    base = _mm256_floor_pd(_mm256_min_pd(base, furthest));
    _mm_store_si128(reinterpret_cast<__m128i*>(whole), _mm256_cvttpd_epi32(base));
    const __m256d distance = _mm256_sub_pd(_mm256_sub_pd(place, base), half);
    _mm_store_ps(rest, _mm256_cvtpd_ps(distance));
}

void locate(BicubicPlaces& places, int count) {
    for (int n = 0; n < count; n += 4) {
        locateFour(places.x + n, places.ix + n, places.fx + n);
        locateFour(places.y + n, places.iy + n, places.fy + n);
    }
}

// The kernel at -1 - f, -f, 1 - f and 2 - f, for eight f from 0 to 1.
struct Weights {
    alignas(32) float w[4][bicubicLanes];

    explicit Weights(__m256 f) {
        const __m256 one = _mm256_set1_ps(1.0f);
        const __m256 g = _mm256_sub_ps(one, f);
        const __m256 fg = _mm256_mul_ps(_mm256_mul_ps(f, g), _mm256_set1_ps(-0.75f));
        _mm256_store_ps(w[0], _mm256_mul_ps(fg, g));
        _mm256_store_ps(w[1], inner(f));
        _mm256_store_ps(w[2], inner(g));
        _mm256_store_ps(w[3], _mm256_mul_ps(fg, f));
    }

  private:
    static __m256 inner(__m256 t) {
        const __m256 slope =
            _mm256_sub_ps(_mm256_mul_ps(_mm256_set1_ps(1.25f), t), _mm256_set1_ps(2.25f));
        return _mm256_add_ps(_mm256_mul_ps(slope, _mm256_mul_ps(t, t)), _mm256_set1_ps(1.0f));
    }
};

__m256 twoPixels(const std::uint8_t* pixels) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels));
    return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes));
}

__m256 twoWeights(const float& left, const float& right) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_broadcast_ss(&left)),
                                _mm_broadcast_ss(&right), 1);
}

// The four channels of one sample.
__m128 sumOf(const std::uint8_t* first, std::size_t stride, const Weights& wx, const Weights& wy,
             int lane) {
    const __m256 left = twoWeights(wx.w[0][lane], wx.w[1][lane]);
    const __m256 right = twoWeights(wx.w[2][lane], wx.w[3][lane]);
    __m256 sum = _mm256_setzero_ps();
    for (int row = 0; row < 4; ++row, first += stride) {
        const __m256 across = _mm256_add_ps(_mm256_mul_ps(twoPixels(first), left),
                                            _mm256_mul_ps(twoPixels(first + 8), right));
        sum = _mm256_add_ps(sum, _mm256_mul_ps(across, _mm256_broadcast_ss(&wy.w[row][lane])));
    }
    return _mm_add_ps(_mm256_castps256_ps128(sum), _mm256_extractf128_ps(sum, 1));
}

// Lanes whose distance isn't one from 0 to 1, not-a-number among them.
std::uint32_t strayLanes(__m256 f) {
    const __m256 low = _mm256_cmp_ps(f, _mm256_setzero_ps(), _CMP_GE_OQ);
    const __m256 high = _mm256_cmp_ps(f, _mm256_set1_ps(1.0f), _CMP_LE_OQ);
    return static_cast<std::uint32_t>(~_mm256_movemask_ps(_mm256_and_ps(low, high))) & 0xFFu;
}

std::uint32_t sum(const BicubicPlaces& places, int first, const BicubicBlocks& blocks,
                  std::uint8_t* out) {
    const __m256 fx = _mm256_load_ps(places.fx + first);
    const __m256 fy = _mm256_load_ps(places.fy + first);
    const Weights wx(fx);
    const Weights wy(fy);
    const __m256 sign = _mm256_set1_ps(-0.0f);
    // Twice the bound of the error from the middle between two bytes.
    const __m256 close = _mm256_set1_ps(0.498f);
    std::uint32_t unsettled = strayLanes(fx) | strayLanes(fy);
    for (int lane = 0; lane < bicubicLanes; lane += 2, out += 8) {
        const __m128 a = sumOf(blocks.first[lane], blocks.stride[lane], wx, wy, lane);
        const __m128 b = sumOf(blocks.first[lane + 1], blocks.stride[lane + 1], wx, wy, lane + 1);
        __m256 both = _mm256_insertf128_ps(_mm256_castps128_ps256(a), b, 1);
        both = _mm256_min_ps(_mm256_max_ps(both, _mm256_setzero_ps()), _mm256_set1_ps(255.0f));
        const __m256i whole = _mm256_cvtps_epi32(both);
        const __m256 off = _mm256_andnot_ps(sign, _mm256_sub_ps(both, _mm256_cvtepi32_ps(whole)));
        const auto near =
            static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_cmp_ps(off, close, _CMP_GT_OQ)));
        if (near & 0x0Fu) unsettled |= 1u << lane;
        if (near & 0xF0u) unsettled |= 2u << lane;
        const __m128i words =
            _mm_packs_epi32(_mm256_castsi256_si128(whole), _mm256_extracti128_si256(whole, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(words, words));
    }
    return unsettled;
}

}  // namespace

const BicubicRows bicubicRowsAvx2 = {&locate, &sum};

}  // namespace brushwork
