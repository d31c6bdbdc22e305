// Modes that darken the dark and lighten the light: Overlay, HardLight, SoftLight.
#pragma once

#include "blending/modes/contrast_formulas.h"
#include "blending/modes/formula_blender.h"

namespace brushwork::npc {

// Where the target is dark, Multiply; where it is light, Screen.
class OverlayBlender : public FormulaBlender<OverlayFormula> {
  public:
    OverlayBlender();
};

// Where the source is dark, Multiply; where it is light, Screen.
class HardLightBlender : public FormulaBlender<HardLightFormula> {
  public:
    HardLightBlender();
};

// Bends the target toward dark or light as the source is.
class SoftLightBlender : public FormulaBlender<SoftLightFormula> {
  public:
    SoftLightBlender();
};

}  // namespace brushwork::npc
