#include "tiled/bicubic_rows_walk.h"
#include "tiled/sample_lanes_avx2.h"

namespace brushwork {
namespace {

using L = SampleLanesAvx2;

// Rows first: one shuffle brings the words of a row's two pairs of pixels side by side, so that one
// instruction weighs them; the pairs are added at the end.
struct Sums {
    static constexpr bool wholeAcross = true;

    // The left pair's four channels, and the right pair's.
    [[gnu::always_inline]] static L::Floats pairsOf(const BicubicChunk& chunk,
                                                    const BicubicWeights& weights, int n) {
        const __m256i order =
            _mm256_setr_epi8(0, -1, 4, -1, 1, -1, 5, -1, 2, -1, 6, -1, 3, -1, 7, -1,  //
                             8, -1, 12, -1, 9, -1, 13, -1, 10, -1, 14, -1, 11, -1, 15, -1);
        const L::Ints taps =
            _mm256_blend_epi32(L::every(weights.lower[n]), L::every(weights.upper[n]), 0xF0);
        const auto rowOf = [&](std::size_t j) {
            const __m256i pixels = _mm256_broadcastsi128_si256(_mm_loadu_si128(
                reinterpret_cast<const __m128i*>(chunk.first[n] + j * blockStride)));
            const L::Ints words = _mm256_shuffle_epi8(pixels, order);
            return L::toFloats(L::madd(words, taps));
        };
        const auto weight = [&](std::size_t j) { return L::every(weights.other[j][n]); };
        const L::Floats low = L::mulAdd(rowOf(1), weight(1), L::mul(rowOf(0), weight(0)));
        const L::Floats high = L::mulAdd(rowOf(3), weight(3), L::mul(rowOf(2), weight(2)));
        return L::add(low, high);
    }

    [[gnu::always_inline]] static L::Floats valueOf(const BicubicChunk& chunk,
                                                    const BicubicWeights& weights, int n) {
        _mm_prefetch(chunk.first[n] + chunk.ahead[n / 2 % 4], _MM_HINT_T0);
        const L::Floats a = pairsOf(chunk, weights, n);
        const L::Floats b = pairsOf(chunk, weights, n + 1);
        return L::add(_mm256_blend_ps(a, b, 0xF0), _mm256_permute2f128_ps(a, b, 0x21));
    }
};

}  // namespace

const BicubicRows bicubicRowsAvx2 = {&BicubicWalk<L, Sums>::locate, &pointBlocks<L>,
                                     &BicubicWalk<L, Sums>::sum};

}  // namespace brushwork
