// A plain model of a stack's list: nested vectors, no links. Every edit is written down as a person
// would tell it. New layers have no id yet: `fresh` stands for any that wasn't there before.
#pragma once

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "document/stack/layer_stack.h"

namespace brushwork::test {

inline constexpr std::int32_t fresh = -100;

struct ModelLayer {
    std::int32_t id = fresh;
    LayerRole role = LayerRole::Paint;
    bool isGroup = false;
    bool visible = true;
    std::vector<ModelLayer> members = {};

    [[nodiscard]] bool isAttached() const { return role != LayerRole::Paint; }
};
using ModelList = std::vector<ModelLayer>;

class ListModel {
  public:
    struct Place {
        ModelList* list = nullptr;
        std::size_t index = 0;
        ModelLayer* group = nullptr;
        [[nodiscard]] ModelLayer& layer() const { return (*list)[index]; }
    };

    ModelList top;
    std::int32_t active = -1;
    std::int32_t selection = -1;

    [[nodiscard]] Place find(std::int32_t id) { return findIn(top, nullptr, id); }
    [[nodiscard]] bool has(std::int32_t id) { return find(id).list != nullptr; }
    [[nodiscard]] std::vector<std::int32_t> idsInOrder(bool members) const {
        std::vector<std::int32_t> ids;
        collect(top, members, ids);
        return ids;
    }
    [[nodiscard]] bool isInside(std::int32_t id, std::int32_t group) {
        const Place place = find(group);
        if (id == group) return true;
        return place.list && findIn(place.layer().members, nullptr, id).list;
    }

    void add(LayerRole role, bool isGroup, std::int32_t at, bool makeActive) {
        ModelLayer layer;
        layer.role = role;
        layer.isGroup = isGroup;
        const auto ids = idsInOrder(true);
        std::int32_t below = -1;
        if (at == activeOne)
            below = active;
        else if (at > 0 && at <= static_cast<std::int32_t>(ids.size()))
            below = ids[static_cast<std::size_t>(at) - 1];
        else if (at == static_cast<std::int32_t>(ids.size()) + 1)
            below = selection;
        const bool onTop = below == selection;
        const Place place = onTop ? Place{&top, top.size() - 1, nullptr} : find(below);
        if (onTop && top.empty()) {
            top.push_back(layer);
        } else if (!place.list) {
            std::size_t index = 0;
            top.insert(top.begin() + static_cast<std::ptrdiff_t>(index), layer);
        } else {
            if (place.group) layer.visible = place.group->visible;
            std::size_t index = place.index + 1;
            if (role == LayerRole::Paint)
                while (index < place.list->size() && (*place.list)[index].isAttached()) ++index;
            place.list->insert(place.list->begin() + static_cast<std::ptrdiff_t>(index), layer);
        }
        if (makeActive || active == -1) active = fresh;
    }

    void remove(std::int32_t id) {
        if (!find(id).layer().isAttached())
            for (std::int32_t above = attachedAbove(id); above != -1; above = attachedAbove(id))
                remove(above);
        Place place = find(id);
        const bool isOnly = place.list == &top && !place.layer().isAttached() &&
                            std::all_of(top.begin(), top.end(), [id](const ModelLayer& layer) {
                                return layer.id == id || layer.isAttached();
                            });
        if (isOnly && !place.layer().isGroup) return;
        if (isOnly) {
            top.insert(top.begin() + static_cast<std::ptrdiff_t>(place.index) + 1, ModelLayer());
            active = fresh;
            place = find(id);
        }
        if (active != fresh && isInside(active, id)) active = successorOf(place);
        place.list->erase(place.list->begin() + static_cast<std::ptrdiff_t>(place.index));
    }

    [[nodiscard]] bool removeAll(const std::vector<std::int32_t>& ids) {
        for (const std::int32_t id : ids)
            if (!has(id)) return false;
        if (ids.empty()) return false;
        const auto order = normalized(ids);
        for (auto id = order.rbegin(); id != order.rend(); ++id)
            if (has(*id)) remove(*id);
        return true;
    }

    // List order, without what stands in a named group.
    [[nodiscard]] std::vector<std::int32_t> normalized(const std::vector<std::int32_t>& ids) {
        std::vector<std::int32_t> kept;
        for (const std::int32_t id : idsInOrder(true)) {
            const auto inNamed = [&](std::int32_t other) {
                return other != id && has(other) && isInside(id, other);
            };
            if (std::find(ids.begin(), ids.end(), id) != ids.end() &&
                std::none_of(ids.begin(), ids.end(), inNamed))
                kept.push_back(id);
        }
        return kept;
    }

    [[nodiscard]] bool move(const std::vector<std::int32_t>& ids, const stack::LayerMove& move) {
        const auto order = idsInOrder(true);
        std::int32_t group = move.group;
        std::int32_t below = -1;
        if (group != noLayer && (!has(group) || !find(group).layer().isGroup)) return false;
        if (move.toIndex != 0) {
            const auto count = static_cast<std::int32_t>(order.size());
            if (move.toIndex < 0 || move.toIndex > count + 1) return false;
            if (move.toIndex == count + 1 && top.empty()) return false;
            below = move.toIndex > count ? top.back().id
                                         : order[static_cast<std::size_t>(move.toIndex) - 1];
            const Place place = find(below);
            const std::int32_t around = place.group ? place.group->id : noLayer;
            if (group == noLayer)
                group = around;
            else if (around != group)
                below = find(group).layer().members.empty() ? -1
                                                            : find(group).layer().members.back().id;
        }
        if (ids.empty()) return false;
        for (const std::int32_t id : ids)
            if (!has(id) || (group != noLayer && isInside(group, id))) return false;
        const auto moved = withAttached(normalized(ids));
        while (below != -1 && std::find(moved.begin(), moved.end(), below) != moved.end()) {
            const Place place = find(below);
            below = place.index > 0 ? (*place.list)[place.index - 1].id : -1;
        }
        ModelList taken = takeOut(moved);
        if (group != noLayer && move.inheritGroupState && !find(group).layer().visible)
            for (ModelLayer& layer : taken) layer.visible = false;
        putAbove(below, group, taken);
        if (move.makeActive) active = moved.front();
        return true;
    }

    [[nodiscard]] bool makeGroup(const std::vector<std::int32_t>& ids, bool makeActive) {
        const auto moved = withAttached(normalized(ids));
        if (moved.empty()) return false;
        const Place place = find(moved.back());
        ModelLayer group;
        group.isGroup = true;
        place.list->insert(place.list->begin() + static_cast<std::ptrdiff_t>(place.index) + 1,
                           group);
        ModelList taken = takeOut(moved);
        find(fresh).layer().members = taken;
        if (makeActive) active = fresh;
        return true;
    }

    // Where a plain layer is left, that of a nested call is told apart by the caller: only one
    // group at a time.
    [[nodiscard]] bool ungroup(std::int32_t id, bool keep) {
        const Place place = find(id);
        if (!place.list || !place.layer().isGroup) return false;
        ModelList members = place.layer().members;
        const bool visible = place.layer().visible;
        if (keep || (members.empty() && idsInOrder(true).size() == 1)) {
            members.push_back(ModelLayer());
            members.back().visible = visible;
        }
        if (active == id) active = members.empty() ? successorOf(place) : members.back().id;
        const auto at = place.list->begin() + static_cast<std::ptrdiff_t>(place.index);
        place.list->insert(place.list->erase(at), members.begin(), members.end());
        return true;
    }

    [[nodiscard]] bool duplicate() {
        if (!has(active)) return false;
        Place place = find(active);
        ModelLayer copy = place.layer();
        renew(copy);
        std::size_t index = place.index + 1;
        if (!copy.isAttached())
            while (index < place.list->size() && (*place.list)[index].isAttached()) ++index;
        place.list->insert(place.list->begin() + static_cast<std::ptrdiff_t>(index), copy);
        active = fresh;
        return true;
    }

    [[nodiscard]] bool mergeDown(std::int32_t id, std::int32_t below) {
        const Place a = find(id);
        const Place b = find(below);
        if (!a.list || !b.list || id == below || a.list != b.list || a.layer().isGroup ||
            b.layer().isGroup || a.layer().isAttached() != b.layer().isAttached())
            return false;
        b.layer().visible = true;
        active = below;
        takeWithAttached(id);
        if (!find(below).layer().isAttached())
            while (attachedAbove(below) != -1) takeOut({attachedAbove(below)});
        return true;
    }

    [[nodiscard]] bool mergeVisible() {
        std::vector<std::int32_t> merged;
        for (const ModelLayer& layer : top)
            if (layer.visible && !layer.isAttached()) merged.push_back(layer.id);
        if (merged.empty() || (merged.size() == 1 && !find(merged[0]).layer().isGroup))
            return false;
        for (const std::int32_t id : merged) {
            ModelList hidden;
            liftHidden(find(id).layer().members, hidden);
            putAbove(lastAttached(id), noLayer, hidden);
        }
        putAbove(lastAttached(merged[0]), noLayer, {ModelLayer()});
        for (const std::int32_t id : merged) takeWithAttached(id);
        active = fresh;
        return true;
    }

    [[nodiscard]] bool flatten(bool visibleOnly) {
        std::size_t at = 0;
        while (at < top.size() && (top[at].isAttached() || (visibleOnly && !top[at].visible))) ++at;
        if (at == top.size()) return false;
        std::int32_t ground = top[at].id;
        if (top[at].isGroup) {
            putAbove(lastAttached(ground), noLayer, {ModelLayer()});
            takeWithAttached(ground);
            ground = fresh;
        }
        while (attachedAbove(ground) != -1) takeOut({attachedAbove(ground)});
        std::vector<std::int32_t> gone;
        for (std::size_t n = at + 1; n < top.size(); ++n)
            if (!top[n].isAttached() && (!visibleOnly || top[n].visible)) gone.push_back(top[n].id);
        for (const std::int32_t id : gone) takeWithAttached(id);
        find(ground).layer().visible = true;
        active = ground;
        return true;
    }

    [[nodiscard]] bool flattenGroup(std::int32_t id) {
        const Place place = find(id);
        if (!place.list || !place.layer().isGroup) return false;
        ModelLayer layer;
        layer.visible = place.layer().visible;
        const std::int32_t around = place.group ? place.group->id : noLayer;
        putAbove(lastAttached(id), around, {layer});
        takeWithAttached(id);
        active = fresh;
        return true;
    }

    // What the stack has, with its ids in place of `fresh`. False: it is another list.
    [[nodiscard]] std::string adopt(const LayerStack& stack) {
        std::set<std::int32_t> known;
        for (const std::int32_t id : idsInOrder(true)) known.insert(id);
        std::string problem;
        matchList(stack.parts().list, top, known, problem);
        if (active == fresh) {
            active = stack.activeId();
            if (known.count(active) != 0) problem += " active isn't new;";
        }
        if (active != stack.activeId())
            problem += " active " + std::to_string(stack.activeId()) + " instead of " +
                       std::to_string(active) + ";";
        return problem;
    }

  private:
    static Place findIn(ModelList& list, ModelLayer* group, std::int32_t id) {
        for (std::size_t n = 0; n < list.size(); ++n) {
            if (list[n].id == id) return {&list, n, group};
            const Place inner = findIn(list[n].members, &list[n], id);
            if (inner.list) return inner;
        }
        return {};
    }
    static void collect(const ModelList& list, bool members, std::vector<std::int32_t>& ids) {
        for (const ModelLayer& layer : list) {
            if (members) collect(layer.members, true, ids);
            ids.push_back(layer.id);
        }
    }
    static void renew(ModelLayer& layer) {
        layer.id = fresh;
        for (ModelLayer& member : layer.members) renew(member);
    }
    [[nodiscard]] static std::int32_t topOf(const ModelLayer& layer) {
        return layer.members.empty() ? layer.id : topOf(layer.members.back());
    }
    [[nodiscard]] std::int32_t successorOf(const Place& place) const {
        if (place.index > 0) return topOf((*place.list)[place.index - 1]);
        if (place.index + 1 < place.list->size()) return topOf((*place.list)[place.index + 1]);
        return place.group ? place.group->id : selection;
    }
    [[nodiscard]] std::int32_t attachedAbove(std::int32_t id) {
        const Place place = find(id);
        if (place.index + 1 == place.list->size()) return -1;
        const ModelLayer& above = (*place.list)[place.index + 1];
        return above.isAttached() ? above.id : -1;
    }
    [[nodiscard]] std::int32_t lastAttached(std::int32_t id) {
        for (std::int32_t above = attachedAbove(id); above != -1; above = attachedAbove(id))
            id = above;
        return id;
    }
    // Masks and stencils go with the layer that they stand on.
    [[nodiscard]] std::vector<std::int32_t> withAttached(const std::vector<std::int32_t>& ids) {
        std::vector<std::int32_t> all;
        for (const std::int32_t id : ids) {
            if (std::find(all.begin(), all.end(), id) != all.end()) continue;
            all.push_back(id);
            if (find(id).layer().isAttached()) continue;
            for (std::int32_t above = attachedAbove(id); above != -1; above = attachedAbove(above))
                all.push_back(above);
        }
        return all;
    }
    ModelList takeOut(const std::vector<std::int32_t>& ids) {
        ModelList taken;
        for (const std::int32_t id : ids) {
            const Place place = find(id);
            taken.push_back(place.layer());
            place.list->erase(place.list->begin() + static_cast<std::ptrdiff_t>(place.index));
        }
        return taken;
    }
    void takeWithAttached(std::int32_t id) {
        if (!find(id).layer().isAttached())
            while (attachedAbove(id) != -1) takeOut({attachedAbove(id)});
        takeOut({id});
    }
    void putAbove(std::int32_t below, std::int32_t group, const ModelList& layers) {
        ModelList& list = group == noLayer ? top : find(group).layer().members;
        const auto at = below == -1
                            ? list.begin()
                            : list.begin() + static_cast<std::ptrdiff_t>(find(below).index) + 1;
        list.insert(at, layers.begin(), layers.end());
    }
    static void liftHidden(ModelList& list, ModelList& hidden) {
        bool baseIsHidden = false;
        for (auto layer = list.begin(); layer != list.end();) {
            if (!layer->isAttached()) baseIsHidden = !layer->visible;
            if (baseIsHidden) {
                hidden.push_back(*layer);
                layer = list.erase(layer);
            } else {
                liftHidden(layer->members, hidden);
                ++layer;
            }
        }
    }
    static void matchList(const LayerChain& chain, ModelList& list,
                          const std::set<std::int32_t>& known, std::string& problem) {
        Layer* layer = chain.first.get();
        for (ModelLayer& wanted : list) {
            if (!layer) {
                problem += " a layer is missing;";
                return;
            }
            if (wanted.id == fresh) {
                wanted.id = layer->id();
                if (known.count(wanted.id) != 0) problem += " a new layer has an old id;";
            }
            const std::string name = " " + std::to_string(wanted.id);
            if (layer->id() != wanted.id)
                problem += name + " expected, there is " + std::to_string(layer->id()) + ";";
            if (layer->role() != wanted.role) problem += name + " has another role;";
            if (layer->visible() != wanted.visible) problem += name + " is shown or hidden;";
            if ((layer->asGroup() != nullptr) != wanted.isGroup) problem += name + " is no group;";
            if (layer->asGroup() && wanted.isGroup)
                matchList(layer->asGroup()->children(), wanted.members, known, problem);
            layer = layer->next.get();
        }
        if (layer) problem += " one too many: " + std::to_string(layer->id()) + ";";
    }
};

}  // namespace brushwork::test
