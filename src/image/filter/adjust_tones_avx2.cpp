// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "image/filter/adjust_lanes_avx2.h"
#include "image/filter/adjust_tones_walk.h"

namespace brushwork {

const ToneKernels toneKernelsAvx2 = toneKernelsOf<Avx2Floats>;

}  // namespace brushwork
