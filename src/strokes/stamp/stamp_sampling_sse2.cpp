#include "strokes/stamp/stamp_sampling_walk.h"

#include "strokes/stamp/stamp_lanes_sse2.h"

namespace brushwork::npc {

void multiplyShapeSse2(const SamplingJob& job) {
    SamplingWalk<Sse2StampLanes>::shape(job);
}

void sampleColorsSse2(const SamplingJob& job) {
    SamplingWalk<Sse2StampLanes>::colors(job);
}

}  // namespace brushwork::npc
