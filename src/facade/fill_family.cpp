#include "brushwork/fill_family.h"

#include "blending/paint/soft_paint_ops.h"
#include "facade/guarded_edit.h"
#include "facade/input_limits.h"
#include "facade/undo_filing.h"
#include "facade/user_messages.h"
#include "fill/fill_algorithm.h"
#include "foundation/host/host_canvas.h"

namespace brushwork {
namespace {

bool isPaintable(LayerStack& stack, std::int32_t id) {
    Layer* const layer = stack.layerById(id);
    return layer && !layer->asGroup() && !layer->holdsShapes() && !layer->locked();
}

// The gradient in a band of rows at a time, so that a large canvas needs no second picture.
bool paintGradient(LayerStack& stack, Layer& layer, const FillFamily::Gradient& gradient) {
    const ilTile canvas = stack.canvasBounds();
    if (canvas.isEmpty()) return false;
    const std::int32_t left = canvas.x - layer.offsetXInt();
    const std::int32_t bottom = canvas.y - layer.offsetYInt();
    const Ref<ilMemoryImg> image(
        new ilMemoryImg(canvas.nx, canvas.ny, 1, 4, TypeUChar, OrderInterleaved));
    if (!image->data()) return false;
    GradientStops stops;
    stops.add(0.0f, gradient.fromColor);
    stops.add(1.0f, gradient.toColor);
    FillParameters parameters;
    parameters.kind = gradient.radial ? FillKind::Radial : FillKind::Linear;
    parameters.startX = gradient.fromX - static_cast<float>(left);
    parameters.startY = gradient.fromY - static_cast<float>(bottom);
    parameters.endX = gradient.toX - static_cast<float>(left);
    parameters.endY = gradient.toY - static_cast<float>(bottom);
    parameters.width = parameters.right = canvas.nx;
    parameters.height = parameters.bottom = canvas.ny;
    parameters.dither = gradient.dither;
    parameters.stops = &stops;
    FillAlgorithm fill;
    fill.setup(&parameters, image);
    PaintOps* const painter = stack.paintOps();
    if (!fill.run() || !painter) return false;
    painter->beginAccess();
    painter->setBlendFactors(pairOver.source, pairOver.target);
    painter->rect_copy(left, bottom, canvas.nx, canvas.ny, PaintSource::of(image.get(), 0, 0),
                       PaintFormat(), 0, 1.0f, 1.0f);
    painter->endAccess();
    painter->setBlendFactors(pairCopy.source, pairCopy.target);
    layer.touch();
    stack.noteChange(&layer);
    stack.accumulateDirty(flatTile(left, bottom, canvas.nx, canvas.ny), layer);
    stack.present();
    return true;
}

}  // namespace

bool FillFamily::floodFill(float x, float y, const std::array<float, 4>& color, float tolerance,
                           std::int32_t id, std::int32_t canvas) {
    LayerStack* const before = state_.stackAt(canvas);
    if (!before) {
        hostShowMessage(messages::fillWithoutLayer);
        return false;
    }
    if (!isPlace(x, y) || !isPaintable(*before, id)) return false;
    return guardedEdit(
        state_, canvas, [&](std::int32_t index) { recordLayer(state_, index, id, true); },
        [&](LayerStack& stack) { return stack.floodFill(x, y, color, tolerance, id); });
}

bool FillFamily::continueFill(float tolerance) {
    LayerStack* const stack = state_.current();
    if (!stack) {
        hostShowMessage(messages::fillWithoutLayer);
        return false;
    }
    return stack->continueFill(tolerance);
}

bool FillFamily::endFill() {
    LayerStack* const stack = state_.current();
    if (!stack || !stack->isFloodFilling()) return false;
    stack->endFill();
    state_.scheduleIdle();
    return true;
}

bool FillFamily::magicWand(float x, float y, float tolerance, bool replace, std::int32_t id,
                           bool followRamps) {
    if (!state_.current()) {
        hostShowMessage(messages::wandWithoutLayer);
        return false;
    }
    if (!isPlace(x, y)) return false;
    stack::WandParams params;
    params.doodle = followRamps;
    return guardedEdit(
        state_, activeOne,
        [&](std::int32_t canvas) {
            LayerStack* const stack = state_.stackAt(canvas);
            if (Layer* const selection = stack->selectionLayer())
                recordLayer(state_, canvas, selection->id(), true);
        },
        [&](LayerStack& stack) {
            const bool done = stack.magicWand(x, y, tolerance, params, replace, id);
            stack.present();
            return done;
        });
}

bool FillFamily::sampleFill(float x, float y, std::uint32_t* pixel, std::int32_t id) {
    LayerStack* const stack = state_.current();
    if (!stack) {
        hostShowMessage(messages::fillWithoutLayer);
        return false;
    }
    return pixel && isPlace(x, y) && stack->sampleFill(x, y, id, *pixel);
}

bool FillFamily::fillGradient(const Gradient& gradient, std::int32_t id) {
    if (!isPlace(gradient.fromX, gradient.fromY) || !isPlace(gradient.toX, gradient.toY))
        return false;
    LayerStack* const before = state_.current();
    if (!before || !isPaintable(*before, id)) return false;
    if (before->layerById(id)->role() != LayerRole::Paint) return false;
    return guardedEdit(
        state_, activeOne, [&](std::int32_t canvas) { recordLayer(state_, canvas, id, true); },
        [&](LayerStack& stack) {
            Layer* const layer = stack.layerById(id);
            if (!layer) return false;
            const ActiveFor active(stack, *layer);
            return paintGradient(stack, *layer, gradient);
        });
}

}  // namespace brushwork
