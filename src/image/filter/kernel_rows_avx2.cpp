// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include "foundation/services/vector_level.h"
#include "image/filter/kernel_rows.h"

namespace brushwork {
namespace {

__m128i load16(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

void store32(std::uint8_t* p, __m256i v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}

__m256 addTap(__m256 sum, __m128i bytes, __m256 weight) {
    const __m256 pixels = _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes));
    return _mm256_add_ps(sum, _mm256_mul_ps(pixels, weight));
}

// Bounds the sum and cuts its fraction off; not-a-number becomes 0.
__m256i wholeByte(__m256 sum) {
    return _mm256_cvttps_epi32(
        _mm256_min_ps(_mm256_max_ps(sum, _mm256_setzero_ps()), _mm256_set1_ps(255.0f)));
}

__m256i float32(const KernelRow<float>& row, std::size_t lane) {
    __m256 sum0 = _mm256_setzero_ps();
    __m256 sum1 = sum0;
    __m256 sum2 = sum0;
    __m256 sum3 = sum0;
    const float* weights = row.weights;
    for (std::size_t j = 0; j < row.size; ++j) {
        const std::uint8_t* source = row.source + lane + j * row.stride;
        for (std::size_t i = 0; i < row.size; ++i, ++weights, source += row.channels) {
            const __m256 weight = _mm256_broadcast_ss(weights);
            const __m128i first = load16(source);
            const __m128i second = load16(source + 16);
            sum0 = addTap(sum0, first, weight);
            sum1 = addTap(sum1, _mm_srli_si128(first, 8), weight);
            sum2 = addTap(sum2, second, weight);
            sum3 = addTap(sum3, _mm_srli_si128(second, 8), weight);
        }
    }
    // Packing works in halves of 16 bytes; the permutation puts the groups of four back in order.
    const __m256i packed =
        _mm256_packus_epi16(_mm256_packs_epi32(wholeByte(sum0), wholeByte(sum1)),
                            _mm256_packs_epi32(wholeByte(sum2), wholeByte(sum3)));
    return _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

__m256i fixed32(const KernelRow<std::int16_t>& row, std::size_t lane) {
    __m256i low = _mm256_setzero_si256();
    __m256i high = low;
    const std::int16_t* weights = row.weights;
    for (std::size_t j = 0; j < row.size; ++j) {
        const std::uint8_t* source = row.source + lane + j * row.stride;
        for (std::size_t i = 0; i < row.size; ++i, ++weights, source += row.channels) {
            const __m256i weight = _mm256_set1_epi16(*weights);
            const __m256i first = _mm256_slli_epi16(_mm256_cvtepu8_epi16(load16(source)), 7);
            const __m256i second = _mm256_slli_epi16(_mm256_cvtepu8_epi16(load16(source + 16)), 7);
            low = _mm256_adds_epi16(low, _mm256_mulhi_epi16(first, weight));
            high = _mm256_adds_epi16(high, _mm256_mulhi_epi16(second, weight));
        }
    }
    const __m256i packed =
        _mm256_packus_epi16(_mm256_srai_epi16(low, 2), _mm256_srai_epi16(high, 2));
    return _mm256_permute4x64_epi64(packed, 0xD8);
}

// The last step overlaps the one before, so nothing outside the row is touched.
template <class Weight, class Step>
void walk(const KernelRow<Weight>& row, Step step) {
    noteKernelForm(VectorLevel::Avx2);
    std::size_t lane = 0;
    for (; lane + 32 <= row.lanes; lane += 32) store32(row.target + lane, step(row, lane));
    if (lane == row.lanes) return;
    lane = row.lanes - 32;
    store32(row.target + lane, step(row, lane));
}

}  // namespace

void kernelRowFloatAvx2(const KernelRow<float>& row) {
    walk(row, float32);
}
void kernelRowFixedAvx2(const KernelRow<std::int16_t>& row) {
    walk(row, fixed32);
}

}  // namespace brushwork
