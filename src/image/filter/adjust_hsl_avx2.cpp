// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "image/filter/adjust_hsl_walk.h"
#include "image/filter/adjust_lanes_avx2.h"

namespace brushwork {

void adjustHslAvx2(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count) {
    HslWalk<Avx2Floats>::run(numbers, pixels, count);
}

}  // namespace brushwork
