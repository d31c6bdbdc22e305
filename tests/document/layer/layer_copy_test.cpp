#include <gtest/gtest.h>

#include "document/layer/layer_recipe.h"

namespace brushwork::test {
namespace {

std::vector<const SmartPage*> pagesOf(ilImage* image) {
    std::vector<const SmartPage*> pages;
    ilSmartImage* const smart = ilSmartImage::from(image);
    const ilTile box = boxOf(image);
    for (std::int32_t y = box.y & ~127; y < box.endY(); y += 128)
        for (std::int32_t x = box.x & ~127; x < box.endX(); x += 128)
            pages.push_back(smart->pages().pageRef(x, y, false)->get());
    return pages;
}

TEST(LayerCopy, SharesEveryPageUntilOneIsWritten) {
    Dice dice(7);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, frame, dice));
    paintNoise(*layer->stencilImage(), flatTile(-50, 0, 100, 40), dice);
    const Ref<Layer> above = makeLayer(LayerRole::Stencil, noise(1, frame, dice));
    link({layer, above});
    layer->refreshClip();
    const Ref<Layer> copy = layer->duplicate();
    EXPECT_EQ(pagesOf(copy->colorImageRef()), pagesOf(layer->colorImageRef()));
    EXPECT_EQ(pagesOf(copy->stencilImage()), pagesOf(layer->stencilImage()));
    EXPECT_EQ(pagesOf(copy->clipImage()), pagesOf(layer->clipImage()));
    EXPECT_EQ(boxOf(copy->colorImageRef()), boxOf(layer->colorImageRef()));

    // Neither sees what is painted on the other, though it had never looked at those pages.
    const auto before = bytesOf(layer->colorImageRef());
    paintSolid(*layer->colorImageRef(), flatTile(-20, -20, 200, 30), {1, 2, 3, 4});
    EXPECT_EQ(bytesOf(copy->colorImageRef()), before);
    const auto painted = bytesOf(layer->colorImageRef());
    paintSolid(*copy->colorImageRef(), frame, {0, 0, 0, 0});
    EXPECT_EQ(bytesOf(layer->colorImageRef()), painted);
}

TEST(LayerCopy, CarriesWhatBelongsToTheLayerAlone) {
    Dice dice(8);
    const Ref<Layer> layer = makeLayer(LayerRole::Mask, noise(1, frame, dice, 255), 5.5f, -6.5f);
    const Ref<FakeGroup> group(new FakeGroup(false));
    link({makeLayer(LayerRole::Paint, blank(4)), layer, makeLayer(LayerRole::Paint, blank(4))});
    layer->parent = group.get();
    layer->attachment = Ref<Resource>(new LayerTextObj);
    layer->tag = "kept";
    layer->setName(u"shown name");
    layer->setOpacity(0.25f);
    layer->setVisible(false, 9);
    layer->setLabelColor(5);
    layer->setOverlayColor({0.1f, 0.2f, 0.3f, 0.4f});
    layer->setPivot(3.0f, 4.0f, true);
    layer->setWet(blank(1).get(), 3, 4);
    const Ref<LayerTextObj> text(new LayerTextObj);
    text->runs.resize(1);
    layer->setTextObject(text.get());
    EXPECT_NE(layer->paintOpsFor(), nullptr);
    EXPECT_TRUE(layer->takeChangedFlag());
    EXPECT_TRUE(layer->takeHostState());

    const Ref<Layer> copy = layer->clone();
    EXPECT_NE(copy->id(), layer->id());
    EXPECT_EQ(layer->duplicate()->id(), layer->id());
    EXPECT_EQ(copy->name(), layer->name());
    EXPECT_EQ(copy->tag, "kept");
    EXPECT_EQ(copy->flags(), layer->flags());
    EXPECT_TRUE(copy->isMask() && copy->pivotSet() && !copy->visible());
    EXPECT_EQ(copy->visibleArg(), 9);
    EXPECT_EQ(copy->labelColor(), 5u);
    EXPECT_EQ(copy->opacity(), 0.25f);
    EXPECT_EQ(copy->overlayColor(), layer->overlayColor());
    EXPECT_EQ(copy->offsetXInt(), 5);
    EXPECT_EQ(copy->offsetYInt(), -6);
    EXPECT_EQ(copy->smartColor()->getPixel(9000, 0), 255u);
    EXPECT_EQ(copy->wet().image, layer->wet().image);
    ASSERT_NE(copy->textObject(), nullptr);
    EXPECT_NE(copy->textObject(), layer->textObject());
    EXPECT_EQ(copy->textObject()->runCount(), 1);
    EXPECT_FALSE(copy->next || copy->previous || copy->parent || copy->attachment);
    EXPECT_NE(copy->paintOpsFor(), layer->paintOpsFor());
    EXPECT_EQ(copy->paintOpsFor()->image(), copy->colorImageRef());
    EXPECT_FALSE(copy->takeChangedFlag());
    EXPECT_TRUE(copy->takeHostState());
}

TEST(LayerCopy, SharesTheThumbnailUntilOneIsDrawnAnew) {
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, blank(4));
    paintSolid(*layer->colorImageRef(), flatTile(0, 0, 100, 80), {9, 9, 9, 255});
    ilSPMemoryImg* const picture = layer->thumbnailImage(nullptr, 0, 0);
    const auto before = bytesOf(picture, picture->box());
    const Ref<Layer> copy = layer->clone();
    EXPECT_EQ(copy->thumbnailImage(nullptr, 0, 0), picture);
    paintSolid(*copy->colorImageRef(), flatTile(0, 0, 100, 80), {80, 0, 0, 255});
    copy->touch();
    ilSPMemoryImg* const own = copy->thumbnailImage(nullptr, 0, 0);
    EXPECT_NE(bytesOf(own, own->box()), before);
    EXPECT_EQ(layer->thumbnailImage(nullptr, 0, 0), picture);
    EXPECT_EQ(bytesOf(picture, picture->box()), before);
}

TEST(LayerCopy, GrowsTheBoxOfAColourCopy) {
    Dice dice(9);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, flatTile(3, 4, 50, 60), dice));
    const Ref<ilSmartImage> copy = layer->copyOfColor(10);
    EXPECT_EQ(boxOf(copy.get()), flatTile(-7, -6, 70, 80));
    EXPECT_EQ(bytesOf(copy.get()), bytesOf(layer->colorImageRef()));
    EXPECT_EQ(boxOf(layer->colorImageRef()), flatTile(3, 4, 50, 60));
    EXPECT_FALSE(boxOf(layer->copyOfColor(INT32_MAX).get()).isEmpty());
    EXPECT_TRUE(boxOf(makeLayer(LayerRole::Paint, blank(4))->copyOfColor(10).get()).isEmpty());
}

TEST(LayerCopy, KeepsAScratchCopyALevel) {
    Dice dice(10);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, flatTile(0, 0, 20, 20), dice));
    EXPECT_EQ(layer->levelImage(0), layer->colorImageRef());
    EXPECT_EQ(layer->levelImage(-1), nullptr);
    EXPECT_EQ(layer->levelImage(Layer::mostLevels), nullptr);
    EXPECT_EQ(layer->wetLevelImage(0), nullptr);
    ilImage* const third = layer->levelImage(3);
    EXPECT_EQ(layer->levelImage(3), third);
    EXPECT_EQ(bytesOf(third), bytesOf(layer->colorImageRef()));
    layer->renameImage(3);
    EXPECT_EQ(layer->colorImageRef(), third);
    EXPECT_NE(layer->levelImage(3), third);
    EXPECT_EQ(layer->paintOpsFor()->image(), third);
}

}  // namespace
}  // namespace brushwork::test
