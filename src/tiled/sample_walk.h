// What kernels of sample rows have in common, for either of the lane types.
#pragma once

#include "tiled/sample_chunk.h"

namespace brushwork {

// Fills in the places of an axis and hands them on, L::doubles at a time, with the first's number.
template <class L, class Take>
[[gnu::always_inline]] inline void walkPlaces(const SampleSteps& steps, double* places, int count,
                                              const Take& take) {
    if (!steps.even) {
        for (int n = 0; n < count; n += L::doubles) take(n, L::loadPlaces(places + n));
        return;
    }
    const auto first = L::everyPlace(steps.first);
    const auto step = L::everyPlace(steps.step);
    for (int n = 0; n < count; n += L::doubles) {
        // The product is exact.
        const auto place = L::mulAdd(L::loadPlaces(placeNumbers.data() + n), step, first);
        L::storePlaces(places + n, place);
        take(n, place);
    }
}

// PointBlocks.
template <class L>
void pointBlocks(SampleChunk& chunk, int n, int end, const std::uint8_t* corner, std::int32_t x,
                 std::int32_t y) {
    for (; n < end; n += L::doubles)
        L::storeAddresses(chunk.first + n, corner, chunk.ix + n, x, chunk.iy + n, y);
}

}  // namespace brushwork
