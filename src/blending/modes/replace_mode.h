// npc::ReplaceBlender: puts the source in place of the target, alpha included.
#pragma once

#include "blending/modes/formula_blender.h"
#include "blending/modes/replace_formula.h"

namespace brushwork::npc {

// Runs on empty sources too: they clear. An image that is bound as both source and target stays as
// it is, wherever it lies.
class ReplaceBlender : public FormulaBlender<ReplaceFormula> {
  public:
    ReplaceBlender();

  protected:
    void installKernels(bool allowVector) override;
};

}  // namespace brushwork::npc
