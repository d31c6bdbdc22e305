#include <emmintrin.h>

#include "tiled/cubic_sums_walk.h"

namespace brushwork {
namespace {

struct Doubles {
    static constexpr VectorLevel level = VectorLevel::Sse2;
    __m128d low, high;

    Doubles(__m128d a, __m128d b) : low(a), high(b) {}
    explicit Doubles(double value) : low(_mm_set1_pd(value)), high(low) {}
    static Doubles countFrom(std::int32_t i) {
        return {_mm_setr_pd(i, i + 1), _mm_setr_pd(i + 2, i + 3)};
    }
    static Doubles ofPixel(const std::uint8_t* pixel) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i words = _mm_unpacklo_epi8(_mm_loadu_si32(pixel), zero);
        const __m128i whole = _mm_unpacklo_epi16(words, zero);
        return {_mm_cvtepi32_pd(whole), _mm_cvtepi32_pd(_mm_unpackhi_epi64(whole, whole))};
    }
    void store(double* p) const {
        _mm_storeu_pd(p, low);
        _mm_storeu_pd(p + 2, high);
    }
    static __m128i rounded(__m128d v) {
        return _mm_cvtpd_epi32(_mm_min_pd(_mm_max_pd(v, _mm_setzero_pd()), _mm_set1_pd(255)));
    }
    void storeBytes(std::uint8_t* out) const {
        const __m128i whole = _mm_unpacklo_epi64(rounded(low), rounded(high));
        const __m128i words = _mm_packs_epi32(whole, whole);
        _mm_storeu_si32(out, _mm_packus_epi16(words, words));
    }

    friend Doubles operator+(Doubles a, Doubles b) {
        return {_mm_add_pd(a.low, b.low), _mm_add_pd(a.high, b.high)};
    }
    friend Doubles operator-(Doubles a, Doubles b) {
        return {_mm_sub_pd(a.low, b.low), _mm_sub_pd(a.high, b.high)};
    }
    friend Doubles operator*(Doubles a, Doubles b) {
        return {_mm_mul_pd(a.low, b.low), _mm_mul_pd(a.high, b.high)};
    }
    static Doubles size(Doubles a) {
        const __m128d sign = _mm_set1_pd(-0.0);
        return {_mm_andnot_pd(sign, a.low), _mm_andnot_pd(sign, a.high)};
    }
    static __m128d chosen(__m128d mask, __m128d a, __m128d b) {
        return _mm_or_pd(_mm_and_pd(mask, a), _mm_andnot_pd(mask, b));
    }
    static Doubles select(Doubles d, double limit, Doubles a, Doubles b) {
        const __m128d most = _mm_set1_pd(limit);
        return {chosen(_mm_cmple_pd(d.low, most), a.low, b.low),
                chosen(_mm_cmple_pd(d.high, most), a.high, b.high)};
    }
};

}  // namespace

const CubicSums cubicSumsSse2 = {&CubicSumsWalk<Doubles>::weigh, &CubicSumsWalk<Doubles>::sum4,
                                 &CubicSumsWalk<Doubles>::sample4};

}  // namespace brushwork
