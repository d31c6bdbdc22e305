// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "blending/modes/byte_forms.h"

#include "blending/core/byte_rows_walk.h"
#include "blending/core/gray_rows_walk.h"
#include "blending/core/lanes_avx2.h"

namespace brushwork::npc {

template <class Formula>
void blendByteBlockAvx2(const Formula& formula, const KernelBlock& block) {
    ByteRowWalk<Avx2Lanes, Formula>::run(formula, block);
}

template <class Formula>
void blendGrayRowAvx2(const Formula& formula, const KernelRow& row) {
    GrayRowWalk<Avx2Lanes, Formula>(formula, row).run();
}

#define BRUSHWORK_MAKE(Formula) \
    template void blendByteBlockAvx2(const Formula&, const KernelBlock&);
BRUSHWORK_BYTE_FORMULAS(BRUSHWORK_MAKE)
#undef BRUSHWORK_MAKE

#define BRUSHWORK_MAKE(Formula) template void blendGrayRowAvx2(const Formula&, const KernelRow&);
BRUSHWORK_GRAY_FORMULAS(BRUSHWORK_MAKE)
#undef BRUSHWORK_MAKE

}  // namespace brushwork::npc
