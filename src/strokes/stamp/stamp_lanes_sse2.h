// Four rows of a stamp at a time. Only for files that are compiled for these instructions.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/services/vector_level.h"

namespace brushwork::npc {

struct Sse2StampLanes {
    using Floats = __m128;
    using Ints = __m128i;
    static constexpr std::int32_t count = 4;
    static constexpr VectorLevel level = VectorLevel::Sse2;

    // Floats: one value a row.
    static Floats set(float value) { return _mm_set1_ps(value); }
    static float infinity() { return __builtin_inff(); }
    static float rootOf(float value) { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(value))); }
    static Floats add(Floats a, Floats b) { return _mm_add_ps(a, b); }
    static Floats mul(Floats a, Floats b) { return _mm_mul_ps(a, b); }
    static Floats rowNumbers(std::int32_t first) {
        return _mm_cvtepi32_ps(_mm_add_epi32(_mm_set1_epi32(first), _mm_setr_epi32(0, 1, 2, 3)));
    }
    static bool allLess(Floats a, Floats b) { return _mm_movemask_ps(_mm_cmplt_ps(a, b)) == 0xF; }
    // Sixteenths of the root, up to `last`; what isn't a number becomes 0.
    static Ints place(Floats square, Floats last) {
        const Floats sixteenths = _mm_mul_ps(set(16.0f), _mm_sqrt_ps(square));
        return _mm_cvttps_epi32(_mm_min_ps(_mm_max_ps(sixteenths, _mm_setzero_ps()), last));
    }
    // Entries of a table of bytes, as numbers.
    static Ints fetch(const std::uint8_t* entries, Ints at) {
        std::int32_t places[4];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(places), at);
        return _mm_setr_epi32(entries[places[0]], entries[places[1]], entries[places[2]],
                              entries[places[3]]);
    }
    // Four columns of bytes, the first lowest.
    static Ints pack(Ints a, Ints b, Ints c, Ints d) {
        const Ints low = _mm_or_si128(a, _mm_slli_epi32(b, 8));
        const Ints high = _mm_or_si128(c, _mm_slli_epi32(d, 8));
        return _mm_or_si128(low, _mm_slli_epi32(high, 16));
    }
    static Ints firstColumns(Ints four, std::int32_t columns) {
        if (columns >= 4) return four;
        return _mm_and_si128(four, _mm_set1_epi32((1 << (8 * columns)) - 1));
    }
    static Ints zero() { return _mm_setzero_si128(); }
    static Ints ones() { return _mm_set1_epi32(-1); }
    // 16 columns of up to 4 rows: part k holds columns 4 k to 4 k + 3.
    static void storeBlock(const Ints (&block)[4], std::uint8_t* out, std::int32_t rowBytes,
                           std::int32_t rows) {
        const Ints ab01 = _mm_unpacklo_epi32(block[0], block[1]);
        const Ints ab23 = _mm_unpackhi_epi32(block[0], block[1]);
        const Ints cd01 = _mm_unpacklo_epi32(block[2], block[3]);
        const Ints cd23 = _mm_unpackhi_epi32(block[2], block[3]);
        const Ints sixteens[4] = {_mm_unpacklo_epi64(ab01, cd01), _mm_unpackhi_epi64(ab01, cd01),
                                  _mm_unpacklo_epi64(ab23, cd23), _mm_unpackhi_epi64(ab23, cd23)};
        for (std::int32_t row = 0; row < rows; ++row)
            _mm_storeu_si128(
                reinterpret_cast<__m128i*>(out + static_cast<std::ptrdiff_t>(row) * rowBytes),
                sixteens[row]);
    }

    // Inside 0 to right and 0 to top, without the bounds: all bits of the lane.
    static Ints insideOf(Floats u, Floats v, float right, float top) {
        const Floats above =
            _mm_and_ps(_mm_cmpgt_ps(u, _mm_setzero_ps()), _mm_cmpgt_ps(v, _mm_setzero_ps()));
        const Floats below = _mm_and_ps(_mm_cmplt_ps(u, set(right)), _mm_cmplt_ps(v, set(top)));
        return _mm_castps_si128(_mm_and_ps(above, below));
    }
    static Ints truncated(Floats value) { return _mm_cvttps_epi32(value); }
    static Floats fractionOf(Floats value, Ints whole) {
        return _mm_sub_ps(value, _mm_cvtepi32_ps(whole));
    }
    static Ints both(Ints a, Ints b) { return _mm_and_si128(a, b); }
    // Weights for a pair of 16-bit numbers: 256 - share for the lower, share for the upper.
    static Ints weightsOf(Ints share) {
        return _mm_or_si128(_mm_sub_epi32(_mm_set1_epi32(256), share), _mm_slli_epi32(share, 16));
    }
    // column + row * width.
    static Ints indexOf(Ints column, Ints row, std::int32_t width) {
        // The low halves of the products of unsigned numbers are those of signed ones, too.
        const Ints factor = _mm_set1_epi32(width);
        const Ints even = _mm_mul_epu32(row, factor);
        const Ints odd = _mm_mul_epu32(_mm_srli_si128(row, 4), factor);
        const Ints product = _mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(0, 0, 2, 0)),
                                                _mm_shuffle_epi32(odd, _MM_SHUFFLE(0, 0, 2, 0)));
        return _mm_add_epi32(column, product);
    }
    static Ints fetchCells(const std::uint8_t* cells, Ints at) {
        std::int32_t places[4], values[4];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(places), at);
        for (int lane = 0; lane < 4; ++lane)
            std::memcpy(&values[lane], cells + static_cast<std::ptrdiff_t>(places[lane]) * 4, 4);
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(values));
    }
    // The weighted mean of a cell's four bytes, by the weights across and then along.
    static Ints blendCells(Ints cells, Ints across, Ints along) {
        const Ints byte = _mm_set1_epi32(0xFF);
        const Ints upperByte = _mm_set1_epi32(0xFF0000);
        const Ints low = _mm_or_si128(_mm_and_si128(cells, byte),
                                      _mm_and_si128(_mm_slli_epi32(cells, 8), upperByte));
        const Ints high = _mm_or_si128(_mm_and_si128(_mm_srli_epi32(cells, 16), byte),
                                       _mm_and_si128(_mm_srli_epi32(cells, 8), upperByte));
        return blendPairs(_mm_madd_epi16(low, across), _mm_madd_epi16(high, across), along);
    }
    // The means take 16 bits without a sign; they are moved by half their range and back.
    static Ints blendPairs(Ints low, Ints high, Ints along) {
        const Ints pair =
            _mm_xor_si128(_mm_or_si128(low, _mm_slli_epi32(high, 16)), _mm_set1_epi16(-32768));
        return _mm_srli_epi32(
            _mm_add_epi32(_mm_madd_epi16(pair, along), _mm_set1_epi32(32768 * 256)), 16);
    }
    // As storeBlock, but multiplies what is there: ((block + 1) * mask) >> 8.
    static void multiplyBlock(const Ints (&block)[4], std::uint8_t* mask, std::int32_t rowBytes,
                              std::int32_t rows) {
        alignas(16) std::uint8_t factors[count][16];
        storeBlock(block, factors[0], 16, count);
        const Ints none = _mm_setzero_si128(), one = _mm_set1_epi16(1);
        for (std::int32_t row = 0; row < rows; ++row) {
            auto* const place =
                reinterpret_cast<__m128i*>(mask + static_cast<std::ptrdiff_t>(row) * rowBytes);
            const Ints factor = _mm_load_si128(reinterpret_cast<const __m128i*>(factors[row]));
            const Ints old = _mm_loadu_si128(place);
            const Ints low = _mm_mullo_epi16(_mm_add_epi16(_mm_unpacklo_epi8(factor, none), one),
                                             _mm_unpacklo_epi8(old, none));
            const Ints high = _mm_mullo_epi16(_mm_add_epi16(_mm_unpackhi_epi8(factor, none), one),
                                              _mm_unpackhi_epi8(old, none));
            _mm_storeu_si128(place,
                             _mm_packus_epi16(_mm_srli_epi16(low, 8), _mm_srli_epi16(high, 8)));
        }
    }
    // Pixels of four channels from cells of 16 bytes, to column 0 of `rows` rows.
    static void storePixels(const std::uint8_t* cells, Ints at, Ints across, Ints along,
                            std::uint8_t* out, std::int32_t rowBytes, std::int32_t rows) {
        const Ints none = _mm_setzero_si128();
        alignas(16) std::uint32_t place[count], weightAcross[count], weightAlong[count];
        _mm_store_si128(reinterpret_cast<__m128i*>(place), at);
        _mm_store_si128(reinterpret_cast<__m128i*>(weightAcross), across);
        _mm_store_si128(reinterpret_cast<__m128i*>(weightAlong), along);
        for (std::int32_t row = 0; row < rows; ++row) {
            const Ints cell = _mm_loadu_si128(
                reinterpret_cast<const __m128i*>(cells + std::size_t{place[row]} * 16));
            const Ints low = _mm_unpacklo_epi8(cell, _mm_srli_si128(cell, 4));
            const Ints high = _mm_unpacklo_epi8(_mm_srli_si128(cell, 8), _mm_srli_si128(cell, 12));
            const Ints w = _mm_set1_epi32(static_cast<int>(weightAcross[row]));
            const Ints pixel = blendPairs(_mm_madd_epi16(_mm_unpacklo_epi8(low, none), w),
                                          _mm_madd_epi16(_mm_unpacklo_epi8(high, none), w),
                                          _mm_set1_epi32(static_cast<int>(weightAlong[row])));
            const Ints words = _mm_packs_epi32(pixel, pixel);
            const int four = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
            std::memcpy(out + static_cast<std::ptrdiff_t>(row) * rowBytes, &four, sizeof four);
        }
    }
};

}  // namespace brushwork::npc
