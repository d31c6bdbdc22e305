#include "brushwork/shape_family.h"

#include <algorithm>
#include <vector>

#include "document/layer/shape_layer.h"
#include "facade/guarded_edit.h"
#include "facade/input_limits.h"
#include "facade/undo_filing.h"
#include "facade/user_messages.h"
#include "foundation/host/host_canvas.h"
#include "undo/canvas_redraw.h"
#include "undo/pnt_undo_shape_add.h"
#include "undo/pnt_undo_shape_array_delete.h"
#include "undo/pnt_undo_shape_delete.h"

namespace brushwork {
namespace {

enum class Active { None, Paint, Raster, Shape, ShapeMask, ShapeStencil, Warp };

Active classOf(Layer* layer) {
    if (!layer || layer->asGroup()) return Active::None;
    ShapeLayer* const shapes = ShapeLayer::from(layer);
    if (!shapes) return layer->role() == LayerRole::Paint ? Active::Paint : Active::Raster;
    switch (shapes->kind()) {
        case ShapeLayerKind::Mask: return Active::ShapeMask;
        case ShapeLayerKind::Stencil: return Active::ShapeStencil;
        case ShapeLayerKind::Warp: return Active::Warp;
        default: return Active::Shape;
    }
}

// What keeps such a shape out of the active layer; null for nothing.
const char* refusal(ShapeKind kind, Active active) {
    switch (kind) {
        case ShapeKind::Warp:
            return active == Active::Paint || active == Active::Warp ? nullptr
                                                                     : messages::warpNeedsPaint;
        case ShapeKind::Mask:
            if (active == Active::Shape) return messages::maskIntoShape;
            if (active == Active::ShapeStencil) return messages::maskIntoStencil;
            return active == Active::Warp ? messages::maskIntoWarp : nullptr;
        case ShapeKind::Stencil:
            if (active == Active::Shape) return messages::stencilIntoShape;
            if (active == Active::ShapeMask) return messages::stencilIntoMask;
            return active == Active::Warp ? messages::stencilIntoWarp : nullptr;
        default: return nullptr;
    }
}

bool goesInto(ShapeKind kind, Active active) {
    switch (kind) {
        case ShapeKind::Warp: return active == Active::Warp;
        case ShapeKind::Mask: return active == Active::ShapeMask;
        case ShapeKind::Stencil: return active == Active::ShapeStencil;
        default: return active == Active::Shape;
    }
}

ShapeKind kindOf(std::int32_t kind) {
    return kind >= 1 && kind <= 3 ? static_cast<ShapeKind>(kind) : ShapeKind::Paint;
}

void shapesChanged(LayerStack& stack, ShapeLayer& layer) {
    layer.setShapesDirty();
    layer.propagateChange(true);
    stack.noteChange(&layer);
    if (layer.role() != LayerRole::Paint) {
        layer.markClipDirty(true);
        stack.rebuildPaintMask();
    }
    stack::staleSide(stack.parts(), layer);
    stack.refreshDisplay(false);
}

std::int32_t addTo(LayerStack& stack, ShapeKind kind, HostShape shape,
                   const Ref<ShapeImageParms>& parms, void* hostData) {
    if (!goesInto(kind, classOf(stack.activeLayer()))) {
        stack::NewLayer wanted;
        wanted.shape = true;
        wanted.shapeKind = static_cast<std::int32_t>(kind);
        wanted.render = false;
        if (stack.addLayer(wanted) == noLayer) return noLayer;
    }
    ShapeLayer* const layer = ShapeLayer::from(stack.activeLayer());
    if (!layer) return noLayer;
    // The list makes it its own.
    const Ref<Shape> made(new Shape(nullptr, shape, hostData, parms));
    made->parms().kind = kind;
    layer->addShape(*made, ShapeLayer::topShape);
    shapesChanged(stack, *layer);
    return made->id();
}

}  // namespace

std::int32_t ShapeFamily::addShape(std::int32_t number, HostShape shape,
                                   const Ref<ShapeImageParms>& parms, void* hostData) {
    LayerStack* const before = state_.current();
    if (!before) return noLayer;
    const ShapeKind kind = kindOf(number);
    const Active active = classOf(before->activeLayer());
    if (const char* const text = refusal(kind, active)) {
        hostReportError(messages::errorStyle, text);
        return noLayer;
    }
    Ref<PntUndoLayerStack> structure;
    const bool makesLayer = !goesInto(kind, active);
    return guardedEdit(
        state_, activeOne,
        [&](std::int32_t canvas) {
            if (makesLayer) structure = recordStack(state_, canvas, false);
        },
        [&](LayerStack& stack) {
            const std::int32_t id = addTo(stack, kind, shape, parms, hostData);
            UndoCanvases::ShapePlace place;
            if (id == noLayer || !state_.undo.isActive() || !state_.locateShape(id, place)) {
                // Without a record the copy would leave the records before it behind.
                bool redraw = false;
                if (structure && id == noLayer) structure->undo(&redraw);
                return id;
            }
            const Ref<PntUndoShapeAdd> added(
                new PntUndoShapeAdd(state_, place.canvas, place.layer->id(), place.stack,
                                    place.layer, place.shapeIndex, place.shape, "SidShapeAdd"));
            if (!structure) {
                fileRecord(added.get());
                return id;
            }
            // The shape leaves first, then the layer that was made for it.
            const Ref<PntUndoCombo> combo(new PntUndoCombo(
                added.get(), structure.get(), nullptr, nullptr, nullptr, false, false, "SidCombo"));
            fileRecord(combo.get());
            return id;
        });
}

bool ShapeFamily::deleteShape(std::int32_t shape, std::int32_t) {
    UndoCanvases::ShapePlace place;
    if (!state_.locateShape(shape, place)) return false;
    return guardedEdit(
        state_, place.canvas,
        [&](std::int32_t canvas) {
            const Ref<PntUndoShapeDelete> record(
                new PntUndoShapeDelete(state_, canvas, place.layer->id(), place.stack, place.layer,
                                       place.shapeIndex, place.shape, "SidShapeDelete"));
            fileRecord(record.get());
        },
        [&](LayerStack& stack) {
            const Ref<Shape> held(place.shape);
            const bool done = place.layer->removeShape(*held);
            shapesChanged(stack, *place.layer);
            return done;
        });
}

// Each canvas goes on in a copy, out of which its shapes go.
bool ShapeFamily::deleteShapes(std::span<const std::int32_t> shapes) {
    std::vector<std::int32_t> ids, canvases;
    const auto note = [](std::vector<std::int32_t>& list, std::int32_t number) {
        if (std::find(list.begin(), list.end(), number) == list.end()) list.push_back(number);
    };
    for (const std::int32_t id : shapes) {
        UndoCanvases::ShapePlace place;
        if (!state_.locateShape(id, place)) continue;
        note(ids, id);
        note(canvases, place.canvas);
    }
    if (ids.empty() || state_.stroke.open) return false;
    for (const std::int32_t canvas : canvases) state_.stackAt(canvas)->closeTransform();
    return guardedEdit(
        state_, canvases.front(),
        [&](std::int32_t) {
            const Ref<PntUndoCombo> combo(new PntUndoCombo(nullptr, nullptr, nullptr, nullptr,
                                                           nullptr, false, false, "SidCombo"));
            for (const std::int32_t canvas : canvases)
                combo->addChild(recordStack(state_, canvas, false).get());
            const Ref<PntUndoShapeArrayDelete> gone(
                new PntUndoShapeArrayDelete(state_, ids, "SidShapeArrayDelete"));
            combo->addChild(gone.get());
            fileRecord(combo.get());
        },
        [&](LayerStack&) {
            for (const std::int32_t id : ids) {
                UndoCanvases::ShapePlace place;
                if (!state_.locateShape(id, place)) continue;
                const Ref<Shape> held(place.shape);
                place.layer->removeShape(*held);
                shapesChanged(*place.stack, *place.layer);
            }
            return true;
        });
}

// The host's curves move within the edit: one that is refused leaves them where they are.
bool ShapeFamily::moveShape(std::int32_t shape, float dx, float dy) {
    UndoCanvases::ShapePlace place;
    if (!isPlace(dx, dy) || !state_.locateShape(shape, place)) return false;
    return guardedEdit(
        state_, place.canvas,
        [&](std::int32_t canvas) {
            const std::int32_t layer = place.layer->id();
            const Ref<PntUndoShapeDelete> from(new PntUndoShapeDelete(
                state_, canvas, layer, place.stack, place.layer, place.shapeIndex, place.shape,
                PntUndoShapeDelete::Way{dx, dy}, "SidShapeDelete"));
            const Ref<PntUndoShapeAdd> to(new PntUndoShapeAdd(state_, canvas, layer, place.stack,
                                                              place.layer, place.shapeIndex,
                                                              place.shape, "SidShapeAdd"));
            const Ref<PntUndoCombo> combo(new PntUndoCombo(to.get(), from.get(), nullptr, nullptr,
                                                           nullptr, false, false, "SidCombo"));
            fileRecord(combo.get());
        },
        [&](LayerStack& stack) {
            moveCurves(state_, *place.shape, dx, dy);
            shapesChanged(stack, *place.layer);
            return true;
        });
}

// Without a record: how curves and parms were before, only the host knows.
bool ShapeFamily::shapeChanged(std::int32_t shape) {
    UndoCanvases::ShapePlace place;
    if (!state_.locateShape(shape, place)) return false;
    return guardedEdit(state_, place.canvas, [&](LayerStack& stack) {
        curvesChanged(state_, *place.shape);
        shapesChanged(stack, *place.layer);
        return true;
    });
}

Ref<ShapeImageParms> ShapeFamily::shapeById(std::int32_t shape) const {
    UndoCanvases::ShapePlace place;
    if (!state_.locateShape(shape, place)) return {};
    return Ref<ShapeImageParms>(&place.shape->parms());
}

std::int32_t ShapeFamily::shapeCount(std::int32_t layerId) const {
    const LayerStack* const stack = state_.canvases.stackOfLayer(layerId, nullptr);
    const ShapeLayer* const layer = stack ? ShapeLayer::from(stack->layerById(layerId)) : nullptr;
    return layer ? layer->shapeCount() : 0;
}

}  // namespace brushwork
