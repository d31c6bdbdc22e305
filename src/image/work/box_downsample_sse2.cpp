#include <emmintrin.h>

#include "image/work/box_downsample.h"

namespace brushwork {
namespace {

__m128i load16(const std::uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// Red and blue, green and alpha of four pixels: bytes apart in 16-bit lanes, to be added up. The
// largest sum, of 256 bytes, just fits.
struct Lanes {
    __m128i even = _mm_setzero_si128();
    __m128i odd = _mm_setzero_si128();

    void add(__m128i pixels) {
        even = _mm_adds_epu16(even, _mm_and_si128(pixels, _mm_set1_epi16(0xFF)));
        odd = _mm_adds_epu16(odd, _mm_srli_epi16(pixels, 8));
    }
    // The sums of lanes 0 and 1, and of 2 and 3, in lanes 0 and 2.
    void addNeighbours() {
        even = _mm_adds_epu16(even, _mm_srli_epi64(even, 32));
        odd = _mm_adds_epu16(odd, _mm_srli_epi64(odd, 32));
    }
    [[nodiscard]] __m128i mean(int shift) const {
        return _mm_or_si128(_mm_srli_epi16(even, shift),
                            _mm_slli_epi16(_mm_srli_epi16(odd, shift), 8));
    }
};

// Pixels 0 and 2 of two vectors.
__m128i everySecond(__m128i a, __m128i b) {
    return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), 0x88));
}

__m128i twoMeans(const std::uint8_t* p, std::ptrdiff_t stride) {
    Lanes lanes;
    lanes.add(load16(p));
    lanes.add(load16(p + stride));
    lanes.addNeighbours();
    return lanes.mean(2);
}

void meanOf2(const BlockJob& job) {
    for (std::int32_t row = 0; row < job.rows; ++row) {
        const std::uint8_t* from = job.source + std::ptrdiff_t{2} * row * job.sourceRowBytes;
        std::uint8_t* to = job.target + row * job.targetRowBytes;
        std::int32_t column = 0;
        for (; column + 4 <= job.columns; column += 4, from += 32, to += 16) {
            const __m128i means = everySecond(twoMeans(from, job.sourceRowBytes),
                                              twoMeans(from + 16, job.sourceRowBytes));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), means);
        }
        if (column < job.columns)
            blockKernelsScalar.four[0](
                {from, job.sourceRowBytes, to, job.targetRowBytes, job.columns - column, 1});
    }
    noteKernelForm(VectorLevel::Sse2);
}

template <int Block, int Shift>
void meanOf(const BlockJob& job) {
    noteKernelForm(VectorLevel::Sse2);
    for (std::int32_t row = 0; row < job.rows; ++row) {
        const std::uint8_t* from = job.source + std::ptrdiff_t{Block} * row * job.sourceRowBytes;
        std::uint8_t* to = job.target + row * job.targetRowBytes;
        for (std::int32_t column = 0; column < job.columns; ++column, from += 4 * Block, to += 4) {
            Lanes lanes;
            const std::uint8_t* line = from;
            for (int y = 0; y < Block; ++y, line += job.sourceRowBytes)
                for (int x = 0; x < 4 * Block; x += 16) lanes.add(load16(line + x));
            lanes.addNeighbours();
            lanes.even = _mm_adds_epu16(lanes.even, _mm_srli_si128(lanes.even, 8));
            lanes.odd = _mm_adds_epu16(lanes.odd, _mm_srli_si128(lanes.odd, 8));
            _mm_storeu_si32(to, lanes.mean(Shift));
        }
    }
}

// Four blocks of bytes at a time.
void meanOfBytes4(const BlockJob& job) {
    for (std::int32_t row = 0; row < job.rows; ++row) {
        const std::uint8_t* from = job.source + std::ptrdiff_t{4} * row * job.sourceRowBytes;
        std::uint8_t* to = job.target + row * job.targetRowBytes;
        std::int32_t column = 0;
        for (; column + 4 <= job.columns; column += 4, from += 16, to += 4) {
            Lanes lanes;
            for (int y = 0; y < 4; ++y) lanes.add(load16(from + y * job.sourceRowBytes));
            const __m128i pairs = _mm_add_epi16(lanes.even, lanes.odd);
            const __m128i sums = _mm_madd_epi16(pairs, _mm_set1_epi16(1));
            const __m128i means = _mm_srli_epi32(sums, 4);
            const __m128i shorts = _mm_packs_epi32(means, means);
            _mm_storeu_si32(to, _mm_packus_epi16(shorts, shorts));
        }
        if (column < job.columns)
            blockKernelsScalar.one4(
                {from, job.sourceRowBytes, to, job.targetRowBytes, job.columns - column, 1});
    }
    noteKernelForm(VectorLevel::Sse2);
}

}  // namespace

const BlockKernels blockKernelsSse2 = {{meanOf2, meanOf<4, 4>, meanOf<8, 6>, meanOf<16, 8>},
                                       meanOfBytes4};

}  // namespace brushwork
