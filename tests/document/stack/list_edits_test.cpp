// Long random sequences of edits of a stack's list, beside the plain model.
#include <gtest/gtest.h>

#include <map>

#include "document/layer/layer_recipe.h"
#include "document/stack/list_model.h"

namespace brushwork::test {
namespace {

void checkChain(const LayerChain& chain, const LayerParent* parent, std::set<std::int32_t>& ids) {
    Layer* below = nullptr;
    std::int32_t count = 0;
    for (Layer* layer = chain.first.get(); layer; layer = layer->next.get()) {
        ASSERT_EQ(layer->previous, below);
        ASSERT_EQ(layer->parent, parent);
        ASSERT_TRUE(ids.insert(layer->id()).second) << "id twice: " << layer->id();
        if (LayerGroup* const group = layer->asGroup()) checkChain(group->children(), group, ids);
        below = layer;
        ++count;
    }
    ASSERT_EQ(chain.last, below);
    ASSERT_EQ(chain.count, count);
}

// What callers see of the list by numbers.
void checkNumbers(LayerStack& stack, ListModel& model) {
    for (const bool members : {false, true}) {
        const auto ids = model.idsInOrder(members);
        const auto count = static_cast<std::int32_t>(ids.size());
        ASSERT_EQ(stack.layerCountTotal(members), count);
        ASSERT_EQ(stack.idOfIndex(count + 1, members), model.selection);
        ASSERT_EQ(stack.indexOfId(model.selection, members), count + 1);
        ASSERT_EQ(stack.idOfIndex(0, members), noLayer);
        ASSERT_EQ(stack.idOfIndex(count + 2, members), noLayer);
        for (std::int32_t n = 0; n < count; ++n) {
            const std::int32_t id = ids[static_cast<std::size_t>(n)];
            ASSERT_EQ(stack.idOfIndex(n + 1, members), id);
            ASSERT_EQ(stack.indexOfId(id, members), n + 1);
        }
        ASSERT_EQ(stack.activeIndex(members), stack.indexOfId(model.active, members));
        ASSERT_EQ(stack.indexOfId(activeOne, members), stack.activeIndex(members));
    }
    ASSERT_EQ(stack.layerCount(), static_cast<std::int32_t>(model.top.size()));
    const auto ids = model.idsInOrder(true);
    for (std::size_t n = 0; n < ids.size(); ++n) {
        const std::int32_t id = ids[n];
        const auto place = model.find(id);
        const auto& layer = place.layer();
        ASSERT_EQ(stack.groupOf(id), place.group ? place.group->id : noLayer);
        ASSERT_EQ(stack.groupMemberCount(id), static_cast<std::int32_t>(layer.members.size()));
        for (std::size_t m = 0; m < layer.members.size(); ++m)
            ASSERT_EQ(stack.groupChild(id, static_cast<std::int32_t>(m) + 1), layer.members[m].id);
        std::int32_t depth = 0;
        for (auto step = place; step.group; step = model.find(step.group->id)) ++depth;
        ASSERT_EQ(stack.groupDepth(static_cast<std::int32_t>(n) + 1, true), depth);
    }
}

void checkStack(LayerStack& stack, ListModel& model) {
    const std::string problem = model.adopt(stack);
    ASSERT_EQ(problem, "");
    std::set<std::int32_t> ids{model.selection};
    ASSERT_NO_FATAL_FAILURE(checkChain(stack.parts().list, nullptr, ids));
    ASSERT_NO_FATAL_FAILURE(checkNumbers(stack, model));
    Layer* const active = stack.activeLayer();
    ASSERT_EQ(active == nullptr, model.top.empty() && model.active == -1);
    if (active) {
        ASSERT_EQ(stack.layerById(active->id()), active);
        ASSERT_EQ(stack.paintOps()->image(), active->colorImageRef());
    }
}

std::int32_t anyId(ListModel& model, Dice& dice) {
    const auto ids = model.idsInOrder(true);
    if (ids.empty()) return 4711;
    return ids[static_cast<std::size_t>(pick(dice, 0, static_cast<int>(ids.size()) - 1))];
}

std::vector<std::int32_t> anyIds(ListModel& model, Dice& dice) {
    std::vector<std::int32_t> ids;
    for (int n = pick(dice, 1, 4); n > 0; --n) {
        const std::int32_t id = anyId(model, dice);
        if (std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(id);
    }
    return ids;
}

LayerRole anyRole(Dice& dice) {
    constexpr LayerRole roles[] = {LayerRole::Paint, LayerRole::Paint, LayerRole::Mask,
                                   LayerRole::Stencil};
    return roles[pick(dice, 0, 3)];
}

class ListEdits : public testing::Test {
  protected:
    ListEdits() : stack_(new LayerStack(0, 0, 40, 30)) {
        model_.selection = stack_->selectionLayer()->id();
    }

    // One edit of both. The name of what was done.
    std::string edit(Dice& dice) {
        const int count = stack_->layerCountTotal(true);
        const int kind = pick(dice, count > 24 ? 4 : 0, 15);
        switch (kind) {
            case 0:
            case 1:
            case 2: return add(dice, count);
            case 3: return duplicate(dice);
            case 4: return remove(dice);
            case 5:
            case 6:
            case 7: return move(dice, count);
            case 8:
            case 9: return makeGroup(dice);
            case 10: return ungroup(dice);
            case 11: return activate(dice, count);
            case 12: return hide(dice);
            case 13: return mergeDown(dice);
            case 14: return flattenGroup(dice);
            default: return rare(dice);
        }
    }

    Ref<LayerStack> stack_;
    ListModel model_;
    std::map<std::string, int> done_;  // edits that did something

  private:
    void expectSame(bool is, bool wanted, const char* what) {
        EXPECT_EQ(is, wanted) << what;
        if (is) ++done_[what];
    }
    std::string add(Dice& dice, int count) {
        const int at = pick(dice, -2, count + 1);
        const bool isGroup = pick(dice, 0, 3) == 0;
        const LayerRole role = isGroup ? LayerRole::Paint : anyRole(dice);
        const bool makeActive = pick(dice, 0, 1) == 0;
        if (isGroup) {
            stack_->addGroup(znString::IString(u"G"), at, makeActive);
        } else {
            stack::NewLayer layer;
            layer.role = role;
            layer.at = at;
            layer.makeActive = makeActive;
            layer.render = pick(dice, 0, 1) == 0;
            EXPECT_NE(stack_->addLayer(layer), noLayer);
        }
        model_.add(role, isGroup, at, makeActive);
        return "add at " + std::to_string(at);
    }
    std::string duplicate(Dice& dice) {
        if (pick(dice, 0, 1) == 0) {
            expectSame(stack_->duplicateLayer() != noLayer, model_.duplicate(), "duplicate");
            return "duplicate";
        }
        // A copy for undo has the same ids.
        stack_ = Ref<LayerStack>(new LayerStack(*stack_));
        model_.selection = stack_->selectionLayer()->id();
        return "copy the stack";
    }
    std::string remove(Dice& dice) {
        const auto ids = anyIds(model_, dice);
        EXPECT_EQ(stack_->deleteLayers(ids, true, false), model_.has(ids[0]));
        expectSame(stack_->deleteLayers(ids, false, pick(dice, 0, 1) == 0), model_.removeAll(ids),
                   "delete");
        return "delete " + std::to_string(ids.size()) + " from " + std::to_string(ids[0]);
    }
    std::string move(Dice& dice, int count) {
        const auto ids = anyIds(model_, dice);
        stack::LayerMove move;
        move.toIndex = pick(dice, 0, count + 1);
        if (pick(dice, 0, 2) == 0) move.group = anyId(model_, dice);
        move.makeActive = pick(dice, 0, 1) == 0;
        move.inheritGroupState = pick(dice, 0, 1) == 0;
        move.dryRun = true;
        const bool goes = stack_->moveLayers(ids, move);
        move.dryRun = false;
        EXPECT_EQ(stack_->moveLayers(ids, move), goes);
        expectSame(goes, model_.move(ids, move), "move");
        return "move " + std::to_string(ids.size()) + " from " + std::to_string(ids[0]) + " to " +
               std::to_string(move.toIndex) + " group " + std::to_string(move.group);
    }
    std::string makeGroup(Dice& dice) {
        const auto ids = anyIds(model_, dice);
        const bool makeActive = pick(dice, 0, 1) == 0;
        const std::int32_t id = stack_->makeGroupFrom(ids, makeActive);
        expectSame(id != noLayer, model_.makeGroup(ids, makeActive), "make group");
        return "make group";
    }
    std::string ungroup(Dice& dice) {
        const std::int32_t ids[] = {anyId(model_, dice)};
        const bool keep = pick(dice, 0, 2) == 0;
        expectSame(stack_->ungroup(ids, keep), model_.ungroup(ids[0], keep), "ungroup");
        return "ungroup " + std::to_string(ids[0]);
    }
    std::string activate(Dice& dice, int count) {
        const int index = pick(dice, -1, count + 3);
        stack_->setActiveIndex(index, pick(dice, 0, 1) == 0, pick(dice, 0, 1) == 0, true);
        const auto ids = model_.idsInOrder(true);
        const int clamped = std::clamp(index, 1, count + 1);
        model_.active =
            clamped > count ? model_.selection : ids[static_cast<std::size_t>(clamped) - 1];
        return "activate " + std::to_string(index);
    }
    std::string hide(Dice& dice) {
        const std::int32_t id = anyId(model_, dice);
        const bool visible = pick(dice, 0, 2) != 0;
        stack_->setVisible(id, visible);
        if (model_.has(id)) model_.find(id).layer().visible = visible;
        return "hide or show " + std::to_string(id);
    }
    std::string mergeDown(Dice& dice) {
        const std::int32_t id = anyId(model_, dice);
        const std::int32_t below = anyId(model_, dice);
        expectSame(stack_->mergeDown(id, below), model_.mergeDown(id, below), "merge down");
        return "merge " + std::to_string(id) + " into " + std::to_string(below);
    }
    std::string flattenGroup(Dice& dice) {
        const std::int32_t id = anyId(model_, dice);
        expectSame(stack_->flattenGroup(id, false, noLayer, false), model_.flattenGroup(id),
                   "flatten group");
        return "flatten group " + std::to_string(id);
    }
    std::string rare(Dice& dice) {
        switch (pick(dice, 0, 9)) {
            case 0: {
                const bool visibleOnly = pick(dice, 0, 1) == 0;
                if (!stack_->parts().painters.current) return "nothing to flatten";
                expectSame(stack_->flatten(visibleOnly), model_.flatten(visibleOnly), "flatten");
                return "flatten";
            }
            case 1:
                expectSame(stack_->mergeVisible(false, noLayer, false), model_.mergeVisible(),
                           "merge visible");
                return "merge visible";
            case 2:
                stack_->clearLayers();
                model_.top.clear();
                model_.active = -1;
                return "clear";
            default: return makeGroup(dice);
        }
    }
};

TEST_F(ListEdits, KeepTheListWhole) {
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        Dice dice(seed);
        stack_ = Ref<LayerStack>(new LayerStack(0, 0, 40, 30));
        model_ = ListModel();
        model_.selection = stack_->selectionLayer()->id();
        std::string history = "seed " + std::to_string(seed);
        for (int step = 0; step < 120; ++step) {
            history += "; " + edit(dice);
            checkStack(*stack_, model_);
            if (HasFailure()) FAIL() << history;
        }
    }
    EXPECT_EQ(done_.size(), 9u);
    for (const auto& [what, count] : done_) EXPECT_GT(count, 10) << what;
}

}  // namespace
}  // namespace brushwork::test
