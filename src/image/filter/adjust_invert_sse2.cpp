#include <emmintrin.h>

#include "foundation/services/vector_level.h"
#include "image/filter/adjust_invert.h"

namespace brushwork {
namespace {

__m128i inverted(__m128i words) {
    const __m128i alpha = _mm_srli_epi32(words, 24);
    const __m128i pair = _mm_or_si128(alpha, _mm_slli_epi32(alpha, 16));
    const __m128i everywhere = _mm_or_si128(pair, _mm_slli_epi32(pair, 8));
    const __m128i colors = _mm_and_si128(words, _mm_set1_epi32(0xFFFFFF));
    // Alpha less nothing stays alpha.
    const __m128i result = _mm_subs_epu8(everywhere, colors);
    const __m128i invisible = _mm_cmpeq_epi32(alpha, _mm_setzero_si128());
    return _mm_or_si128(_mm_and_si128(invisible, words), _mm_andnot_si128(invisible, result));
}

}  // namespace

void adjustInvertSse2(std::uint32_t* pixels, std::size_t count) {
    noteKernelForm(VectorLevel::Sse2);
    std::size_t n = 0;
    for (; n + 4 <= count; n += 4) {
        auto* const place = reinterpret_cast<__m128i*>(pixels + n);
        _mm_storeu_si128(place, inverted(_mm_loadu_si128(place)));
    }
    for (; n < count; ++n) {
        const __m128i word = _mm_cvtsi32_si128(static_cast<int>(pixels[n]));
        pixels[n] = static_cast<std::uint32_t>(_mm_cvtsi128_si32(inverted(word)));
    }
}

}  // namespace brushwork
