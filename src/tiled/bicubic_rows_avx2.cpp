#include "tiled/bicubic_rows_walk.h"
#include "tiled/sample_lanes_avx2.h"

namespace brushwork {
namespace {

using L = SampleLanesAvx2;

// Rows first: one shuffle brings the words of a row's outer pixels, and of its inner ones, side by
// side, so that one instruction weighs them; the pairs are added at the end.
struct Sums {
    static constexpr bool wholeAcross = true;
    static constexpr float finer = 8.0f;
    static constexpr float starts = 1.0f + 1.0f / finer;

    // The four channels of the outer pixels, and those of the inner: these first with `swapped`.
    template <bool swapped>
    [[gnu::always_inline]] static L::Floats pairsOf(const BicubicChunk& chunk,
                                                    const BicubicWeights& weights, int n) {
        const __m128i outer =
            _mm_setr_epi8(0, -1, 12, -1, 1, -1, 13, -1, 2, -1, 14, -1, 3, -1, 15, -1);
        const __m128i inner =
            _mm_setr_epi8(4, -1, 8, -1, 5, -1, 9, -1, 6, -1, 10, -1, 7, -1, 11, -1);
        const __m256i order =
            swapped ? _mm256_set_m128i(outer, inner) : _mm256_set_m128i(inner, outer);
        const L::Ints taps = _mm256_blend_epi32(L::every(weights.outer[n]),
                                                L::every(weights.inner[n]), swapped ? 0x0F : 0xF0);
        L::Floats sum = L::every(weights.start[n]);
        for (std::size_t j = 0; j < 4; ++j) {
            const __m256i pixels = _mm256_broadcastsi128_si256(_mm_loadu_si128(
                reinterpret_cast<const __m128i*>(chunk.first[n] + j * blockStride)));
            const L::Ints words = _mm256_shuffle_epi8(pixels, order);
            sum = L::mulAdd(L::toFloats(L::madd(words, taps)), L::every(weights.other[j][n]), sum);
        }
        return sum;
    }

    [[gnu::always_inline]] static L::Floats valueOf(const BicubicChunk& chunk,
                                                    const BicubicWeights& weights, int n) {
        _mm_prefetch(chunk.first[n] + chunk.ahead[n / 2 % 4], _MM_HINT_T0);
        const L::Floats a = pairsOf<false>(chunk, weights, n);
        const L::Floats b = pairsOf<true>(chunk, weights, n + 1);
        return L::mulAdd(_mm256_blend_ps(a, b, 0xF0), L::every(1.0f / finer),
                         _mm256_permute2f128_ps(a, b, 0x21));
    }
};

}  // namespace

const BicubicRows bicubicRowsAvx2 = {&BicubicWalk<L, Sums>::locate, &pointBlocks<L>,
                                     &BicubicWalk<L, Sums>::sum};

}  // namespace brushwork
