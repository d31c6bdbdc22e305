// 16-bit channels, four pixels a register. Only for files that are compiled for these instructions.
//
// Joining and splitting work in halves of 16 bytes: the first words hold pixels 0, 1, 4 and 5, the
// second 2, 3, 6 and 7.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "blending/core/dual_lanes.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

struct Avx2DualLanes {
    using Bytes = __m256i;
    using Words = __m256i;
    static constexpr std::size_t pixels = 8;
    static constexpr VectorLevel level = VectorLevel::Avx2;

    static Bytes load(const std::uint8_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    static void store(std::uint8_t* p, Bytes v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
    }
    // The first `count` pixels alone; nothing else is read or written.
    static __m256i firstPixels(std::size_t count) {
        return _mm256_cmpgt_epi32(_mm256_set1_epi32(static_cast<int>(count)),
                                  _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    }
    static Bytes loadPart(const std::uint8_t* p, std::size_t count) {
        return _mm256_maskload_epi32(reinterpret_cast<const int*>(p), firstPixels(count));
    }
    static void storePart(std::uint8_t* p, Bytes v, std::size_t count) {
        _mm256_maskstore_epi32(reinterpret_cast<int*>(p), firstPixels(count), v);
    }

    static void join(Bytes highs, Bytes lows, Words& first, Words& second) {
        first = _mm256_unpacklo_epi8(lows, highs);
        second = _mm256_unpackhi_epi8(lows, highs);
    }
    static Bytes highsOf(Words first, Words second) {
        return _mm256_packus_epi16(_mm256_srli_epi16(first, 8), _mm256_srli_epi16(second, 8));
    }
    static Bytes lowsOf(Words first, Words second) {
        const __m256i low = _mm256_set1_epi16(0xFF);
        return _mm256_packus_epi16(_mm256_and_si256(first, low), _mm256_and_si256(second, low));
    }
    // Mask bytes, the first pixel's lowest, into the upper half of each channel.
    static void spread(std::uint64_t mask, Words& first, Words& second) {
        const __m256i bytes = _mm256_set1_epi64x(static_cast<long long>(mask));
        const __m256i even =
            _mm256_setr_epi8(-1, 0, -1, 0, -1, 0, -1, 0, -1, 1, -1, 1, -1, 1, -1, 1, -1, 4, -1, 4,
                             -1, 4, -1, 4, -1, 5, -1, 5, -1, 5, -1, 5);
        const __m256i odd =
            _mm256_setr_epi8(-1, 2, -1, 2, -1, 2, -1, 2, -1, 3, -1, 3, -1, 3, -1, 3, -1, 6, -1, 6,
                             -1, 6, -1, 6, -1, 7, -1, 7, -1, 7, -1, 7);
        first = _mm256_shuffle_epi8(bytes, even);
        second = _mm256_shuffle_epi8(bytes, odd);
    }

    static Words all(std::uint32_t word) { return _mm256_set1_epi16(static_cast<short>(word)); }
    // A word for each channel of a pixel.
    static Words channels(const std::uint16_t (&c)[4]) {
        const std::uint64_t pixel = c[0] | std::uint64_t{c[1]} << 16 | std::uint64_t{c[2]} << 32 |
                                    std::uint64_t{c[3]} << 48;
        return _mm256_set1_epi64x(static_cast<long long>(pixel));
    }
    static Words add(Words a, Words b) { return _mm256_add_epi16(a, b); }
    static Words subtract(Words a, Words b) { return _mm256_sub_epi16(a, b); }
    static Words addSaturated(Words a, Words b) { return _mm256_adds_epu16(a, b); }
    static Words subtractSaturated(Words a, Words b) { return _mm256_subs_epu16(a, b); }
    static Words low(Words a, Words b) { return _mm256_mullo_epi16(a, b); }
    static Words high(Words a, Words b) { return _mm256_mulhi_epu16(a, b); }
    static Words smaller(Words a, Words b) { return _mm256_min_epu16(a, b); }
    static Words larger(Words a, Words b) { return _mm256_max_epu16(a, b); }
    static Words same(Words a, Words b) { return _mm256_cmpeq_epi16(a, b); }
    static Words isEmptyPixel(Words a) { return _mm256_cmpeq_epi64(a, _mm256_setzero_si256()); }
    static Words both(Words a, Words b) { return _mm256_and_si256(a, b); }
    static Words either(Words a, Words b) { return _mm256_or_si256(a, b); }
    static Words inverted(Words a) { return _mm256_xor_si256(a, _mm256_set1_epi16(-1)); }
    static Words choose(Words mask, Words yes, Words no) {
        return _mm256_blendv_epi8(no, yes, mask);
    }
    static Words up8(Words a) { return _mm256_slli_epi16(a, 8); }
    static Words down8(Words a) { return _mm256_srli_epi16(a, 8); }
    static Words topBit(Words a) { return _mm256_srli_epi16(a, 15); }
    static Words alphaOf(Words a) {
        return _mm256_shuffle_epi8(
            a, _mm256_setr_epi8(6, 7, 6, 7, 6, 7, 6, 7, 14, 15, 14, 15, 14, 15, 14, 15, 6, 7, 6, 7,
                                6, 7, 6, 7, 14, 15, 14, 15, 14, 15, 14, 15));
    }

    // In double, a pixel a lane. Two exact values below 2^32 and 2^16 have a quotient whose
    // fraction is 0 or at least 2^-16; taking a half less 2^-18 off and rounding to the nearest
    // (which adding 2^52 and a half of it does) therefore cuts it.
    static Words quotient(Words a, Words b) {
        const __m256i word = _mm256_set1_epi64x(0xFFFF);
        const __m256d big = _mm256_set1_pd(4503599627370496.0);
        const __m256d round = _mm256_set1_pd(6755399441055744.0);
        const auto toDouble = [&](__m256i v) {
            const __m256i low16 = _mm256_and_si256(v, word);
            return _mm256_sub_pd(
                _mm256_castsi256_pd(_mm256_or_si256(low16, _mm256_castpd_si256(big))), big);
        };
        const __m256d dividend = _mm256_mul_pd(toDouble(a), _mm256_set1_pd(65536.0));
        const __m256d exact = _mm256_div_pd(dividend, toDouble(b));
        const __m256d cut = _mm256_sub_pd(exact, _mm256_set1_pd(0.5 - 1.0 / 262144));
        const __m256i whole = _mm256_castpd_si256(_mm256_add_pd(cut, round));
        return _mm256_shuffle_epi8(
            whole, _mm256_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 8, 9, 8, 9, 8, 9, 8, 9, 0, 1, 0, 1, 0,
                                    1, 0, 1, 8, 9, 8, 9, 8, 9, 8, 9));
    }
};

}  // namespace brushwork::npc
