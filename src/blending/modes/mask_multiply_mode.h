// npc::MaskMultiplyBlender: the source times the mask, into the target.
#pragma once

#include "blending/modes/formula_blender.h"
#include "blending/modes/mask_multiply_formula.h"

namespace brushwork::npc {

// Without a mask it copies. The second opacity says how far the mask counts. For targets of four
// channels and of one, which is how masks are narrowed by masks.
class MaskMultiplyBlender : public FormulaBlender<MaskMultiplyFormula> {
  public:
    MaskMultiplyBlender();

  protected:
    void installKernels(bool allowVector) override;
};

}  // namespace brushwork::npc
