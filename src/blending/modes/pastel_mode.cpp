#include "blending/modes/pastel_mode.h"

#include <algorithm>

#include "blending/core/dual_rows.h"
#include "blending/core/parameter_words.h"
#include "blending/modes/pastel_formula.h"
#include "brushwork/blend_mode_table.h"

namespace brushwork::npc {
namespace {

std::uint32_t bounded(float value) {
    return std::min<std::uint32_t>(toWord(value), 65535);
}

PastelFormula formulaOf(const GenericBlender& blender) {
    const auto& pastel = static_cast<const PastelBlender&>(blender);
    return {pastel.pickup(), pastel.canvasMix(), pastel.colorLoad(), blender.opacity16(),
            pastel.paintColor()};
}

void plain(const GenericBlender& blender, const KernelRow& row) {
    if (hasCarriedPaint(row)) blendDualRowPlain(formulaOf(blender), row);
}

void widest(const GenericBlender& blender, const KernelRow& row) {
    if (hasCarriedPaint(row)) blendDualRow(formulaOf(blender), row);
}

}  // namespace

PastelBlender::PastelBlender() : GenericBlender(static_cast<std::int32_t>(BlendModeId::Pastel)) {
    skipEmpty_ = false;
    PastelBlender::installKernels(true);
}

void PastelBlender::setPickup(float value) {
    pickup_ = bounded(value);
}

void PastelBlender::setCanvasMix(float value) {
    canvasMix_ = bounded(value);
}

void PastelBlender::setColorLoad(float value) {
    colorLoad_ = bounded(value);
}

void PastelBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.dualPlaneMasked = plain;
    if (allowVector) kernels_.dualPlaneMaskedVector = widest;
}

}  // namespace brushwork::npc
