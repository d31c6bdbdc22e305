// Modes that add light of their own: Glow, SoftGlow.
#pragma once

#include "blending/modes/formula_blender.h"
#include "blending/modes/glow_formulas.h"

namespace brushwork::npc {

// Divides the target by what the source lacks of white. Through a mask all that it touches ends
// opaque and burns out where the target was not: see GlowFormula.
class GlowBlender : public FormulaBlender<GlowFormula> {
  public:
    GlowBlender();
};

// A sum that counts the source as if it were opaque.
class SoftGlowBlender : public FormulaBlender<SoftGlowFormula> {
  public:
    SoftGlowBlender();
};

}  // namespace brushwork::npc
