#include "blending/modes/marker_colorless_mode.h"

#include "blending/core/dual_rows.h"
#include "blending/core/parameter_words.h"
#include "blending/modes/marker_colorless_formula.h"
#include "brushwork/blend_mode_table.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t strengthIndex = 1;
constexpr std::size_t wetnessIndex = 2;

// Full wetness takes a thirty-second of the target on.
MarkerColorlessFormula formulaOf(const GenericBlender& blender) {
    const auto& marker = static_cast<const MarkerColorlessBlender&>(blender);
    return {marker.deposit(), (marker.wetness12() << 7) >> 12};
}

void plain(const GenericBlender& blender, const KernelRow& row) {
    if (hasCarriedPaint(row)) blendDualRowPlain(formulaOf(blender), row);
}

void widest(const GenericBlender& blender, const KernelRow& row) {
    if (hasCarriedPaint(row)) blendDualRow(formulaOf(blender), row);
}

}  // namespace

MarkerColorlessBlender::MarkerColorlessBlender()
    : GenericBlender(static_cast<std::int32_t>(BlendModeId::MarkerColorless)) {
    setStrength(1.0F);
    setWetness(1.0F);
    MarkerColorlessBlender::installKernels(true);
}

void MarkerColorlessBlender::setOpacity(float value) {
    GenericBlender::setOpacity(value);
    updateDeposit();
}

void MarkerColorlessBlender::setStrength(float value) {
    strength_ = value;
    setParameter(strengthIndex, value);
    updateDeposit();
}

void MarkerColorlessBlender::setWetness(float value) {
    wetness_ = value;
    wetness12_ = toWord(value * 4096.0F);
    setParameter(wetnessIndex, value);
}

void MarkerColorlessBlender::updateDeposit() {
    deposit_ = toWord16(getOpacity() * strength_);
}

void MarkerColorlessBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.dualPlaneMasked = plain;
    if (allowVector) kernels_.dualPlaneMaskedVector = widest;
}

}  // namespace brushwork::npc
