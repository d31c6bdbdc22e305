#include "blending/modes/paint_modes.h"

#include "blending/core/dual_rows.h"
#include "blending/core/parameter_words.h"
#include "blending/modes/paint_formulas.h"
#include "brushwork/blend_mode_table.h"

namespace brushwork::npc {
namespace {

constexpr std::size_t flowIndex = 5;

template <class Formula>
Formula formulaOf(const GenericBlender& blender) {
    Formula formula;
    formula.flow = static_cast<const FlowBlender&>(blender).flow16();
    formula.opacity = blender.opacity16();
    return formula;
}

template <class Formula>
void plain(const GenericBlender& blender, const KernelRow& row) {
    blendDualRowPlain(formulaOf<Formula>(blender), row);
}

template <class Formula>
void widest(const GenericBlender& blender, const KernelRow& row) {
    blendDualRow(formulaOf<Formula>(blender), row);
}

template <class Formula>
void widestBlock(const GenericBlender& blender, const KernelBlock& block) {
    blendDualBlock(formulaOf<Formula>(blender), block);
}

}  // namespace

FlowBlender::FlowBlender(std::int32_t mode) : GenericBlender(mode) {
    FlowBlender::setFlow(1.0F);
}

void FlowBlender::setFlow(float value) {
    flow_ = value;
    flow16_ = toWord16(value);
    setParameter(flowIndex, value);
}

PaintBlender::PaintBlender() : FlowBlender(static_cast<std::int32_t>(BlendModeId::Paint)) {
    PaintBlender::installKernels(true);
}

void PaintBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.rgbaMasked = plain<PaintFormula8>;
    kernels_.dualPlaneMasked = plain<PaintFormula>;
    if (!allowVector) return;
    kernels_.rgbaMaskedVector = widest<PaintFormula8>;
    kernels_.dualPlaneMaskedVector = widest<PaintFormula>;
    kernels_.rgbaMaskedBlock = widestBlock<PaintFormula8>;
    kernels_.dualPlaneMaskedBlock = widestBlock<PaintFormula>;
}

SolidColorPaintBlender::SolidColorPaintBlender()
    : FlowBlender(static_cast<std::int32_t>(BlendModeId::SolidColorPaint)) {
    SolidColorPaintBlender::installKernels(true);
}

void SolidColorPaintBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.rgba = plain<SolidPaintFormulaAtOnce>;
    kernels_.rgbaMasked = plain<SolidPaintFormula<false>>;
    kernels_.dualPlaneMasked = plain<SolidPaintFormula<true>>;
    if (!allowVector) return;
    kernels_.rgbaVector = widest<SolidPaintFormulaAtOnce>;
    kernels_.rgbaMaskedVector = widest<SolidPaintFormula<false>>;
    kernels_.dualPlaneMaskedVector = widest<SolidPaintFormula<true>>;
    kernels_.rgbaMaskedBlock = widestBlock<SolidPaintFormula<false>>;
    kernels_.dualPlaneMaskedBlock = widestBlock<SolidPaintFormula<true>>;
}

}  // namespace brushwork::npc
