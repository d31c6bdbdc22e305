// npc::NormalBlender: lays the source over the target.
#pragma once

#include "blending/modes/formula_blender.h"
#include "blending/modes/normal_formula.h"

namespace brushwork::npc {

// A target of two planes has a kernel of its own through a mask; without one its high bytes alone
// are blended.
class NormalBlender : public FormulaBlender<NormalFormula> {
  public:
    NormalBlender();

  protected:
    void installKernels(bool allowVector) override;
};

}  // namespace brushwork::npc
