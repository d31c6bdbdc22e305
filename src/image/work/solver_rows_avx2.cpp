// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include "image/work/sampling_kernels.h"
#include "image/work/solver_rows.h"

namespace brushwork {
namespace {

__m256i fixedPlaces(__m256 place, __m256 shift) {
    const __m256 shifted = _mm256_sub_ps(place, shift);
    const __m256 bounded = _mm256_min_ps(_mm256_max_ps(shifted, _mm256_set1_ps(-32768.0f)),
                                         _mm256_set1_ps(32767.998f));
    const __m256 whole = _mm256_floor_ps(bounded);
    const __m256i fraction = _mm256_cvttps_epi32(
        _mm256_mul_ps(_mm256_sub_ps(bounded, whole), _mm256_set1_ps(fixedOfFraction)));
    const __m256i fixed =
        _mm256_add_epi32(_mm256_slli_epi32(_mm256_cvttps_epi32(whole), 16), fraction);
    return _mm256_and_si256(fixed,
                            _mm256_castps_si256(_mm256_cmp_ps(shifted, shifted, _CMP_ORD_Q)));
}

__m256 middles(std::int32_t x) {
    const __m256i indexes =
        _mm256_add_epi32(_mm256_set1_epi32(x), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    return _mm256_add_ps(_mm256_cvtepi32_ps(indexes), _mm256_set1_ps(0.5f));
}

void store(std::int32_t* to, __m256i places) {
    _mm256_store_si256(reinterpret_cast<__m256i*>(to), places);
}

std::uint64_t onlyFirst(std::uint64_t mapped, std::int32_t count) {
    return count >= 64 ? mapped : mapped & ((std::uint64_t{1} << count) - 1);
}

// One axis of the perspective solution: (p * x + q * y + r) / w.
struct PerspectiveAxis {
    __m256d perX, ofRow, constant, scale;

    __m256d numerator(__m256d x) const {
        return _mm256_add_pd(_mm256_add_pd(_mm256_mul_pd(perX, x), ofRow), constant);
    }
};

__m256d isFraction(__m256d value) {
    return _mm256_and_pd(_mm256_cmp_pd(value, _mm256_setzero_pd(), _CMP_GE_OQ),
                         _mm256_cmp_pd(value, _mm256_set1_pd(1.0), _CMP_LE_OQ));
}

__m256d awayFromZero(__m256d w) {
    const __m256d sign = _mm256_set1_pd(-0.0);
    const __m256d least = _mm256_set1_pd(PerspectiveWarpSolver::leastDenominator);
    const __m256d small = _mm256_cmp_pd(_mm256_andnot_pd(sign, w), least, _CMP_LT_OQ);
    const __m256d negative = _mm256_cmp_pd(w, _mm256_setzero_pd(), _CMP_LT_OQ);
    const __m256d signedLeast = _mm256_or_pd(least, _mm256_and_pd(sign, negative));
    return _mm256_blendv_pd(w, signedLeast, small);
}

struct PerspectiveRow {
    PerspectiveAxis u, v;
    __m256d perX, ofRow, constant;
    bool affine;  // the denominator is 1 everywhere, so that dividing by it changes nothing

    // Four pixels; their bits of the mask.
    unsigned solve(__m256d x, __m128& placeX, __m128& placeY) const {
        __m256d a = u.numerator(x);
        __m256d b = v.numerator(x);
        if (!affine) {
            const __m256d w =
                awayFromZero(_mm256_add_pd(_mm256_add_pd(_mm256_mul_pd(x, perX), ofRow), constant));
            a = _mm256_div_pd(a, w);
            b = _mm256_div_pd(b, w);
        }
        placeX = _mm256_cvtpd_ps(_mm256_mul_pd(a, u.scale));
        placeY = _mm256_cvtpd_ps(_mm256_mul_pd(b, v.scale));
        return static_cast<unsigned>(
            _mm256_movemask_pd(_mm256_and_pd(isFraction(a), isFraction(b))));
    }
};

PerspectiveRow rowOf(const PerspectiveRowJob& job, double y) {
    const ProjectiveMap& m = job.map;
    PerspectiveRow row;
    row.u = {_mm256_set1_pd(m.a), _mm256_set1_pd(m.d * y), _mm256_set1_pd(m.g),
             _mm256_set1_pd(static_cast<double>(job.width))};
    row.v = {_mm256_set1_pd(m.b), _mm256_set1_pd(m.e * y), _mm256_set1_pd(m.h),
             _mm256_set1_pd(static_cast<double>(job.height))};
    row.perX = _mm256_set1_pd(m.c);
    row.ofRow = _mm256_set1_pd(y * m.f);
    row.constant = _mm256_set1_pd(m.i);
    row.affine = m.c == 0.0 && m.f == 0.0 && m.i == 1.0;
    return row;
}

// One axis of the corner solution.
struct CornerAxis {
    __m256 leading, scale;
    bool linear;

    // The root and, in `valid`, whether there is one.
    __m256 root(__m256 b, __m256 c, __m256& valid) const {
        const __m256 zero = _mm256_setzero_ps();
        if (linear) {
            valid = _mm256_cmp_ps(b, zero, _CMP_NEQ_UQ);
            return _mm256_div_ps(c, _mm256_xor_ps(b, _mm256_set1_ps(-0.0f)));
        }
        const __m256 twice = _mm256_add_ps(c, c);
        const __m256 discriminant =
            _mm256_add_ps(_mm256_mul_ps(b, b), _mm256_mul_ps(leading, twice));
        valid = _mm256_cmp_ps(discriminant, zero, _CMP_GE_OQ);
        const __m256 width = _mm256_sqrt_ps(discriminant);
        const __m256 inner = _mm256_cmp_ps(b, zero, _CMP_LE_OQ);
        return _mm256_div_ps(_mm256_blendv_ps(_mm256_add_ps(width, b), twice, inner),
                             _mm256_blendv_ps(leading, _mm256_sub_ps(width, b), inner));
    }
};

__m256 isFraction(__m256 value) {
    return _mm256_and_ps(_mm256_cmp_ps(value, _mm256_setzero_ps(), _CMP_GE_OQ),
                         _mm256_cmp_ps(value, _mm256_set1_ps(1.0f), _CMP_LE_OQ));
}

// The cross product of (x, y), of which y is that of the whole row, with a constant vector.
struct CrossWith {
    __m256 vectorY, ofRow;
    __m256 operator()(__m256 x) const { return _mm256_sub_ps(_mm256_mul_ps(x, vectorY), ofRow); }
};

CrossWith crossWith(float vectorX, float vectorY, float y) {
    return {_mm256_set1_ps(vectorY), _mm256_set1_ps(y * vectorX)};
}

}  // namespace

void solveRowAvx2(const PerspectiveRowJob& values, const RowRequest& request, SolvedRow& row) {
    noteKernelForm(VectorLevel::Avx2);
    const float middleY = static_cast<float>(request.y) + 0.5f;
    const PerspectiveRow job = rowOf(values, static_cast<double>(middleY));
    const __m256 shift = _mm256_set1_ps(request.shift);
    std::uint64_t mapped = 0;
    for (int n = 0; n < request.count; n += 8) {
        const __m256 x = middles(request.x + n);
        __m128 lowX, lowY, highX, highY;
        const unsigned low = job.solve(_mm256_cvtps_pd(_mm256_castps256_ps128(x)), lowX, lowY);
        const unsigned high = job.solve(_mm256_cvtps_pd(_mm256_extractf128_ps(x, 1)), highX, highY);
        mapped |= static_cast<std::uint64_t>(low | (high << 4)) << n;
        store(row.x + n, fixedPlaces(_mm256_set_m128(highX, lowX), shift));
        store(row.y + n, fixedPlaces(_mm256_set_m128(highY, lowY), shift));
    }
    row.mapped = onlyFirst(mapped, request.count);
}

void solveRowAvx2(const CornerRowJob& job, const RowRequest& request, SolvedRow& row) {
    noteKernelForm(VectorLevel::Avx2);
    const CornerWarpForm& form = job.form;
    const float hereY = (static_cast<float>(request.y) + 0.5f) - form.origin.y;
    const __m256 originX = _mm256_set1_ps(form.origin.x);
    const __m256 area = _mm256_set1_ps(form.area);
    const CrossWith withTwist = crossWith(form.twist.x, form.twist.y, hereY);
    const CrossWith withEdgeV = crossWith(form.edgeV.x, form.edgeV.y, hereY);
    const __m256 edgeUByY = _mm256_set1_ps(form.edgeU.x * hereY);
    const __m256 edgeUY = _mm256_set1_ps(form.edgeU.y);
    const CornerAxis u{_mm256_set1_ps(form.leadingU), _mm256_set1_ps(job.width), form.linearU};
    const CornerAxis v{_mm256_set1_ps(form.leadingV), _mm256_set1_ps(job.height), form.linearV};
    const __m256 shift = _mm256_set1_ps(request.shift);
    std::uint64_t mapped = 0;
    for (int n = 0; n < request.count; n += 8) {
        const __m256 x = _mm256_sub_ps(middles(request.x + n), originX);
        const __m256 bend = withTwist(x);
        __m256 validU, validV;
        const __m256 rootU = u.root(_mm256_sub_ps(bend, area), withEdgeV(x), validU);
        const __m256 minusBend = _mm256_xor_ps(bend, _mm256_set1_ps(-0.0f));
        const __m256 rootV = v.root(_mm256_sub_ps(minusBend, area),
                                    _mm256_sub_ps(edgeUByY, _mm256_mul_ps(edgeUY, x)), validV);
        const __m256 maps = _mm256_and_ps(_mm256_and_ps(validU, validV),
                                          _mm256_and_ps(isFraction(rootU), isFraction(rootV)));
        mapped |= static_cast<std::uint64_t>(static_cast<unsigned>(_mm256_movemask_ps(maps))) << n;
        store(row.x + n, fixedPlaces(_mm256_mul_ps(rootU, u.scale), shift));
        store(row.y + n, fixedPlaces(_mm256_mul_ps(rootV, v.scale), shift));
    }
    row.mapped = onlyFirst(mapped, request.count);
}

}  // namespace brushwork
