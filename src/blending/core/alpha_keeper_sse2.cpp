#include <emmintrin.h>

#include <cstring>

#include "blending/core/alpha_keeper.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {
namespace {

__m128i load(const std::uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void store(std::uint8_t* to, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

// Four bytes as the low bytes of four words of 32 bits.
__m128i fourBytes(const std::uint8_t* from) {
    int word;
    std::memcpy(&word, from, sizeof word);
    const __m128i zero = _mm_setzero_si128();
    return _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(word), zero), zero);
}

// The colour at a bit offset of four pixels, scaled, rounded and back in its place.
template <int bits>
__m128i scaled(__m128i pixels, __m128 factor) {
    const __m128i color = _mm_and_si128(_mm_srli_epi32(pixels, bits), _mm_set1_epi32(0xFF));
    const __m128 product =
        _mm_min_ps(_mm_mul_ps(_mm_cvtepi32_ps(color), factor), _mm_set1_ps(255.0F));
    const __m128i whole = _mm_cvttps_epi32(product);
    const __m128 rest = _mm_sub_ps(product, _mm_cvtepi32_ps(whole));
    const __m128i up = _mm_castps_si128(_mm_cmpge_ps(rest, _mm_set1_ps(0.5F)));  // -1 or 0
    return _mm_slli_epi32(_mm_sub_epi32(whole, up), bits);
}

// Two pixels of 16-bit channels.
__m128i limited(__m128i pixels, __m128i kept) {
    const __m128i spread = _mm_shufflehi_epi16(_mm_shufflelo_epi16(pixels, 0xFF), 0xFF);
    const __m128i empty = _mm_cmpeq_epi16(spread, _mm_setzero_si128());
    const __m128i most = _mm_andnot_si128(empty, kept);
    const __m128i least = _mm_sub_epi16(pixels, _mm_subs_epu16(pixels, most));
    const __m128i alpha = _mm_set_epi16(-1, 0, 0, 0, -1, 0, 0, 0);
    return _mm_or_si128(_mm_andnot_si128(alpha, least), _mm_and_si128(alpha, kept));
}

}  // namespace

void restoreAlphaSse2(std::uint8_t* pixels, const std::uint8_t* kept, std::size_t count) {
    std::size_t n = 0;
    for (; n + 4 <= count; n += 4) {
        const __m128i before = load(pixels + 4 * n);
        const __m128i alpha = _mm_srli_epi32(before, 24);
        const __m128i saved = fourBytes(kept + n);
        const __m128i empty = _mm_cmpeq_epi32(alpha, _mm_setzero_si128());
        const __m128i divisor = _mm_sub_epi32(alpha, empty);  // 1 in place of 0
        const __m128 factor = _mm_div_ps(_mm_cvtepi32_ps(saved), _mm_cvtepi32_ps(divisor));
        const __m128i colors =
            _mm_or_si128(_mm_or_si128(scaled<0>(before, factor), scaled<8>(before, factor)),
                         scaled<16>(before, factor));
        store(pixels + 4 * n,
              _mm_or_si128(_mm_andnot_si128(empty, colors), _mm_slli_epi32(saved, 24)));
    }
    if (n < count) restoreAlphaScalar(pixels + 4 * n, kept + n, count - n);
    noteKernelForm(VectorLevel::Sse2);
}

void restoreAlpha16Sse2(std::uint8_t* hi, std::uint8_t* lo, const std::uint8_t* keptHi,
                        const std::uint8_t* keptLo, std::size_t count) {
    const __m128i low = _mm_set1_epi16(0xFF);
    std::size_t n = 0;
    for (; n + 4 <= count; n += 4) {
        const __m128i high = load(hi + 4 * n);
        const __m128i rest = load(lo + 4 * n);
        const __m128i kept =
            _mm_or_si128(_mm_slli_epi32(fourBytes(keptHi + n), 8), fourBytes(keptLo + n));
        const __m128i keptTwice = _mm_or_si128(kept, _mm_slli_epi32(kept, 16));
        const __m128i first =
            limited(_mm_unpacklo_epi8(rest, high), _mm_unpacklo_epi32(keptTwice, keptTwice));
        const __m128i second =
            limited(_mm_unpackhi_epi8(rest, high), _mm_unpackhi_epi32(keptTwice, keptTwice));
        store(hi + 4 * n, _mm_packus_epi16(_mm_srli_epi16(first, 8), _mm_srli_epi16(second, 8)));
        store(lo + 4 * n, _mm_packus_epi16(_mm_and_si128(first, low), _mm_and_si128(second, low)));
    }
    if (n < count) restoreAlpha16Scalar(hi + 4 * n, lo + 4 * n, keptHi + n, keptLo + n, count - n);
    noteKernelForm(VectorLevel::Sse2);
}

}  // namespace brushwork::npc
