#include "brushwork/selection_family.h"

#include <vector>

#include "blending/paint/soft_paint_ops.h"
#include "facade/guarded_edit.h"
#include "facade/input_limits.h"
#include "facade/undo_filing.h"
#include "fill/fill_surface.h"

namespace brushwork {
namespace {

enum How : std::int32_t { Replace = 0, Add = 1, TakeAway = 2 };

// With a record of the selection layer.
template <class Work>
void onSelection(FacadeState& state, const Work& work) {
    guardedEdit(
        state, activeOne,
        [&](std::int32_t canvas) {
            LayerStack* const stack = state.stackAt(canvas);
            if (Layer* const layer = stack->selectionLayer())
                recordLayer(state, canvas, layer->id(), true);
        },
        [&](LayerStack& stack) {
            work(stack);
            stack.present();
        });
}

void combine(LayerStack& stack, ilImage& mask, float x, float y, std::int32_t how) {
    if (how == Replace) stack.resetSelection();
    if (how == TakeAway)
        stack.subtractImageFromSelection(mask, x, y);
    else
        stack.addImageToSelection(mask, x, y);
}

// The alpha of an image, one byte a pixel, at the same coordinates.
Ref<ilSmartImage> alphaOf(ilSmartImage& image) {
    const Ref<ilSmartImage> mask(new ilSmartImage(ilPixel(TypeUChar, 1)));
    ilTile box;
    image.bounds(box);
    if (box.isEmpty()) return mask;
    const Ref<SoftPaintOps> painter(new SoftPaintOps(mask.get()));
    const std::uint8_t full = 255;
    mask->fillRegion(box, ilPixel(TypeUChar, 1, &full));
    if (image.channels() == 1) {
        mask->copyRegion(box, image, box.x, box.y, 0, nullptr, CopyDirection::FromOther);
        return mask;
    }
    constexpr std::int32_t rows = 64;
    std::vector<std::uint32_t> pixels;
    std::vector<std::uint8_t> alphas;
    for (std::int32_t y = box.y; y < box.endY(); y += rows) {
        const ilTile band = intersection(flatTile(box.x, y, box.nx, rows), box);
        const auto count = static_cast<std::size_t>(band.nx) * static_cast<std::size_t>(band.ny);
        pixels.resize(count);
        alphas.resize(count);
        image.readRegion(band, pixels.data(), band);
        for (std::size_t n = 0; n < count; ++n)
            alphas[n] = static_cast<std::uint8_t>(pixels[n] >> 24);
        mask->writeRegion(band, alphas.data(), band);
    }
    mask->shrinkBounds();
    return mask;
}

}  // namespace

void SelectionFamily::selectAll() {
    onSelection(state_, [](LayerStack& stack) { stack.selectAll(stack.canvasBounds()); });
}

void SelectionFamily::selectNone() {
    onSelection(state_, [](LayerStack& stack) { stack.resetSelection(); });
}

void SelectionFamily::invertSelection() {
    onSelection(state_, [](LayerStack& stack) { stack.invertSelection(); });
}

void SelectionFamily::selectRegion(const ilTile& box, std::int32_t how) {
    if (!isBox(box)) return;
    const ilTile flat = flatTile(box.x, box.y, box.nx, box.ny);
    onSelection(state_, [&](LayerStack& stack) {
        if (how == Replace)
            stack.selectAll(flat);
        else if (how == TakeAway)
            stack.subtractRectFromSelection(flat);
        else
            stack.addRectToSelection(flat);
    });
}

void SelectionFamily::selectMask(const ImageRef& mask, float x, float y, std::int32_t how) {
    if (!mask || mask.channels() != 1 || !isPlace(x, y)) return;
    onSelection(state_, [&](LayerStack& stack) { combine(stack, *mask.image(), x, y, how); });
}

void SelectionFamily::selectFromLayer(std::int32_t id, std::int32_t how) {
    onSelection(state_, [&](LayerStack& stack) {
        Layer* const layer = stack.layerById(id);
        if (!layer) return;
        layer->prepareForRender(nullptr, false);
        ilSmartImage* const image = layer->smartColor();
        if (!image) return;
        const Ref<ilSmartImage> mask = alphaOf(*image);
        combine(stack, *mask, static_cast<float>(layer->offsetXInt()),
                static_cast<float>(layer->offsetYInt()), how);
    });
}

void SelectionFamily::selectPolygon(std::span<const float> points, std::int32_t how) {
    std::vector<ViewPoint> corners;
    for (std::size_t n = 0; n + 1 < points.size(); n += 2)
        if (isPlace(points[n], points[n + 1])) corners.push_back({points[n], points[n + 1]});
    if (corners.size() < 3) return;
    onSelection(state_, [&](LayerStack& stack) {
        if (how == Replace) stack.resetSelection();
        if (how != TakeAway) return stack.polygonSelect(corners);
        // Turned over, what is added is what goes.
        stack.invertSelection();
        stack.polygonSelect(corners);
        stack.invertSelection();
    });
}

// The selection layer itself is exchanged: its pixels alone wouldn't bring it back.
void SelectionFamily::loadMaskImage(const ImageRef& mask, float x, float y) {
    if (!mask || !isPlace(x, y)) return;
    guardedEdit(
        state_, activeOne,
        [&](std::int32_t canvas) {
            const Layer* const layer = state_.stackAt(canvas)->selectionLayer();
            const std::int32_t selection[] = {layer ? layer->id() : noLayer};
            recordStackWithLayers(state_, canvas, selection);
        },
        [&](LayerStack& stack) {
            stack.setSelectionImage(mask.image(), x, y);
            stack.present();
        });
}

void SelectionFamily::moveSelection(float dx, float dy) {
    if (!isPlace(dx, dy)) return;
    onSelection(state_, [&](LayerStack& stack) {
        float x = 0.0f;
        float y = 0.0f;
        if (Layer* const layer = stack.selectionLayer()) layer->offset(&x, &y);
        if (isPlace(x + dx, y + dy)) stack.moveSelection(dx, dy);
    });
}

void SelectionFamily::makeSelectionActive() {
    guardedEdit(state_, activeOne, [](LayerStack& stack) { stack.makeSelectionActive(); });
}

void SelectionFamily::setSelectionColor(const std::array<float, 4>& color, float opacity) {
    guardedEdit(state_, activeOne, [&](LayerStack& stack) {
        stack.setSelectionColor(color, opacity);
        stack.present();
    });
}

bool SelectionFamily::hasSelection() const {
    const LayerStack* const stack = state_.current();
    return stack && stack->hasSelection();
}

bool SelectionFamily::selectionBounds(ilTile& box) const {
    LayerStack* const stack = state_.current();
    bool empty = true;
    box = ilTile();
    if (stack) stack->selectionBounds(empty, box);
    return !empty;
}

ImageRef SelectionFamily::selectionImage() const {
    const LayerStack* const stack = state_.current();
    Layer* const layer = stack ? stack->selectionLayer() : nullptr;
    ilSmartImage* const image = layer ? layer->smartColor() : nullptr;
    return image ? ImageRef(image->clone().get()) : ImageRef();
}

}  // namespace brushwork
