// 16-bit channels, two pixels a register. Only for files that are compiled for these instructions.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "blending/core/dual_lanes.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

struct Sse2DualLanes {
    using Bytes = __m128i;
    using Words = __m128i;
    static constexpr std::size_t pixels = 4;
    static constexpr VectorLevel level = VectorLevel::Sse2;

    static Bytes load(const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    static void store(std::uint8_t* p, Bytes v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
    }
    // The first `count` pixels alone; nothing else is read or written.
    static Bytes loadPart(const std::uint8_t* p, std::size_t count) {
        alignas(16) std::uint32_t words[pixels] = {};
        for (std::size_t i = 0; i < count; ++i) std::memcpy(&words[i], p + 4 * i, 4);
        return _mm_load_si128(reinterpret_cast<const __m128i*>(words));
    }
    static void storePart(std::uint8_t* p, Bytes v, std::size_t count) {
        alignas(16) std::uint32_t words[pixels];
        _mm_store_si128(reinterpret_cast<__m128i*>(words), v);
        for (std::size_t i = 0; i < count; ++i) std::memcpy(p + 4 * i, &words[i], 4);
    }

    static void join(Bytes highs, Bytes lows, Words& first, Words& second) {
        first = _mm_unpacklo_epi8(lows, highs);
        second = _mm_unpackhi_epi8(lows, highs);
    }
    static Bytes highsOf(Words first, Words second) {
        return _mm_packus_epi16(_mm_srli_epi16(first, 8), _mm_srli_epi16(second, 8));
    }
    static Bytes lowsOf(Words first, Words second) {
        const __m128i low = _mm_set1_epi16(0xFF);
        return _mm_packus_epi16(_mm_and_si128(first, low), _mm_and_si128(second, low));
    }
    // Mask bytes, the first pixel's lowest, into the upper half of each channel.
    static void spread(std::uint64_t mask, Words& first, Words& second) {
        const __m128i bytes = _mm_cvtsi32_si128(static_cast<int>(mask & 0xFFFFFFFFU));
        const __m128i words = _mm_unpacklo_epi8(_mm_setzero_si128(), bytes);
        const __m128i twice = _mm_unpacklo_epi16(words, words);
        first = _mm_unpacklo_epi32(twice, twice);
        second = _mm_unpackhi_epi32(twice, twice);
    }

    static Words all(std::uint32_t word) { return _mm_set1_epi16(static_cast<short>(word)); }
    // A word for each channel of a pixel.
    static Words channels(const std::uint16_t (&c)[4]) {
        return _mm_set_epi16(static_cast<short>(c[3]), static_cast<short>(c[2]),
                             static_cast<short>(c[1]), static_cast<short>(c[0]),
                             static_cast<short>(c[3]), static_cast<short>(c[2]),
                             static_cast<short>(c[1]), static_cast<short>(c[0]));
    }
    static Words add(Words a, Words b) { return _mm_add_epi16(a, b); }
    static Words subtract(Words a, Words b) { return _mm_sub_epi16(a, b); }
    static Words addSaturated(Words a, Words b) { return _mm_adds_epu16(a, b); }
    static Words subtractSaturated(Words a, Words b) { return _mm_subs_epu16(a, b); }
    static Words low(Words a, Words b) { return _mm_mullo_epi16(a, b); }
    static Words high(Words a, Words b) { return _mm_mulhi_epu16(a, b); }
    static Words smaller(Words a, Words b) { return _mm_sub_epi16(a, _mm_subs_epu16(a, b)); }
    static Words larger(Words a, Words b) { return _mm_add_epi16(b, _mm_subs_epu16(a, b)); }
    static Words same(Words a, Words b) { return _mm_cmpeq_epi16(a, b); }
    static Words isEmptyPixel(Words a) {
        const __m128i halves = _mm_cmpeq_epi32(a, _mm_setzero_si128());
        return _mm_and_si128(halves, _mm_shuffle_epi32(halves, 0xB1));
    }
    static Words both(Words a, Words b) { return _mm_and_si128(a, b); }
    static Words either(Words a, Words b) { return _mm_or_si128(a, b); }
    static Words inverted(Words a) { return _mm_xor_si128(a, _mm_set1_epi16(-1)); }
    static Words choose(Words mask, Words yes, Words no) {
        return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    }
    static Words up8(Words a) { return _mm_slli_epi16(a, 8); }
    static Words down8(Words a) { return _mm_srli_epi16(a, 8); }
    static Words topBit(Words a) { return _mm_srli_epi16(a, 15); }
    static Words alphaOf(Words a) {
        return _mm_shufflehi_epi16(_mm_shufflelo_epi16(a, 0xFF), 0xFF);
    }

    // In double, a pixel a lane. Two exact values below 2^32 and 2^16 have a quotient whose
    // fraction is 0 or at least 2^-16; taking a half less 2^-18 off and rounding to the nearest
    // (which adding 2^52 and a half of it does) therefore cuts it.
    static Words quotient(Words a, Words b) {
        const __m128i word = _mm_set1_epi64x(0xFFFF);
        const __m128d big = _mm_set1_pd(4503599627370496.0);
        const __m128d round = _mm_set1_pd(6755399441055744.0);
        const auto toDouble = [&](__m128i v) {
            const __m128i low16 = _mm_and_si128(v, word);
            return _mm_sub_pd(_mm_castsi128_pd(_mm_or_si128(low16, _mm_castpd_si128(big))), big);
        };
        const __m128d dividend = _mm_mul_pd(toDouble(a), _mm_set1_pd(65536.0));
        const __m128d exact = _mm_div_pd(dividend, toDouble(b));
        const __m128d cut = _mm_sub_pd(exact, _mm_set1_pd(0.5 - 1.0 / 262144));
        const __m128i whole = _mm_castpd_si128(_mm_add_pd(cut, round));
        return _mm_shufflehi_epi16(_mm_shufflelo_epi16(whole, 0), 0);
    }
};

}  // namespace brushwork::npc
