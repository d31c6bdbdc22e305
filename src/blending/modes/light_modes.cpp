#include "blending/modes/light_modes.h"

#include "blending/core/gray_rows.h"
#include "blending/modes/gray_formulas.h"

namespace brushwork::npc {
namespace {

void plainGray(const GenericBlender& blender, const KernelRow& row) {
    blendGrayRowPlain(MultiplyGrayFormula(blender.opacity2()), row);
}

void widestGray(const GenericBlender& blender, const KernelRow& row) {
    blendGrayRow(MultiplyGrayFormula(blender.opacity2()), row);
}

}  // namespace

MultiplyBlender::MultiplyBlender() : FormulaBlender(BlendModeId::Multiply) {
    MultiplyBlender::installKernels(true);
}

void MultiplyBlender::installKernels(bool allowVector) {
    FormulaBlender::installKernels(allowVector);
    kernels_.gray = plainGray;
    if (allowVector) kernels_.grayVector = widestGray;
}

ScreenBlender::ScreenBlender() : FormulaBlender(BlendModeId::Screen) {}
AddBlender::AddBlender() : FormulaBlender(BlendModeId::Add) {}
LightenBlender::LightenBlender() : FormulaBlender(BlendModeId::Lighten) {}
DarkenBlender::DarkenBlender() : FormulaBlender(BlendModeId::Darken) {}

}  // namespace brushwork::npc
