#include "blending/modes/mask_multiply_mode.h"

#include "blending/core/gray_rows.h"
#include "blending/modes/gray_formulas.h"

namespace brushwork::npc {
namespace {

void plainGray(const GenericBlender& blender, const KernelRow& row) {
    blendGrayRowPlain(MaskMultiplyGrayFormula(blender.opacity2()), row);
}

void widestGray(const GenericBlender& blender, const KernelRow& row) {
    blendGrayRow(MaskMultiplyGrayFormula(blender.opacity2()), row);
}

}  // namespace

MaskMultiplyBlender::MaskMultiplyBlender() : FormulaBlender(BlendModeId::MaskMultiply) {
    MaskMultiplyBlender::installKernels(true);
}

void MaskMultiplyBlender::installKernels(bool allowVector) {
    GenericBlender::installKernels(allowVector);
    kernels_.rgba = copyKernel;
    kernels_.rgbaMasked = plainByteKernel<MaskMultiplyFormula>;
    kernels_.gray = copyGrayKernel;
    kernels_.grayMasked = plainGray;
    if (!allowVector) return;
    kernels_.rgbaMaskedVector = widestByteKernel<MaskMultiplyFormula>;
    kernels_.grayMaskedVector = widestGray;
}

}  // namespace brushwork::npc
