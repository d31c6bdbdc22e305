#include "blending/modes/glow_brush_mode.h"

#include "blending/core/parameter_words.h"
#include "blending/modes/formula_blender.h"
#include "blending/modes/glow_formulas.h"
#include "brushwork/blend_mode_table.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t strengthIndex = 1;

}  // namespace

GlowBrushBlender::GlowBrushBlender()
    : GenericBlender(static_cast<std::int32_t>(BlendModeId::GlowBrush)) {
    skipEmpty_ = false;
    setStrength(1.0F);
    GlowBrushBlender::installKernels(true);
}

void GlowBrushBlender::setStrength(float value) {
    strength_ = value;
    strength16_ = toWord16(value);
    setParameter(strengthIndex, value);
}

// Without a mask there is no light.
void GlowBrushBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.rgbaMasked = plainByteKernel<GlowFormula>;
    if (allowVector) kernels_.rgbaMaskedVector = widestByteKernel<GlowFormula>;
}

}  // namespace brushwork::npc
