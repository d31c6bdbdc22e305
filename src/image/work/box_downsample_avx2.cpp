// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include <immintrin.h>

#include "image/work/box_downsample.h"

namespace brushwork {
namespace {

__m256i load32(const std::uint8_t* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// Red and blue, green and alpha of eight pixels in 16-bit lanes.
struct Lanes {
    __m256i even, odd;

    void add(__m256i pixels) {
        even = _mm256_adds_epu16(even, _mm256_and_si256(pixels, _mm256_set1_epi16(0xFF)));
        odd = _mm256_adds_epu16(odd, _mm256_srli_epi16(pixels, 8));
    }
    void addNeighbours() {
        even = _mm256_adds_epu16(even, _mm256_srli_epi64(even, 32));
        odd = _mm256_adds_epu16(odd, _mm256_srli_epi64(odd, 32));
    }
    __m256i mean(int shift) const {
        return _mm256_or_si256(_mm256_srli_epi16(even, shift),
                               _mm256_slli_epi16(_mm256_srli_epi16(odd, shift), 8));
    }
};

__m256i fourMeans(const std::uint8_t* p, std::ptrdiff_t stride) {
    Lanes lanes{_mm256_setzero_si256(), _mm256_setzero_si256()};
    lanes.add(load32(p));
    lanes.add(load32(p + stride));
    lanes.addNeighbours();
    return lanes.mean(2);
}

void meanOf2(const BlockJob& job) {
    for (std::int32_t row = 0; row < job.rows; ++row) {
        const std::uint8_t* from = job.source + std::ptrdiff_t{2} * row * job.sourceRowBytes;
        std::uint8_t* to = job.target + row * job.targetRowBytes;
        std::int32_t column = 0;
        for (; column + 8 <= job.columns; column += 8, from += 64, to += 32) {
            const __m256i both = _mm256_castps_si256(_mm256_shuffle_ps(
                _mm256_castsi256_ps(fourMeans(from, job.sourceRowBytes)),
                _mm256_castsi256_ps(fourMeans(from + 32, job.sourceRowBytes)), 0x88));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to),
                                _mm256_permute4x64_epi64(both, 0xD8));
        }
        if (column < job.columns)
            blockKernelsScalar.four[0](
                {from, job.sourceRowBytes, to, job.targetRowBytes, job.columns - column, 1});
    }
    noteKernelForm(VectorLevel::Avx2);
}

template <int Block, int Shift>
void meanOf(const BlockJob& job) {
    noteKernelForm(VectorLevel::Avx2);
    for (std::int32_t row = 0; row < job.rows; ++row) {
        const std::uint8_t* from = job.source + std::ptrdiff_t{Block} * row * job.sourceRowBytes;
        std::uint8_t* to = job.target + row * job.targetRowBytes;
        for (std::int32_t column = 0; column < job.columns; ++column, from += 4 * Block, to += 4) {
            Lanes lanes{_mm256_setzero_si256(), _mm256_setzero_si256()};
            const std::uint8_t* line = from;
            for (int y = 0; y < Block; ++y, line += job.sourceRowBytes)
                for (int x = 0; x < 4 * Block; x += 32) lanes.add(load32(line + x));
            lanes.addNeighbours();
            const __m256i even = lanes.even;
            const __m256i odd = lanes.odd;
            lanes.even = _mm256_adds_epu16(even, _mm256_unpackhi_epi64(even, even));
            lanes.odd = _mm256_adds_epu16(odd, _mm256_unpackhi_epi64(odd, odd));
            lanes.even =
                _mm256_adds_epu16(lanes.even, _mm256_permute2x128_si256(lanes.even, lanes.even, 1));
            lanes.odd =
                _mm256_adds_epu16(lanes.odd, _mm256_permute2x128_si256(lanes.odd, lanes.odd, 1));
            _mm_storeu_si32(to, _mm256_castsi256_si128(lanes.mean(Shift)));
        }
    }
}

}  // namespace

const BlockKernels blockKernelsAvx2 = {{meanOf2, nullptr, meanOf<8, 6>, meanOf<16, 8>}, nullptr};

}  // namespace brushwork
