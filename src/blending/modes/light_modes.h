// Modes that take light away or bring it: Multiply, Screen, Add, Lighten, Darken.
#pragma once

#include "blending/modes/formula_blender.h"
#include "blending/modes/light_formulas.h"

namespace brushwork::npc {

// Never lighter than the target. Also blends targets of one channel, without a mask; there the
// second opacity says how far the source counts.
class MultiplyBlender : public FormulaBlender<MultiplyFormula> {
  public:
    MultiplyBlender();

  protected:
    void installKernels(bool allowVector) override;
};

// Never darker than the target.
class ScreenBlender : public FormulaBlender<ScreenFormula> {
  public:
    ScreenBlender();
};

// The sum, as far as alpha has room for it.
class AddBlender : public FormulaBlender<AddFormula> {
  public:
    AddBlender();
};

// Of each channel the larger.
class LightenBlender : public FormulaBlender<LightenFormula> {
  public:
    LightenBlender();
};

// Of each channel the smaller.
class DarkenBlender : public FormulaBlender<DarkenFormula> {
  public:
    DarkenBlender();
};

}  // namespace brushwork::npc
