#include "tiled/bilinear_rows_walk.h"
#include "tiled/sample_lanes_sse2.h"

namespace brushwork {

const BilinearRows bilinearRowsSse2 = {&BilinearWalk<SampleLanesSse2>::locate,
                                       &pointBlocks<SampleLanesSse2>,
                                       &BilinearWalk<SampleLanesSse2>::mix};

}  // namespace brushwork
