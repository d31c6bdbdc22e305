// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "image/filter/adjust_lanes_avx2.h"
#include "image/filter/tone_records_walk.h"

namespace brushwork {

void toneRecordsAvx2(const std::uint32_t* pixels, std::size_t count, float* records) {
    ToneRecordWalk<Avx2Floats>::run(pixels, count, records);
}

}  // namespace brushwork
