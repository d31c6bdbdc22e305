// Two pixels of four channels at a time. Only for files that are compiled for these instructions.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

struct SampleLanesAvx2 {
    using Ints = __m256i;
    using Floats = __m256;
    static constexpr int pixels = 2;
    static constexpr int count = 8;
    static constexpr VectorLevel level = VectorLevel::Avx2;

    // Sixteen bytes, or eight, from each of two addresses.
    static Ints rows16(const std::uint8_t* const* first, std::size_t offset) {
        const auto half = [=](int n) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(first[n] + offset));
        };
        return _mm256_inserti128_si256(_mm256_castsi128_si256(half(0)), half(1), 1);
    }
    static Ints rows8(const std::uint8_t* const* first, std::size_t offset) {
        const auto half = [=](int n) {
            return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(first[n] + offset));
        };
        return _mm256_inserti128_si256(_mm256_castsi128_si256(half(0)), half(1), 1);
    }
    // One number a pixel, to all of its four lanes.
    static Floats spread(const float* p) {
        const __m256i each = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
        return _mm256_permutevar_ps(
            _mm256_castpd_ps(_mm256_broadcast_sd(reinterpret_cast<const double*>(p))), each);
    }
    static Ints spread(const std::int32_t* p) {
        return _mm256_castps_si256(spread(reinterpret_cast<const float*>(p)));
    }
    static Floats load(const float* p) { return _mm256_load_ps(p); }
    static Ints load(const std::int32_t* p) {
        return _mm256_load_si256(reinterpret_cast<const __m256i*>(p));
    }
    static void store(float* p, Floats v) { _mm256_store_ps(p, v); }
    static void store(std::int32_t* p, Ints v) {
        _mm256_store_si256(reinterpret_cast<__m256i*>(p), v);
    }

    static Ints every(std::int32_t v) { return _mm256_set1_epi32(v); }
    static Floats every(float v) { return _mm256_set1_ps(v); }
    static Ints low8(Ints a, Ints b) { return _mm256_unpacklo_epi8(a, b); }
    static Ints high8(Ints a, Ints b) { return _mm256_unpackhi_epi8(a, b); }
    static Ints madd(Ints a, Ints b) { return _mm256_madd_epi16(a, b); }
    static Ints add(Ints a, Ints b) { return _mm256_add_epi32(a, b); }
    static Ints sub(Ints a, Ints b) { return _mm256_sub_epi32(a, b); }
    static Ints either(Ints a, Ints b) { return _mm256_or_si256(a, b); }
    static Ints both(Ints a, Ints b) { return _mm256_and_si256(a, b); }
    static Ints differing(Ints a, Ints b) { return _mm256_xor_si256(a, b); }
    template <int bits>
    static Ints up(Ints v) {
        return _mm256_slli_epi32(v, bits);
    }
    template <int bits>
    static Ints down(Ints v) {
        return _mm256_srli_epi32(v, bits);
    }
    template <int bits>
    static Ints downLong(Ints v) {
        return _mm256_srli_epi64(v, bits);
    }

    // The low words of both in a lane, those of `low` below.
    static Ints wordPair(Ints low, Ints high) {
        return _mm256_blend_epi16(low, _mm256_slli_epi32(high, 16), 0xAA);
    }

    static Floats toFloats(Ints v) { return _mm256_cvtepi32_ps(v); }
    static Ints rounded(Floats v) { return _mm256_cvtps_epi32(v); }
    static Floats add(Floats a, Floats b) { return _mm256_add_ps(a, b); }
    static Floats sub(Floats a, Floats b) { return _mm256_sub_ps(a, b); }
    static Floats mul(Floats a, Floats b) { return _mm256_mul_ps(a, b); }
    // a * b + c
    static Floats mulAdd(Floats a, Floats b, Floats c) { return _mm256_fmadd_ps(a, b, c); }
    static Floats size(Floats v) { return _mm256_andnot_ps(_mm256_set1_ps(-0.0f), v); }
    // Bit n: lane n of `a` is greater.
    static std::uint32_t lanesAbove(Floats a, Floats b) {
        return static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_cmp_ps(a, b, _CMP_GT_OQ)));
    }
    // The bits of all lanes one behind the other; answers the end.
    static std::uint8_t* storeBits(std::uint8_t* out, std::uint32_t a, std::uint32_t b) {
        out[0] = static_cast<std::uint8_t>(a);
        out[1] = static_cast<std::uint8_t>(b);
        return out + 2;
    }

    // Bit n: byte n of 32 has some of these bits.
    static std::uint32_t bytesWith(const std::uint8_t* bytes, int some) {
        const __m256i all = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes));
        const __m256i kept = _mm256_and_si256(all, _mm256_set1_epi8(static_cast<char>(some)));
        return ~static_cast<std::uint32_t>(
            _mm256_movemask_epi8(_mm256_cmpeq_epi8(kept, _mm256_setzero_si256())));
    }

    // The bytes of pixels 0 and 1 in `a`, of 2 and 3 in `b`, cut to 0 to 255.
    static void storePixels(std::uint8_t* out, Ints a, Ints b) {
        const __m256i words = _mm256_packs_epi32(a, b);
        const __m256i bytes = _mm256_packus_epi16(words, words);
        _mm_storeu_si128(
            reinterpret_cast<__m128i*>(out),
            _mm_unpacklo_epi32(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1)));
    }

    // Four places at once: the whole number at or below `place` + `shift`, and that as a double.
    using Doubles = __m256d;
    static constexpr int doubles = 4;
    static Doubles loadPlaces(const double* p) { return _mm256_load_pd(p); }
    static void storePlaces(double* p, Doubles v) { _mm256_store_pd(p, v); }
    static Doubles everyPlace(double v) { return _mm256_set1_pd(v); }
    static Doubles add(Doubles a, Doubles b) { return _mm256_add_pd(a, b); }
    static Doubles sub(Doubles a, Doubles b) { return _mm256_sub_pd(a, b); }
    static Doubles mul(Doubles a, Doubles b) { return _mm256_mul_pd(a, b); }
    static Doubles mulAdd(Doubles a, Doubles b, Doubles c) { return _mm256_fmadd_pd(a, b, c); }
    static Doubles floorOf(Doubles v) { return _mm256_floor_pd(v); }
    static void storeInts(std::int32_t* p, Doubles v) {
        _mm_store_si128(reinterpret_cast<__m128i*>(p), _mm256_cvttpd_epi32(v));
    }
    // The low halves of their bits: the whole numbers behind a sum with 1.5 * 2^52.
    static void storeLowInts(std::int32_t* p, Doubles v) {
        const __m256i even = _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6);
        const __m256i low = _mm256_permutevar8x32_epi32(_mm256_castpd_si256(v), even);
        _mm_store_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(low));
    }
    static void storeFloats(float* p, Doubles v) { _mm_store_ps(p, _mm256_cvtpd_ps(v)); }

    // Addresses in a tile of the pixels (ix, iy), as many as `doubles`; (x, y) stands at `corner`.
    static void storeAddresses(const std::uint8_t** out, const std::uint8_t* corner,
                               const std::int32_t* ix, std::int32_t x, const std::int32_t* iy,
                               std::int32_t y) {
        const auto from = [](const std::int32_t* p, std::int32_t base) {
            const __m128i places = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            return _mm_sub_epi32(places, _mm_set1_epi32(base));
        };
        const __m128i offsets =
            _mm_add_epi32(_mm_slli_epi32(from(iy, y), 9), _mm_slli_epi32(from(ix, x), 2));
        const auto base = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(corner));
        if constexpr (sizeof(corner) == 8)
            _mm256_storeu_si256(
                reinterpret_cast<__m256i*>(out),
                _mm256_add_epi64(_mm256_set1_epi64x(base), _mm256_cvtepu32_epi64(offsets)));
        else
            _mm_storeu_si128(
                reinterpret_cast<__m128i*>(out),
                _mm_add_epi32(_mm_set1_epi32(static_cast<std::int32_t>(base)), offsets));
    }
};

}  // namespace brushwork
