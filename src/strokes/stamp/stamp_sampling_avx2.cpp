// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "strokes/stamp/stamp_sampling_walk.h"

#include "strokes/stamp/stamp_lanes_avx2.h"

namespace brushwork::npc {

void multiplyShapeAvx2(const SamplingJob& job) {
    SamplingWalk<Avx2StampLanes>::shape(job);
}

void sampleColorsAvx2(const SamplingJob& job) {
    SamplingWalk<Avx2StampLanes>::colors(job);
}

}  // namespace brushwork::npc
