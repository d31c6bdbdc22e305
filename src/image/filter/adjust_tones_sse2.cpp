#include "image/filter/adjust_lanes_sse2.h"
#include "image/filter/adjust_tones_walk.h"

namespace brushwork {

const ToneKernels toneKernelsSse2 = toneKernelsOf<Sse2Floats>;

}  // namespace brushwork
