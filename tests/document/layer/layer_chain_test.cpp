#include <gtest/gtest.h>

#include "document/layer/layer_group.h"
#include "document/layer/layer_recipe.h"

namespace brushwork::test {
namespace {

Ref<Layer> plainLayer(LayerRole role = LayerRole::Paint) {
    return makeLayer(role, blank(role == LayerRole::Paint ? 4 : 1));
}

void expectLinks(const LayerChain& chain, const std::vector<Layer*>& wanted) {
    std::vector<Layer*> upward, downward;
    for (Layer* layer = chain.first.get(); layer; layer = layer->next.get())
        upward.push_back(layer);
    for (Layer* layer = chain.last; layer; layer = layer->previous) downward.push_back(layer);
    std::reverse(downward.begin(), downward.end());
    ASSERT_EQ(upward, wanted);
    ASSERT_EQ(downward, wanted);
    ASSERT_EQ(chain.count, static_cast<std::int32_t>(wanted.size()));
    for (Layer* const layer : wanted)
        ASSERT_EQ(layer->refCount(), 2u);  // the test's and the list's
}

TEST(LayerChain, AnySequenceKeepsLinksAndIndexes) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        std::vector<Ref<Layer>> pool;
        for (int n = 0; n < 12; ++n) pool.push_back(plainLayer());
        std::vector<Layer*> model;
        LayerChain chain, elsewhere;
        const Ref<Layer> stranger = plainLayer();
        elsewhere.insertAbove(*stranger, nullptr);
        for (int step = 0; step < 120; ++step) {
            Layer& layer = *pool[dice() % pool.size()];
            const auto at = std::find(model.begin(), model.end(), &layer);
            if (at != model.end()) {
                ASSERT_TRUE(chain.remove(layer));
                model.erase(at);
            } else {
                ASSERT_FALSE(chain.remove(layer));
                const std::size_t place = dice() % (model.size() + 1);
                chain.insertAbove(layer, place ? model[place - 1] : nullptr);
                model.insert(model.begin() + static_cast<std::ptrdiff_t>(place), &layer);
            }
            expectLinks(chain, model);
            const auto index = pick(dice, -1, 13);
            const bool inside = index >= 1 && index <= static_cast<int>(model.size());
            ASSERT_EQ(chain.at(index, false),
                      inside ? model[static_cast<std::size_t>(index - 1)] : nullptr);
            const auto found = std::find(model.begin(), model.end(), &layer);
            const auto number = static_cast<std::int32_t>(found - model.begin()) + 1;
            ASSERT_EQ(chain.indexOf(layer, false), found == model.end() ? -1 : number);
            ASSERT_EQ(chain.byId(layer.id(), true), found == model.end() ? nullptr : &layer);
        }
        ASSERT_FALSE(chain.remove(*stranger));
        chain.clear();
        expectLinks(chain, {});
        for (const Ref<Layer>& layer : pool) ASSERT_EQ(layer->refCount(), 1u);
    }
}

TEST(LayerChain, ALongListGoesOneByOne) {
    LayerChain chain;
    for (int n = 0; n < 20000; ++n) chain.insertAbove(*plainLayer(), chain.last);
    EXPECT_EQ(chain.total(true), 20000);
}

TEST(LayerChain, APaintLayerNeverPartsAnotherFromItsMasks) {
    LayerChain chain;
    std::vector<Ref<Layer>> layers;
    for (const LayerRole role : {LayerRole::Paint, LayerRole::Mask, LayerRole::Stencil,
                                 LayerRole::Paint, LayerRole::Mask}) {
        layers.push_back(plainLayer(role));
        chain.insertAbove(*layers.back(), chain.last);
    }
    const Ref<Layer> paint = plainLayer(), mask = plainLayer(LayerRole::Mask);
    EXPECT_EQ(LayerChain::pastAttached(layers[0].get(), *paint), layers[2].get());
    EXPECT_EQ(LayerChain::pastAttached(layers[1].get(), *paint), layers[2].get());
    EXPECT_EQ(LayerChain::pastAttached(layers[2].get(), *paint), layers[2].get());
    EXPECT_EQ(LayerChain::pastAttached(layers[3].get(), *paint), layers[4].get());
    EXPECT_EQ(LayerChain::pastAttached(layers[0].get(), *mask), layers[0].get());
    EXPECT_EQ(LayerChain::pastAttached(nullptr, *paint), nullptr);
}

// A tree in plain lists.
struct Node {
    Ref<Layer> layer;
    std::vector<Node> members;
};

void listInto(const std::vector<Node>& nodes, std::vector<Layer*>& list) {
    for (const Node& node : nodes) {
        listInto(node.members, list);
        list.push_back(node.layer.get());
    }
}

std::vector<Node> anyTree(Dice& dice, int depth, LayerGroup& into) {
    std::vector<Node> nodes;
    for (int n = pick(dice, 0, 4); n > 0; --n) {
        Node node;
        if (depth > 0 && pick(dice, 0, 2) == 0) {
            const Ref<LayerGroup> group(new LayerGroup(znString::IString("inner")));
            node.layer = group;
            into.insertChild(*group, -2, into.lastChild());
            node.members = anyTree(dice, depth - 1, *group);
        } else {
            node.layer = plainLayer();
            into.insertChild(*node.layer, -2, into.lastChild());
        }
        nodes.push_back(node);
    }
    return nodes;
}

TEST(LayerGroup, AGroupIsCountedAfterItsMembers) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<LayerGroup> root(new LayerGroup(znString::IString("root")));
        const std::vector<Node> tree = anyTree(dice, 3, *root);
        std::vector<Layer*> list;
        listInto(tree, list);
        ASSERT_EQ(root->childCount(true), static_cast<std::int32_t>(list.size()));
        ASSERT_EQ(root->childCount(false), static_cast<std::int32_t>(tree.size()));
        for (std::size_t n = 0; n < list.size(); ++n) {
            const auto index = static_cast<std::int32_t>(n) + 1;
            ASSERT_EQ(root->childAt(index, true), list[n]);
            ASSERT_EQ(root->indexOf(list[n]->id(), true), index);
            ASSERT_EQ(root->childById(list[n]->id(), true), list[n]);
        }
        ASSERT_EQ(root->childAt(0, true), nullptr);
        ASSERT_EQ(root->childAt(root->childCount(true) + 1, true), nullptr);
        ASSERT_EQ(root->indexOf(-77, true), -1);

        const Ref<Layer> copy = root->duplicate();
        ASSERT_EQ(copy->id(), root->id());
        for (std::size_t n = 0; n < list.size(); ++n) {
            Layer* const twin = copy->asGroup()->childAt(static_cast<std::int32_t>(n) + 1, true);
            ASSERT_EQ(twin->id(), list[n]->id());
            ASSERT_NE(twin, list[n]);
        }
        const Ref<Layer> fresh = root->clone();
        if (!list.empty()) {
            ASSERT_EQ(fresh->asGroup()->childById(list.front()->id(), true), nullptr);
        }
    }
}

TEST(LayerGroup, InsertsWhereItIsAsked) {
    const Ref<LayerGroup> group(new LayerGroup(znString::IString("g")));
    const Ref<Layer> a = plainLayer(), b = plainLayer(), c = plainLayer(), d = plainLayer();
    group->insertChild(*a, 5);  // no such child: on top
    group->insertChild(*b, 0);
    group->insertChild(*c, 1);
    group->insertChild(*d, -2, b.get());
    expectLinks(group->children(), {b.get(), d.get(), c.get(), a.get()});
    EXPECT_EQ(a->parent, group.get());
    const Ref<LayerGroup> inner(new LayerGroup(znString::IString("i")));
    group->insertChild(*inner, -2);
    inner->insertChild(*group, 0);  // into what it holds: refused
    EXPECT_EQ(inner->childCount(false), 0);
    EXPECT_FALSE(inner->removeChild(*d));
    EXPECT_TRUE(group->removeChild(*d));
    EXPECT_FALSE(group->removeChild(*d));
    EXPECT_EQ(d->parent, nullptr);
    EXPECT_EQ(d->next, nullptr);
}

TEST(LayerGroup, StartsPassThroughWithoutAPlaceAndHandsStatesDown) {
    const Ref<LayerGroup> group(new LayerGroup(znString::IString("g")));
    EXPECT_EQ(group->blendMode(), passThroughMode);
    const Ref<Layer> plain = plainLayer();
    plain->setBlendMode(passThroughMode);
    EXPECT_EQ(plain->blendMode(), 0);
    group->insertChild(*plain, 0);
    group->setOffset(5.0f, 6.0f);
    EXPECT_EQ(group->offsetXInt(), 0);
    EXPECT_EQ(plain->offsetXInt(), 0);
    group->setLabelColor(3);
    EXPECT_EQ(plain->labelColor(), 3u);
    group->setLabelColor(8);
    EXPECT_EQ(plain->labelColor(), 3u);
    group->setPivot(7.0f, 8.0f, true);
    float x = 0.0f, y = 0.0f;
    plain->pivot(&x, &y);
    EXPECT_EQ(x, 7.0f);
    group->setLocked(true);
    EXPECT_TRUE(plain->locked());
    plain->setLocked(false);
    EXPECT_TRUE(plain->locked());
    plain->setLocked(false, true);
    EXPECT_FALSE(plain->locked());
    plain->next.reset();
}

}  // namespace
}  // namespace brushwork::test
