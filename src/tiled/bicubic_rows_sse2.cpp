#include "tiled/bicubic_rows_walk.h"
#include "tiled/sample_lanes_sse2.h"

namespace brushwork {
namespace {

using L = SampleLanesSse2;

// Columns first.
struct Sums {
    static constexpr bool wholeAcross = false;

    // The four channels of a column; `low` and `high` are rows 0 and 1, and 2 and 3.
    [[gnu::always_inline]] static L::Floats column(L::Ints low, L::Ints high, L::Ints lower,
                                                   L::Ints upper) {
        return L::toFloats(L::add(L::madd(low, lower), L::madd(high, upper)));
    }

    [[gnu::always_inline]] static L::Floats valueOf(const BicubicChunk& chunk,
                                                    const BicubicWeights& weights, int n) {
        const L::Ints zero = L::every(0);
        const L::Ints lower = L::spread(weights.lower + n);
        const L::Ints upper = L::spread(weights.upper + n);
        const std::uint8_t* const* const first = chunk.first + n;
        const L::Ints row0 = L::rows16(first, 0);
        const L::Ints row1 = L::rows16(first, blockStride);
        const L::Ints row2 = L::rows16(first, 2 * blockStride);
        const L::Ints row3 = L::rows16(first, 3 * blockStride);
        const L::Ints lowLeft = L::low8(row0, row1);
        const L::Ints lowRight = L::high8(row0, row1);
        const L::Ints highLeft = L::low8(row2, row3);
        const L::Ints highRight = L::high8(row2, row3);
        const auto weighed = [&](L::Floats sum, int i) {
            return L::mul(sum, L::spread(weights.other[i] + n));
        };
        const L::Floats left = L::add(
            weighed(column(L::low8(lowLeft, zero), L::low8(highLeft, zero), lower, upper), 0),
            weighed(column(L::high8(lowLeft, zero), L::high8(highLeft, zero), lower, upper), 1));
        const L::Floats right = L::add(
            weighed(column(L::low8(lowRight, zero), L::low8(highRight, zero), lower, upper), 2),
            weighed(column(L::high8(lowRight, zero), L::high8(highRight, zero), lower, upper), 3));
        return L::add(left, right);
    }
};

}  // namespace

const BicubicRows bicubicRowsSse2 = {&BicubicWalk<L, Sums>::locate, &pointBlocks<L>,
                                     &BicubicWalk<L, Sums>::sum};

}  // namespace brushwork
