// New canvases for frames, and one canvas in front after another.
#include "animation/animation_state.h"
#include "facade/facade_state.h"

namespace brushwork {
namespace {

// What is selected, where, and how it is shown.
void copySelection(const LayerStack& from, LayerStack& to) {
    SelectionState& state = to.parts().selection;
    const SelectionState& other = from.parts().selection;
    state.active = other.active;
    state.mode = other.mode;
    state.opacity = other.opacity;
    state.color = other.color;
    Layer* const layer = from.selectionLayer();
    ilSmartImage* const image = layer ? layer->smartColor() : nullptr;
    if (!image) return;
    const Ref<ilSmartImage> copy = image->clone();
    if (copy)
        to.setSelectionImage(copy.get(), static_cast<float>(layer->offsetXInt()),
                             static_cast<float>(layer->offsetYInt()));
}

}  // namespace

void AnimationState::commitPending() {
    paint.endStroke();
    if (paint.inTransform()) paint.endTransform(true);
    paint.endFill();
}

std::int32_t AnimationState::newFrameCanvas(std::int32_t model) {
    if (!paint.hasCanvas(model)) return -1;
    const UndoPause pause(paint);
    const ilTile box = paint.canvasBounds(model);
    TransformRecord view;
    const bool seen = paint.view(model, view);
    const std::int32_t canvas = paint.newCanvas(box.nx, box.ny);
    if (canvas < 0) return -1;
    const FacadeState& facade = paint.state();
    copySelection(*facade.stackAt(model), *facade.stackAt(canvas));
    paint.setBackground(paint.background(model));
    paint.setName(paint.newLayer(), znString::IString(u"Layer 1"));
    paint.setName(paint.newLayer(), znString::IString(u"Foreground"));
    if (seen) paint.setView(canvas, view);
    return canvas;
}

std::int32_t AnimationState::copyOfCanvas(std::int32_t canvas) {
    const UndoPause pause(paint);
    return paint.duplicateCanvas(canvas);
}

// The brush is the manager's, whatever canvas is in front; the view is carried over.
void AnimationState::showCanvas(std::int32_t canvas, std::int32_t layerId, bool preserveView) {
    if (canvas != paint.currentCanvas()) {
        TransformRecord view;
        const bool seen = preserveView && paint.view(paint.currentCanvas(), view);
        if (!paint.setCurrentCanvas(canvas)) return;
        if (seen) paint.setView(canvas, view);
        paint.refreshDisplay(canvas);
    }
    if (layerId >= 0 && paint.canvasOfLayer(layerId) == canvas) paint.setActiveLayer(layerId);
}

}  // namespace brushwork
