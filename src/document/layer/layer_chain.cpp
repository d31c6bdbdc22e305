#include "document/layer/layer_chain.h"

#include <utility>

namespace brushwork {
namespace {

LayerParent* groupOf(Layer& layer) {
    return dynamic_cast<LayerParent*>(&layer);
}

bool hasOneChannel(Layer& layer) {
    if (layer.isMask() || layer.isStencil()) return true;
    if (layer.holdsShapes() || groupOf(layer)) return false;
    ilImage* const color = layer.colorImageRef();
    return color && color->channels() == 1;
}

// The layer, after what it holds.
bool visitTree(Layer& layer, const std::function<bool(Layer&)>& visit) {
    bool goesOn = true;
    if (LayerParent* const group = groupOf(layer))
        group->eachMember([&](Layer& member) { goesOn = goesOn && visitTree(member, visit); });
    return goesOn && visit(layer);
}

bool visitAll(const LayerChain& chain, bool withMembers, const std::function<bool(Layer&)>& visit) {
    if (withMembers) return eachLayer(chain, visit);
    for (Layer* layer = chain.first.get(); layer; layer = layer->next.get())
        if (!visit(*layer)) return false;
    return true;
}

}  // namespace

void LayerChain::insertAbove(Layer& layer, Layer* below) {
    const Ref<Layer> held(&layer);
    Ref<Layer>& link = below ? below->next : first;
    layer.next = std::move(link);
    layer.previous = below;
    if (layer.next)
        layer.next->previous = &layer;
    else
        last = &layer;
    link = held;
    ++count;
}

bool LayerChain::remove(Layer& layer) {
    Layer* bottom = &layer;
    while (bottom->previous) bottom = bottom->previous;
    if (bottom != first.get()) return false;
    const Ref<Layer> held(&layer);
    Layer* const below = layer.previous;
    Ref<Layer> above = std::move(layer.next);
    if (above)
        above->previous = below;
    else
        last = below;
    (below ? below->next : first) = std::move(above);
    layer.previous = nullptr;
    --count;
    return true;
}

void LayerChain::clear() {
    last = nullptr;
    count = 0;
    Ref<Layer> layer = std::move(first);
    while (layer) {
        Ref<Layer> above = std::move(layer->next);
        if (above) above->previous = nullptr;
        layer = std::move(above);
    }
}

Layer* LayerChain::pastAttached(Layer* below, const Layer& layer) {
    // Looking at channels changes nothing.
    if (hasOneChannel(const_cast<Layer&>(layer))) return below;
    while (below && below->next && hasOneChannel(*below->next)) below = below->next.get();
    return below;
}

std::int32_t LayerChain::total(bool withMembers) const {
    if (!withMembers) return count;
    std::int32_t found = 0;
    eachLayer(*this, [&](Layer&) { return ++found, true; });
    return found;
}

Layer* LayerChain::at(std::int32_t index, bool withMembers) const {
    Layer* found = nullptr;
    if (index < 1) return nullptr;
    visitAll(*this, withMembers, [&](Layer& layer) {
        if (--index == 0) found = &layer;
        return !found;
    });
    return found;
}

std::int32_t LayerChain::indexOf(const Layer& layer, bool withMembers) const {
    std::int32_t index = 0;
    const bool missed = visitAll(*this, withMembers, [&](Layer& member) {
        ++index;
        return &member != &layer;
    });
    return missed ? -1 : index;
}

Layer* LayerChain::byId(std::int32_t id, bool withMembers) const {
    Layer* found = nullptr;
    visitAll(*this, withMembers, [&](Layer& layer) {
        if (layer.id() == id) found = &layer;
        return !found;
    });
    return found;
}

bool eachLayer(const LayerChain& chain, const std::function<bool(Layer&)>& visit) {
    for (Layer* layer = chain.first.get(); layer; layer = layer->next.get())
        if (!visitTree(*layer, visit)) return false;
    return true;
}

}  // namespace brushwork
