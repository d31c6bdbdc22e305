#include "tiled/bicubic_rows_walk.h"
#include "tiled/sample_lanes_avx2.h"

namespace brushwork {

const BicubicRows bicubicRowsAvx2 = {&BicubicWalk<SampleLanesAvx2>::locate,
                                     &BicubicWalk<SampleLanesAvx2>::sum};

}  // namespace brushwork
