#include "image/filter/adjust_lanes_sse2.h"
#include "image/filter/adjust_ranges_walk.h"

namespace brushwork {

void adjustRangesSse2(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                      float& lastHue) {
    RangeWalk<Sse2Floats>::run(numbers, pixels, count, lastHue);
}

}  // namespace brushwork
