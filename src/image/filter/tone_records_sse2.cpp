#include "image/filter/adjust_lanes_sse2.h"
#include "image/filter/tone_records_walk.h"

namespace brushwork {

void toneRecordsSse2(const std::uint32_t* pixels, std::size_t count, float* records) {
    ToneRecordWalk<Sse2Floats>::run(pixels, count, records);
}

}  // namespace brushwork
