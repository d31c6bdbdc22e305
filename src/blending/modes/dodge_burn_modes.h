// Modes that lighten and darken as in a darkroom: ColorDodge, ColorBurn, LinearBurn.
#pragma once

#include "blending/modes/dodge_burn_formulas.h"
#include "blending/modes/formula_blender.h"

namespace brushwork::npc {

// Lightens the target by what the source has; white burns out.
class ColorDodgeBlender : public FormulaBlender<ColorDodgeFormula> {
  public:
    ColorDodgeBlender();
};

// Darkens the target by what the source lacks; black burns in.
class ColorBurnBlender : public FormulaBlender<ColorBurnFormula> {
  public:
    ColorBurnBlender();
};

// The sum, less white.
class LinearBurnBlender : public FormulaBlender<LinearBurnFormula> {
  public:
    LinearBurnBlender();
};

}  // namespace brushwork::npc
