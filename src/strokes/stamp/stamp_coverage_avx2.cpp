// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "strokes/stamp/stamp_coverage_walk.h"

#include "strokes/stamp/stamp_lanes_avx2.h"

namespace brushwork::npc {

void coverRowsAvx2(const CoverageJob& job) {
    CoverageWalk<Avx2StampLanes>::run(job);
}

}  // namespace brushwork::npc
