// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include "image/work/sampling_kernels.h"
#include "image/work/sampling_weights.h"

namespace brushwork {
namespace {

__m256i load32(const void* p) {
    return _mm256_load_si256(static_cast<const __m256i*>(p));
}
__m128i load16(const void* p) {
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
}
__m128i load8(const void* p) {
    return _mm_loadl_epi64(static_cast<const __m128i*>(p));
}

int stepOf(std::int32_t place) {
    return (place >> 8) & 0xFF;
}

// 4 by 4 pixels, 32 bits each: sixteen products of columns 0 and 1 in the lower half, 2 and 3 in
// the upper; the halves still have to be added.
struct CubicJob {
    const SampleSource& source;
    const SamplingWeights& weights;
    std::int32_t lastLeft, lastBottom;
    alignas(32) std::uint8_t block[64];

    static __m256i row(const std::uint8_t* p, std::int32_t weight) {
        const __m256i pixels = _mm256_slli_epi16(_mm256_cvtepu8_epi16(load16(p)), cubicByteShift);
        return _mm256_mulhi_epi16(pixels, _mm256_set1_epi32(weight));
    }

    __m256i pixel(std::int32_t x, std::int32_t y) {
        const std::int32_t left = (x >> 16) - 1;
        const std::int32_t bottom = (y >> 16) - 1;
        const std::uint8_t* p = block;
        std::ptrdiff_t stride = 16;
        if (left >= 0 && left <= lastLeft && bottom >= 0 && bottom <= lastBottom) {
            stride = source.rowBytes;
            p = source.pixels + bottom * stride + std::ptrdiff_t{4} * left;
        } else {
            copyClamped(source, left, bottom, 4, 4, block);
        }
        const std::int32_t* w = weights.doubled[stepOf(y)];
        const __m256i sums = _mm256_add_epi16(
            _mm256_add_epi16(row(p, w[0]), row(p + stride, w[1])),
            _mm256_add_epi16(row(p + 2 * stride, w[2]), row(p + 3 * stride, w[3])));
        const __m256i byColumn =
            _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15,  //
                             0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
        return _mm256_madd_epi16(_mm256_shuffle_epi8(sums, byColumn),
                                 load32(weights.pairs[stepOf(x)]));
    }
};

// Two pixels of 4 words, ready to be packed.
__m256i finish(__m256i a, __m256i b) {
    const __m256i total = _mm256_add_epi32(_mm256_permute2x128_si256(a, b, 0x20),
                                           _mm256_permute2x128_si256(a, b, 0x31));
    return _mm256_srai_epi32(_mm256_add_epi32(total, _mm256_set1_epi32(cubicRounding)),
                             cubicTotalShift);
}

void bicubicFour(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
                 std::size_t count, std::uint8_t* out) {
    noteKernelForm(VectorLevel::Avx2);
    CubicJob job{source, samplingWeights(), source.width - 4, source.height - 4, {}};
    std::size_t n = 0;
    for (; n + 4 <= count; n += 4) {
        const __m256i even = finish(job.pixel(x[n], y[n]), job.pixel(x[n + 2], y[n + 2]));
        const __m256i odd = finish(job.pixel(x[n + 1], y[n + 1]), job.pixel(x[n + 3], y[n + 3]));
        const __m256i shorts = _mm256_packs_epi32(even, odd);
        const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(shorts, shorts), 0x08);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * n), _mm256_castsi256_si128(bytes));
    }
    for (; n < count; ++n) {
        const __m256i one = job.pixel(x[n], y[n]);
        const __m128i words = _mm256_castsi256_si128(finish(one, one));
        const __m128i shorts = _mm_packs_epi32(words, words);
        _mm_storeu_si32(out + 4 * n, _mm_packus_epi16(shorts, shorts));
    }
}

struct LinearJob {
    const SampleSource& source;
    const SamplingWeights& weights;
    std::int32_t lastLeft, lastBottom;
    std::uint8_t block[16];

    // The columns' sums of one place: 4 channels of column 0, then of column 1.
    __m128i sums(std::int32_t x, std::int32_t y) {
        const std::int32_t left = x >> 16;
        const std::int32_t bottom = y >> 16;
        const std::uint8_t* p = block;
        std::ptrdiff_t stride = 8;
        if (left >= 0 && left <= lastLeft && bottom >= 0 && bottom <= lastBottom) {
            stride = source.rowBytes;
            p = source.pixels + bottom * stride + std::ptrdiff_t{4} * left;
        } else {
            copyClamped(source, left, bottom, 2, 4, block);
        }
        const __m128i lower = _mm_cvtepu8_epi16(load8(p));
        const __m128i upper = _mm_cvtepu8_epi16(load8(p + stride));
        const __m128i fy = _mm_set1_epi16(static_cast<short>(stepOf(y)));
        return _mm_add_epi16(_mm_slli_epi16(lower, 8),
                             _mm_mullo_epi16(_mm_sub_epi16(upper, lower), fy));
    }
};

// Two places: words of 4 channels each.
__m256i linearPair(LinearJob& job, const std::int32_t* x, const std::int32_t* y, int second) {
    const __m256i byColumn =
        _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15,  //
                         0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    const int fa = stepOf(x[0]);
    const int fb = stepOf(x[second]);
    const __m256i rowWeights = _mm256_set_m128i(_mm_set1_epi32((fb << 16) | (256 - fb)),
                                                _mm_set1_epi32((fa << 16) | (256 - fa)));
    __m256i sums = _mm256_set_m128i(job.sums(x[second], y[second]), job.sums(x[0], y[0]));
    sums = _mm256_xor_si256(sums, _mm256_set1_epi16(-32768));
    const __m256i total = _mm256_madd_epi16(_mm256_shuffle_epi8(sums, byColumn), rowWeights);
    return _mm256_srli_epi32(_mm256_add_epi32(total, _mm256_set1_epi32(1 << 23)), 16);
}

void bilinearFour(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
                  std::size_t count, std::uint8_t* out) {
    LinearJob job{source, samplingWeights(), source.width - 2, source.height - 2, {}};
    std::size_t n = 0;
    for (; n + 4 <= count; n += 4) {
        const __m256i even = linearPair(job, x + n, y + n, 2);
        const __m256i odd = linearPair(job, x + n + 1, y + n + 1, 2);
        const __m256i shorts = _mm256_packs_epi32(even, odd);
        const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(shorts, shorts), 0x08);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * n), _mm256_castsi256_si128(bytes));
    }
    if (n < count) samplingKernelsSse2.four[1](source, x + n, y + n, count - n, out + 4 * n);
    noteKernelForm(VectorLevel::Avx2);
}

// Eight places at a time; pixels outside are masked and take the fill.
void nearestFour(const SampleSource& source, const std::int32_t* x, const std::int32_t* y,
                 std::size_t count, std::uint8_t* out) {
    const __m256i width = _mm256_set1_epi32(source.width);
    const __m256i height = _mm256_set1_epi32(source.height);
    const __m256i none = _mm256_set1_epi32(-1);
    const __m256i fill =
        _mm256_castps_si256(_mm256_broadcastss_ps(_mm_castsi128_ps(_mm_loadu_si32(source.fill))));
    // 32-bit offsets from the picture's start reach two gigabytes.
    const bool near = source.rowBytes > 0 && source.rowBytes % 4 == 0 &&
                      source.rowBytes / 4 <= 0x7FFFFFFF / source.height;
    const __m256i rowPixels = _mm256_set1_epi32(static_cast<int>(source.rowBytes / 4));
    std::size_t n = 0;
    for (; near && n + 8 <= count; n += 8) {
        const __m256i column =
            _mm256_srai_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(x + n)), 16);
        const __m256i row =
            _mm256_srai_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(y + n)), 16);
        const __m256i inside = _mm256_and_si256(
            _mm256_and_si256(_mm256_cmpgt_epi32(width, column), _mm256_cmpgt_epi32(column, none)),
            _mm256_and_si256(_mm256_cmpgt_epi32(height, row), _mm256_cmpgt_epi32(row, none)));
        const __m256i offset = _mm256_add_epi32(_mm256_mullo_epi32(row, rowPixels), column);
        const __m256i pixels = _mm256_mask_i32gather_epi32(
            fill, reinterpret_cast<const int*>(source.pixels), offset, inside, 4);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 4 * n), pixels);
    }
    if (n < count) samplingKernelsScalar.four[0](source, x + n, y + n, count - n, out + 4 * n);
    noteKernelForm(VectorLevel::Avx2);
}

}  // namespace

const SamplingKernels samplingKernelsAvx2 = {{nearestFour, bilinearFour, bicubicFour},
                                             {nullptr, nullptr, nullptr}};

}  // namespace brushwork
