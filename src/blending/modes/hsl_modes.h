// Modes that mix hue, saturation and luminosity of source and target: Hue, Saturation, Color,
// Luminosity.
#pragma once

#include "blending/modes/formula_blender.h"
#include "blending/modes/hsl_formulas.h"

namespace brushwork::npc {

// The hue of the source. A gray source takes all colour away.
class HueBlender : public FormulaBlender<HueFormula> {
  public:
    HueBlender();
};

// The saturation of the source. A gray target stays gray.
class SaturationBlender : public FormulaBlender<SaturationFormula> {
  public:
    SaturationBlender();
};

// Hue and saturation of the source.
class ColorBlender : public FormulaBlender<ColorFormula> {
  public:
    ColorBlender();
};

// The luminosity of the source.
class LuminosityBlender : public FormulaBlender<LuminosityFormula> {
  public:
    LuminosityBlender();
};

}  // namespace brushwork::npc
