#include "document/stack/stack_paint_mask.h"

#include "blending/paint/paint_state.h"
#include "document/layer/document_switches.h"
#include "document/stack/stack_painters.h"
#include "image/chain/box_difference.h"

namespace brushwork::stack {
namespace {

constexpr std::uint8_t free = 255;

Ref<ilSmartImage> grayImage(std::uint8_t fill) {
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 1, &fill)));
}

bool isPositive(const ilTile& box) {
    return box.nx > 0 && box.ny > 0 && box.nz > 0;
}

// 255 less each value, the fill too.
Ref<ilSmartImage> turnedOver(ilSmartImage& image) {
    const Ref<ilSmartImage> over = image.clone();
    if (!over) return {};
    ilTile box;
    over->bounds(box);
    if (isPositive(box)) {
        const Ref<SoftPaintOps> painter(new SoftPaintOps(over.get()));
        painter->setBlendFactors(pairInvert.source, pairInvert.target);
        painter->fillRegion(box, ilPixel(TypeUChar, 1, &free));
        // The painter widens the bounds to whole pages; what lies beyond the box is the fill's.
        over->setBounds(box, true);
    }
    const auto fill = static_cast<std::uint8_t>(255 - image.fill().data()[0]);
    over->setFill(ilPixel(TypeUChar, 1, &fill));
    return over;
}

// Multiplies the mask by what a mask or stencil layer leaves free: what is painted on it protects.
void holdBack(ilSmartImage& mask, Layer& layer, const ilTile& box) {
    ilSmartImage* const painted = layer.smartColor();
    if (!painted || painted->channels() != 1) return;
    const Ref<ilSmartImage> over = turnedOver(*painted);
    if (!over) return;
    std::int32_t x = 0;
    std::int32_t y = 0;
    layer.offsetInt(&x, &y);
    ilTile area;
    over->bounds(area);
    const Ref<SoftPaintOps> painter(new SoftPaintOps(&mask));
    painter->setBlendFactors(FactorZero, FactorSourceAlpha);
    painter->drawImage(over.get(), area.x + x, area.y + y);
    const std::uint8_t beyond = over->fill().data()[0];
    if (beyond == free) return;
    // Where the layer has no pixels its fill holds.
    painter->setColor(beyond, 0, 0, 0);
    const ilTile placed = flatTile(area.x + x, area.y + y, area.nx, area.ny);
    ilTile piece;
    for (BoxDifference around(box, placed); around.next(piece);) painter->fill(piece);
    const auto fill = static_cast<std::uint8_t>(mask.fill().data()[0] * beyond / 255);
    mask.setFill(ilPixel(TypeUChar, 1, &fill));
}

}  // namespace

bool hasSelection(const StackParts& stack) {
    Layer* const layer = stack.selection.layer.get();
    if (!layer || !layer->enabled()) return false;
    ilSmartImage* const image = layer->smartColor();
    if (!image) return false;
    ilTile box;
    image->bounds(box);
    return isPositive(box);
}

Ref<ilSmartImage> maskComposite(StackParts& stack, Layer& layer, const ilTile& box) {
    if (&layer == stack.selection.layer.get()) {
        ilSmartImage* const image = layer.smartColor();
        if (!image) return {};
        std::int32_t x = 0;
        std::int32_t y = 0;
        layer.offsetInt(&x, &y);
        if (x == 0 && y == 0) return image->clone();
        const Ref<ilSmartImage> mask(new ilSmartImage(image->fill()));
        ilTile area;
        image->bounds(area);
        mask->copyRegion(flatTile(area.x + x, area.y + y, area.nx, area.ny), *image, area.x, area.y,
                         0, nullptr, CopyDirection::FromOther);
        return mask;
    }
    if (layer.role() != LayerRole::Paint) return {};
    Ref<ilSmartImage> mask;
    for (Layer* above = layer.next.get(); above && above->role() != LayerRole::Paint;
         above = above->next.get()) {
        const bool counts =
            above->visible() && above->enabled() && (above->isMask() || above->stencilActive());
        if (counts) {
            if (!mask) mask = grayImage(free);
            holdBack(*mask, *above, box);
        }
        if (above->isMask()) break;
    }
    return mask;
}

void rebuildPaintMask(StackParts& stack) {
    if (stack.damage.lockCount > 0 || stack.transform.open || documentSwitches().paintMaskBlocked)
        return;
    SelectionState& selection = stack.selection;
    Layer* const active = stack.active.layer.get();
    selection.paintMask.reset();
    stack.painters.guard.reset();
    selection.active = hasSelection(stack) && selection.layer.get() != active;
    const ilTile& canvas = stack.plane.canvasBounds;
    Ref<ilSmartImage> mask;
    if (selection.active)
        mask = maskComposite(stack, *selection.layer, canvas);
    else if (active)
        mask = maskComposite(stack, *active, canvas);
    if (mask) {
        selection.paintMask = mask;
        stack.painters.guard = turnedOver(*mask);
    }
    paintOps(stack);
}

}  // namespace brushwork::stack
