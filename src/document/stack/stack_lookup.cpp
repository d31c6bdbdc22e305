#include "document/stack/stack_lookup.h"

#include <algorithm>

#include "document/layer/layer_numbers.h"

namespace brushwork::stack {
namespace {

const LayerChain& chainFor(const StackParts& stack, const LayerGroup* group) {
    return group ? group->children() : stack.list;
}

std::int32_t depthOf(const LayerChain& chain) {
    std::int32_t deepest = 0;
    for (Layer* layer = chain.first.get(); layer; layer = layer->next.get())
        if (const LayerGroup* const group = layer->asGroup())
            deepest = std::max(deepest, 1 + depthOf(group->children()));
    return deepest;
}

}  // namespace

Layer* layerById(const StackParts& stack, std::int32_t id) {
    if (id == activeOne) return stack.active.layer.get();
    Layer* const selection = stack.selection.layer.get();
    if (selection && selection->id() == id) return selection;
    return stack.list.byId(id, true);
}

Layer* layerByIndex(const StackParts& stack, std::int32_t index, bool members, LayerGroup* group) {
    if (index == activeOne) return stack.active.layer.get();
    if (group) return group->children().at(index, members);
    if (index == layerCountTotal(stack, members) + 1) return stack.selection.layer.get();
    return stack.list.at(index, members);
}

std::int32_t indexOf(const StackParts& stack, const Layer* layer, bool members, LayerGroup* group) {
    if (!layer) return noLayer;
    if (layer == stack.selection.layer.get()) return layerCountTotal(stack, members) + 1;
    return chainFor(stack, group).indexOf(*layer, members);
}

std::int32_t indexOfId(const StackParts& stack, std::int32_t id, bool members, LayerGroup* group) {
    if (id == noLayer) return noLayer;
    return indexOf(stack, layerById(stack, id), members, group);
}

std::int32_t idOfIndex(const StackParts& stack, std::int32_t index, bool members,
                       LayerGroup* group) {
    const Layer* const layer = layerByIndex(stack, index, members, group);
    return layer ? layer->id() : noLayer;
}

std::int32_t layerCountTotal(const StackParts& stack, bool members) {
    return stack.list.total(members);
}

std::int32_t activeIndex(StackParts& stack, bool members) {
    if (!members) return indexOf(stack, stack.active.layer.get(), false);
    if (stack.active.indexCache == noLayer)
        stack.active.indexCache = indexOf(stack, stack.active.layer.get(), true);
    return stack.active.indexCache;
}

std::int32_t groupDepth(const StackParts& stack, std::int32_t index, bool members) {
    const Layer* const layer = layerByIndex(stack, index, members);
    std::int32_t depth = 0;
    for (LayerParent* step = layer ? layer->parent : nullptr; step; step = step->asLayer().parent)
        ++depth;
    return depth;
}

std::int32_t groupOf(const StackParts& stack, std::int32_t id) {
    const Layer* const layer = layerById(stack, id);
    return layer && layer->parent ? layer->parent->asLayer().id() : noLayer;
}

LayerGroup* groupById(const StackParts& stack, std::int32_t id) {
    Layer* const layer = layerById(stack, id);
    return layer ? layer->asGroup() : nullptr;
}

std::int32_t groupMemberCount(const StackParts& stack, std::int32_t id) {
    const LayerGroup* const group = groupById(stack, id);
    return group ? group->childCount(false) : 0;
}

std::int32_t groupChild(const StackParts& stack, std::int32_t id, std::int32_t index) {
    const LayerGroup* const group = groupById(stack, id);
    const Layer* const child = group ? group->childAt(index, false) : nullptr;
    return child ? child->id() : noLayer;
}

std::int32_t maxGroupDepth(const StackParts& stack, std::int32_t id) {
    const LayerGroup* const group = groupById(stack, id);
    return group ? depthOf(group->children()) : 0;
}

Layer* outermost(Layer* layer) {
    while (layer && layer->parent) layer = &layer->parent->asLayer();
    return layer;
}

bool isNameUnique(const StackParts& stack, const znString::IString& name) {
    return eachLayer(stack.list, [&](Layer& layer) { return !(layer.name() == name); });
}

znString::IString uniqueName(const StackParts& stack, const znString::IString& name) {
    const znString::IString stem = name.substring(0, longestLayerName);
    for (std::int32_t number = 1;; ++number) {
        znString::IString tried = stem;
        znString::IString suffix;
        suffix.format(u"-%d", number);
        tried.append(suffix.view());
        if (isNameUnique(stack, tried)) return tried;
    }
}

std::vector<Layer*> normalizeIds(const StackParts& stack, std::span<const std::int32_t> ids) {
    const auto isNamed = [&](const Layer& layer) {
        return std::any_of(ids.begin(), ids.end(), [&](std::int32_t id) {
            return id == layer.id() || (id == activeOne && stack.active.layer == &layer);
        });
    };
    const auto holderIsNamed = [&](const Layer& layer) {
        for (LayerParent* step = layer.parent; step; step = step->asLayer().parent)
            if (isNamed(step->asLayer())) return true;
        return false;
    };
    std::vector<Layer*> kept;
    static_cast<void>(eachLayer(stack.list, [&](Layer& layer) {
        if (isNamed(layer) && !holderIsNamed(layer)) kept.push_back(&layer);
        return true;
    }));
    return kept;
}

LayerGroup* groupAround(const Layer* layer) {
    return layer && layer->parent ? layer->parent->asLayer().asGroup() : nullptr;
}

bool isAttached(const Layer* layer) {
    return layer && layer->role() != LayerRole::Paint;
}

bool standsIn(const Layer* layer, const Layer& other) {
    for (; layer; layer = layer->parent ? &layer->parent->asLayer() : nullptr)
        if (layer == &other) return true;
    return false;
}

const LayerChain& chainOf(const StackParts& stack, const Layer& layer) {
    if (!layer.parent) return stack.list;
    return layer.parent->asLayer().asGroup()->children();
}

}  // namespace brushwork::stack
