#include <emmintrin.h>

#include "foundation/services/vector_level.h"
#include "image/filter/kernel_rows.h"

namespace brushwork {
namespace {

__m128i load16(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

void store16(std::uint8_t* p, __m128i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}

__m128 addTap(__m128 sum, __m128i words, __m128 weight) {
    return _mm_add_ps(sum, _mm_mul_ps(_mm_cvtepi32_ps(words), weight));
}

// Bounds the sum and cuts its fraction off; not-a-number becomes 0.
__m128i wholeByte(__m128 sum) {
    return _mm_cvttps_epi32(_mm_min_ps(_mm_max_ps(sum, _mm_setzero_ps()), _mm_set1_ps(255.0f)));
}

__m128i float16(const KernelRow<float>& row, std::size_t lane) {
    const __m128i zero = _mm_setzero_si128();
    __m128 sum[4] = {_mm_setzero_ps(), _mm_setzero_ps(), _mm_setzero_ps(), _mm_setzero_ps()};
    const float* weights = row.weights;
    for (std::size_t j = 0; j < row.size; ++j) {
        const std::uint8_t* source = row.source + lane + j * row.stride;
        for (std::size_t i = 0; i < row.size; ++i, ++weights, source += row.channels) {
            const __m128 weight = _mm_set1_ps(*weights);
            const __m128i bytes = load16(source);
            const __m128i low = _mm_unpacklo_epi8(bytes, zero);
            const __m128i high = _mm_unpackhi_epi8(bytes, zero);
            sum[0] = addTap(sum[0], _mm_unpacklo_epi16(low, zero), weight);
            sum[1] = addTap(sum[1], _mm_unpackhi_epi16(low, zero), weight);
            sum[2] = addTap(sum[2], _mm_unpacklo_epi16(high, zero), weight);
            sum[3] = addTap(sum[3], _mm_unpackhi_epi16(high, zero), weight);
        }
    }
    return _mm_packus_epi16(_mm_packs_epi32(wholeByte(sum[0]), wholeByte(sum[1])),
                            _mm_packs_epi32(wholeByte(sum[2]), wholeByte(sum[3])));
}

__m128i fixed16(const KernelRow<std::int16_t>& row, std::size_t lane) {
    const __m128i zero = _mm_setzero_si128();
    __m128i low = zero;
    __m128i high = zero;
    const std::int16_t* weights = row.weights;
    for (std::size_t j = 0; j < row.size; ++j) {
        const std::uint8_t* source = row.source + lane + j * row.stride;
        for (std::size_t i = 0; i < row.size; ++i, ++weights, source += row.channels) {
            const __m128i weight = _mm_set1_epi16(*weights);
            const __m128i bytes = load16(source);
            // A byte times 128.
            const __m128i scaledLow = _mm_srli_epi16(_mm_unpacklo_epi8(zero, bytes), 1);
            const __m128i scaledHigh = _mm_srli_epi16(_mm_unpackhi_epi8(zero, bytes), 1);
            low = _mm_adds_epi16(low, _mm_mulhi_epi16(scaledLow, weight));
            high = _mm_adds_epi16(high, _mm_mulhi_epi16(scaledHigh, weight));
        }
    }
    return _mm_packus_epi16(_mm_srai_epi16(low, 2), _mm_srai_epi16(high, 2));
}

// The last step overlaps the one before, so nothing outside the row is touched.
template <class Weight, class Step>
void walk(const KernelRow<Weight>& row, Step step) {
    noteKernelForm(VectorLevel::Sse2);
    std::size_t lane = 0;
    for (; lane + 16 <= row.lanes; lane += 16) store16(row.target + lane, step(row, lane));
    if (lane == row.lanes) return;
    lane = row.lanes - 16;
    store16(row.target + lane, step(row, lane));
}

}  // namespace

void kernelRowFloatSse2(const KernelRow<float>& row) {
    walk(row, float16);
}
void kernelRowFixedSse2(const KernelRow<std::int16_t>& row) {
    walk(row, fixed16);
}

}  // namespace brushwork
