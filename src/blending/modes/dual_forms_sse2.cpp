// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "blending/modes/dual_forms.h"

#include "blending/core/dual_lanes_sse2.h"
#include "blending/core/dual_rows_walk.h"

namespace brushwork::npc {

template <class Formula>
void blendDualBlockSse2(const Formula& formula, const KernelBlock& block) {
    DualRowWalk<Sse2DualLanes, Formula>::run(formula, block);
}

#define BRUSHWORK_DUAL_FORM(formula) \
    template void blendDualBlockSse2(const formula&, const KernelBlock&);
BRUSHWORK_DUAL_FORMULAS(BRUSHWORK_DUAL_FORM)
#undef BRUSHWORK_DUAL_FORM

}  // namespace brushwork::npc
