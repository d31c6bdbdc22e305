// Eight pixels at a time. Only for files that are compiled for these instructions. See lanes.h.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "blending/core/lanes.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

struct Avx2Lanes {
    using Ints = __m256i;
    using Floats = __m256;
    using Words = __m256i;
    static constexpr std::size_t pixels = 8;
    static constexpr VectorLevel level = VectorLevel::Avx2;

    static Ints load(const std::uint8_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    static void store(std::uint8_t* p, Ints v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
    }
    // The first `count` pixels alone; nothing else is read or written.
    static Ints loadPart(const std::uint8_t* p, std::size_t count) {
        return _mm256_maskload_epi32(reinterpret_cast<const int*>(p), firstPixels(count));
    }
    static void storePart(std::uint8_t* p, Ints v, std::size_t count) {
        _mm256_maskstore_epi32(reinterpret_cast<int*>(p), firstPixels(count), v);
    }
    static Ints loadMask(const std::uint8_t* p) {
        return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
    }
    static bool isMaskEmpty(const std::uint8_t* p) {
        std::uint64_t bits;
        std::memcpy(&bits, p, sizeof bits);
        return bits == 0;
    }
    static bool isAllZero(Ints v) { return _mm256_testz_si256(v, v) != 0; }
    // 0 to 3: red to alpha.
    static Ints channel(Ints v, int index) {
        if (index == 0) return _mm256_and_si256(v, _mm256_set1_epi32(255));
        if (index == 3) return _mm256_srli_epi32(v, 24);
        const auto first = static_cast<int>(0x80808000);  // 0x80 gives 0
        const __m256i places =
            _mm256_add_epi32(_mm256_setr_epi32(first, first + 4, first + 8, first + 12, first,
                                               first + 4, first + 8, first + 12),
                             _mm256_set1_epi32(index));
        return _mm256_shuffle_epi8(v, places);
    }
    static bool isOpaque(Ints v) {
        return _mm256_testc_si256(v, _mm256_set1_epi32(static_cast<int>(0xFF000000))) != 0;
    }

    static Ints all(int x) { return _mm256_set1_epi32(x); }
    static Ints add(Ints a, Ints b) { return _mm256_add_epi32(a, b); }
    static Ints subtract(Ints a, Ints b) { return _mm256_sub_epi32(a, b); }
    static Ints product(Ints a, Ints b) { return _mm256_mullo_epi32(a, b); }
    // One of the two has an upper half of 0.
    static Ints product16(Ints a, Ints b) { return _mm256_madd_epi16(a, b); }
    static Ints up(Ints a, int count) { return _mm256_slli_epi32(a, count); }
    static Ints down(Ints a, int count) { return _mm256_srai_epi32(a, count); }
    static Ints smaller(Ints a, Ints b) { return _mm256_min_epi32(a, b); }
    static Ints larger(Ints a, Ints b) { return _mm256_max_epi32(a, b); }
    static Ints both(Ints a, Ints b) { return _mm256_and_si256(a, b); }
    static Ints without(Ints a, Ints b) { return _mm256_andnot_si256(b, a); }
    static Ints either(Ints a, Ints b) { return _mm256_or_si256(a, b); }
    static Ints isSame(Ints a, Ints b) { return _mm256_cmpeq_epi32(a, b); }
    static Ints isGreater(Ints a, Ints b) { return _mm256_cmpgt_epi32(a, b); }
    static Ints choose(Ints test, Ints yes, Ints no) { return _mm256_blendv_epi8(no, yes, test); }
    // Exact as in Sse2Lanes.
    static Ints quotient(Ints a, Ints b) { return truncatedNumber(divide(toReal(a), toReal(b))); }

    static Floats allReal(float x) { return _mm256_set1_ps(x); }
    static Floats toReal(Ints a) { return _mm256_cvtepi32_ps(a); }
    static Floats add(Floats a, Floats b) { return _mm256_add_ps(a, b); }
    static Floats subtract(Floats a, Floats b) { return _mm256_sub_ps(a, b); }
    static Floats multiply(Floats a, Floats b) { return _mm256_mul_ps(a, b); }
    static Floats divide(Floats a, Floats b) { return _mm256_div_ps(a, b); }
    static Floats smaller(Floats a, Floats b) { return _mm256_min_ps(a, b); }
    static Floats larger(Floats a, Floats b) { return _mm256_max_ps(a, b); }
    static Ints isSame(Floats a, Floats b) {
        return _mm256_castps_si256(_mm256_cmp_ps(a, b, _CMP_EQ_OQ));
    }
    static Floats choose(Ints test, Floats yes, Floats no) {
        return _mm256_blendv_ps(no, yes, _mm256_castsi256_ps(test));
    }
    // The instruction answers the lowest number for whatever it can't convert.
    static Ints truncated(Floats a) {
        const __m256i tooLarge =
            _mm256_castps_si256(_mm256_cmp_ps(a, _mm256_set1_ps(2147483648.0F), _CMP_GE_OQ));
        const __m256i number = _mm256_castps_si256(_mm256_cmp_ps(a, a, _CMP_ORD_Q));
        return _mm256_and_si256(number, _mm256_xor_si256(_mm256_cvttps_epi32(a), tooLarge));
    }
    static Ints truncatedNumber(Floats a) { return _mm256_cvttps_epi32(a); }

    // Pixels 0, 1, 4 and 5, then 2, 3, 6 and 7.
    static void toWords(Ints pixel, Words (&words)[2]) {
        const __m256i zero = _mm256_setzero_si256();
        words[0] = _mm256_unpacklo_epi8(pixel, zero);
        words[1] = _mm256_unpackhi_epi8(pixel, zero);
    }
    static Ints fromWords(const Words (&words)[2]) {
        return _mm256_packus_epi16(words[0], words[1]);
    }
    static Words alphaOf(Words w) {
        return _mm256_shuffle_epi8(
            w, _mm256_setr_epi8(6, 7, 6, 7, 6, 7, 6, 7, 14, 15, 14, 15, 14, 15, 14, 15,  //
                                6, 7, 6, 7, 6, 7, 6, 7, 14, 15, 14, 15, 14, 15, 14, 15));
    }
    // Words of toWords: of its pixel's alpha, and with its channel in the upper byte.
    static void toAlphaWords(Ints pixel, Words (&words)[2]) {
        constexpr char none = -128;
        const __m256i first = _mm256_setr_epi8(
            3, none, 3, none, 3, none, 3, none, 7, none, 7, none, 7, none, 7, none,  //
            3, none, 3, none, 3, none, 3, none, 7, none, 7, none, 7, none, 7, none);
        words[0] = _mm256_shuffle_epi8(pixel, first);
        words[1] = _mm256_shuffle_epi8(pixel, _mm256_add_epi16(first, _mm256_set1_epi16(8)));
    }
    static void toUpperWords(Ints pixel, Words (&words)[2]) {
        const __m256i zero = _mm256_setzero_si256();
        words[0] = _mm256_unpacklo_epi8(zero, pixel);
        words[1] = _mm256_unpackhi_epi8(zero, pixel);
    }
    // Sums above 255 become 255.
    static Ints addBytes(Ints a, Ints b) { return _mm256_adds_epu8(a, b); }
    static Ints subtractBytes(Ints a, Ints b) { return _mm256_sub_epi8(a, b); }
    static Words maskWords(Ints mask) { return mask; }
    static void spread(Words perPixel, Words (&words)[2]) {
        words[0] = _mm256_shuffle_epi8(
            perPixel, _mm256_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 4, 5, 4, 5, 4, 5, 4, 5,  //
                                       0, 1, 0, 1, 0, 1, 0, 1, 4, 5, 4, 5, 4, 5, 4, 5));
        words[1] = _mm256_shuffle_epi8(
            perPixel, _mm256_setr_epi8(8, 9, 8, 9, 8, 9, 8, 9, 12, 13, 12, 13, 12, 13, 12, 13,  //
                                       8, 9, 8, 9, 8, 9, 8, 9, 12, 13, 12, 13, 12, 13, 12, 13));
    }

    static Words allWords(int x) { return _mm256_set1_epi16(static_cast<short>(x)); }
    static Words addWords(Words a, Words b) { return _mm256_add_epi16(a, b); }
    static Words subtractWords(Words a, Words b) { return _mm256_sub_epi16(a, b); }
    static Words lowProduct(Words a, Words b) { return _mm256_mullo_epi16(a, b); }
    static Words upperProduct(Words a, Words b) { return _mm256_mulhi_epu16(a, b); }
    static Words upWords(Words a, int count) { return _mm256_slli_epi16(a, count); }
    static Words downWords(Words a, int count) { return _mm256_srli_epi16(a, count); }
    static Words smallerWords(Words a, Words b) { return _mm256_min_epi16(a, b); }
    static Words ifZero(Words z, Words yes, Words no) {
        return choose(_mm256_cmpeq_epi16(z, _mm256_setzero_si256()), yes, no);
    }

  private:
    static __m256i firstPixels(std::size_t count) {
        return _mm256_cmpgt_epi32(_mm256_set1_epi32(static_cast<int>(count)),
                                  _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    }
};

}  // namespace brushwork::npc
