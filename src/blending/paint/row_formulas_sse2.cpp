// Only intrinsics and plain loops here: an inline function of the library that was compiled in this
// file might be the copy that the whole program calls, on processors without these instructions.
#include "blending/paint/row_formulas.h"

#include "blending/core/byte_rows_walk.h"
#include "blending/core/gray_rows_walk.h"
#include "blending/core/lanes_sse2.h"

namespace brushwork::npc {

template <class Formula>
void blendByteBlockSse2(const Formula& formula, const KernelBlock& block) {
    ByteRowWalk<Sse2Lanes, Formula>::run(formula, block);
}

template <class Formula>
void blendGrayRowSse2(const Formula& formula, const KernelRow& row) {
    GrayRowWalk<Sse2Lanes, Formula>(formula, row).run();
}

#define BRUSHWORK_MAKE(Formula) \
    template void blendByteBlockSse2(const Formula&, const KernelBlock&);
BRUSHWORK_PAINT_FORMULAS(BRUSHWORK_MAKE)
#undef BRUSHWORK_MAKE

#define BRUSHWORK_MAKE(Formula) template void blendGrayRowSse2(const Formula&, const KernelRow&);
BRUSHWORK_PAINT_GRAY_FORMULAS(BRUSHWORK_MAKE)
#undef BRUSHWORK_MAKE

}  // namespace brushwork::npc
