#include "facade/canvas_rotation.h"

#include <vector>

namespace brushwork {
namespace {

std::vector<Layer*> plainLayers(LayerStack& stack) {
    std::vector<Layer*> layers;
    static_cast<void>(eachLayer(stack.parts().list, [&](Layer& layer) {
        if (!layer.asGroup() && !layer.holdsShapes()) layers.push_back(&layer);
        return true;
    }));
    if (stack.selectionLayer()) layers.push_back(stack.selectionLayer());
    return layers;
}

void moveBy(Layer& layer, std::int32_t dx, std::int32_t dy) {
    float x = 0.0f;
    float y = 0.0f;
    layer.offset(&x, &y);
    layer.setOffset(x + static_cast<float>(dx), y + static_cast<float>(dy));
}

// Turns the layer, whose box then stands at (toX, toY) of the document.
template <class Place>
void turn(Layer& layer, bool other, const Place& place) {
    layer.bakeStencil();
    layer.tighten();
    ilTile before;
    layer.contentBounds(before, true);
    if (before.isEmpty()) return;
    layer.rotateImage(other);
    ilTile after;
    layer.contentBounds(after, true);
    const auto [x, y] = place(before);
    moveBy(layer, x - after.x, y - after.y);
    layer.markClipDirty(true);
}

struct Corner {
    std::int32_t x, y;
};

void allChanged(LayerStack& stack) {
    StackParts& parts = stack.parts();
    parts.caches.groups.clear();
    stack::noteListChange(parts);
    static_cast<void>(eachLayer(parts.list, [](Layer& layer) {
        if (LayerGroup* const group = layer.asGroup()) group->markCache(nullptr);
        return true;
    }));
    stack::selectionChanged(parts);
    stack.refreshDisplay(true);
}

}  // namespace

// A point (x, y) of a canvas of w by h goes to (h - y, x), or the other way to (y, w - x).
void rotateWholeCanvas(LayerStack& stack, bool other, znUtil::Progress* progress) {
    stack.absorbOrigin();
    const ilTile canvas = stack.canvasBounds();
    const std::vector<Layer*> layers = plainLayers(stack);
    for (std::size_t n = 0; n < layers.size(); ++n) {
        turn(*layers[n], other, [&](const ilTile& box) {
            return other ? Corner{box.y, canvas.nx - box.endX()}
                         : Corner{canvas.ny - box.endY(), box.x};
        });
        if (progress)
            progress->setFraction(static_cast<double>(n) * 0.98 /
                                  static_cast<double>(layers.size()));
    }
    if (!stack.canvas()) stack.resizePlane(canvas.ny, canvas.nx);
    allChanged(stack);
}

void rotateOneLayer(LayerStack& stack, std::int32_t id, bool other) {
    Layer* const layer = stack.layerById(id);
    if (!layer) return;
    turn(*layer, other, [](const ilTile& box) {
        return Corner{box.x + (box.nx - box.ny) / 2, box.y + (box.ny - box.nx) / 2};
    });
    layer->touch();
    layer->propagateChange(true);
    stack.noteChange(layer);
    stack::staleSide(stack.parts(), *layer);
    stack.refreshDisplay(false);
}

void flipWholeCanvas(LayerStack& stack, bool horizontal, bool vertical) {
    for (Layer* layer : plainLayers(stack)) stack.flipCanvas(horizontal, vertical, layer->id());
    allChanged(stack);
}

}  // namespace brushwork
