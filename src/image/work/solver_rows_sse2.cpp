#include <emmintrin.h>

#include "image/work/sampling_kernels.h"
#include "image/work/solver_rows.h"

namespace brushwork {
namespace {

__m128 pick(__m128 otherwise, __m128 chosen, __m128 where) {
    return _mm_or_ps(_mm_and_ps(where, chosen), _mm_andnot_ps(where, otherwise));
}
__m128d pick(__m128d otherwise, __m128d chosen, __m128d where) {
    return _mm_or_pd(_mm_and_pd(where, chosen), _mm_andnot_pd(where, otherwise));
}

__m128i fixedPlaces(__m128 place, __m128 shift) {
    const __m128 shifted = _mm_sub_ps(place, shift);
    const __m128 bounded =
        _mm_min_ps(_mm_max_ps(shifted, _mm_set1_ps(-32768.0f)), _mm_set1_ps(32767.998f));
    const __m128 cut = _mm_cvtepi32_ps(_mm_cvttps_epi32(bounded));
    const __m128 whole = _mm_sub_ps(cut, _mm_and_ps(_mm_cmpgt_ps(cut, bounded), _mm_set1_ps(1.0f)));
    const __m128i fraction =
        _mm_cvttps_epi32(_mm_mul_ps(_mm_sub_ps(bounded, whole), _mm_set1_ps(fixedOfFraction)));
    const __m128i fixed = _mm_add_epi32(_mm_slli_epi32(_mm_cvttps_epi32(whole), 16), fraction);
    return _mm_and_si128(fixed, _mm_castps_si128(_mm_cmpord_ps(shifted, shifted)));
}

__m128 middles(std::int32_t x) {
    const __m128i indexes = _mm_add_epi32(_mm_set1_epi32(x), _mm_setr_epi32(0, 1, 2, 3));
    return _mm_add_ps(_mm_cvtepi32_ps(indexes), _mm_set1_ps(0.5f));
}

void store(std::int32_t* to, __m128i places) {
    _mm_store_si128(reinterpret_cast<__m128i*>(to), places);
}

std::uint64_t onlyFirst(std::uint64_t mapped, std::int32_t count) {
    return count >= 64 ? mapped : mapped & ((std::uint64_t{1} << count) - 1);
}

// One axis of the perspective solution: (p * x + q * y + r) / w.
struct PerspectiveAxis {
    __m128d perX, ofRow, constant, scale;

    __m128d numerator(__m128d x) const {
        return _mm_add_pd(_mm_add_pd(_mm_mul_pd(perX, x), ofRow), constant);
    }
};

__m128d isFraction(__m128d value) {
    return _mm_and_pd(_mm_cmpge_pd(value, _mm_setzero_pd()), _mm_cmple_pd(value, _mm_set1_pd(1.0)));
}

__m128d awayFromZero(__m128d w) {
    const __m128d sign = _mm_set1_pd(-0.0);
    const __m128d least = _mm_set1_pd(PerspectiveWarpSolver::leastDenominator);
    const __m128d small = _mm_cmplt_pd(_mm_andnot_pd(sign, w), least);
    const __m128d negative = _mm_cmplt_pd(w, _mm_setzero_pd());
    const __m128d signedLeast = _mm_or_pd(least, _mm_and_pd(sign, negative));
    return pick(w, signedLeast, small);
}

struct PerspectiveRow {
    PerspectiveAxis u, v;
    __m128d perX, ofRow, constant;
    bool affine;  // the denominator is 1 everywhere, so that dividing by it changes nothing

    // Two pixels; their bits of the mask.
    unsigned solve(__m128d x, __m128& placeX, __m128& placeY) const {
        __m128d a = u.numerator(x);
        __m128d b = v.numerator(x);
        if (!affine) {
            const __m128d w =
                awayFromZero(_mm_add_pd(_mm_add_pd(_mm_mul_pd(x, perX), ofRow), constant));
            a = _mm_div_pd(a, w);
            b = _mm_div_pd(b, w);
        }
        placeX = _mm_cvtpd_ps(_mm_mul_pd(a, u.scale));
        placeY = _mm_cvtpd_ps(_mm_mul_pd(b, v.scale));
        return static_cast<unsigned>(_mm_movemask_pd(_mm_and_pd(isFraction(a), isFraction(b))));
    }
};

PerspectiveRow rowOf(const PerspectiveRowJob& job, double y) {
    const ProjectiveMap& m = job.map;
    PerspectiveRow row;
    row.u = {_mm_set1_pd(m.a), _mm_set1_pd(m.d * y), _mm_set1_pd(m.g),
             _mm_set1_pd(static_cast<double>(job.width))};
    row.v = {_mm_set1_pd(m.b), _mm_set1_pd(m.e * y), _mm_set1_pd(m.h),
             _mm_set1_pd(static_cast<double>(job.height))};
    row.perX = _mm_set1_pd(m.c);
    row.ofRow = _mm_set1_pd(y * m.f);
    row.constant = _mm_set1_pd(m.i);
    row.affine = m.c == 0.0 && m.f == 0.0 && m.i == 1.0;
    return row;
}

// One axis of the corner solution.
struct CornerAxis {
    __m128 leading, scale;
    bool linear;

    // The root and, in `valid`, whether there is one.
    __m128 root(__m128 b, __m128 c, __m128& valid) const {
        const __m128 zero = _mm_setzero_ps();
        if (linear) {
            valid = _mm_cmpneq_ps(b, zero);
            return _mm_div_ps(c, _mm_xor_ps(b, _mm_set1_ps(-0.0f)));
        }
        const __m128 twice = _mm_add_ps(c, c);
        const __m128 discriminant = _mm_add_ps(_mm_mul_ps(b, b), _mm_mul_ps(leading, twice));
        valid = _mm_cmpge_ps(discriminant, zero);
        const __m128 width = _mm_sqrt_ps(discriminant);
        const __m128 inner = _mm_cmple_ps(b, zero);
        return _mm_div_ps(pick(_mm_add_ps(width, b), twice, inner),
                          pick(leading, _mm_sub_ps(width, b), inner));
    }
};

__m128 isFraction(__m128 value) {
    return _mm_and_ps(_mm_cmpge_ps(value, _mm_setzero_ps()),
                      _mm_cmple_ps(value, _mm_set1_ps(1.0f)));
}

// The cross product of (x, y), of which y is that of the whole row, with a constant vector.
struct CrossWith {
    __m128 vectorY, ofRow;
    __m128 operator()(__m128 x) const { return _mm_sub_ps(_mm_mul_ps(x, vectorY), ofRow); }
};

CrossWith crossWith(float vectorX, float vectorY, float y) {
    return {_mm_set1_ps(vectorY), _mm_set1_ps(y * vectorX)};
}

}  // namespace

void solveRowSse2(const PerspectiveRowJob& values, const RowRequest& request, SolvedRow& row) {
    noteKernelForm(VectorLevel::Sse2);
    const float middleY = static_cast<float>(request.y) + 0.5f;
    const PerspectiveRow job = rowOf(values, static_cast<double>(middleY));
    const __m128 shift = _mm_set1_ps(request.shift);
    std::uint64_t mapped = 0;
    for (int n = 0; n < request.count; n += 4) {
        const __m128 x = middles(request.x + n);
        __m128 lowX, lowY, highX, highY;
        const unsigned low = job.solve(_mm_cvtps_pd(x), lowX, lowY);
        const unsigned high = job.solve(_mm_cvtps_pd(_mm_movehl_ps(x, x)), highX, highY);
        mapped |= static_cast<std::uint64_t>(low | (high << 2)) << n;
        store(row.x + n, fixedPlaces(_mm_movelh_ps(lowX, highX), shift));
        store(row.y + n, fixedPlaces(_mm_movelh_ps(lowY, highY), shift));
    }
    row.mapped = onlyFirst(mapped, request.count);
}

void solveRowSse2(const CornerRowJob& job, const RowRequest& request, SolvedRow& row) {
    noteKernelForm(VectorLevel::Sse2);
    const CornerWarpForm& form = job.form;
    const float hereY = (static_cast<float>(request.y) + 0.5f) - form.origin.y;
    const __m128 originX = _mm_set1_ps(form.origin.x);
    const __m128 area = _mm_set1_ps(form.area);
    const CrossWith withTwist = crossWith(form.twist.x, form.twist.y, hereY);
    const CrossWith withEdgeV = crossWith(form.edgeV.x, form.edgeV.y, hereY);
    const __m128 edgeUByY = _mm_set1_ps(form.edgeU.x * hereY);
    const __m128 edgeUY = _mm_set1_ps(form.edgeU.y);
    const CornerAxis u{_mm_set1_ps(form.leadingU), _mm_set1_ps(job.width), form.linearU};
    const CornerAxis v{_mm_set1_ps(form.leadingV), _mm_set1_ps(job.height), form.linearV};
    const __m128 shift = _mm_set1_ps(request.shift);
    std::uint64_t mapped = 0;
    for (int n = 0; n < request.count; n += 4) {
        const __m128 x = _mm_sub_ps(middles(request.x + n), originX);
        const __m128 bend = withTwist(x);
        __m128 validU, validV;
        const __m128 rootU = u.root(_mm_sub_ps(bend, area), withEdgeV(x), validU);
        const __m128 minusBend = _mm_xor_ps(bend, _mm_set1_ps(-0.0f));
        const __m128 rootV = v.root(_mm_sub_ps(minusBend, area),
                                    _mm_sub_ps(edgeUByY, _mm_mul_ps(edgeUY, x)), validV);
        const __m128 maps = _mm_and_ps(_mm_and_ps(validU, validV),
                                       _mm_and_ps(isFraction(rootU), isFraction(rootV)));
        mapped |= static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_ps(maps))) << n;
        store(row.x + n, fixedPlaces(_mm_mul_ps(rootU, u.scale), shift));
        store(row.y + n, fixedPlaces(_mm_mul_ps(rootV, v.scale), shift));
    }
    row.mapped = onlyFirst(mapped, request.count);
}

}  // namespace brushwork
