// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include <cstring>

#include "foundation/services/vector_level.h"
#include "image/filter/blur_steps.h"

namespace brushwork {
namespace {

__m256i load32(const std::uint8_t* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// 16 bytes of either line, side by side: what follows never crosses the halves.
__m256i loadPair(const std::uint8_t* a, const std::uint8_t* b) {
    return _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(b)), 1);
}

// What 32 lanes gain by one step, as two times sixteen 16-bit numbers.
struct Gain {
    __m256i low = _mm256_setzero_si256();
    __m256i high = _mm256_setzero_si256();

    void add(__m256i lead, __m256i trail) {
        const __m256i plusMinus = _mm256_set1_epi16(static_cast<short>(0xFF01));
        low = _mm256_add_epi16(low,
                               _mm256_maddubs_epi16(_mm256_unpacklo_epi8(lead, trail), plusMinus));
        high = _mm256_add_epi16(high,
                                _mm256_maddubs_epi16(_mm256_unpackhi_epi8(lead, trail), plusMinus));
    }
};

__m256i widenLow(__m256i v) {
    return _mm256_srai_epi32(_mm256_unpacklo_epi16(v, v), 16);
}
__m256i widenHigh(__m256i v) {
    return _mm256_srai_epi32(_mm256_unpackhi_epi16(v, v), 16);
}

__m256i divide(__m256i sum, __m256 reciprocal) {
    return _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(sum), reciprocal));
}

__m256i pack(__m256i a, __m256i b, __m256i c, __m256i d) {
    return _mm256_packus_epi16(_mm256_packs_epi32(a, b), _mm256_packs_epi32(c, d));
}

__m256i widenPixels(const std::uint8_t* a, const std::uint8_t* b) {
    int first = 0;
    int second = 0;
    std::memcpy(&first, a, 4);
    std::memcpy(&second, b, 4);
    return _mm256_cvtepu8_epi32(
        _mm_unpacklo_epi32(_mm_cvtsi32_si128(first), _mm_cvtsi32_si128(second)));
}

// The sums around the place before the first pixel: window k then holds its first reach[k] pixels.
__m256i sumBeforeFirst(const BlurLines& job, const std::int32_t* reach) {
    __m256i prefix = _mm256_setzero_si256();
    __m256i sum = _mm256_setzero_si256();
    std::ptrdiff_t p = 0;
    for (int k = 0; k < 4; ++k) {
        for (; p < reach[k]; ++p) {
            prefix = _mm256_add_epi32(prefix, widenPixels(job.in[0] + p * 4, job.in[1] + p * 4));
        }
        sum = _mm256_add_epi32(sum, prefix);
    }
    return sum;
}

void lines(const BlurLines& job) {
    noteKernelForm(VectorLevel::Avx2);
    const auto* reach = reinterpret_cast<const std::int32_t*>(&job.windows->reach);
    std::ptrdiff_t lead[4];
    std::ptrdiff_t trail[4];
    for (int k = 0; k < 4; ++k) {
        lead[k] = std::ptrdiff_t{reach[k]} * 4;
        trail[k] = -4 - lead[k];
    }
    __m256i sum = sumBeforeFirst(job, reach);
    const std::ptrdiff_t length = job.windows->length;
    for (std::ptrdiff_t c = 0; c < length; c += 4) {
        const std::uint8_t* a = job.in[0] + c * 4;
        const std::uint8_t* b = job.in[1] + c * 4;
        Gain gain;
        for (int k = 0; k < 4; ++k) {
            gain.add(loadPair(a + lead[k], b + lead[k]), loadPair(a + trail[k], b + trail[k]));
        }
        const __m256i sum0 = _mm256_add_epi32(sum, widenLow(gain.low));
        const __m256i sum1 = _mm256_add_epi32(sum0, widenHigh(gain.low));
        const __m256i sum2 = _mm256_add_epi32(sum1, widenLow(gain.high));
        sum = _mm256_add_epi32(sum2, widenHigh(gain.high));
        const float* reciprocal = job.reciprocals + c;
        const __m256i bytes = pack(divide(sum0, _mm256_broadcast_ss(reciprocal)),
                                   divide(sum1, _mm256_broadcast_ss(reciprocal + 1)),
                                   divide(sum2, _mm256_broadcast_ss(reciprocal + 2)),
                                   divide(sum, _mm256_broadcast_ss(reciprocal + 3)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(job.out[0] + c * 4),
                         _mm256_castsi256_si128(bytes));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(job.out[1] + c * 4),
                         _mm256_extracti128_si256(bytes, 1));
    }
}

void columns(const BlurColumns& job) {
    noteKernelForm(VectorLevel::Avx2);
    const __m256 reciprocal = _mm256_set1_ps(job.reciprocal);
    for (std::size_t i = 0; i < job.lanes; i += 32) {
        Gain gain;
        for (int k = 0; k < 4; ++k) gain.add(load32(job.lead[k] + i), load32(job.trail[k] + i));
        auto* sums = reinterpret_cast<__m256i*>(job.sums + i);
        const __m256i sum0 = _mm256_add_epi32(_mm256_loadu_si256(sums), widenLow(gain.low));
        const __m256i sum1 = _mm256_add_epi32(_mm256_loadu_si256(sums + 1), widenHigh(gain.low));
        const __m256i sum2 = _mm256_add_epi32(_mm256_loadu_si256(sums + 2), widenLow(gain.high));
        const __m256i sum3 = _mm256_add_epi32(_mm256_loadu_si256(sums + 3), widenHigh(gain.high));
        _mm256_storeu_si256(sums, sum0);
        _mm256_storeu_si256(sums + 1, sum1);
        _mm256_storeu_si256(sums + 2, sum2);
        _mm256_storeu_si256(sums + 3, sum3);
        if (!job.out) continue;
        const __m256i bytes = pack(divide(sum0, reciprocal), divide(sum1, reciprocal),
                                   divide(sum2, reciprocal), divide(sum3, reciprocal));
        if (job.lanes - i >= 32) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(job.out + i), bytes);
        } else {
            std::memcpy(job.out + i, &bytes, job.lanes - i);
        }
    }
}

}  // namespace

const BlurSteps blurStepsAvx2 = {lines, columns};

}  // namespace brushwork
