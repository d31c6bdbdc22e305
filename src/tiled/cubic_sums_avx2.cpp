#include <immintrin.h>

#include "tiled/cubic_sums_walk.h"

namespace brushwork {
namespace {

struct Doubles {
    static constexpr VectorLevel level = VectorLevel::Avx2;
    __m256d v;

    Doubles(__m256d value) : v(value) {}
    explicit Doubles(double value) : v(_mm256_set1_pd(value)) {}
    static Doubles countFrom(std::int32_t i) {
        return _mm256_add_pd(_mm256_set1_pd(i), _mm256_setr_pd(0, 1, 2, 3));
    }
    static Doubles ofPixel(const std::uint8_t* pixel) {
        return _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_loadu_si32(pixel)));
    }
    void store(double* p) const { _mm256_storeu_pd(p, v); }
    void storeBytes(std::uint8_t* out) const {
        const __m256d held =
            _mm256_min_pd(_mm256_max_pd(v, _mm256_setzero_pd()), _mm256_set1_pd(255));
        const __m128i whole = _mm256_cvtpd_epi32(held);
        const __m128i words = _mm_packs_epi32(whole, whole);
        _mm_storeu_si32(out, _mm_packus_epi16(words, words));
    }

    friend Doubles operator+(Doubles a, Doubles b) { return _mm256_add_pd(a.v, b.v); }
    friend Doubles operator-(Doubles a, Doubles b) { return _mm256_sub_pd(a.v, b.v); }
    friend Doubles operator*(Doubles a, Doubles b) { return _mm256_mul_pd(a.v, b.v); }
    static Doubles size(Doubles a) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a.v); }
    // `low` where `d` is at most the limit.
    static Doubles select(Doubles d, double limit, Doubles low, Doubles high) {
        return _mm256_blendv_pd(high.v, low.v,
                                _mm256_cmp_pd(d.v, _mm256_set1_pd(limit), _CMP_LE_OQ));
    }
};

}  // namespace

const CubicSums cubicSumsAvx2 = {&CubicSumsWalk<Doubles>::weigh, &CubicSumsWalk<Doubles>::sum4,
                                 &CubicSumsWalk<Doubles>::sample4};

}  // namespace brushwork
