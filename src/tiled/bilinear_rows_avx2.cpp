#include "tiled/bilinear_rows_walk.h"
#include "tiled/sample_lanes_avx2.h"

namespace brushwork {

const BilinearRows bilinearRowsAvx2 = {&BilinearWalk<SampleLanesAvx2>::locate,
                                       &pointBlocks<SampleLanesAvx2>,
                                       &BilinearWalk<SampleLanesAvx2>::mix};

}  // namespace brushwork
