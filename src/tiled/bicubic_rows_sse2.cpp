#include "tiled/bicubic_rows_walk.h"
#include "tiled/sample_lanes_sse2.h"

namespace brushwork {

const BicubicRows bicubicRowsSse2 = {&BicubicWalk<SampleLanesSse2>::locate,
                                     &BicubicWalk<SampleLanesSse2>::sum};

}  // namespace brushwork
