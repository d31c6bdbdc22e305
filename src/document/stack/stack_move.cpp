#include "document/stack/stack_move.h"

#include <algorithm>
#include <vector>

#include "document/stack/stack_active.h"
#include "document/stack/stack_delete.h"
#include "document/stack/stack_insert.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_transform.h"

namespace brushwork::stack {
namespace {

struct Target {
    bool known = false;
    Layer* below = nullptr;       // null: the bottom
    LayerGroup* group = nullptr;  // null: the top level
};

Target targetOf(const StackParts& stack, std::int32_t toIndex, std::int32_t groupId) {
    Target target;
    if (groupId != noLayer) {
        target.group = groupById(stack, groupId);
        if (!target.group) return target;
    }
    if (toIndex != 0) {
        target.below = layerByIndex(stack, toIndex, true);
        if (target.below == stack.selection.layer.get()) target.below = stack.list.last;
        if (!target.below) return target;
    }
    if (groupId == noLayer)
        target.group = groupAround(target.below);
    else if (target.below && groupAround(target.below) != target.group)
        target.below = target.group->lastChild();
    target.known = true;
    return target;
}

std::vector<Ref<Layer>> held(const std::vector<Layer*>& layers) {
    std::vector<Ref<Layer>> list;
    for (Layer* layer : layers) list.emplace_back(layer);
    return list;
}

// Masks and stencils go where the layer goes that they belong to; alone only when they are named.
std::vector<Ref<Layer>> withAttached(const std::vector<Layer*>& layers) {
    std::vector<Ref<Layer>> list;
    for (Layer* layer : layers) {
        if (std::find(list.begin(), list.end(), layer) != list.end()) continue;
        list.emplace_back(layer);
        if (isAttached(layer)) continue;
        for (Layer* above = layer->next.get(); isAttached(above); above = above->next.get())
            list.emplace_back(above);
    }
    return list;
}

// A plain layer that looks as the group did.
Ref<Layer> layerLike(const LayerGroup& group) {
    const Ref<ilSmartImage> blank(new ilSmartImage(ilPixel(TypeUChar, 4)));
    const Ref<Layer> layer(
        new Layer(blank.get(), nullptr, LayerRole::Paint, Layer::plainFlags, 0.0f, 0.0f));
    layer->setName(group.name());
    layer->setOpacity(group.opacity());
    layer->setBlendMode(group.LayerGroup::isPassThrough() ? 0 : group.blendMode());
    layer->setLabelColor(group.labelColor());
    layer->setVisible(group.visible(), group.visibleArg());
    layer->setLocked(group.locked(), true);
    return layer;
}

// The members come to stand where the group stood, and above them, as it did, what is left of it.
void dissolve(StackParts& stack, LayerGroup& group, bool keepGroup) {
    const Ref<Layer> wasActive = stack.active.layer;
    LayerGroup* const around = groupAround(&group);
    Layer* top = &group;
    while (const Ref<Layer> member{group.firstChild()}) {
        unlinkLayer(stack, *member);
        insertAbove(stack, *member, top, around);
        top = member.get();
    }
    // A stack isn't left without layers.
    if (keepGroup || (top == &group && stack.list.total(true) == 1)) {
        const Ref<Layer> plain = layerLike(group);
        insertAbove(stack, *plain, top, around);
        top = plain.get();
    }
    Layer* active = wasActive.get();
    if (active == &group) active = top == &group ? successorOf(stack, group) : top;
    unlinkLayer(stack, group);
    setActiveLayer(stack, active, false, true);
}

}  // namespace

bool moveCheck(const StackParts& stack, std::span<const std::int32_t> ids, std::int32_t toIndex,
               std::int32_t group) {
    if (ids.empty()) return false;
    const Target target = targetOf(stack, toIndex, group);
    if (!target.known) return false;
    return std::all_of(ids.begin(), ids.end(), [&](std::int32_t id) {
        const Layer* const layer = layerById(stack, id);
        if (!layer || layer == stack.selection.layer.get()) return false;
        return !standsIn(target.group, *layer);
    });
}

bool moveLayers(StackParts& stack, std::span<const std::int32_t> ids, const LayerMove& move) {
    if (!moveCheck(stack, ids, move.toIndex, move.group)) return false;
    if (move.dryRun) return true;
    closeTransform(stack);
    const auto layers = withAttached(normalizeIds(stack, ids));
    Target target = targetOf(stack, move.toIndex, move.group);
    const auto isMoved = [&](const Layer* layer) {
        return std::any_of(layers.begin(), layers.end(),
                           [layer](const Ref<Layer>& moved) { return moved == layer; });
    };
    while (target.below && isMoved(target.below)) target.below = target.below->previous;
    for (const Ref<Layer>& layer : layers) {
        unlinkLayer(stack, *layer);
        insertAbove(stack, *layer, target.below, target.group);
        if (target.group && move.inheritGroupState) inheritState(*layer, *target.group);
        target.below = layer.get();
    }
    if (move.makeActive && !layers.empty())
        setActiveLayer(stack, layers.front().get(), false, false);
    else
        setActiveLayer(stack, stack.active.layer.get(), false, true);
    return true;
}

std::int32_t makeGroupFrom(StackParts& stack, std::span<const std::int32_t> ids, bool makeActive) {
    const auto layers = withAttached(normalizeIds(stack, ids));
    if (layers.empty()) return noLayer;
    closeTransform(stack);
    const Ref<LayerGroup> group(new LayerGroup(znString::IString(u"New Group")));
    insertAbove(stack, *group, layers.back().get(), groupAround(layers.back().get()));
    for (const Ref<Layer>& layer : layers) {
        unlinkLayer(stack, *layer);
        insertAbove(stack, *layer, group->lastChild(), group.get());
    }
    setActiveLayer(stack, makeActive ? group.get() : stack.active.layer.get(), false, true);
    return group->id();
}

bool ungroup(StackParts& stack, std::span<const std::int32_t> ids, bool keepGroup) {
    closeTransform(stack);
    bool done = false;
    for (const Ref<Layer>& layer : held(normalizeIds(stack, ids))) {
        if (!layer->asGroup()) continue;
        dissolve(stack, *layer->asGroup(), keepGroup);
        done = true;
    }
    return done;
}

}  // namespace brushwork::stack
