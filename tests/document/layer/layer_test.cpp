#include "document/layer/layer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "document/layer/layer_numbers.h"
#include "document/layer/layer_recipe.h"
#include "foundation/services/log.h"
#include "image/work/il_memory_img.h"

namespace brushwork::test {
namespace {

TEST(Layer, CountsNamesOfAllRolesTogether) {
    restartLayerNumbers();
    const auto make = [](LayerRole role) { return makeLayer(role, blank(4)); };
    // A layer with a name of its own takes none of the numbers.
    const Ref<Layer> own(
        new Layer(nullptr, nullptr, LayerRole::Mask, Layer::plainFlags, 0, 0, u"Selection"));
    const Ref<Layer> a = make(LayerRole::Paint), b = make(LayerRole::Mask),
                     c = make(LayerRole::Stencil);
    EXPECT_EQ(own->name(), u"Selection");
    EXPECT_EQ(a->name(), u"PaintLayer-0");
    EXPECT_EQ(b->name(), u"MaskLayer-1");
    EXPECT_EQ(c->name(), u"StencilLayer-2");
    EXPECT_EQ(std::vector({own->id(), a->id(), b->id(), c->id()}), std::vector({0, 1, 2, 3}));
    EXPECT_EQ(make(LayerRole::Paint)->clone()->name(), u"PaintLayer-3");
    EXPECT_EQ(make(LayerRole::Paint)->name(), u"PaintLayer-4");
}

TEST(Layer, TakesImagesThatArentSmartAndSaysSo) {
    std::string said;
    setLogSink([&](std::string_view text) { said += text; });
    const Ref<ilImage> plain(new ilMemoryImg(8, 8, 1, 4, TypeUChar, OrderInterleaved));
    const Ref<Layer> layer(new Layer(plain.get(), plain.get(), LayerRole::Paint, 0xa1, 0, 0));
    layer->setStencilImage(plain.get());
    setLogSink({});
    EXPECT_EQ(said,
              "Color Img must be a smart image!\nStencil must be a smart image!\n"
              "New Stencil must be smart!\n");
    EXPECT_EQ(layer->colorImageRef(), plain.get());
    layer->setStencilImage(nullptr);
    EXPECT_NE(layer->smartStencil(), nullptr);
    const Ref<Layer> copy = layer->clone();
    EXPECT_EQ(bytesOf(copy->colorImageRef(), flatTile(0, 0, 8, 8)),
              bytesOf(plain.get(), flatTile(0, 0, 8, 8)));
}

TEST(Layer, AttributesKeepTheirRanges) {
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, blank(4));
    layer->setBlendMode(4);
    EXPECT_EQ(layer->blendMode(), 4);
    layer->setBlendMode(passThroughMode);
    EXPECT_EQ(layer->blendMode(), 0);
    layer->setLabelColor(7);
    layer->setLabelColor(8);
    EXPECT_EQ(layer->labelColor(), 7u);
    const Ref<LayerTextObj> text(new LayerTextObj);
    layer->setTextObject(text.get());
    EXPECT_NE(layer->flags() & Layer::HasText, 0u);
    layer->setTextObject(nullptr);
    EXPECT_EQ(layer->flags() & Layer::HasText, 0u);
}

TEST(Layer, OffsetsTruncateAndNeverOverflow) {
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, blank(4), 2.9f, -2.9f);
    EXPECT_EQ(layer->offsetXInt(), 2);
    EXPECT_EQ(layer->offsetYInt(), -2);
    layer->setOffset(1e30f, -INFINITY);
    EXPECT_EQ(layer->offsetXInt(), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(layer->offsetYInt(), std::numeric_limits<std::int32_t>::min());
    layer->setOffset(NAN, 2147483648.0f);
    EXPECT_EQ(layer->offsetXInt(), 0);
    EXPECT_EQ(layer->offsetYInt(), std::numeric_limits<std::int32_t>::max());
}

TEST(Layer, ContentHoldsColourAndLivePaint) {
    Dice dice(1);
    const Ref<Layer> layer =
        makeLayer(LayerRole::Paint, noise(4, flatTile(0, 0, 30, 30), dice), 100.7f, -3.2f);
    ilTile box;
    layer->contentBounds(box, false);
    EXPECT_EQ(box, flatTile(0, 0, 30, 30));
    layer->setWet(noise(4, flatTile(5, 5, 10, 10), dice).get(), 40, -20);
    layer->contentBounds(box, true);
    EXPECT_EQ(box, flatTile(100, -18, 55, 45));
    layer->setColorImage(nullptr);
    layer->contentBounds(box, true);
    EXPECT_EQ(box, ilTile());
    EXPECT_EQ(layer->paintOpsFor(), nullptr);
}

// Group in a pass-through group in a group.
struct Nest {
    Ref<FakeGroup> outer{new FakeGroup(false)}, through{new FakeGroup(true)},
        inner{new FakeGroup(true)};
    Ref<Layer> layer = makeLayer(LayerRole::Paint, blank(4));

    Nest() {
        layer->parent = inner.get();
        inner->parent = through.get();
        through->parent = outer.get();
    }
    std::vector<int> marks() const { return {inner->marks, through->marks, outer->marks}; }
};

TEST(Layer, MarksTheGroupsAround) {
    Nest nest;
    const std::uint64_t before = nest.outer->changeCount();
    static_cast<void>(nest.outer->takeChangedFlag());
    nest.layer->touch();
    EXPECT_EQ(nest.outer->changeCount(), before + 1);
    EXPECT_TRUE(nest.outer->takeChangedFlag());
    EXPECT_EQ(nest.marks(), std::vector({0, 0, 0}));
    nest.layer->setVisible(false);
    EXPECT_EQ(nest.marks(), std::vector({0, 0, 1}));
    const ilTile box = flatTile(1, 2, 3, 4);
    nest.through->propagateChange(true, &box);
    EXPECT_EQ(nest.marks(), std::vector({0, 1, 2}));
    EXPECT_EQ(nest.outer->lastBox, box);
    nest.layer->setOpacity(nest.layer->opacity());
    EXPECT_EQ(nest.marks(), std::vector({0, 1, 2}));
    nest.layer->setOpacity(0.5f);
    nest.layer->setBlendMode(3);
    EXPECT_EQ(nest.marks(), std::vector({0, 1, 4}));
}

TEST(Layer, InheritsOpacityAndSightUpToTheGroupWithACache) {
    Nest nest;
    nest.layer->setOpacity(0.5f);
    nest.inner->setOpacity(0.5f);
    nest.through->setOpacity(0.25f);
    nest.outer->setOpacity(0.1f);
    EXPECT_EQ(nest.layer->inheritedOpacity(), 0.0625f);
    bool around = false;
    EXPECT_TRUE(nest.layer->isVisibleInTree(&around) && around && nest.layer->isDrawable());
    nest.outer->setVisible(false);
    EXPECT_FALSE(nest.layer->isVisibleInTree(&around) || around || nest.layer->isDrawable());
    EXPECT_TRUE(nest.layer->isVisibleInTree(&around, true) && around);
    nest.layer->setVisible(false);
    EXPECT_FALSE(nest.layer->isVisibleInTree(&around, true));
    EXPECT_TRUE(around);
    nest.outer->setVisible(true);
    nest.layer->setVisible(true);
    nest.layer->setOpacity(0.002f);
    EXPECT_FALSE(nest.layer->isDrawable());
}

TEST(Layer, LocksOnlyWhereTheGroupAroundIsOpen) {
    Nest nest;
    nest.layer->setLocked(true);
    nest.inner->setLocked(true);
    nest.through->setLocked(true);
    nest.inner->setLocked(false);
    EXPECT_TRUE(nest.inner->locked());
    nest.layer->setLocked(false);
    EXPECT_TRUE(nest.layer->locked());
    nest.layer->setLocked(false, true);
    EXPECT_FALSE(nest.layer->locked());
}

TEST(Layer, FindsItsBaseAndWhatLiesAbove) {
    const std::vector<Ref<Layer>> list = {
        makeLayer(LayerRole::Paint, blank(4)), makeLayer(LayerRole::Mask, blank(1)),
        makeLayer(LayerRole::Stencil, blank(1)), makeLayer(LayerRole::Paint, blank(4))};
    link(list);
    EXPECT_EQ(list[2]->baseLayer(), list[0].get());
    EXPECT_EQ(list[3]->baseLayer(), list[3].get());
    EXPECT_EQ(list[0]->nextClipLayer(false), list[1].get());
    EXPECT_EQ(list[0]->nextClipLayer(true), list[2].get());
    list[2]->setVisible(false);
    EXPECT_EQ(list[0]->nextClipLayer(true), list[3].get());
    EXPECT_EQ(list[3]->nextClipLayer(false), nullptr);
    const Ref<Layer> lonely = makeLayer(LayerRole::Mask, blank(1));
    EXPECT_EQ(lonely->baseLayer(), lonely.get());
}

}  // namespace
}  // namespace brushwork::test
