// From a formula to the kernels and the blender of its mode.
//
//     class ScreenBlender : public FormulaBlender<ScreenFormula> {
//       public:
//         ScreenBlender();     // : FormulaBlender(BlendModeId::Screen) {}
//     };
//
// A new mode is such a class and its formula, a row in blend_mode_table.h and a line in
// byte_forms.h. Modes with more kernels override installKernels.
#pragma once

#include "blending/core/byte_rows.h"
#include "blending/core/generic_blender.h"
#include "brushwork/blend_mode_table.h"

namespace brushwork::npc {

template <class Formula>
[[nodiscard]] Formula formulaFor(const GenericBlender& blender) {
    Formula formula;
    formula.opacity = Formula::bySecondOpacity ? blender.opacity2() : blender.opacity16();
    return formula;
}

template <class Formula>
void plainByteKernel(const GenericBlender& blender, const KernelRow& row) {
    blendByteRowPlain(formulaFor<Formula>(blender), row);
}

template <class Formula>
void widestByteKernel(const GenericBlender& blender, const KernelRow& row) {
    blendByteRow(formulaFor<Formula>(blender), row);
}

template <class Formula>
void widestByteBlock(const GenericBlender& blender, const KernelBlock& block) {
    blendByteBlock(formulaFor<Formula>(blender), block);
}

// The source as it is; a constant one in each place. No form of its own is faster.
void copyKernel(const GenericBlender& blender, const KernelRow& row);
void copyGrayKernel(const GenericBlender& blender, const KernelRow& row);

template <class Formula>
class FormulaBlender : public GenericBlender {
  protected:
    // Leaves the table to classes that override installKernels and then call it themselves.
    explicit FormulaBlender(BlendModeId id) : GenericBlender(static_cast<std::int32_t>(id)) {
        FormulaBlender::installKernels(true);
    }

    void installKernels(bool allowVector) override {
        GenericBlender::installKernels(allowVector);
        kernels_.rgba = plainByteKernel<Formula>;
        kernels_.rgbaMasked = plainByteKernel<Formula>;
        if (!allowVector) return;
        kernels_.rgbaVector = widestByteKernel<Formula>;
        kernels_.rgbaMaskedVector = widestByteKernel<Formula>;
        kernels_.rgbaBlock = widestByteBlock<Formula>;
        kernels_.rgbaMaskedBlock = widestByteBlock<Formula>;
    }
};

}  // namespace brushwork::npc
