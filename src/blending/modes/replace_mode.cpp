#include "blending/modes/replace_mode.h"

#include "blending/core/dual_rows.h"

namespace brushwork::npc {
namespace {

bool isSameImage(const GenericBlender& blender) {
    return blender.hasSourceImage() &&
           blender.input(InputSource).image == blender.input(InputDestination).image;
}

// A kernel that leaves an image alone that is both source and target.
template <Kernel kernel>
void unlessSame(const GenericBlender& blender, const KernelRow& row) {
    if (!isSameImage(blender)) kernel(blender, row);
}

void plainDual(const GenericBlender& blender, const KernelRow& row) {
    blendDualRowPlain(ReplaceDualFormula{blender.opacity16()}, row);
}

void widestDual(const GenericBlender& blender, const KernelRow& row) {
    blendDualRow(ReplaceDualFormula{blender.opacity16()}, row);
}

}  // namespace

ReplaceBlender::ReplaceBlender() : FormulaBlender(BlendModeId::Replace) {
    skipEmpty_ = false;
    ReplaceBlender::installKernels(true);
}

void ReplaceBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.rgba = unlessSame<copyKernel>;
    kernels_.rgbaMasked = unlessSame<plainByteKernel<ReplaceFormula>>;
    kernels_.dualPlaneMasked = unlessSame<plainDual>;
    if (!allowVector) return;
    kernels_.rgbaMaskedVector = unlessSame<widestByteKernel<ReplaceFormula>>;
    kernels_.dualPlaneMaskedVector = unlessSame<widestDual>;
}

}  // namespace brushwork::npc
