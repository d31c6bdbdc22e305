#include "blending/modes/smudge_mode.h"

#include "blending/core/dual_rows.h"
#include "blending/core/parameter_words.h"
#include "blending/modes/smudge_formula.h"
#include "brushwork/blend_mode_table.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t pickupIndex = 1;

SmudgeFormula formulaOf(const GenericBlender& blender) {
    return {static_cast<const SmudgeBlender&>(blender).pickup16(), blender.opacity16()};
}

void plain(const GenericBlender& blender, const KernelRow& row) {
    if (hasCarriedPaint(row)) blendDualRowPlain(formulaOf(blender), row);
}

void widest(const GenericBlender& blender, const KernelRow& row) {
    if (hasCarriedPaint(row)) blendDualRow(formulaOf(blender), row);
}

}  // namespace

SmudgeBlender::SmudgeBlender() : GenericBlender(static_cast<std::int32_t>(BlendModeId::Smudge)) {
    skipEmpty_ = false;
    setPickup(1.0F);
    SmudgeBlender::installKernels(true);
}

void SmudgeBlender::setPickup(float value) {
    pickup_ = value;
    pickup16_ = toWord16(value);
    setParameter(pickupIndex, value);
}

void SmudgeBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.dualPlaneMasked = plain;
    if (allowVector) kernels_.dualPlaneMaskedVector = widest;
}

}  // namespace brushwork::npc
