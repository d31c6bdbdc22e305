// Every formula that has vector forms: what byte_forms_sse2.cpp and byte_forms_avx2.cpp make.
#pragma once

#include "blending/modes/clear_formula.h"
#include "blending/modes/contrast_formulas.h"
#include "blending/modes/dodge_burn_formulas.h"
#include "blending/modes/glow_formulas.h"
#include "blending/modes/gray_formulas.h"
#include "blending/modes/hsl_formulas.h"
#include "blending/modes/light_formulas.h"
#include "blending/modes/mask_multiply_formula.h"
#include "blending/modes/normal_formula.h"
#include "blending/modes/replace_formula.h"

// Expands X(formula) once for each formula on 4 channels.
#define BRUSHWORK_BYTE_FORMULAS(X) \
    X(NormalFormula)               \
    X(RowNormalFormula<false>)     \
    X(RowNormalFormula<true>)      \
    X(MultiplyFormula)             \
    X(AddFormula)                  \
    X(ScreenFormula)               \
    X(OverlayFormula)              \
    X(LightenFormula)              \
    X(DarkenFormula)               \
    X(ColorFormula)                \
    X(HueFormula)                  \
    X(SaturationFormula)           \
    X(LuminosityFormula)           \
    X(ColorBurnFormula)            \
    X(LinearBurnFormula)           \
    X(HardLightFormula)            \
    X(SoftLightFormula)            \
    X(ColorDodgeFormula)           \
    X(GlowFormula)                 \
    X(SoftGlowFormula)             \
    X(ReplaceFormula)              \
    X(ClearFormula)                \
    X(MaskMultiplyFormula)

// And for each on one channel.
#define BRUSHWORK_GRAY_FORMULAS(X) \
    X(MultiplyGrayFormula)         \
    X(MaskMultiplyGrayFormula)
