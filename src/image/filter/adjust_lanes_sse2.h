// Four pixels at a time. Only for files that are compiled for these instructions. What the types
// offer is told in adjust_lanes_plain.h.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

struct Sse2Mask {
    __m128 bits;

    friend Sse2Mask operator&(Sse2Mask a, Sse2Mask b) { return {_mm_and_ps(a.bits, b.bits)}; }
    friend Sse2Mask operator|(Sse2Mask a, Sse2Mask b) { return {_mm_or_ps(a.bits, b.bits)}; }
    friend Sse2Mask operator!(Sse2Mask a) {
        return {_mm_xor_ps(a.bits, _mm_castsi128_ps(_mm_set1_epi32(-1)))};
    }
    friend bool anyOf(Sse2Mask a) { return _mm_movemask_ps(a.bits) != 0; }
    friend bool allOf(Sse2Mask a) { return _mm_movemask_ps(a.bits) == 0xF; }
    friend unsigned bitsOf(Sse2Mask a) { return static_cast<unsigned>(_mm_movemask_ps(a.bits)); }
};

struct Sse2Words;

struct Sse2Floats {
    using Mask = Sse2Mask;
    using Words = Sse2Words;
    static constexpr std::size_t count = 4;
    static constexpr VectorLevel level = VectorLevel::Sse2;

    __m128 v;

    Sse2Floats() : v(_mm_setzero_ps()) {}
    Sse2Floats(float value) : v(_mm_set1_ps(value)) {}
    Sse2Floats(__m128 value) : v(value) {}

    static Sse2Floats load(const float* p) { return _mm_loadu_ps(p); }
    void store(float* p) const { _mm_storeu_ps(p, v); }
    static void loadRecords(const float* records, Sse2Floats& a, Sse2Floats& b, Sse2Floats& c) {
        const __m128 r0 = _mm_loadu_ps(records), r1 = _mm_loadu_ps(records + 4);
        const __m128 r2 = _mm_loadu_ps(records + 8), r3 = _mm_loadu_ps(records + 12);
        const __m128 ab01 = _mm_unpacklo_ps(r0, r1), ab23 = _mm_unpacklo_ps(r2, r3);
        const __m128 c01 = _mm_unpackhi_ps(r0, r1), c23 = _mm_unpackhi_ps(r2, r3);
        a.v = _mm_movelh_ps(ab01, ab23);
        b.v = _mm_movehl_ps(ab23, ab01);
        c.v = _mm_movelh_ps(c01, c23);
    }
    static void storeRecords(float* records, Sse2Floats a, Sse2Floats b, Sse2Floats c) {
        const __m128 zero = _mm_setzero_ps();
        const __m128 ab01 = _mm_unpacklo_ps(a.v, b.v), ab23 = _mm_unpackhi_ps(a.v, b.v);
        const __m128 c01 = _mm_unpacklo_ps(c.v, zero), c23 = _mm_unpackhi_ps(c.v, zero);
        _mm_storeu_ps(records, _mm_movelh_ps(ab01, c01));
        _mm_storeu_ps(records + 4, _mm_movehl_ps(c01, ab01));
        _mm_storeu_ps(records + 8, _mm_movelh_ps(ab23, c23));
        _mm_storeu_ps(records + 12, _mm_movehl_ps(c23, ab23));
    }

    friend Sse2Floats operator+(Sse2Floats a, Sse2Floats b) { return _mm_add_ps(a.v, b.v); }
    friend Sse2Floats operator-(Sse2Floats a, Sse2Floats b) { return _mm_sub_ps(a.v, b.v); }
    friend Sse2Floats operator*(Sse2Floats a, Sse2Floats b) { return _mm_mul_ps(a.v, b.v); }
    friend Sse2Floats operator/(Sse2Floats a, Sse2Floats b) { return _mm_div_ps(a.v, b.v); }
    friend Sse2Mask operator<(Sse2Floats a, Sse2Floats b) { return {_mm_cmplt_ps(a.v, b.v)}; }
    friend Sse2Mask operator<=(Sse2Floats a, Sse2Floats b) { return {_mm_cmple_ps(a.v, b.v)}; }
    friend Sse2Mask operator==(Sse2Floats a, Sse2Floats b) { return {_mm_cmpeq_ps(a.v, b.v)}; }
    friend Sse2Mask operator!=(Sse2Floats a, Sse2Floats b) { return {_mm_cmpneq_ps(a.v, b.v)}; }
    friend Sse2Floats largerOf(Sse2Floats a, Sse2Floats b) { return _mm_max_ps(a.v, b.v); }
    friend Sse2Floats smallerOf(Sse2Floats a, Sse2Floats b) { return _mm_min_ps(a.v, b.v); }
    friend Sse2Floats select(Sse2Mask mask, Sse2Floats yes, Sse2Floats no) {
        return _mm_or_ps(_mm_and_ps(mask.bits, yes.v), _mm_andnot_ps(mask.bits, no.v));
    }
    friend Sse2Floats onlyWhere(Sse2Mask mask, Sse2Floats value) {
        return _mm_and_ps(mask.bits, value.v);
    }
    friend Sse2Floats absoluteOf(Sse2Floats a) { return _mm_andnot_ps(_mm_set1_ps(-0.0f), a.v); }
};

struct Sse2Words {
    __m128i v;

    static Sse2Words all(std::uint32_t word) { return {_mm_set1_epi32(static_cast<int>(word))}; }
    static Sse2Words load(const std::uint32_t* p) {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))};
    }
    void store(std::uint32_t* p) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

    template <int N>
    [[nodiscard]] Sse2Floats byte() const {
        return _mm_cvtepi32_ps(_mm_and_si128(_mm_srli_epi32(v, 8 * N), _mm_set1_epi32(0xFF)));
    }
    static Sse2Words packed(Sse2Floats a, Sse2Floats b, Sse2Floats c, Sse2Words top) {
        const __m128i low =
            _mm_or_si128(_mm_cvttps_epi32(a.v), _mm_slli_epi32(_mm_cvttps_epi32(b.v), 8));
        const __m128i high = _mm_or_si128(_mm_slli_epi32(_mm_cvttps_epi32(c.v), 16),
                                          _mm_slli_epi32(_mm_srli_epi32(top.v, 24), 24));
        return {_mm_or_si128(low, high)};
    }
    friend Sse2Words select(Sse2Mask mask, Sse2Words yes, Sse2Words no) {
        const __m128i bits = _mm_castps_si128(mask.bits);
        return {_mm_or_si128(_mm_and_si128(bits, yes.v), _mm_andnot_si128(bits, no.v))};
    }
};

}  // namespace brushwork
