// Drawing layers into a target.
#pragma once

#include <functional>
#include <span>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

struct LayerDraw {
    ilTile box{0, 0, 0, 0, 0, 1};  // document coordinates
    // The canvas origin: a document place p is the target's pixel p + origin. 0 unless useOrigin.
    std::int32_t originX = 0, originY = 0;
    bool useOrigin = false;
    bool refreshThumbnail = false;
    std::uint32_t flagMask = ~std::uint32_t{0};
    const Layer* clipLayer = nullptr;  // places are relative to this layer's offset
    bool ownOpacity = false;           // not that of the groups around
    std::int32_t tag = 0;              // of group requests: caches of another tag are drawn anew
    // Of groups: the layer being worked on, shown though it be a mask, and the painter in which a
    // stroke on it waits for the paint mask; null: none.
    Layer* activeLayer = nullptr;
    MaskingPaintOps* pending = nullptr;
    bool onStencil = false;                    // the stroke goes into the stencil
    const ilPageTileManager* tiles = nullptr;  // null: the whole box
    // By drawLayers, where the topmost are drawn together block by block: told each block of the
    // box that is done, while it is still at hand. Else never.
    std::function<void(const ilTile& block)> blockDone;
};

// Composites one layer or group into the painter's image. True if anything was drawn.
bool drawLayer(StackParts& stack, Layer* layer, PaintOps& target, const LayerDraw& draw);
// The same for layers from the bottom up. Plain ones are drawn together block by block, so that
// what one leaves in the target is still at hand for the next.
bool drawLayers(StackParts& stack, std::span<Layer* const> layers, PaintOps& target,
                const LayerDraw& draw);
// Visible in the tree, opacity above 0.002, neither mask nor stencil.
[[nodiscard]] bool isDrawable(Layer& layer);
// A list of layers with the given opacities (one a layer), as a new image.
[[nodiscard]] Ref<ilSmartImage> composeLayers(StackParts& stack, std::span<Layer* const> layers,
                                              std::span<const float> opacities);
// Layers below a group or at the top level that are drawn, with what their opacity comes to:
// pass-through groups stand for their members.
void gatherVisible(const LayerChain& chain, float opacity, std::vector<Layer*>& layers,
                   std::vector<float>& opacities);
// The layers whose flags meet the mask, in order, on a new image; bit 0x8000 asks for the
// background first.
[[nodiscard]] Ref<ilSmartImage> compositeByFlags(StackParts& stack, std::uint32_t flagMask);
// One layer with stencil, and selection where asked, as a new image; its place goes to (x, y). Of a
// layer that covers what nobody has painted, all that the canvas shows.
[[nodiscard]] Ref<ilSmartImage> composeToImage(StackParts& stack, std::int32_t id, std::int32_t* x,
                                               std::int32_t* y, bool clipToCanvas,
                                               bool withSelection, bool withOpacity);
// Of the stack or the process; red, green, blue, alpha as bytes, premultiplied, red lowest.
[[nodiscard]] std::uint32_t backgroundPixel(const StackParts& stack);

}  // namespace brushwork::stack
