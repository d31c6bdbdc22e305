// One pixel of four channels at a time. Only for files that are compiled for these instructions.
// What the functions do is told in sample_lanes_avx2.h.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

struct SampleLanesSse2 {
    using Ints = __m128i;
    using Floats = __m128;
    static constexpr int pixels = 1;
    static constexpr int count = 4;
    static constexpr VectorLevel level = VectorLevel::Sse2;

    static Ints rows16(const std::uint8_t* const* first, std::size_t offset) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(*first + offset));
    }
    static Ints rows8(const std::uint8_t* const* first, std::size_t offset) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(*first + offset));
    }
    static Floats spread(const float* p) { return _mm_set1_ps(*p); }
    static Ints spread(const std::int32_t* p) { return _mm_set1_epi32(*p); }
    static Floats load(const float* p) { return _mm_load_ps(p); }
    static Ints load(const std::int32_t* p) {
        return _mm_load_si128(reinterpret_cast<const __m128i*>(p));
    }
    static void store(float* p, Floats v) { _mm_store_ps(p, v); }
    static void store(std::int32_t* p, Ints v) {
        _mm_store_si128(reinterpret_cast<__m128i*>(p), v);
    }

    static Ints every(std::int32_t v) { return _mm_set1_epi32(v); }
    static Floats every(float v) { return _mm_set1_ps(v); }
    static Ints low8(Ints a, Ints b) { return _mm_unpacklo_epi8(a, b); }
    static Ints high8(Ints a, Ints b) { return _mm_unpackhi_epi8(a, b); }
    static Ints madd(Ints a, Ints b) { return _mm_madd_epi16(a, b); }
    static Ints add(Ints a, Ints b) { return _mm_add_epi32(a, b); }
    static Ints sub(Ints a, Ints b) { return _mm_sub_epi32(a, b); }
    static Ints either(Ints a, Ints b) { return _mm_or_si128(a, b); }
    static Ints both(Ints a, Ints b) { return _mm_and_si128(a, b); }
    static Ints differing(Ints a, Ints b) { return _mm_xor_si128(a, b); }
    template <int bits>
    static Ints up(Ints v) {
        return _mm_slli_epi32(v, bits);
    }
    template <int bits>
    static Ints down(Ints v) {
        return _mm_srli_epi32(v, bits);
    }
    template <int bits>
    static Ints downLong(Ints v) {
        return _mm_srli_epi64(v, bits);
    }

    static Ints wordPair(Ints low, Ints high) {
        return _mm_or_si128(_mm_and_si128(low, _mm_set1_epi32(0xFFFF)), _mm_slli_epi32(high, 16));
    }

    static Floats toFloats(Ints v) { return _mm_cvtepi32_ps(v); }
    static Ints rounded(Floats v) { return _mm_cvtps_epi32(v); }
    static Floats add(Floats a, Floats b) { return _mm_add_ps(a, b); }
    static Floats sub(Floats a, Floats b) { return _mm_sub_ps(a, b); }
    static Floats mul(Floats a, Floats b) { return _mm_mul_ps(a, b); }
    static Floats mulAdd(Floats a, Floats b, Floats c) { return add(mul(a, b), c); }
    static Floats size(Floats v) { return _mm_andnot_ps(_mm_set1_ps(-0.0f), v); }
    static std::uint32_t lanesAbove(Floats a, Floats b) {
        return static_cast<std::uint32_t>(_mm_movemask_ps(_mm_cmpgt_ps(a, b)));
    }
    static std::uint8_t* storeBits(std::uint8_t* out, std::uint32_t a, std::uint32_t b) {
        *out = static_cast<std::uint8_t>(a | b << 4);
        return out + 1;
    }

    static std::uint32_t bytesWith(const std::uint8_t* bytes, int some) {
        const auto half = [=](int at) {
            const __m128i all = _mm_load_si128(reinterpret_cast<const __m128i*>(bytes + at));
            const __m128i kept = _mm_and_si128(all, _mm_set1_epi8(static_cast<char>(some)));
            return static_cast<std::uint32_t>(
                _mm_movemask_epi8(_mm_cmpeq_epi8(kept, _mm_setzero_si128())));
        };
        return ~(half(0) | half(16) << 16);
    }

    static void storePixels(std::uint8_t* out, Ints a, Ints b) {
        const __m128i words = _mm_packs_epi32(a, b);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(words, words));
    }

    using Doubles = __m128d;
    static constexpr int doubles = 2;
    static Doubles loadPlaces(const double* p) { return _mm_load_pd(p); }
    static void storePlaces(double* p, Doubles v) { _mm_store_pd(p, v); }
    static Doubles everyPlace(double v) { return _mm_set1_pd(v); }
    static Doubles add(Doubles a, Doubles b) { return _mm_add_pd(a, b); }
    static Doubles sub(Doubles a, Doubles b) { return _mm_sub_pd(a, b); }
    static Doubles mul(Doubles a, Doubles b) { return _mm_mul_pd(a, b); }
    static Doubles mulAdd(Doubles a, Doubles b, Doubles c) { return add(mul(a, b), c); }
    // Places are those of tame rows: they fit into 32 bits.
    static Doubles floorOf(Doubles v) {
        const __m128d cut = _mm_cvtepi32_pd(_mm_cvttpd_epi32(v));
        return _mm_sub_pd(cut, _mm_and_pd(_mm_cmpgt_pd(cut, v), _mm_set1_pd(1.0)));
    }
    static void storeInts(std::int32_t* p, Doubles v) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_cvttpd_epi32(v));
    }
    static void storeLowInts(std::int32_t* p, Doubles v) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p),
                         _mm_shuffle_epi32(_mm_castpd_si128(v), _MM_SHUFFLE(2, 0, 2, 0)));
    }
    static void storeFloats(float* p, Doubles v) {
        _mm_storel_pi(reinterpret_cast<__m64*>(p), _mm_cvtpd_ps(v));
    }

    static void storeAddresses(const std::uint8_t** out, const std::uint8_t* corner,
                               const std::int32_t* ix, std::int32_t x, const std::int32_t* iy,
                               std::int32_t y) {
        const auto from = [](const std::int32_t* p, std::int32_t base) {
            const __m128i places = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
            return _mm_sub_epi32(places, _mm_set1_epi32(base));
        };
        const __m128i offsets =
            _mm_add_epi32(_mm_slli_epi32(from(iy, y), 9), _mm_slli_epi32(from(ix, x), 2));
        const auto base = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(corner));
        if constexpr (sizeof(corner) == 8)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                             _mm_add_epi64(_mm_set1_epi64x(base),
                                           _mm_unpacklo_epi32(offsets, _mm_setzero_si128())));
        else
            _mm_storel_epi64(
                reinterpret_cast<__m128i*>(out),
                _mm_add_epi32(_mm_set1_epi32(static_cast<std::int32_t>(base)), offsets));
    }
};

}  // namespace brushwork
