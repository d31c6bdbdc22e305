#include "blending/modes/marker_mode.h"

#include "blending/core/dual_rows.h"
#include "blending/core/parameter_words.h"
#include "blending/modes/marker_formula.h"
#include "brushwork/blend_mode_table.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t strengthIndex = 1;

MarkerFormula formulaOf(const GenericBlender& blender) {
    return {static_cast<const MarkerBlender&>(blender).deposit()};
}

void plain(const GenericBlender& blender, const KernelRow& row) {
    blendDualRowPlain(formulaOf(blender), row);
}

void widest(const GenericBlender& blender, const KernelRow& row) {
    blendDualRow(formulaOf(blender), row);
}

void widestBlock(const GenericBlender& blender, const KernelBlock& block) {
    blendDualBlock(formulaOf(blender), block);
}

}  // namespace

MarkerBlender::MarkerBlender() : GenericBlender(static_cast<std::int32_t>(BlendModeId::Marker)) {
    setStrength(1.0F);
    MarkerBlender::installKernels(true);
}

void MarkerBlender::setOpacity(float value) {
    GenericBlender::setOpacity(value);
    updateDeposit();
}

void MarkerBlender::setStrength(float value) {
    strength_ = value;
    strength16_ = toWord16(value);
    setParameter(strengthIndex, value);
    updateDeposit();
}

void MarkerBlender::updateDeposit() {
    const float amount = (strength_ * getOpacity() * 0.9F + 0.1F) * 0.25F;
    deposit_ = toWord16(amount);
}

void MarkerBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.dualPlaneMasked = plain;
    if (!allowVector) return;
    kernels_.dualPlaneMaskedVector = widest;
    kernels_.dualPlaneMaskedBlock = widestBlock;
}

}  // namespace brushwork::npc
