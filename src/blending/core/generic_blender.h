// npc::GenericBlender: turns rectangles into rows and rows into calls of a mode's kernels.
//
//     const auto blender = createBlender(BlendModeId::Multiply);
//     blender->setDestination(layer, 0, 0);
//     blender->setSource(picture, 40, 25, false);
//     blender->setOpacity(0.5F);
//     blender->run(flatTile(0, 0, 4096, 4096));
//
// Images stay bound between runs. A target of two planes (`hi` and `lo`) holds 16 bits a channel.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "blending/core/blender.h"
#include "blending/core/kernel_table.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

class GenericBlender : public Blender {
  public:
    ~GenericBlender() override;

    // Slots 1 to 10 of the virtual operations, in this order.
    // Also: first opacity 1, constant colour opaque black, constant mask 255.
    void reset() override;

  protected:
    void processRecord(std::int32_t index) override;
    void processHeld(const WorkRecord& page, const HeldBox& box) override;

  public:
    // An image and where its corner lies; null takes it away. The second destination holds the low
    // bytes and is always writable.
    virtual void setSecondDestination(ilImage* image, std::int32_t x, std::int32_t y);
    // An image bound as writable makes every slot that holds it writable; one bound without takes
    // the flag of such a slot.
    virtual void setSource(ilImage* image, std::int32_t x, std::int32_t y, bool writable);
    virtual void setSecondSource(ilImage* image, std::int32_t x, std::int32_t y, bool writable);
    virtual void setMask(ilImage* image, std::int32_t x, std::int32_t y, bool writable);
    // 0 to 1; clamped.
    virtual void setOpacity(float value);
    virtual void setOpacity2(float value);
    virtual void setOpacity3(float value);

  protected:
    // Fills the kernel table: the defaults, then the mode's own, vector ones only if allowed.
    // Overriders call this first.
    virtual void installKernels(bool allowVector);

  public:
    void setDestination(ilImage* image, std::int32_t x, std::int32_t y);
    // For those who walk the images themselves: what a run does to one rectangle, from the record's
    // inputs; one without a base isn't there, whatever is bound. From prepareRecords() to the next
    // change of a setting, and then from several threads at once.
    void prepareRecords() { prepareRun(); }
    void blendRecord(const WorkRecord& work) const;
    // A mask of bytes in plain memory in place of an image, until the next setMask: the first one
    // at (x, y), `stride` of them from row to row. Borrowed; runs must not lead beyond it.
    void setPlainMask(std::uint8_t* pixels, std::int32_t stride, std::int32_t x, std::int32_t y) {
        if (inputs_[InputMask].image) setMask(nullptr, 0, 0, false);
        plainMask_ = {pixels, stride, 1, 1};
        plainMaskX_ = x;
        plainMaskY_ = y;
    }
    // Stands for a source image where none is bound. Red in the lowest byte, alpha in the highest.
    void setConstantColor(std::uint32_t color);
    [[nodiscard]] std::uint32_t constantColor() const { return constantColor_[0]; }
    // Stands for a mask image below full opacity. At full opacity pixels aren't masked, save that a
    // mask of 0 leaves nothing to do.
    void setConstantMask(std::uint8_t value);
    [[nodiscard]] std::uint8_t constantMask() const { return constantMask_[0]; }
    // The target keeps its alpha; its colours are scaled to it.
    void setLockAlpha(bool on) {
        lockAlpha_ = on;
        heldWork_.ready = false;
    }
    [[nodiscard]] bool lockAlpha() const { return lockAlpha_; }
    // Whether sources that can't change anything end the work at once.
    [[nodiscard]] bool skipEmpty() const { return skipEmpty_; }

    [[nodiscard]] float getOpacity() const { return parameters_[0]; }
    [[nodiscard]] float getOpacity2() const { return parameters_[1]; }
    [[nodiscard]] float getOpacity3() const { return parameters_[2]; }
    // The same as kernels read them: 0 to 65535.
    [[nodiscard]] std::uint32_t opacity16() const { return opacity16_; }
    [[nodiscard]] std::uint32_t opacity2() const { return opacity2_; }
    [[nodiscard]] std::uint32_t opacity3() const { return opacity3_; }
    [[nodiscard]] const KernelTable& kernels() const { return kernels_; }
    [[nodiscard]] bool hasSourceImage() const { return bool(inputs_[InputSource].image); }

  protected:
    // Fills the table anew if the vector width has changed since.
    void prepareRun() override;
    // Derived constructors end with installKernels(true).
    explicit GenericBlender(std::int32_t mode);
    // Stores a parameter that is kept as a float under an index; the vector grows as needed.
    void setParameter(std::size_t index, float value);

    KernelTable kernels_;
    bool skipEmpty_ = true;

  private:
    struct Layout;

    void bind(BlendInput index, ilImage* image, std::int32_t x, std::int32_t y, bool writable);
    void setOpacityAt(std::size_t index, float value, std::uint32_t& fixed);
    [[nodiscard]] static bool layoutOf(const WorkRecord& record, Layout& layout);
    [[nodiscard]] bool isEmptyWork(const WorkRecord& work) const;
    void prepareHeld(const WorkRecord& page);

    std::uint32_t opacity16_ = 65535, opacity2_ = 65535, opacity3_ = 65535;
    // Constants stand for whole vectors of pixels: of 4 channels, of one (the red), of a mask.
    alignas(32) std::array<std::uint32_t, 8> constantColor_{};
    alignas(8) std::array<std::uint8_t, 8> constantGray_{};
    alignas(8) std::array<std::uint8_t, 8> constantMask_{};
    bool lockAlpha_ = false;
    bool vectorsAllowed_ = true;                    // as installKernels was told
    VectorLevel tableLevel_ = VectorLevel::Scalar;  // at which the table was filled
    bool useVectors_ = false;                       // in the present run
    // Work in the pages that are held, but for size, place and constants.
    struct HeldWork {
        bool ready = false;
        std::uint32_t turn = 0;
        BlockKernel kernel = nullptr;  // null: goes the way of any work
        KernelBlock::Steps steps;
        bool constantSource = false;
    } heldWork_;
};

}  // namespace brushwork::npc
