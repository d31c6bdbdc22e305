#include "blending/modes/normal_mode.h"

#include "blending/core/dual_rows.h"

namespace brushwork::npc {
namespace {

void plainDual(const GenericBlender& blender, const KernelRow& row) {
    blendDualRowPlain(NormalDualFormula{blender.opacity16()}, row);
}

void widestDual(const GenericBlender& blender, const KernelRow& row) {
    blendDualRow(NormalDualFormula{blender.opacity16()}, row);
}

void widestDualBlock(const GenericBlender& blender, const KernelBlock& block) {
    blendDualBlock(NormalDualFormula{blender.opacity16()}, block);
}

}  // namespace

NormalBlender::NormalBlender() : FormulaBlender(BlendModeId::Normal) {
    NormalBlender::installKernels(true);
}

void NormalBlender::installKernels(bool allowVector) {
    FormulaBlender::installKernels(allowVector);
    kernels_.dualPlaneMasked = plainDual;
    if (!allowVector) return;
    kernels_.dualPlaneMaskedVector = widestDual;
    kernels_.dualPlaneMaskedBlock = widestDualBlock;
}

}  // namespace brushwork::npc
