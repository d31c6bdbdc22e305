#include "strokes/stamp/stamp_coverage_walk.h"

#include "strokes/stamp/stamp_lanes_sse2.h"

namespace brushwork::npc {

void coverRowsSse2(const CoverageJob& job) {
    CoverageWalk<Sse2StampLanes>::run(job);
}

}  // namespace brushwork::npc
