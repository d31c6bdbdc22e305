// Four pixels at a time. Only for files that are compiled for these instructions. See lanes.h.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "blending/core/lanes.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

struct Sse2Lanes {
    using Ints = __m128i;
    using Floats = __m128;
    using Words = __m128i;
    static constexpr std::size_t pixels = 4;
    static constexpr VectorLevel level = VectorLevel::Sse2;

    static Ints load(const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static void store(std::uint8_t* p, Ints v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
    }
    // The first `count` pixels alone; nothing else is read or written.
    static Ints loadPart(const std::uint8_t* p, std::size_t count) {
        alignas(16) std::uint8_t bytes[16] = {};
        for (std::size_t i = 0; i < 4 * count; ++i) bytes[i] = p[i];
        return load(bytes);
    }
    static void storePart(std::uint8_t* p, Ints v, std::size_t count) {
        alignas(16) std::uint8_t bytes[16];
        store(bytes, v);
        for (std::size_t i = 0; i < 4 * count; ++i) p[i] = bytes[i];
    }
    static Ints loadMask(const std::uint8_t* p) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i bytes = _mm_cvtsi32_si128(static_cast<int>(maskBits(p)));
        return _mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero);
    }
    static bool isMaskEmpty(const std::uint8_t* p) { return maskBits(p) == 0; }
    static bool isAllZero(Ints v) {
        return _mm_movemask_epi8(_mm_cmpeq_epi32(v, _mm_setzero_si128())) == 0xFFFF;
    }
    // 0 to 3: red to alpha.
    static Ints channel(Ints v, int index) {
        if (index == 3) return _mm_srli_epi32(v, 24);
        const __m128i low = index == 0 ? v : _mm_srli_epi32(v, 8 * index);
        return _mm_and_si128(low, _mm_set1_epi32(255));
    }
    static bool isOpaque(Ints v) {
        return (_mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8(-1))) & 0x8888) == 0x8888;
    }

    static Ints all(int x) { return _mm_set1_epi32(x); }
    static Ints add(Ints a, Ints b) { return _mm_add_epi32(a, b); }
    static Ints subtract(Ints a, Ints b) { return _mm_sub_epi32(a, b); }
    static Ints product(Ints a, Ints b) {
        const __m128i even = _mm_mul_epu32(a, b);
        const __m128i odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
        return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, 0x08), _mm_shuffle_epi32(odd, 0x08));
    }
    // One of the two has an upper half of 0.
    static Ints product16(Ints a, Ints b) { return _mm_madd_epi16(a, b); }
    static Ints up(Ints a, int count) { return _mm_slli_epi32(a, count); }
    static Ints down(Ints a, int count) { return _mm_srai_epi32(a, count); }
    static Ints smaller(Ints a, Ints b) { return choose(isGreater(a, b), b, a); }
    static Ints larger(Ints a, Ints b) { return choose(isGreater(a, b), a, b); }
    static Ints both(Ints a, Ints b) { return _mm_and_si128(a, b); }
    static Ints without(Ints a, Ints b) { return _mm_andnot_si128(b, a); }
    static Ints either(Ints a, Ints b) { return _mm_or_si128(a, b); }
    static Ints isSame(Ints a, Ints b) { return _mm_cmpeq_epi32(a, b); }
    static Ints isGreater(Ints a, Ints b) { return _mm_cmpgt_epi32(a, b); }
    static Ints choose(Ints test, Ints yes, Ints no) {
        return _mm_or_si128(_mm_and_si128(test, yes), _mm_andnot_si128(test, no));
    }
    // Below the next whole number an exact quotient stays at least 1 / b away from it, and float
    // rounds a value of a / b by less than that while a has no more than 24 bits.
    static Ints quotient(Ints a, Ints b) { return truncatedNumber(divide(toReal(a), toReal(b))); }

    static Floats allReal(float x) { return _mm_set1_ps(x); }
    static Floats toReal(Ints a) { return _mm_cvtepi32_ps(a); }
    static Floats add(Floats a, Floats b) { return _mm_add_ps(a, b); }
    static Floats subtract(Floats a, Floats b) { return _mm_sub_ps(a, b); }
    static Floats multiply(Floats a, Floats b) { return _mm_mul_ps(a, b); }
    static Floats divide(Floats a, Floats b) { return _mm_div_ps(a, b); }
    static Floats smaller(Floats a, Floats b) { return _mm_min_ps(a, b); }
    static Floats larger(Floats a, Floats b) { return _mm_max_ps(a, b); }
    static Ints isSame(Floats a, Floats b) { return _mm_castps_si128(_mm_cmpeq_ps(a, b)); }
    static Floats choose(Ints test, Floats yes, Floats no) {
        return _mm_castsi128_ps(choose(test, _mm_castps_si128(yes), _mm_castps_si128(no)));
    }
    // The instruction answers the lowest number for whatever it can't convert.
    static Ints truncated(Floats a) {
        const __m128i tooLarge = _mm_castps_si128(_mm_cmpge_ps(a, _mm_set1_ps(2147483648.0F)));
        const __m128i number = _mm_castps_si128(_mm_cmpord_ps(a, a));
        return _mm_and_si128(number, _mm_xor_si128(_mm_cvttps_epi32(a), tooLarge));
    }
    static Ints truncatedNumber(Floats a) { return _mm_cvttps_epi32(a); }

    static void toWords(Ints pixel, Words (&words)[2]) {
        const __m128i zero = _mm_setzero_si128();
        words[0] = _mm_unpacklo_epi8(pixel, zero);
        words[1] = _mm_unpackhi_epi8(pixel, zero);
    }
    static Ints fromWords(const Words (&words)[2]) { return _mm_packus_epi16(words[0], words[1]); }
    static Words alphaOf(Words w) {
        return _mm_shufflehi_epi16(_mm_shufflelo_epi16(w, 0xFF), 0xFF);
    }
    // Words of toWords: of its pixel's alpha, and with its channel in the upper byte.
    static void toAlphaWords(Ints pixel, Words (&words)[2]) {
        const __m128i alpha = _mm_srli_epi32(pixel, 24);
        const __m128i twice = _mm_or_si128(alpha, _mm_slli_epi32(alpha, 16));
        words[0] = _mm_unpacklo_epi32(twice, twice);
        words[1] = _mm_unpackhi_epi32(twice, twice);
    }
    static void toUpperWords(Ints pixel, Words (&words)[2]) {
        const __m128i zero = _mm_setzero_si128();
        words[0] = _mm_unpacklo_epi8(zero, pixel);
        words[1] = _mm_unpackhi_epi8(zero, pixel);
    }
    // Sums above 255 become 255.
    static Ints addBytes(Ints a, Ints b) { return _mm_adds_epu8(a, b); }
    static Ints subtractBytes(Ints a, Ints b) { return _mm_sub_epi8(a, b); }
    static Words maskWords(Ints mask) { return mask; }
    static void spread(Words perPixel, Words (&words)[2]) {
        const __m128i twice = _mm_or_si128(_mm_slli_epi32(perPixel, 16),
                                           _mm_and_si128(perPixel, _mm_set1_epi32(0xFFFF)));
        words[0] = _mm_unpacklo_epi32(twice, twice);
        words[1] = _mm_unpackhi_epi32(twice, twice);
    }

    static Words allWords(int x) { return _mm_set1_epi16(static_cast<short>(x)); }
    static Words addWords(Words a, Words b) { return _mm_add_epi16(a, b); }
    static Words subtractWords(Words a, Words b) { return _mm_sub_epi16(a, b); }
    static Words lowProduct(Words a, Words b) { return _mm_mullo_epi16(a, b); }
    static Words upperProduct(Words a, Words b) { return _mm_mulhi_epu16(a, b); }
    static Words upWords(Words a, int count) { return _mm_slli_epi16(a, count); }
    static Words downWords(Words a, int count) { return _mm_srli_epi16(a, count); }
    static Words smallerWords(Words a, Words b) { return _mm_min_epi16(a, b); }
    static Words ifZero(Words z, Words yes, Words no) {
        return choose(_mm_cmpeq_epi16(z, _mm_setzero_si128()), yes, no);
    }

  private:
    static std::uint32_t maskBits(const std::uint8_t* p) {
        std::uint32_t bits;
        std::memcpy(&bits, p, sizeof bits);
        return bits;
    }
};

}  // namespace brushwork::npc
