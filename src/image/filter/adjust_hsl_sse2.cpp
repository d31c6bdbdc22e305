#include "image/filter/adjust_hsl_walk.h"
#include "image/filter/adjust_lanes_sse2.h"

namespace brushwork {

void adjustHslSse2(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count) {
    HslWalk<Sse2Floats>::run(numbers, pixels, count);
}

}  // namespace brushwork
