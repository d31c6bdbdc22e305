#include "tiled/bicubic_rows_walk.h"
#include "tiled/sample_lanes_sse2.h"

namespace brushwork {
namespace {

using L = SampleLanesSse2;

// Columns first.
struct Sums {
    static constexpr bool wholeAcross = false;
    static constexpr float finer = 1.0f;
    static constexpr float starts = 1.0f;

    [[gnu::always_inline]] static L::Floats valueOf(const BicubicChunk& chunk,
                                                    const BicubicWeights& weights, int n) {
        const L::Ints zero = L::every(0);
        const L::Ints outer = L::spread(weights.outer + n);
        const L::Ints inner = L::spread(weights.inner + n);
        const std::uint8_t* const* const first = chunk.first + n;
        const L::Ints row0 = L::rows16(first, 0);
        const L::Ints row1 = L::rows16(first, blockStride);
        const L::Ints row2 = L::rows16(first, 2 * blockStride);
        const L::Ints row3 = L::rows16(first, 3 * blockStride);
        const L::Ints outerLeft = L::low8(row0, row3);
        const L::Ints outerRight = L::high8(row0, row3);
        const L::Ints innerLeft = L::low8(row1, row2);
        const L::Ints innerRight = L::high8(row1, row2);
        // The four channels of a column.
        const auto weighed = [&](L::Ints outerRows, L::Ints innerRows, int i) {
            const L::Ints sum = L::add(L::madd(outerRows, outer), L::madd(innerRows, inner));
            return L::mul(L::toFloats(sum), L::spread(weights.other[i] + n));
        };
        const L::Floats left =
            L::add(weighed(L::low8(outerLeft, zero), L::low8(innerLeft, zero), 0),
                   weighed(L::high8(outerLeft, zero), L::high8(innerLeft, zero), 1));
        const L::Floats right =
            L::add(weighed(L::low8(outerRight, zero), L::low8(innerRight, zero), 2),
                   weighed(L::high8(outerRight, zero), L::high8(innerRight, zero), 3));
        return L::add(L::add(left, right), L::spread(weights.start + n));
    }
};

}  // namespace

const BicubicRows bicubicRowsSse2 = {&BicubicWalk<L, Sums>::locate, &pointBlocks<L>,
                                     &BicubicWalk<L, Sums>::sum};

}  // namespace brushwork
