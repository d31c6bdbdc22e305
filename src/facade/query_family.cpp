#include "brushwork/query_family.h"

#include "facade/facade_state.h"
#include "facade/input_limits.h"

namespace brushwork {
namespace {

// What `ask` says of the layer, or the empty answer.
template <class Ask>
auto ofLayer(const FacadeState& state, std::int32_t id, const Ask& ask) {
    using Answer = std::decay_t<std::invoke_result_t<Ask, Layer&>>;
    Layer* const layer = state.layerById(id);
    return layer ? Answer(ask(*layer)) : Answer();
}

}  // namespace

std::int32_t QueryFamily::layerCount(bool members, std::int32_t canvas) const {
    const LayerStack* const stack = state_.stackAt(canvas);
    return stack ? stack->layerCountTotal(members) : 0;
}

std::int32_t QueryFamily::layerIdAt(std::int32_t index, bool members, std::int32_t canvas) const {
    const LayerStack* const stack = state_.stackAt(canvas);
    return stack ? stack->idOfIndex(index, members) : noLayer;
}

std::int32_t QueryFamily::layerIndexOf(std::int32_t id, bool members) const {
    const LayerStack* const stack = state_.stackOfLayer(id);
    return stack ? stack->indexOfId(id, members) : noLayer;
}

std::int32_t QueryFamily::activeLayerId(std::int32_t canvas) const {
    const LayerStack* const stack = state_.stackAt(canvas);
    return stack ? stack->activeId() : noLayer;
}

std::int32_t QueryFamily::activeLayerIndex(bool members, std::int32_t canvas) const {
    LayerStack* const stack = state_.stackAt(canvas);
    return stack ? stack->activeIndex(members) : noLayer;
}

std::int32_t QueryFamily::selectionLayerId(std::int32_t canvas) const {
    const LayerStack* const stack = state_.stackAt(canvas);
    return stack && stack->selectionLayer() ? stack->selectionLayer()->id() : noLayer;
}

std::int32_t QueryFamily::canvasOfLayer(std::int32_t id) const {
    std::int32_t canvas = noLayer;
    static_cast<void>(state_.canvases.stackOfLayer(id, &canvas));
    return canvas;
}

znString::IString QueryFamily::layerName(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.name(); });
}

bool QueryFamily::isVisible(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.visible(); });
}

bool QueryFamily::isVisibleInTree(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.isVisibleInTree(); });
}

bool QueryFamily::isLocked(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.locked(); });
}

bool QueryFamily::isEnabled(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.enabled(); });
}

bool QueryFamily::isGroup(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.asGroup() != nullptr; });
}

bool QueryFamily::isMask(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.isMask(); });
}

bool QueryFamily::isStencil(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.isStencil(); });
}

bool QueryFamily::isShapeLayer(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.holdsShapes(); });
}

bool QueryFamily::isText(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return (layer.flags() & Layer::HasText) != 0; });
}

bool QueryFamily::isExpanded(std::int32_t id) const {
    return ofLayer(state_, id,
                   [](Layer& layer) { return layer.asGroup() && layer.asGroup()->expanded(); });
}

float QueryFamily::opacity(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.opacity(); });
}

std::int32_t QueryFamily::blendMode(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.blendMode(); });
}

std::uint32_t QueryFamily::labelColor(std::int32_t id) const {
    return ofLayer(state_, id, [](Layer& layer) { return layer.labelColor(); });
}

bool QueryFamily::position(std::int32_t id, float* x, float* y) const {
    Layer* const layer = state_.layerById(id);
    if (layer) layer->offset(x, y);
    return layer != nullptr;
}

bool QueryFamily::pivot(std::int32_t id, float* x, float* y) const {
    Layer* const layer = state_.layerById(id);
    if (layer) layer->pivot(x, y);
    return layer != nullptr;
}

bool QueryFamily::layerBounds(std::int32_t id, ilTile& box) const {
    box = ilTile();
    Layer* const layer = state_.layerById(id);
    if (!layer) return false;
    layer->prepareForRender(nullptr, false);
    layer->tighten();
    layer->contentBounds(box, true);
    return box.nx > 0 && box.ny > 0;
}

std::int32_t QueryFamily::groupOf(std::int32_t id) const {
    const LayerStack* const stack = state_.stackOfLayer(id);
    return stack ? stack->groupOf(id) : noLayer;
}

std::int32_t QueryFamily::groupMemberCount(std::int32_t id) const {
    const LayerStack* const stack = state_.stackOfLayer(id);
    return stack ? stack->groupMemberCount(id) : 0;
}

std::int32_t QueryFamily::groupChild(std::int32_t id, std::int32_t index) const {
    const LayerStack* const stack = state_.stackOfLayer(id);
    return stack ? stack->groupChild(id, index) : noLayer;
}

std::int32_t QueryFamily::groupDepth(std::int32_t id) const {
    const LayerStack* const stack = state_.stackOfLayer(id);
    return stack ? stack->groupDepth(stack->indexOfId(id, true), true) : 0;
}

std::int32_t QueryFamily::maxGroupDepth(std::int32_t id) const {
    const LayerStack* const stack = state_.stackOfLayer(id);
    return stack ? stack->maxGroupDepth(id) : 0;
}

bool QueryFamily::canMergeDown(std::int32_t id) const {
    const LayerStack* const stack = state_.stackOfLayer(id);
    const Layer* const layer = state_.layerById(id);
    return layer && layer->previous &&
           stack::mergeable(stack->parts(), layer->id(), layer->previous->id());
}

bool QueryFamily::isNameUnique(const znString::IString& name) const {
    const LayerStack* const stack = state_.current();
    return !stack || stack->isNameUnique(name);
}

ImageRef QueryFamily::thumbnail(std::int32_t id) {
    Layer* const layer = state_.layerById(id);
    return layer ? ImageRef(layer->thumbnailImage(nullptr, 0, 0)) : ImageRef();
}

std::int32_t QueryFamily::pickLayer(float x, float y, float threshold) const {
    LayerStack* const stack = state_.current();
    if (!stack || !isPlace(x, y)) return noLayer;
    return stack->idOfIndex(stack->pickLayer(x, y, threshold, false), true);
}

std::array<float, 4> QueryFamily::background(std::int32_t canvas) const {
    const LayerStack* const stack = state_.stackAt(canvas);
    return stack ? stack->parts().backgroundColor : std::array<float, 4>();
}

std::int32_t QueryFamily::generation(std::int32_t canvas) const {
    const LayerStack* const stack = state_.stackAt(canvas);
    return stack ? stack->generation() : 0;
}

bool QueryFamily::inTransform() const {
    const LayerStack* const stack = state_.current();
    return stack && stack->inTransform();
}

bool QueryFamily::isFloodFilling() const {
    const LayerStack* const stack = state_.current();
    return stack && stack->isFloodFilling();
}

}  // namespace brushwork
