#include "blending/rows/image_blend_brush.h"

#include "blending/core/dual_rows.h"
#include "blending/modes/clear_formula.h"
#include "blending/modes/normal_formula.h"
#include "blending/modes/smudge_formula.h"

namespace brushwork::blender {
namespace {

constexpr std::uint8_t fullMask[8] = {255, 255, 255, 255, 255, 255, 255, 255};

template <class Pointer>
void move(Pointer*& place, std::ptrdiff_t steps) {
    if (place != nullptr) place += steps;
}

}  // namespace

template <class D, class S>
bool BrushBase<D, S>::prepare() {
    const float clamped = !(opacity > 0.0F) ? 0.0F : opacity < 1.0F ? opacity : 1.0F;
    opacity16_ = npc::toWord16(clamped);
    const bool hasTarget =
        this->destination != nullptr && (!dualPlane || secondDestination != nullptr);
    return opacity16_ != 0 && hasTarget && (this->source != nullptr || this->constantSource);
}

template <class D, class S>
void BrushBase<D, S>::blend() {
    if (!prepare()) return;
    Row row{this->destination,
            dualPlane ? secondDestination : nullptr,
            this->constantSource ? &this->constantPixel : this->source,
            lowSource(),
            mask,
            this->width};
    if (row.count == 0) return;
    for (std::uint32_t y = 0; y < this->height; ++y) {
        if (dualPlane)
            blendRowDual(row);
        else
            blendRowMasked(row);
        if (y + 1 == this->height) break;
        move(row.destination, this->destinationStride);
        move(row.secondDestination, secondDestinationStride);
        if (!this->constantSource) move(row.source, this->sourceStride);
        move(row.secondSource, lowSourceStride());
        move(row.mask, maskStride);
    }
}

template <class D, class S>
void BrushBase<D, S>::blendRow(D* destinations, const S* sources, std::size_t count) {
    if (count != 0)
        blendRowMasked({destinations, nullptr, const_cast<S*>(sources), nullptr, nullptr, count});
}

template <class D, class S>
void BrushBase<D, S>::blendRowDual(const Row& row) {
    blendRowMasked(row);
}

template <class D, class S>
npc::KernelRow BrushBase<D, S>::brushKernelRow(const Row& row,
                                               typename Base<D, S>::Constants& constants) const {
    npc::KernelRow kernelRow = this->kernelRow(row.destination, row.source, row.count, constants);
    kernelRow.lo = reinterpret_cast<std::uint8_t*>(row.secondDestination);
    kernelRow.source2 = reinterpret_cast<std::uint8_t*>(row.secondSource);
    kernelRow.mask = row.mask != nullptr ? row.mask : fullMask;
    kernelRow.maskStride = row.mask != nullptr ? 1 : 0;
    return kernelRow;
}

template <class D, class S>
void BrushNormal<D, S>::blendRowMasked(const BrushRow<D, S>& row) {
    typename Base<D, S>::Constants constants;
    npc::NormalFormula formula;
    formula.opacity = this->opacity16();
    npc::blendByteRow(formula, this->brushKernelRow(row, constants));
}

template <class D, class S>
void BrushNormal<D, S>::blendRowDual(const BrushRow<D, S>& row) {
    typename Base<D, S>::Constants constants;
    npc::blendDualRow(npc::NormalDualFormula{this->opacity16()},
                      this->brushKernelRow(row, constants));
}

template <class D, class S>
void BrushEraser<D, S>::blendRowMasked(const BrushRow<D, S>& row) {
    typename Base<D, S>::Constants constants;
    npc::ClearFormula formula;
    formula.opacity = this->opacity16();
    npc::blendByteRow(formula, this->brushKernelRow(row, constants));
}

template <class D, class S>
void BrushSmudge<D, S>::blendRowDual(const BrushRow<D, S>& row) {
    typename Base<D, S>::Constants constants;
    const npc::KernelRow kernelRow = this->brushKernelRow(row, constants);
    if (!npc::hasCarriedPaint(kernelRow) || kernelRow.lo == nullptr) return;
    npc::blendDualRow(npc::SmudgeFormula{npc::toWord16(pickup), this->opacity16()}, kernelRow);
}

template class BrushBase<>;
template class BrushNormal<>;
template class BrushEraser<>;
template class BrushSmudge<>;

}  // namespace brushwork::blender
