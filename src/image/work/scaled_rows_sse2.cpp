#include <emmintrin.h>

#include <cstring>

#include "image/work/sampling_weights.h"
#include "image/work/scaled_rows.h"

namespace brushwork {
namespace {

__m128i load16(const void* p) {
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
}
__m128i load8(const void* p) {
    return _mm_loadl_epi64(static_cast<const __m128i*>(p));
}
void store16(void* p, __m128i v) {
    _mm_storeu_si128(static_cast<__m128i*>(p), v);
}

__m128i lowShifted(__m128i v) {
    return _mm_srli_epi16(_mm_unpacklo_epi8(_mm_setzero_si128(), v), 8 - cubicByteShift);
}
__m128i highShifted(__m128i v) {
    return _mm_srli_epi16(_mm_unpackhi_epi8(_mm_setzero_si128(), v), 8 - cubicByteShift);
}

// Columns first..end - 1 of a job by the scalar definition: those at the edges.
void scalarPart(ColumnPass pass, const ColumnJob& job, std::int32_t first, std::int32_t end,
                int channels) {
    if (first >= end) return;
    ColumnJob part = job;
    part.places += first;
    part.out += std::ptrdiff_t{first} * channels;
    part.count = end - first;
    pass(part);
}

// The four products of a column, added by two: columns 0 and 2, then 1 and 3.
__m128i cubicHalves(const std::uint8_t* row, const SamplePlace& place,
                    const SamplingWeights& weights) {
    const __m128i pixels = load16(row + (std::ptrdiff_t{place.lower} - 1) * 4);
    const std::int16_t* w = weights.spread[place.step];
    return _mm_add_epi16(_mm_mulhi_epi16(lowShifted(pixels), load16(w)),
                         _mm_mulhi_epi16(highShifted(pixels), load16(w + 8)));
}

void cubicColumnsFour(const ColumnJob& job) {
    const SamplingWeights& weights = samplingWeights();
    scalarPart(scaledPassesScalar.cubicFour[2], job, 0, job.innerBegin, 4);
    std::int32_t n = job.innerBegin;
    for (; n + 2 <= job.innerEnd; n += 2) {
        const __m128i a = cubicHalves(job.row, job.places[n], weights);
        const __m128i b = cubicHalves(job.row, job.places[n + 1], weights);
        store16(job.out + 4 * n, _mm_add_epi16(_mm_unpacklo_epi64(a, b), _mm_unpackhi_epi64(a, b)));
    }
    scalarPart(scaledPassesScalar.cubicFour[2], job, n, job.count, 4);
    noteKernelForm(VectorLevel::Sse2);
}

void linearColumnsFour(const ColumnJob& job) {
    const SamplingWeights& weights = samplingWeights();
    const __m128i zero = _mm_setzero_si128();
    scalarPart(scaledPassesScalar.linearFour[1], job, 0, job.innerBegin, 4);
    for (std::int32_t n = job.innerBegin; n < job.innerEnd; ++n) {
        const SamplePlace& place = job.places[n];
        const __m128i pixels =
            _mm_unpacklo_epi8(load8(job.row + std::ptrdiff_t{place.lower} * 4), zero);
        const __m128i products = _mm_mullo_epi16(pixels, load16(weights.linear[place.step]));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(job.out + 4 * n),
                         _mm_add_epi16(products, _mm_srli_si128(products, 8)));
    }
    scalarPart(scaledPassesScalar.linearFour[1], job, job.innerEnd, job.count, 4);
    noteKernelForm(VectorLevel::Sse2);
}

__m128i fourBytes(const std::uint8_t* p) {
    int word = 0;
    std::memcpy(&word, p, 4);
    return _mm_cvtsi32_si128(word);
}

// 1 channel: two columns a vector, their four products side by side.
__m128i cubicPairOne(const ColumnJob& job, std::int32_t n, const SamplingWeights& weights) {
    const SamplePlace& a = job.places[n];
    const SamplePlace& b = job.places[n + 1];
    const __m128i bytes =
        _mm_unpacklo_epi32(fourBytes(job.row + a.lower - 1), fourBytes(job.row + b.lower - 1));
    const __m128i products = _mm_mulhi_epi16(
        lowShifted(bytes),
        _mm_unpacklo_epi64(load8(weights.four[a.step]), load8(weights.four[b.step])));
    return _mm_madd_epi16(products, _mm_set1_epi16(1));
}

void cubicColumnsOne(const ColumnJob& job) {
    const SamplingWeights& weights = samplingWeights();
    scalarPart(scaledPassesScalar.cubicOne[2], job, 0, job.innerBegin, 1);
    std::int32_t n = job.innerBegin;
    for (; n + 4 <= job.innerEnd; n += 4) {
        const __m128 a = _mm_castsi128_ps(cubicPairOne(job, n, weights));
        const __m128 b = _mm_castsi128_ps(cubicPairOne(job, n + 2, weights));
        const __m128i sums = _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(a, b, 0x88)),
                                           _mm_castps_si128(_mm_shuffle_ps(a, b, 0xDD)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(job.out + n), _mm_packs_epi32(sums, sums));
    }
    scalarPart(scaledPassesScalar.cubicOne[2], job, n, job.count, 1);
    noteKernelForm(VectorLevel::Sse2);
}

// The values behind the last whole vector.
void scalarRest(RowPass pass, const RowJob& job, std::size_t done) {
    if (done == job.values) return;
    RowJob rest = job;
    for (const std::int16_t*& row : rest.rows)
        if (row) row += done;
    rest.out += done;
    rest.values -= done;
    pass(rest);
}

// Weights of two rows, for multiply-add.
__m128i pairOf(std::int32_t first, std::int32_t second) {
    return _mm_set1_epi32(static_cast<int>((static_cast<std::uint32_t>(second) << 16) |
                                           (static_cast<std::uint32_t>(first) & 0xFFFFu)));
}

void linearLinear(const RowJob& job) {
    const __m128i weights = pairOf(256 - job.step, job.step);
    const __m128i middle = _mm_set1_epi16(-32768);
    const __m128i offset = _mm_set1_epi32(1 << 23);
    std::size_t n = 0;
    for (; n + 8 <= job.values; n += 8) {
        const __m128i a = _mm_xor_si128(load16(job.rows[0] + n), middle);
        const __m128i b = _mm_xor_si128(load16(job.rows[1] + n), middle);
        const __m128i low = _mm_madd_epi16(_mm_unpacklo_epi16(a, b), weights);
        const __m128i high = _mm_madd_epi16(_mm_unpackhi_epi16(a, b), weights);
        const __m128i shorts = _mm_packs_epi32(_mm_srli_epi32(_mm_add_epi32(low, offset), 16),
                                               _mm_srli_epi32(_mm_add_epi32(high, offset), 16));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(job.out + n), _mm_packus_epi16(shorts, shorts));
    }
    scalarRest(scaledPassesScalar.linearRows[1], job, n);
    noteKernelForm(VectorLevel::Sse2);
}

void cubicCubic(const RowJob& job) {
    const std::int16_t* w = samplingWeights().four[job.step];
    const __m128i lower = pairOf(w[0], w[1]);
    const __m128i upper = pairOf(w[2], w[3]);
    const __m128i rounding = _mm_set1_epi32(job.rounding * 32768);
    const auto finish = [&](__m128i a, __m128i b) {
        const __m128i total = _mm_add_epi32(_mm_madd_epi16(a, lower), _mm_madd_epi16(b, upper));
        return _mm_srai_epi32(_mm_add_epi32(total, rounding), cubicTotalShift);
    };
    std::size_t n = 0;
    for (; n + 8 <= job.values; n += 8) {
        const __m128i a = load16(job.rows[0] + n);
        const __m128i b = load16(job.rows[1] + n);
        const __m128i c = load16(job.rows[2] + n);
        const __m128i d = load16(job.rows[3] + n);
        const __m128i shorts =
            _mm_packs_epi32(finish(_mm_unpacklo_epi16(a, b), _mm_unpacklo_epi16(c, d)),
                            finish(_mm_unpackhi_epi16(a, b), _mm_unpackhi_epi16(c, d)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(job.out + n), _mm_packus_epi16(shorts, shorts));
    }
    scalarRest(scaledPassesScalar.cubicRows[2], job, n);
    noteKernelForm(VectorLevel::Sse2);
}

}  // namespace

const ScaledPasses scaledPassesSse2 = {{nullptr, linearColumnsFour},
                                       {nullptr, nullptr},
                                       {nullptr, nullptr, cubicColumnsFour},
                                       {nullptr, nullptr, cubicColumnsOne},
                                       {nullptr, linearLinear},
                                       {nullptr, nullptr, cubicCubic}};

}  // namespace brushwork
