#include <emmintrin.h>

#include "image/work/quarter_turns.h"

namespace brushwork {
namespace {

__m128i load16(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
__m128i load8(const std::uint8_t* p) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
}
void store16(std::uint8_t* p, __m128i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}

// Two rows of eight bytes.
void storeTwo(std::uint8_t* p, std::ptrdiff_t stride, __m128i rows) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), rows);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p + stride), _mm_srli_si128(rows, 8));
}

}  // namespace

void turnFourSse2(const TurnBlock& block) {
    noteKernelForm(VectorLevel::Sse2);
    const std::uint8_t* from = block.source;
    const std::ptrdiff_t stride = block.sourceRowBytes;
    const __m128i a = load16(from);
    const __m128i b = load16(from + stride);
    const __m128i c = load16(from + 2 * stride);
    const __m128i d = load16(from + 3 * stride);
    const __m128i ab = _mm_unpacklo_epi32(a, b);
    const __m128i cd = _mm_unpacklo_epi32(c, d);
    const __m128i abHigh = _mm_unpackhi_epi32(a, b);
    const __m128i cdHigh = _mm_unpackhi_epi32(c, d);
    std::uint8_t* to = block.target;
    store16(to, _mm_unpacklo_epi64(ab, cd));
    store16(to + block.targetRowBytes, _mm_unpackhi_epi64(ab, cd));
    store16(to + 2 * block.targetRowBytes, _mm_unpacklo_epi64(abHigh, cdHigh));
    store16(to + 3 * block.targetRowBytes, _mm_unpackhi_epi64(abHigh, cdHigh));
}

void turnOneSse2(const TurnBlock& block) {
    noteKernelForm(VectorLevel::Sse2);
    __m128i pairs[4];
    const std::uint8_t* from = block.source;
    for (__m128i& pair : pairs) {
        pair = _mm_unpacklo_epi8(load8(from), load8(from + block.sourceRowBytes));
        from += 2 * block.sourceRowBytes;
    }
    const __m128i quads[4] = {
        _mm_unpacklo_epi16(pairs[0], pairs[1]), _mm_unpackhi_epi16(pairs[0], pairs[1]),
        _mm_unpacklo_epi16(pairs[2], pairs[3]), _mm_unpackhi_epi16(pairs[2], pairs[3])};
    const std::ptrdiff_t stride = block.targetRowBytes;
    std::uint8_t* to = block.target;
    for (int half = 0; half < 2; ++half, to += 4 * stride) {
        storeTwo(to, stride, _mm_unpacklo_epi32(quads[half], quads[half + 2]));
        storeTwo(to + 2 * stride, stride, _mm_unpackhi_epi32(quads[half], quads[half + 2]));
    }
}

}  // namespace brushwork
