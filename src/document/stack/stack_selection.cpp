#include "document/stack/stack_selection.h"

#include <cmath>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/document_switches.h"
#include "document/stack/stack_active.h"
#include "document/stack/stack_caches.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_paint_mask.h"
#include "foundation/services/log.h"

namespace brushwork::stack {
namespace {

constexpr std::uint8_t selected = 255;
constexpr std::uint8_t unselected = 0;

ilPixel gray(std::uint8_t value) {
    return ilPixel(TypeUChar, 1, &value);
}

bool isPositive(const ilTile& box) {
    return box.nx > 0 && box.ny > 0 && box.nz > 0;
}

ilSmartImage* imageOf(StackParts& stack) {
    return stack.selection.layer ? stack.selection.layer->smartColor() : nullptr;
}

// Of a document box in the selection image.
ilTile inSelection(const StackParts& stack, const ilTile& box) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    stack.selection.layer->offsetInt(&x, &y);
    return flatTile(box.x - x, box.y - y, box.nx, box.ny);
}

void adopt(StackParts& stack, ilSmartImage& image, const LayerColor& color, float opacity) {
    // By name: it takes no number from the layers of the list.
    const Ref<Layer> layer(new Layer(&image, nullptr, LayerRole::Mask, Layer::plainFlags, 0.0f,
                                     0.0f, znString::IString(u"Selection")));
    layer->setOverlayColor(color);
    layer->setOverlayOpacity(opacity);
    const bool wasActive = stack.active.layer && stack.active.layer == stack.selection.layer;
    stack.selection.layer = layer;
    if (wasActive) setActiveLayer(stack, layer.get(), false, true);
}

void fillWhole(ilSmartImage& image, std::uint8_t value) {
    ilTile box;
    image.bounds(box);
    if (isPositive(box)) image.fillRegion(box, gray(value));
    image.setFill(gray(value));
}

void paintImage(StackParts& stack, ilImage& image, float x, float y, BlendFactors factors) {
    if (!stack.selection.layer) makeSelectionLayer(stack);
    ilSmartImage* const target = imageOf(stack);
    if (!target) return;
    const auto left = static_cast<std::int32_t>(std::lround(x));
    const auto bottom = static_cast<std::int32_t>(std::lround(y));
    ilTile box = image.box();
    if (ilSmartImage* const smart = ilSmartImage::from(&image)) smart->bounds(box);
    const ilTile place = inSelection(stack, flatTile(box.x + left, box.y + bottom, box.nx, box.ny));
    const Ref<SoftPaintOps> painter(new SoftPaintOps(target));
    painter->setBlendFactors(factors.source, factors.target);
    painter->drawImage(&image, place.x, place.y);
    selectionChanged(stack);
}

}  // namespace

void makeSelectionLayer(StackParts& stack) {
    const Ref<ilSmartImage> image(new ilSmartImage(gray(unselected)));
    adopt(stack, *image, stack.selection.color, stack.selection.opacity);
}

void selectionChanged(StackParts& stack) {
    SelectionState& selection = stack.selection;
    // Bounds without a selected pixel in them would hold back all painting.
    if (ilSmartImage* const image = imageOf(stack)) image->shrinkBounds(true);
    if (selection.layer) selection.layer->touch();
    rebuildPaintMask(stack);
    selection.changed = true;
    selection.outline.reset();
    stack.caches.aboveStale = true;
    stack.caches.whole.reset();
    ++stack.damage.generation;
    if (selection.mode == 0) invalidateRect(stack, stack.plane.canvasBounds);
}

void resetSelection(StackParts& stack) {
    if (!stack.selection.layer)
        makeSelectionLayer(stack);
    else if (ilSmartImage* const image = imageOf(stack))
        fillWhole(*image, unselected);
    selectionChanged(stack);
}

void selectAll(StackParts& stack, const ilTile& box) {
    resetSelection(stack);
    addRectToSelection(stack, box);
}

void selectImage(StackParts& stack, ilImage& image) {
    resetSelection(stack);
    addImageToSelection(stack, image, 0.0f, 0.0f);
}

void clearSelection(StackParts& stack) {
    if (ilSmartImage* const image = imageOf(stack)) {
        fillWhole(*image, selected);
        image->setBounds(emptyTile);
    }
    selectionChanged(stack);
}

// Within the canvas and what was selected beyond it: of all there is nothing is left.
void invertSelection(StackParts& stack) {
    if (!stack.selection.layer) makeSelectionLayer(stack);
    ilSmartImage* const image = imageOf(stack);
    if (!image) return;
    ilTile box;
    image->bounds(box);
    box = unionOf(box, inSelection(stack, stack.plane.canvasBounds));
    const Ref<SoftPaintOps> painter(new SoftPaintOps(image));
    painter->setBlendFactors(pairInvert.source, pairInvert.target);
    painter->fillRegion(box, gray(selected));
    if (image->fill() != gray(unselected)) image->setFill(gray(unselected));
    selectionChanged(stack);
}

void addRectToSelection(StackParts& stack, const ilTile& box) {
    if (!stack.selection.layer) makeSelectionLayer(stack);
    if (ilSmartImage* const image = imageOf(stack); image && isPositive(box))
        image->fillRegion(inSelection(stack, box), gray(selected));
    selectionChanged(stack);
}

void addImageToSelection(StackParts& stack, ilImage& image, float x, float y) {
    paintImage(stack, image, x, y, pairOver);
}

void subtractRectFromSelection(StackParts& stack, const ilTile& box) {
    if (!stack.selection.layer) makeSelectionLayer(stack);
    if (ilSmartImage* const image = imageOf(stack); image && isPositive(box))
        image->fillRegion(inSelection(stack, box), gray(unselected));
    selectionChanged(stack);
    if (documentSwitches().compositeCacheEnabled) refreshAbove(stack, false);
}

void subtractImageFromSelection(StackParts& stack, ilImage& image, float x, float y) {
    paintImage(stack, image, x, y, pairKeepOutside);
}

void setSelectionImage(StackParts& stack, ilImage* image, float x, float y) {
    const Ref<Layer> former = stack.selection.layer;
    const LayerColor color = former ? former->overlayColor() : stack.selection.color;
    const float opacity = former ? former->overlayOpacity() : stack.selection.opacity;
    if (image && image->channels() == 1) {
        const Ref<ilSmartImage> child(new ilSmartImage(image));
        adopt(stack, *child, color, opacity);
        if (former) stack.selection.layer->setName(former->name());
        stack.selection.layer->setTransform(TransformRecord(), x, y);
    } else {
        const Ref<ilSmartImage> blank(new ilSmartImage(gray(unselected)));
        adopt(stack, *blank, color, opacity);
        log("Can't copy a 1 channel image to the selection mask\n");
    }
    selectionChanged(stack);
}

// What is selected lies around: the box is that of what isn't blank, pixel by pixel.
void selectionBounds(StackParts& stack, bool& empty, ilTile& box) {
    empty = true;
    box = ilTile();
    ilSmartImage* const image = imageOf(stack);
    if (!image) return;
    stack.selection.layer->tighten();
    ilTile area;
    image->bounds(area);
    if (!isPositive(area)) return;
    std::int32_t x = 0;
    std::int32_t y = 0;
    stack.selection.layer->offsetInt(&x, &y);
    const Ref<ilSmartImage> ground(new ilSmartImage(gray(unselected)));
    const Ref<SoftPaintOps> painter(new SoftPaintOps(ground.get()));
    ground->fillRegion(area, gray(selected));
    painter->setBlendFactors(pairKeepInside.source, pairKeepInside.target);
    painter->drawImage(image, area.x, area.y);
    ground->shrinkBounds();
    ground->bounds(box);
    if (!isPositive(box)) return;
    box.x += x;
    box.y += y;
    empty = false;
}

void makeSelectionActive(StackParts& stack) {
    if (!stack.selection.layer) makeSelectionLayer(stack);
    setActiveLayer(stack, stack.selection.layer.get(), true, false);
}

void moveSelection(StackParts& stack, float dx, float dy) {
    if (!stack.selection.layer) return;
    float x = 0.0f;
    float y = 0.0f;
    stack.selection.layer->offset(&x, &y);
    stack.selection.layer->setTransform(TransformRecord(), x + dx, y + dy);
    selectionChanged(stack);
}

void setSelectionColor(StackParts& stack, const LayerColor& color, float opacity) {
    stack.selection.color = color;
    stack.selection.opacity = opacity;
    if (!stack.selection.layer) return;
    stack.selection.layer->setOverlayColor(color);
    stack.selection.layer->setOverlayOpacity(opacity);
    stack.caches.aboveStale = true;
    if (stack.selection.mode == 0) invalidateRect(stack, stack.plane.canvasBounds);
}

}  // namespace brushwork::stack
