#include "blending/core/generic_blender.h"

#include "blending/core/row_walk.h"

namespace brushwork::npc {
namespace {

constexpr float fullOpacity16 = 65535.0F;
constexpr std::uint32_t opaqueBlack = 0xFF000000;
constexpr std::size_t shortRow = 112;  // pixels

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
    [[nodiscard]] BlockKernel blockKernel(const KernelTable& table, bool masked) const {
        if (gray) return nullptr;
        if (!masked) return twoPlanes ? nullptr : table.rgbaBlock;
        return twoPlanes ? table.dualPlaneMaskedBlock : table.rgbaMaskedBlock;
    }
};

namespace {

// Of constants, the source's pixels are still missing.
KernelBlock blockOf(const WorkRecord& work) {
    KernelBlock block;
    block.rows = work.height;
    KernelRow& row = block.first;
    row.count = static_cast<std::size_t>(work.width);
    const auto place = [&](BlendInput input, auto*& pointer, std::ptrdiff_t& step) {
        pointer = work.planes[input].base;
        step = work.planes[input].rowBytes();
    };
    place(InputDestination, row.hi, block.steps.hi);
    place(InputSecondDestination, row.lo, block.steps.lo);
    place(InputSource, row.source, block.steps.source);
    place(InputSecondSource, row.source2, block.steps.source2);
    place(InputMask, row.mask, block.steps.mask);
    row.sourceStride = row.source && !work.constantSource ? 1 : 0;
    row.maskStride = row.mask ? 1 : 0;
    return block;
}

}  // namespace

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
}

void GenericBlender::setSecondSource(ilImage* image, std::int32_t x, std::int32_t y,
                                     bool writable) {
    bind(InputSecondSource, image, x, y, writable);
}

void GenericBlender::setMask(ilImage* image, std::int32_t x, std::int32_t y, bool writable) {
    bind(InputMask, image, x, y, writable);
    plainMask_ = {};
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
    heldWork_.ready = false;
}

void GenericBlender::prepareRun() {
    if (vectorLevel() != tableLevel_) installKernels(vectorsAllowed_);
    useVectors_ = vectorsAllowed_ && tableLevel_ != VectorLevel::Scalar;
}

// False if the channels of the inputs don't go together: then no pixel changes. Kernels take
// sources of the target's channels and masks of one.
bool GenericBlender::layoutOf(const WorkRecord& record, Layout& layout) {
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

bool GenericBlender::isEmptyWork(const WorkRecord& work) const {
    return opacity16_ == 0 || (!work.planes[InputSource].base && constantColor_[0] == 0) ||
           (!work.planes[InputMask].base && constantMask_[0] == 0);
}

void GenericBlender::processRecord(std::int32_t index) {
    blendRecord(record(index));
}

void GenericBlender::blendRecord(const WorkRecord& work) const {
    Layout layout;
    if (!layoutOf(work, layout) || (skipEmpty_ && isEmptyWork(work))) return;

    RowWalk walk;
    walk.pixelBytes = layout.gray ? 1 : 4;
    walk.lockAlpha = lockAlpha_ && !layout.gray;
    walk.block = blockOf(work);
    KernelRow& row = walk.block.first;

    // Copies, since modes that carry paint along write to their source, and threads share this.
    alignas(32) auto color = constantColor_;
    alignas(8) auto gray = constantGray_;
    if (!row.source)
        row.source = layout.gray ? gray.data() : reinterpret_cast<std::uint8_t*>(color.data());
    if (!row.mask && opacity16_ != 65535) row.mask = constantMask_.data();

    walk.kernel = layout.kernel(kernels_, row.mask != nullptr, useVectors_);
    // Long rows without a mask have their targets fetched one by one.
    const bool inBlocks = row.mask || row.count <= shortRow;
    if (inBlocks && useVectors_)
        walk.blockKernel = layout.blockKernel(kernels_, row.mask != nullptr);
    walkRows(*this, walk);
}

// A row of stamps in the same images: what was found out for the first holds for the others.
void GenericBlender::processHeld(const WorkRecord& page, const HeldBox& box) {
    if (!heldWork_.ready || heldWork_.turn != heldTurn()) prepareHeld(page);
    if (!heldWork_.kernel || !box.mask) return Blender::processHeld(page, box);
    const bool constant = heldWork_.constantSource;
    if (skipEmpty_ && (opacity16_ == 0 || (constant && constantColor_[0] == 0))) return;

    alignas(32) auto color = constantColor_;
    KernelBlock block;
    block.steps = heldWork_.steps;
    block.steps.mask = plainMask_.rowBytes();
    const auto place = [&](BlendInput input, std::ptrdiff_t step) {
        std::uint8_t* const base = page.planes[input].base;
        return base ? base + box.up * step + box.right * 4 : nullptr;
    };
    KernelRow& row = block.first;
    row.hi = place(InputDestination, block.steps.hi);
    row.lo = place(InputSecondDestination, block.steps.lo);
    row.source = constant ? reinterpret_cast<std::uint8_t*>(color.data())
                          : place(InputSource, block.steps.source);
    row.source2 = place(InputSecondSource, block.steps.source2);
    row.mask = box.mask;
    row.sourceStride = constant ? 0 : 1;
    row.maskStride = 1;
    row.count = static_cast<std::size_t>(box.width);
    block.rows = box.height;
    heldWork_.kernel(*this, block);
}

void GenericBlender::prepareHeld(const WorkRecord& page) {
    heldWork_ = {};
    heldWork_.ready = true;
    heldWork_.turn = heldTurn();
    WorkRecord work = page;
    work.planes[InputMask] = {};
    Layout layout;
    if (!useVectors_ || lockAlpha_ || !layoutOf(work, layout)) return;
    heldWork_.steps = blockOf(work).steps;
    heldWork_.constantSource = !work.planes[InputSource].base;
    heldWork_.kernel = layout.blockKernel(kernels_, true);
}

}  // namespace brushwork::npc
