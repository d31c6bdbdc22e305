// Eight rows at a time. Only for files that are compiled for these instructions. What the lanes
// offer is told in stamp_lanes_sse2.h.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork::npc {

struct Avx2StampLanes {
    using Floats = __m256;
    using Ints = __m256i;
    static constexpr std::int32_t count = 8;
    static constexpr VectorLevel level = VectorLevel::Avx2;

    static Floats set(float value) { return _mm256_set1_ps(value); }
    static float infinity() { return __builtin_inff(); }
    static float rootOf(float value) { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(value))); }
    static Floats add(Floats a, Floats b) { return _mm256_add_ps(a, b); }
    static Floats mul(Floats a, Floats b) { return _mm256_mul_ps(a, b); }
    static Floats rowNumbers(std::int32_t first) {
        return _mm256_cvtepi32_ps(
            _mm256_add_epi32(_mm256_set1_epi32(first), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7)));
    }
    static bool allLess(Floats a, Floats b) {
        return _mm256_movemask_ps(_mm256_cmp_ps(a, b, _CMP_LT_OQ)) == 0xFF;
    }
    // Sixteenths of the root, up to `last`; what isn't a number becomes 0.
    static Ints place(Floats square, Floats last) {
        const Floats sixteenths = _mm256_mul_ps(set(16.0f), _mm256_sqrt_ps(square));
        const Floats number = _mm256_max_ps(sixteenths, _mm256_setzero_ps());
        return _mm256_cvttps_epi32(_mm256_min_ps(number, last));
    }
    static Ints fetch(const std::uint8_t* entries, Ints at) {
        // Bytes 1 to 3 belong to the entries behind.
        return _mm256_and_si256(
            _mm256_i32gather_epi32(reinterpret_cast<const int*>(entries), at, 1),
            _mm256_set1_epi32(0xFF));
    }
    static Ints pack(Ints a, Ints b, Ints c, Ints d) {
        const Ints low = _mm256_or_si256(a, _mm256_slli_epi32(b, 8));
        const Ints high = _mm256_or_si256(c, _mm256_slli_epi32(d, 8));
        return _mm256_or_si256(low, _mm256_slli_epi32(high, 16));
    }
    static Ints firstColumns(Ints four, std::int32_t columns) {
        if (columns >= 4) return four;
        return _mm256_and_si256(four, _mm256_set1_epi32((1 << (8 * columns)) - 1));
    }
    static Ints zero() { return _mm256_setzero_si256(); }
    static Ints ones() { return _mm256_set1_epi32(-1); }
    // 16 columns of up to 8 rows: part k holds columns 4 k to 4 k + 3, a lane a row.
    static void storeBlock(const Ints (&block)[4], std::uint8_t* out, std::int32_t rowBytes,
                           std::int32_t rows) {
        const Ints ab02 = _mm256_unpacklo_epi32(block[0], block[1]);
        const Ints ab13 = _mm256_unpackhi_epi32(block[0], block[1]);
        const Ints cd02 = _mm256_unpacklo_epi32(block[2], block[3]);
        const Ints cd13 = _mm256_unpackhi_epi32(block[2], block[3]);
        const Ints pairs[4] = {_mm256_unpacklo_epi64(ab02, cd02), _mm256_unpackhi_epi64(ab02, cd02),
                               _mm256_unpacklo_epi64(ab13, cd13),
                               _mm256_unpackhi_epi64(ab13, cd13)};
        for (std::int32_t row = 0; row < rows; ++row) {
            const __m128i sixteen = row < 4 ? _mm256_castsi256_si128(pairs[row])
                                            : _mm256_extracti128_si256(pairs[row - 4], 1);
            _mm_storeu_si128(
                reinterpret_cast<__m128i*>(out + static_cast<std::ptrdiff_t>(row) * rowBytes),
                sixteen);
        }
    }

    // Inside 0 to right and 0 to top, without the bounds: all bits of the lane.
    static Ints insideOf(Floats u, Floats v, float right, float top) {
        const Floats above = _mm256_and_ps(_mm256_cmp_ps(u, _mm256_setzero_ps(), _CMP_GT_OQ),
                                           _mm256_cmp_ps(v, _mm256_setzero_ps(), _CMP_GT_OQ));
        const Floats below = _mm256_and_ps(_mm256_cmp_ps(u, set(right), _CMP_LT_OQ),
                                           _mm256_cmp_ps(v, set(top), _CMP_LT_OQ));
        return _mm256_castps_si256(_mm256_and_ps(above, below));
    }
    static Ints truncated(Floats value) { return _mm256_cvttps_epi32(value); }
    static Floats fractionOf(Floats value, Ints whole) {
        return _mm256_sub_ps(value, _mm256_cvtepi32_ps(whole));
    }
    static Ints both(Ints a, Ints b) { return _mm256_and_si256(a, b); }
    // Weights for a pair of 16-bit numbers: 256 - share for the lower, share for the upper.
    static Ints weightsOf(Ints share) {
        const Ints rest = _mm256_sub_epi32(_mm256_set1_epi32(256), share);
        return _mm256_or_si256(rest, _mm256_slli_epi32(share, 16));
    }
    // column + row * width.
    static Ints indexOf(Ints column, Ints row, std::int32_t width) {
        return _mm256_add_epi32(column, _mm256_mullo_epi32(row, _mm256_set1_epi32(width)));
    }
    static Ints fetchCells(const std::uint8_t* cells, Ints at) {
        return _mm256_i32gather_epi32(reinterpret_cast<const int*>(cells), at, 4);
    }
    // The two weighted means of a cell's four bytes, by the weights across and then along.
    static Ints blendCells(Ints cells, Ints across, Ints along) {
        const Ints byte = _mm256_set1_epi32(0xFF);
        const Ints upperByte = _mm256_set1_epi32(0xFF0000);
        const Ints low = _mm256_or_si256(_mm256_and_si256(cells, byte),
                                         _mm256_and_si256(_mm256_slli_epi32(cells, 8), upperByte));
        const Ints high = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi32(cells, 16), byte),
                                          _mm256_and_si256(_mm256_srli_epi32(cells, 8), upperByte));
        return blendPairs(_mm256_madd_epi16(low, across), _mm256_madd_epi16(high, across), along);
    }
    // The means take 16 bits without a sign; they are moved by half their range and back.
    static Ints blendPairs(Ints low, Ints high, Ints along) {
        const Ints pair = _mm256_xor_si256(_mm256_or_si256(low, _mm256_slli_epi32(high, 16)),
                                           _mm256_set1_epi16(-32768));
        return _mm256_srli_epi32(
            _mm256_add_epi32(_mm256_madd_epi16(pair, along), _mm256_set1_epi32(32768 * 256)), 16);
    }
    // As storeBlock, but multiplies what is there: ((block + 1) * mask) >> 8.
    static void multiplyBlock(const Ints (&block)[4], std::uint8_t* mask, std::int32_t rowBytes,
                              std::int32_t rows) {
        alignas(32) std::uint8_t factors[count][16];
        storeBlock(block, factors[0], 16, count);
        for (std::int32_t row = 0; row < rows; ++row) {
            auto* const place =
                reinterpret_cast<__m128i*>(mask + static_cast<std::ptrdiff_t>(row) * rowBytes);
            const __m256i factor = _mm256_add_epi16(
                _mm256_cvtepu8_epi16(
                    _mm_load_si128(reinterpret_cast<const __m128i*>(factors[row]))),
                _mm256_set1_epi16(1));
            const __m256i product = _mm256_srli_epi16(
                _mm256_mullo_epi16(factor, _mm256_cvtepu8_epi16(_mm_loadu_si128(place))), 8);
            _mm_storeu_si128(place, _mm_packus_epi16(_mm256_castsi256_si128(product),
                                                     _mm256_extracti128_si256(product, 1)));
        }
    }
    // Pixels of four channels from cells of 16 bytes, two at a time, to column 0 of `rows` rows.
    static void storePixels(const std::uint8_t* cells, Ints at, Ints across, Ints along,
                            std::uint8_t* out, std::int32_t rowBytes, std::int32_t rows) {
        alignas(32) std::uint32_t place[count];
        _mm256_store_si256(reinterpret_cast<__m256i*>(place), at);
        const Ints lowPairs = _mm256_broadcastsi128_si256(
            _mm_setr_epi8(0, -1, 4, -1, 1, -1, 5, -1, 2, -1, 6, -1, 3, -1, 7, -1));
        const Ints highPairs = _mm256_broadcastsi128_si256(
            _mm_setr_epi8(8, -1, 12, -1, 9, -1, 13, -1, 10, -1, 14, -1, 11, -1, 15, -1));
        const Ints lowBytes = _mm256_broadcastsi128_si256(
            _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
        const auto cell = [&](std::int32_t n) {
            return _mm_loadu_si128(
                reinterpret_cast<const __m128i*>(cells + std::size_t{place[n]} * 16));
        };
        Ints lanes = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
#pragma GCC unroll 4
        for (std::int32_t row = 0; row < count; row += 2) {
            if (row >= rows) break;
            const Ints two =
                _mm256_inserti128_si256(_mm256_castsi128_si256(cell(row)), cell(row + 1), 1);
            const Ints weights = _mm256_permutevar8x32_epi32(across, lanes);
            const Ints pixels =
                blendPairs(_mm256_madd_epi16(_mm256_shuffle_epi8(two, lowPairs), weights),
                           _mm256_madd_epi16(_mm256_shuffle_epi8(two, highPairs), weights),
                           _mm256_permutevar8x32_epi32(along, lanes));
            lanes = _mm256_add_epi32(lanes, _mm256_set1_epi32(2));
            const Ints bytes = _mm256_shuffle_epi8(pixels, lowBytes);
            std::uint8_t* const pixel = out + static_cast<std::ptrdiff_t>(row) * rowBytes;
            _mm_storeu_si32(pixel, _mm256_castsi256_si128(bytes));
            if (row + 1 < rows)
                _mm_storeu_si32(pixel + rowBytes, _mm256_extracti128_si256(bytes, 1));
        }
    }
};

}  // namespace brushwork::npc
