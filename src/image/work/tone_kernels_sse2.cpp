#include <emmintrin.h>

#include "image/work/tone_kernels.h"

namespace brushwork {
namespace {

// One colour of four pixels, 32 bits each. The quotient in float is exact once it is cut off: two
// different quotients of such small numbers lie further apart than float rounds.
__m128i inverted(__m128i color, __m128i alpha, __m128 alphaReal) {
    const __m128i excess = _mm_subs_epu16(color, alpha);
    const __m128i bounded = _mm_sub_epi32(color, excess);
    const __m128i scaled = _mm_sub_epi32(_mm_slli_epi32(bounded, 8), bounded);
    const __m128i straight = _mm_cvttps_epi32(_mm_div_ps(_mm_cvtepi32_ps(scaled), alphaReal));
    const __m128i product = _mm_mullo_epi16(_mm_sub_epi32(_mm_set1_epi32(255), straight), alpha);
    // product / 255
    const __m128i raised = _mm_add_epi32(product, _mm_set1_epi32(1));
    return _mm_srli_epi32(_mm_add_epi32(raised, _mm_srli_epi32(product, 8)), 8);
}

__m128i invertedPixels(__m128i pixels) {
    const __m128i low = _mm_set1_epi32(0xFF);
    const __m128i alpha = _mm_srli_epi32(pixels, 24);
    const __m128i clear = _mm_cmpeq_epi32(alpha, _mm_setzero_si128());
    const __m128 alphaReal = _mm_cvtepi32_ps(_mm_sub_epi32(alpha, clear));  // 1 in place of 0
    const __m128i red = inverted(_mm_and_si128(pixels, low), alpha, alphaReal);
    const __m128i green = inverted(_mm_and_si128(_mm_srli_epi32(pixels, 8), low), alpha, alphaReal);
    const __m128i blue = inverted(_mm_and_si128(_mm_srli_epi32(pixels, 16), low), alpha, alphaReal);
    const __m128i result =
        _mm_or_si128(_mm_or_si128(red, _mm_slli_epi32(green, 8)),
                     _mm_or_si128(_mm_slli_epi32(blue, 16), _mm_slli_epi32(alpha, 24)));
    return _mm_or_si128(_mm_and_si128(clear, pixels), _mm_andnot_si128(clear, result));
}

}  // namespace

void invertFourSse2(std::uint8_t* pixels, std::size_t count) {
    std::size_t n = 0;
    for (; n + 4 <= count; n += 4) {
        auto* at = reinterpret_cast<__m128i*>(pixels + 4 * n);
        _mm_storeu_si128(at, invertedPixels(_mm_loadu_si128(at)));
    }
    if (n < count) invertFourScalar(pixels + 4 * n, count - n);
    noteKernelForm(VectorLevel::Sse2);
}

}  // namespace brushwork
