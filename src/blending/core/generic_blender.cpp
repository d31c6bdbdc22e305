#include "blending/core/generic_blender.h"

#include "blending/core/row_walk.h"

namespace brushwork::npc {
namespace {

constexpr float fullOpacity16 = 65535.0F;
constexpr std::uint32_t opaqueBlack = 0xFF000000;

}  // namespace

// What the inputs of a record are blended as.
struct GenericBlender::Layout {
    bool gray = false;
    bool twoPlanes = false;

    // The kernel of a table for this layout.
    [[nodiscard]] Kernel kernel(const KernelTable& table, bool masked, bool vector) const {
        if (gray) {
            if (vector) return masked ? table.grayMaskedVector : table.grayVector;
            return masked ? table.grayMasked : table.gray;
        }
        if (twoPlanes) {
            if (vector) return masked ? table.dualPlaneMaskedVector : table.dualPlaneVector;
            return masked ? table.dualPlaneMasked : table.dualPlane;
        }
        if (vector) return masked ? table.rgbaMaskedVector : table.rgbaVector;
        return masked ? table.rgbaMasked : table.rgba;
    }

    // Null where there is none.
    [[nodiscard]] BlockKernel blockKernel(const KernelTable& table) const {
        if (gray) return nullptr;
        return twoPlanes ? table.dualPlaneMaskedBlock : table.rgbaMaskedBlock;
    }
};

const KernelTable& kernelsOf(const GenericBlender& blender) {
    return blender.kernels();
}

GenericBlender::GenericBlender(std::int32_t mode) : Blender(mode), kernels_(defaultKernels()) {
    parameters_.assign(3, 1.0F);
    setConstantColor(opaqueBlack);
    setConstantMask(255);
}

GenericBlender::~GenericBlender() = default;

void GenericBlender::reset() {
    Blender::reset();
    setOpacity(1.0F);
    sourceStride_ = 0;
    maskStride_ = 0;
    setConstantColor(opaqueBlack);
    setConstantMask(255);
}

// Slots that hold the same image agree on whether it is written: pages that are locked for writing
// may be copies, and a reader of the same image must see those.
void GenericBlender::bind(BlendInput index, ilImage* image, std::int32_t x, std::int32_t y,
                          bool writable) {
    Slot& bound = inputs_[index];
    const bool asBefore = bound.x == x && bound.y == y && bound.writable == writable;
    if (bound.image == image && (!image || asBefore)) return;
    forgetHeldPages();
    bound.image = Ref<ilImage>(image);
    bound.x = x;
    bound.y = y;
    bound.writable = writable && image;
    if (!image) return;
    for (const Slot& slot : inputs_)
        if (slot.image == image && slot.writable) bound.writable = true;
    if (!bound.writable) return;
    for (Slot& slot : inputs_)
        if (slot.image == image) slot.writable = true;
}

void GenericBlender::setDestination(ilImage* image, std::int32_t x, std::int32_t y) {
    bind(InputDestination, image, x, y, true);
}

void GenericBlender::setSecondDestination(ilImage* image, std::int32_t x, std::int32_t y) {
    bind(InputSecondDestination, image, x, y, true);
}

void GenericBlender::setSource(ilImage* image, std::int32_t x, std::int32_t y, bool writable) {
    bind(InputSource, image, x, y, writable);
    sourceStride_ = image ? 1 : 0;
}

void GenericBlender::setSecondSource(ilImage* image, std::int32_t x, std::int32_t y,
                                     bool writable) {
    bind(InputSecondSource, image, x, y, writable);
}

void GenericBlender::setMask(ilImage* image, std::int32_t x, std::int32_t y, bool writable) {
    bind(InputMask, image, x, y, writable);
    maskStride_ = image ? 1 : 0;
    plainMask_ = {};
}

void GenericBlender::setPlainMask(std::uint8_t* pixels, std::int32_t stride, std::int32_t x,
                                  std::int32_t y) {
    if (inputs_[InputMask].image || maskStride_ == 0) setMask(nullptr, 0, 0, false);
    maskStride_ = 1;
    plainMask_ = {pixels, stride, 1, 1};
    plainMaskX_ = x;
    plainMaskY_ = y;
}

void GenericBlender::setOpacity(float value) {
    setOpacityAt(0, value, opacity16_);
}

void GenericBlender::setOpacity2(float value) {
    setOpacityAt(1, value, opacity2_);
}

void GenericBlender::setOpacity3(float value) {
    setOpacityAt(2, value, opacity3_);
}

void GenericBlender::setOpacityAt(std::size_t index, float value, std::uint32_t& fixed) {
    const float clamped = !(value > 0.0F) ? 0.0F : value < 1.0F ? value : 1.0F;
    setParameter(index, clamped);
    fixed = static_cast<std::uint32_t>(clamped * fullOpacity16);
}

void GenericBlender::setParameter(std::size_t index, float value) {
    if (index >= parameters_.size()) parameters_.resize(index + 1, 0.0F);
    parameters_[index] = value;
}

void GenericBlender::setConstantColor(std::uint32_t color) {
    if (constantColor_[0] == color && constantGray_[0] == (color & 0xFF)) return;
    constantColor_.fill(color);
    constantGray_.fill(static_cast<std::uint8_t>(color & 0xFF));
}

void GenericBlender::setConstantMask(std::uint8_t value) {
    constantMask_.fill(value);
}

void GenericBlender::installKernels(bool allowVector) {
    kernels_ = defaultKernels();
    vectorsAllowed_ = allowVector;
    tableLevel_ = vectorLevel();
}

void GenericBlender::prepareRun() {
    if (vectorLevel() != tableLevel_) installKernels(vectorsAllowed_);
    useVectors_ = vectorsAllowed_ && tableLevel_ != VectorLevel::Scalar;
}

// False if the channels of the inputs don't go together: then no pixel changes. Kernels take
// sources of the target's channels and masks of one.
bool GenericBlender::layoutOf(const WorkRecord& record, Layout& layout) const {
    const auto channels = [&](BlendInput index) { return record.planes[index].channels; };
    const auto fits = [&](BlendInput index, std::int32_t wanted) {
        return !record.planes[index].base || channels(index) == wanted;
    };
    const std::int32_t target = channels(InputDestination);
    layout.gray = target == 1;
    layout.twoPlanes = record.planes[InputSecondDestination].base != nullptr;
    if (target != 4 && (target != 1 || layout.twoPlanes)) return false;
    return fits(InputSecondDestination, target) && fits(InputSource, target) &&
           fits(InputSecondSource, target) && fits(InputMask, 1);
}

bool GenericBlender::isEmptyWork() const {
    return opacity16_ == 0 || (sourceStride_ == 0 && constantColor_[0] == 0) ||
           (maskStride_ == 0 && constantMask_[0] == 0);
}

void GenericBlender::processRecord(std::int32_t index) {
    const WorkRecord& work = record(index);
    Layout layout;
    if (!layoutOf(work, layout) || (skipEmpty_ && isEmptyWork())) return;

    RowWalk walk;
    walk.pixelBytes = layout.gray ? 1 : 4;
    walk.lockAlpha = lockAlpha_ && !layout.gray;
    walk.block.rows = work.height;
    KernelBlock::Steps& steps = walk.block.steps;
    KernelRow& row = walk.block.first;
    row.count = static_cast<std::size_t>(work.width);
    const auto place = [&](BlendInput input, auto*& pointer, std::ptrdiff_t& step) {
        pointer = work.planes[input].base;
        step = work.planes[input].rowBytes();
    };
    place(InputDestination, row.hi, steps.hi);
    place(InputSecondDestination, row.lo, steps.lo);
    place(InputSource, row.source, steps.source);
    place(InputSecondSource, row.source2, steps.source2);
    place(InputMask, row.mask, steps.mask);

    // Copies, since modes that carry paint along write to their source, and threads share this.
    alignas(32) auto color = constantColor_;
    alignas(8) auto gray = constantGray_;
    row.sourceStride = sourceStride_;
    if (!row.source)
        row.source = layout.gray ? gray.data() : reinterpret_cast<std::uint8_t*>(color.data());
    row.maskStride = maskStride_;
    if (!row.mask && opacity16_ != 65535) row.mask = constantMask_.data();

    walk.kernel = layout.kernel(kernels_, row.mask != nullptr, useVectors_);
    if (row.mask && useVectors_) walk.blockKernel = layout.blockKernel(kernels_);
    walkRows(*this, walk);
}

}  // namespace brushwork::npc
