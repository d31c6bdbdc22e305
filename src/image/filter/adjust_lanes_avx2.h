// Eight pixels at a time. Only for files that are compiled for these instructions. What the types
// offer is told in adjust_lanes_plain.h.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

struct Avx2Mask {
    __m256 bits;

    friend Avx2Mask operator&(Avx2Mask a, Avx2Mask b) { return {_mm256_and_ps(a.bits, b.bits)}; }
    friend Avx2Mask operator|(Avx2Mask a, Avx2Mask b) { return {_mm256_or_ps(a.bits, b.bits)}; }
    friend Avx2Mask operator!(Avx2Mask a) {
        return {_mm256_xor_ps(a.bits, _mm256_castsi256_ps(_mm256_set1_epi32(-1)))};
    }
    friend bool anyOf(Avx2Mask a) { return _mm256_movemask_ps(a.bits) != 0; }
    friend bool allOf(Avx2Mask a) { return _mm256_movemask_ps(a.bits) == 0xFF; }
    friend unsigned bitsOf(Avx2Mask a) { return static_cast<unsigned>(_mm256_movemask_ps(a.bits)); }
};

struct Avx2Words;

struct Avx2Floats {
    using Mask = Avx2Mask;
    using Words = Avx2Words;
    static constexpr std::size_t count = 8;
    static constexpr VectorLevel level = VectorLevel::Avx2;

    __m256 v;

    Avx2Floats() : v(_mm256_setzero_ps()) {}
    Avx2Floats(float value) : v(_mm256_set1_ps(value)) {}
    Avx2Floats(__m256 value) : v(value) {}

    static Avx2Floats load(const float* p) { return _mm256_loadu_ps(p); }
    void store(float* p) const { _mm256_storeu_ps(p, v); }
    static void loadRecords(const float* records, Avx2Floats& a, Avx2Floats& b, Avx2Floats& c) {
        // Lanes 0 to 3 in the lower halves, 4 to 7 in the upper ones.
        const __m256 r0 = pair(records), r1 = pair(records + 4);
        const __m256 r2 = pair(records + 8), r3 = pair(records + 12);
        const __m256 ab01 = _mm256_unpacklo_ps(r0, r1), ab23 = _mm256_unpacklo_ps(r2, r3);
        const __m256 c01 = _mm256_unpackhi_ps(r0, r1), c23 = _mm256_unpackhi_ps(r2, r3);
        a.v = _mm256_shuffle_ps(ab01, ab23, _MM_SHUFFLE(1, 0, 1, 0));
        b.v = _mm256_shuffle_ps(ab01, ab23, _MM_SHUFFLE(3, 2, 3, 2));
        c.v = _mm256_shuffle_ps(c01, c23, _MM_SHUFFLE(1, 0, 1, 0));
    }
    static void storeRecords(float* records, Avx2Floats a, Avx2Floats b, Avx2Floats c) {
        const __m256 zero = _mm256_setzero_ps();
        const __m256 ab01 = _mm256_unpacklo_ps(a.v, b.v), ab23 = _mm256_unpackhi_ps(a.v, b.v);
        const __m256 c01 = _mm256_unpacklo_ps(c.v, zero), c23 = _mm256_unpackhi_ps(c.v, zero);
        storePair(records, _mm256_shuffle_ps(ab01, c01, _MM_SHUFFLE(1, 0, 1, 0)));
        storePair(records + 4, _mm256_shuffle_ps(ab01, c01, _MM_SHUFFLE(3, 2, 3, 2)));
        storePair(records + 8, _mm256_shuffle_ps(ab23, c23, _MM_SHUFFLE(1, 0, 1, 0)));
        storePair(records + 12, _mm256_shuffle_ps(ab23, c23, _MM_SHUFFLE(3, 2, 3, 2)));
    }

    friend Avx2Floats operator+(Avx2Floats a, Avx2Floats b) { return _mm256_add_ps(a.v, b.v); }
    friend Avx2Floats operator-(Avx2Floats a, Avx2Floats b) { return _mm256_sub_ps(a.v, b.v); }
    friend Avx2Floats operator*(Avx2Floats a, Avx2Floats b) { return _mm256_mul_ps(a.v, b.v); }
    friend Avx2Floats operator/(Avx2Floats a, Avx2Floats b) { return _mm256_div_ps(a.v, b.v); }
    friend Avx2Mask operator<(Avx2Floats a, Avx2Floats b) {
        return {_mm256_cmp_ps(a.v, b.v, _CMP_LT_OQ)};
    }
    friend Avx2Mask operator<=(Avx2Floats a, Avx2Floats b) {
        return {_mm256_cmp_ps(a.v, b.v, _CMP_LE_OQ)};
    }
    friend Avx2Mask operator==(Avx2Floats a, Avx2Floats b) {
        return {_mm256_cmp_ps(a.v, b.v, _CMP_EQ_OQ)};
    }
    friend Avx2Mask operator!=(Avx2Floats a, Avx2Floats b) {
        return {_mm256_cmp_ps(a.v, b.v, _CMP_NEQ_UQ)};
    }
    friend Avx2Floats largerOf(Avx2Floats a, Avx2Floats b) { return _mm256_max_ps(a.v, b.v); }
    friend Avx2Floats smallerOf(Avx2Floats a, Avx2Floats b) { return _mm256_min_ps(a.v, b.v); }
    friend Avx2Floats select(Avx2Mask mask, Avx2Floats yes, Avx2Floats no) {
        return _mm256_blendv_ps(no.v, yes.v, mask.bits);
    }
    friend Avx2Floats onlyWhere(Avx2Mask mask, Avx2Floats value) {
        return _mm256_and_ps(mask.bits, value.v);
    }
    friend Avx2Floats absoluteOf(Avx2Floats a) {
        return _mm256_andnot_ps(_mm256_set1_ps(-0.0f), a.v);
    }

  private:
    static __m256 pair(const float* records) {
        return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(records)),
                                    _mm_loadu_ps(records + 16), 1);
    }
    static void storePair(float* records, __m256 two) {
        _mm_storeu_ps(records, _mm256_castps256_ps128(two));
        _mm_storeu_ps(records + 16, _mm256_extractf128_ps(two, 1));
    }
};

struct Avx2Words {
    __m256i v;

    static Avx2Words all(std::uint32_t word) { return {_mm256_set1_epi32(static_cast<int>(word))}; }
    static Avx2Words load(const std::uint32_t* p) {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))};
    }
    void store(std::uint32_t* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

    template <int N>
    [[nodiscard]] Avx2Floats byte() const {
        return _mm256_cvtepi32_ps(
            _mm256_and_si256(_mm256_srli_epi32(v, 8 * N), _mm256_set1_epi32(0xFF)));
    }
    static Avx2Words packed(Avx2Floats a, Avx2Floats b, Avx2Floats c, Avx2Words top) {
        const __m256i low = _mm256_or_si256(_mm256_cvttps_epi32(a.v),
                                            _mm256_slli_epi32(_mm256_cvttps_epi32(b.v), 8));
        const __m256i high = _mm256_or_si256(_mm256_slli_epi32(_mm256_cvttps_epi32(c.v), 16),
                                             _mm256_slli_epi32(_mm256_srli_epi32(top.v, 24), 24));
        return {_mm256_or_si256(low, high)};
    }
    friend Avx2Words select(Avx2Mask mask, Avx2Words yes, Avx2Words no) {
        return {_mm256_blendv_epi8(no.v, yes.v, _mm256_castps_si256(mask.bits))};
    }
};

}  // namespace brushwork
