// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "image/filter/adjust_lanes_avx2.h"
#include "image/filter/adjust_ranges_walk.h"

namespace brushwork {

void adjustRangesAvx2(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                      float& lastHue) {
    RangeWalk<Avx2Floats>::run(numbers, pixels, count, lastHue);
}

}  // namespace brushwork
