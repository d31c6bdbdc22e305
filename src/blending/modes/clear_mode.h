// npc::ClearBlender: erases.
#pragma once

#include "blending/modes/clear_formula.h"
#include "blending/modes/formula_blender.h"

namespace brushwork::npc {

// Takes colour and alpha away as far as the source's alpha says; its colour doesn't matter. Of a
// target of two planes it clears the high bytes.
class ClearBlender : public FormulaBlender<ClearFormula> {
  public:
    ClearBlender();
};

}  // namespace brushwork::npc
