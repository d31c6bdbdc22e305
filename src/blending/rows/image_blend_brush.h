// blender::BrushNormal, BrushEraser, BrushSmudge: stroke buffers into a layer, through a mask and
// with an opacity. The layer may have two planes, high and low bytes of 16-bit channels.
//
//     const auto brush = makeRef<blender::BrushNormal<>>();
//     ... the words of blender::Base ...
//     brush->mask = coverage, brush->maskStride = 640;
//     brush->opacity = 0.5F;
//     brush->blend();
#pragma once

#include "blending/core/parameter_words.h"
#include "blending/rows/image_blend.h"

namespace brushwork::blender {

// What a brush class blends a row of. Without a mask everything is let through.
template <class D, class S>
struct BrushRow {
    D* destination = nullptr;
    D* secondDestination = nullptr;  // low bytes; only of two planes
    S* source = nullptr;
    S* secondSource = nullptr;  // low bytes of carried paint, or null
    const std::uint8_t* mask = nullptr;
    std::size_t count = 0;
};

template <class D = std::uint32_t, class S = D>
class BrushBase : public Base<D, S> {
  public:
    using Row = BrushRow<D, S>;

    // Walks the rows. Nothing happens with an opacity of 0 or without a source.
    void blend() override;
    // A row without a mask.
    void blendRow(D* destinations, const S* sources, std::size_t count) override;

    // Slots 4 to 6 of the virtual operations, in this order.
    // Reads the parameters; false if there is nothing to do. blend calls it; whoever blends rows
    // by himself does.
    virtual bool prepare();
    virtual void blendRowMasked(const Row& row) = 0;
    // On two planes. What has no such form blends the high bytes.
    virtual void blendRowDual(const Row& row);

    D* secondDestination = nullptr;
    std::int32_t secondDestinationStride = 0;
    const std::uint8_t* mask = nullptr;
    std::int32_t maskStride = 0;  // bytes
    float opacity = 1.0F;         // 0 to 1
    bool dualPlane = false;
    [[nodiscard]] std::uint32_t opacity16() const { return opacity16_; }

  protected:
    ~BrushBase() override = default;

    // The low bytes of the source, for classes that carry paint along.
    [[nodiscard]] virtual S* lowSource() const { return nullptr; }
    [[nodiscard]] virtual std::int32_t lowSourceStride() const { return 0; }

    // The row as the kernels take it; a full mask stands for one that there isn't.
    [[nodiscard]] npc::KernelRow brushKernelRow(const Row& row,
                                                typename Base<D, S>::Constants& constants) const;

  private:
    std::uint32_t opacity16_ = 65535;
};

// Lays the stroke over the layer: Normal through a mask.
template <class D = std::uint32_t, class S = D>
class BrushNormal : public BrushBase<D, S> {
  public:
    void blendRowMasked(const BrushRow<D, S>& row) override;
    void blendRowDual(const BrushRow<D, S>& row) override;

  protected:
    ~BrushNormal() override = default;
};

// Takes away as much as the stroke's alpha says: Clear through a mask.
template <class D = std::uint32_t, class S = D>
class BrushEraser : public BrushBase<D, S> {
  public:
    void blendRowMasked(const BrushRow<D, S>& row) override;

  protected:
    ~BrushEraser() override = default;
};

// Lays carried paint on the layer and takes the layer up in the same step. Both have two planes;
// on others nothing happens.
template <class D = std::uint32_t, class S = D>
class BrushSmudge : public BrushBase<D, S> {
  public:
    void blendRowMasked(const BrushRow<D, S>&) override {}
    void blendRowDual(const BrushRow<D, S>& row) override;

    float pickup = 1.0F;        // the part that the paint takes up, 0 to 1
    S* secondSource = nullptr;  // low bytes of the carried paint
    std::int32_t secondSourceStride = 0;

  protected:
    ~BrushSmudge() override = default;
    [[nodiscard]] S* lowSource() const override { return secondSource; }
    [[nodiscard]] std::int32_t lowSourceStride() const override { return secondSourceStride; }
};

extern template class BrushBase<>;
extern template class BrushNormal<>;
extern template class BrushEraser<>;
extern template class BrushSmudge<>;

}  // namespace brushwork::blender
