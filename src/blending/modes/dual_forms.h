// Every formula on 16-bit channels: what dual_forms_sse2.cpp and dual_forms_avx2.cpp make vector
// forms of.
#pragma once

#include "blending/modes/marker_colorless_formula.h"
#include "blending/modes/marker_formula.h"
#include "blending/modes/normal_formula.h"
#include "blending/modes/paint_formulas.h"
#include "blending/modes/pastel_formula.h"
#include "blending/modes/replace_formula.h"
#include "blending/modes/smudge_formula.h"

// Expands X(formula) once for each.
#define BRUSHWORK_DUAL_FORMULAS(X) \
    X(NormalDualFormula)           \
    X(ReplaceDualFormula)          \
    X(PaintFormula)                \
    X(PaintFormula8)               \
    X(SolidPaintFormula<true>)     \
    X(SolidPaintFormula<false>)    \
    X(SolidPaintFormulaAtOnce)     \
    X(MarkerFormula)               \
    X(MarkerColorlessFormula)      \
    X(SmudgeFormula)               \
    X(PastelFormula)
