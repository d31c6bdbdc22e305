// blender::Base: blends whole rows of one picture over another, outside any stroke.
//
//     const auto screen = makeRef<blender::Screen<>>();
//     screen->width = 640, screen->height = 480;
//     screen->destination = below, screen->destinationStride = 1024;   // strides in pixels
//     screen->source = above, screen->sourceStride = 640;
//     screen->blend();
//
// The older, simpler sibling of npc::Blender: pictures lie in memory, there are no masks (but for
// the brush classes), no pages and no threads, and an opacity is baked into the source beforehand.
// The formulas are those of npc::GenericBlender's modes without a mask.
#pragma once

#include <cstddef>
#include <cstdint>

#include "blending/core/byte_rows.h"
#include "brushwork/reference_count.h"

namespace brushwork::blender {

// D and S are the pixel words of destination and source: four channels, red lowest, premultiplied.
template <class D = std::uint32_t, class S = D>
class Base : public virtual zn::ReferenceCount {
    static_assert(sizeof(D) == 4 && sizeof(S) == 4, "pixels are four bytes");

  public:
    // Slots 1 to 3 of the virtual operations, in this order.
    // Walks the rows. Nothing happens without a destination, without a source, or if empty.
    virtual void blend();
    virtual void reset() {}
    // With a constant source `sources` is one pixel for all. Blending in place is allowed.
    virtual void blendRow(D* destinations, const S* sources, std::size_t count) = 0;

    std::uint32_t width = 0, height = 0;
    D* destination = nullptr;
    S* source = nullptr;
    std::int32_t destinationStride = 0, sourceStride = 0;
    bool constantSource = false;  // `constantPixel` stands for the source
    S constantPixel = 0;

  protected:
    ~Base() override = default;

    // Whether rows follow each other without a gap, and so can be one.
    [[nodiscard]] bool isGapless(std::int32_t stride) const {
        return stride >= 0 && static_cast<std::uint32_t>(stride) == width;
    }
    // A row as the kernels take it. `constants` holds a constant source.
    struct Constants {
        alignas(32) S pixels[8];
    };
    [[nodiscard]] npc::KernelRow kernelRow(D* destinations, const S* sources, std::size_t count,
                                           Constants& constants) const;
};

template <class D, class S>
void Base<D, S>::blend() {
    if (destination == nullptr || (source == nullptr && !constantSource)) return;
    const bool merges = isGapless(destinationStride) && (constantSource || isGapless(sourceStride));
    const std::size_t count = merges ? std::size_t{width} * height : width;
    const std::uint32_t rows = merges ? 1 : height;
    D* to = destination;
    const S* from = constantSource ? &constantPixel : source;
    for (std::uint32_t y = 0; y < rows; ++y) {
        blendRow(to, from, count);
        if (y + 1 == rows) break;
        to += destinationStride;
        if (!constantSource) from += sourceStride;
    }
}

template <class D, class S>
npc::KernelRow Base<D, S>::kernelRow(D* destinations, const S* sources, std::size_t count,
                                     Constants& constants) const {
    npc::KernelRow row;
    row.hi = reinterpret_cast<std::uint8_t*>(destinations);
    // Kernels of these modes only read their source.
    row.source = reinterpret_cast<std::uint8_t*>(const_cast<S*>(sources));
    row.sourceStride = constantSource ? 0 : 1;
    row.count = count;
    if (constantSource) {
        for (S& pixel : constants.pixels) pixel = *sources;
        row.source = reinterpret_cast<std::uint8_t*>(constants.pixels);
    }
    return row;
}

// A class of the family that blends by a formula (see blending/core/pixel_math.h).
template <class Formula, class D = std::uint32_t, class S = D>
class FormulaRows : public Base<D, S> {
  public:
    void blendRow(D* destinations, const S* sources, std::size_t count) override {
        if (count == 0) return;
        typename Base<D, S>::Constants constants;
        npc::blendByteRow(Formula{}, this->kernelRow(destinations, sources, count, constants));
    }

  protected:
    ~FormulaRows() override = default;
};

}  // namespace brushwork::blender
