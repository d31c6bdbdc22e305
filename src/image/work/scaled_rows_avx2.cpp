// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include "image/work/sampling_weights.h"
#include "image/work/scaled_rows.h"

namespace brushwork {
namespace {

__m256i load32(const void* p) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(p));
}

// 16 bytes of either place, side by side.
__m256i loadPair(const void* a, const void* b) {
    return _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(a))),
        _mm_loadu_si128(static_cast<const __m128i*>(b)), 1);
}

// Columns first..end - 1 of a job of 4 channels by the scalar definition: those at the edges.
void scalarPart(ColumnPass pass, const ColumnJob& job, std::int32_t first, std::int32_t end) {
    if (first >= end) return;
    ColumnJob part = job;
    part.places += first;
    part.out += std::ptrdiff_t{4} * first;
    part.count = end - first;
    pass(part);
}

// The four products of two columns, a in the lower half: columns 0 and 2 added, then 1 and 3.
__m256i cubicHalves(const std::uint8_t* row, const SamplePlace& a, const SamplePlace& b,
                    const SamplingWeights& weights) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i pixels =
        loadPair(row + (std::ptrdiff_t{a.lower} - 1) * 4, row + (std::ptrdiff_t{b.lower} - 1) * 4);
    const __m256i low = _mm256_srli_epi16(_mm256_unpacklo_epi8(zero, pixels), 8 - cubicByteShift);
    const __m256i high = _mm256_srli_epi16(_mm256_unpackhi_epi8(zero, pixels), 8 - cubicByteShift);
    const std::int16_t* wa = weights.spread[a.step];
    const std::int16_t* wb = weights.spread[b.step];
    return _mm256_add_epi16(_mm256_mulhi_epi16(low, loadPair(wa, wb)),
                            _mm256_mulhi_epi16(high, loadPair(wa + 8, wb + 8)));
}

void cubicColumnsFour(const ColumnJob& job) {
    const SamplingWeights& weights = samplingWeights();
    scalarPart(scaledPassesScalar.cubicFour[2], job, 0, job.innerBegin);
    std::int32_t n = job.innerBegin;
    for (; n + 4 <= job.innerEnd; n += 4) {
        const SamplePlace* p = job.places + n;
        const __m256i ac = cubicHalves(job.row, p[0], p[2], weights);
        const __m256i bd = cubicHalves(job.row, p[1], p[3], weights);
        _mm256_storeu_si256(
            reinterpret_cast<__m256i*>(job.out + 4 * n),
            _mm256_add_epi16(_mm256_unpacklo_epi64(ac, bd), _mm256_unpackhi_epi64(ac, bd)));
    }
    scalarPart(scaledPassesScalar.cubicFour[2], job, n, job.count);
    noteKernelForm(VectorLevel::Avx2);
}

__m128i load8(const std::uint8_t* p) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
}

// Both products of two columns.
__m256i linearProducts(const std::uint8_t* row, const SamplePlace& a, const SamplePlace& b,
                       const SamplingWeights& weights) {
    const __m128i both = _mm_unpacklo_epi64(load8(row + std::ptrdiff_t{a.lower} * 4),
                                            load8(row + std::ptrdiff_t{b.lower} * 4));
    return _mm256_mullo_epi16(_mm256_cvtepu8_epi16(both),
                              loadPair(weights.linear[a.step], weights.linear[b.step]));
}

void linearColumnsFour(const ColumnJob& job) {
    const SamplingWeights& weights = samplingWeights();
    scalarPart(scaledPassesScalar.linearFour[1], job, 0, job.innerBegin);
    std::int32_t n = job.innerBegin;
    for (; n + 4 <= job.innerEnd; n += 4) {
        const SamplePlace* p = job.places + n;
        const __m256i ac = linearProducts(job.row, p[0], p[2], weights);
        const __m256i bd = linearProducts(job.row, p[1], p[3], weights);
        _mm256_storeu_si256(
            reinterpret_cast<__m256i*>(job.out + 4 * n),
            _mm256_add_epi16(_mm256_unpacklo_epi64(ac, bd), _mm256_unpackhi_epi64(ac, bd)));
    }
    scalarPart(scaledPassesScalar.linearFour[1], job, n, job.count);
    noteKernelForm(VectorLevel::Avx2);
}

// The values behind the last whole vector.
void narrowRest(RowPass pass, const RowJob& job, std::size_t done) {
    if (done == job.values) return;
    RowJob rest = job;
    for (int k = 0; k < 4; ++k)
        if (rest.rows[k]) rest.rows[k] += done;
    rest.out += done;
    rest.values -= done;
    pass(rest);
}

__m256i pairOf(std::int32_t first, std::int32_t second) {
    return _mm256_set1_epi32(static_cast<int>((static_cast<std::uint32_t>(second) << 16) |
                                              (static_cast<std::uint32_t>(first) & 0xFFFFu)));
}

void storeBytes(std::uint8_t* out, __m256i shorts) {
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(shorts, shorts), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
}

struct LinearMix {
    __m256i weights;

    __m256i finish(__m256i pairs) const {
        const __m256i total =
            _mm256_add_epi32(_mm256_madd_epi16(pairs, weights), _mm256_set1_epi32(1 << 23));
        return _mm256_srli_epi32(total, 16);
    }
};

void linearLinear(const RowJob& job) {
    const LinearMix mix{pairOf(256 - job.step, job.step)};
    const __m256i middle = _mm256_set1_epi16(-32768);
    std::size_t n = 0;
    for (; n + 16 <= job.values; n += 16) {
        const __m256i a = _mm256_xor_si256(load32(job.rows[0] + n), middle);
        const __m256i b = _mm256_xor_si256(load32(job.rows[1] + n), middle);
        storeBytes(job.out + n, _mm256_packs_epi32(mix.finish(_mm256_unpacklo_epi16(a, b)),
                                                   mix.finish(_mm256_unpackhi_epi16(a, b))));
    }
    narrowRest(scaledPassesSse2.linearRows[1], job, n);
    noteKernelForm(VectorLevel::Avx2);
}

struct CubicMix {
    __m256i lower, upper, rounding;

    __m256i finish(__m256i a, __m256i b) const {
        const __m256i total =
            _mm256_add_epi32(_mm256_madd_epi16(a, lower), _mm256_madd_epi16(b, upper));
        return _mm256_srai_epi32(_mm256_add_epi32(total, rounding), cubicTotalShift);
    }
};

void cubicCubic(const RowJob& job) {
    const std::int16_t* w = samplingWeights().four[job.step];
    const CubicMix mix{pairOf(w[0], w[1]), pairOf(w[2], w[3]),
                       _mm256_set1_epi32(job.rounding * 32768)};
    std::size_t n = 0;
    for (; n + 16 <= job.values; n += 16) {
        const __m256i a = load32(job.rows[0] + n);
        const __m256i b = load32(job.rows[1] + n);
        const __m256i c = load32(job.rows[2] + n);
        const __m256i d = load32(job.rows[3] + n);
        storeBytes(job.out + n,
                   _mm256_packs_epi32(
                       mix.finish(_mm256_unpacklo_epi16(a, b), _mm256_unpacklo_epi16(c, d)),
                       mix.finish(_mm256_unpackhi_epi16(a, b), _mm256_unpackhi_epi16(c, d))));
    }
    narrowRest(scaledPassesSse2.cubicRows[2], job, n);
    noteKernelForm(VectorLevel::Avx2);
}

}  // namespace

const ScaledPasses scaledPassesAvx2 = {
    {nullptr, linearColumnsFour}, {nullptr, nullptr},      {nullptr, nullptr, cubicColumnsFour},
    {nullptr, nullptr, nullptr},  {nullptr, linearLinear}, {nullptr, nullptr, cubicCubic}};

}  // namespace brushwork
