#include <gtest/gtest.h>

#include "blending/modes/blender_registry.h"
#include "document/layer/layer_group.h"
#include "document/layer/layer_recipe.h"

namespace brushwork::test {
namespace {

constexpr std::int32_t modes[] = {0, 0, 0, 1, 2, 3, 4, 5, 6, 8, 13, 14, 16, 21, 22, 23};

Ref<ilSPMemoryImg> flatImage() {
    Ref<ilSPMemoryImg> image(new ilSPMemoryImg(frame.nx, frame.ny, 4));
    std::fill_n(image->data(), image->byteSize(), std::uint8_t{0});
    return image;
}

// One blend of all of the frame, from one contiguous picture into another.
void blendAll(ilSPMemoryImg& target, ilImage& source, std::int32_t mode, float opacity) {
    const auto blender = npc::createBlender(mode);
    blender->setDestination(&target, 0, 0);
    blender->setSource(&source, 0, 0, false);
    blender->setOpacity(opacity);
    blender->run(flatTile(0, 0, frame.nx, frame.ny));
}

// What the layer shows in the frame, by the whole.
Ref<ilSPMemoryImg> pictureOf(Layer& layer) {
    std::int32_t x = 0, y = 0;
    layer.offsetInt(&x, &y);
    ilTile own = frame;
    own.x -= x;
    own.y -= y;
    const Ref<ilImage> image = layer.wetComposite(own, &x, &y);
    Ref<ilSPMemoryImg> picture = flatImage();
    image->readRegion(own, picture->data(), own);
    return picture;
}

// The definition: whole layers, from the bottom up, with nothing kept.
void drawPlainly(LayerGroup& group, ilSPMemoryImg& target, const std::vector<float>& through) {
    for (Layer* child = group.firstChild(); child; child = child->next.get()) {
        if (!child->visible() || !(child->opacity() > 0.002f) || child->isMask()) continue;
        float opacity = child->opacity();
        for (auto around = through.rbegin(); around != through.rend(); ++around) opacity *= *around;
        LayerGroup* const inner = child->asGroup();
        if (inner && inner->isPassThrough()) {
            std::vector<float> deeper = through;
            deeper.push_back(child->opacity());
            drawPlainly(*inner, target, deeper);
            continue;
        }
        Ref<ilSPMemoryImg> picture;
        if (inner) {
            picture = flatImage();
            drawPlainly(*inner, *picture, {});
        } else {
            picture = pictureOf(*child);
        }
        blendAll(target, *picture, child->blendMode(), opacity);
    }
}

class Tree {
  public:
    Tree(Dice& dice, bool boundless) : dice_(dice), boundless_(boundless) {
        root->setBlendMode(0);
        for (int n = 0; n < 4; ++n) insert();
    }

    // One edit, with the marks that whoever edits has to leave.
    void edit() {
        switch (pick(dice_, 0, 9)) {
            case 0: insert(); break;
            case 1: remove(); break;
            case 2: anyLayer()->setOpacity(anyOpacity()); break;
            case 3: {
                Layer* const layer = anyLayer();
                layer->setVisible(!layer->visible());
                break;
            }
            case 4: {
                Layer* const layer = anyLayer();
                const bool through = layer->asGroup() && pick(dice_, 0, 1) == 0;
                layer->setBlendMode(through ? passThroughMode : anyMode());
                break;
            }
            case 5:
                anyLayer()->setOffset(static_cast<float>(pick(dice_, -50, 50)),
                                      static_cast<float>(pick(dice_, -50, 50)));
                break;
            case 6: stencil(); break;
            case 7: stroke(); break;
            default: paint(); break;
        }
    }

    const Ref<LayerGroup> root{new LayerGroup(znString::IString("root"))};

  private:
    float anyOpacity() {
        static constexpr float some[] = {1.0f, 1.0f, 0.5f, 0.25f, 0.77f, 0.002f, 0.0f};
        return some[pick(dice_, 0, 6)];
    }
    std::int32_t anyMode() { return modes[dice_() % std::size(modes)]; }
    Layer* anyLayer() {
        Layer* const layer =
            root->childAt(pick(dice_, 1, std::max(1, root->childCount(true))), true);
        return layer ? layer : root->firstChild() ? root->firstChild() : insert();
    }
    LayerGroup& anyGroup() {
        Layer* const layer =
            root->childAt(pick(dice_, 1, std::max(1, root->childCount(true))), true);
        return layer && layer->asGroup() ? *layer->asGroup() : *root;
    }

    Layer* insert() {
        Ref<Layer> layer;
        switch (pick(dice_, 0, 5)) {
            case 0:
                layer = Ref<Layer>(new LayerGroup(znString::IString("inner")));
                if (pick(dice_, 0, 1) == 0) layer->setBlendMode(anyMode());
                break;
            case 1: layer = makeLayer(LayerRole::Mask, noise(1, anyBox(dice_), dice_)); break;
            default: {
                const std::uint8_t fill = boundless_ && pick(dice_, 0, 3) == 0 ? 90 : 0;
                layer = makeLayer(LayerRole::Paint, noise(4, anyBox(dice_), dice_, fill),
                                  static_cast<float>(pick(dice_, -40, 40)), 3.7f);
                layer->setBlendMode(anyMode());
                break;
            }
        }
        layer->setOpacity(anyOpacity());
        anyGroup().insertChild(*layer, pick(dice_, 0, 3));
        return layer.get();
    }
    void remove() {
        Layer* const layer = anyLayer();
        if (layer) layer->parent->asLayer().asGroup()->removeChild(*layer);
    }
    void paint() {
        Layer* const layer = anyLayer();
        if (layer->asGroup()) return;
        ilTile box = anyBox(dice_, 90);
        paintNoise(*layer->colorImageRef(), box, dice_);
        mark(*layer, box);
    }
    void stencil() {
        Layer* const layer = anyLayer();
        if (layer->asGroup() || layer->isMask()) return;
        const ilTile box = anyBox(dice_, 90);
        paintNoise(*layer->stencilImage(), box, dice_);
        mark(*layer, box);
    }
    // Begins or ends a live one.
    void stroke() {
        Layer* const layer = anyLayer();
        if (layer->asGroup() || layer->isMask()) return;
        if (layer->wet().image)
            layer->clearWet();
        else
            layer->setWet(noise(4, anyBox(dice_), dice_).get(), 5, -7);
        layer->touch();
        layer->propagateChange(false);
    }
    static void mark(Layer& layer, ilTile box) {
        box.x += layer.offsetXInt();
        box.y += layer.offsetYInt();
        layer.touch();
        layer.propagateChange(false, &box);
    }

    Dice& dice_;
    bool boundless_;
};

TEST(GroupRender, TheCacheEqualsAFullRedrawAfterAnyEdits) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const bool boundless = seed % 4 == 3;
        Tree tree(dice, boundless);
        for (int step = 0; step < 25; ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            for (int n = pick(dice, 0, 3); n > 0; --n) tree.edit();
            GroupRenderRequest request;
            ilPageTileManager tiles;
            ilTile asked = frame;
            if (pick(dice, 0, 1) == 0) asked = intersection(anyBox(dice), frame);
            if (pick(dice, 0, 1) == 0) {
                tiles.addTile(asked);
                request.tiles = &tiles;
            } else {
                request.tileBox = asked;
                request.hasTiles = true;
            }
            const Ref<ilImage> cache = tree.root->renderGroup(request);
            ASSERT_TRUE(cache);
            ASSERT_FALSE(tree.root->needsRender(-1));
            const Ref<ilSPMemoryImg> wanted = flatImage();
            drawPlainly(*tree.root, *wanted, {});
            // Members without an edge are drawn where it was asked for; all others everywhere.
            const ilTile compared = boundless ? asked : frame;
            ilTile inWanted = compared;
            inWanted.x -= frame.x;
            inWanted.y -= frame.y;
            ASSERT_EQ(difference(bytesOf(cache.get(), compared), bytesOf(wanted.get(), inWanted), 4,
                                 compared),
                      "");
        }
    }
}

TEST(GroupRender, APassThroughGroupDrawsIntoTheTargetAndOnlyWhatIsAsked) {
    for (unsigned seed = 100; seed < 140; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        Tree tree(dice, seed % 4 == 3);
        for (int n = 0; n < 12; ++n) tree.edit();
        const Ref<LayerGroup> inner(new LayerGroup(znString::IString("inner")));
        inner->insertChild(*makeLayer(LayerRole::Paint, noise(4, anyBox(dice), dice)), 0);
        inner->setOpacity(0.8f);
        tree.root->insertChild(*inner, pick(dice, 0, 2));
        tree.root->setBlendMode(passThroughMode);
        tree.root->setOpacity(0.6f);
        EXPECT_FALSE(tree.root->renderGroup({}));

        // A plane whose pixel (0, 0) shows (-30, 20) of the document.
        const Ref<ilSmartImage> plane = blank(4);
        const ilTile onPlane = flatTile(frame.x + 30, frame.y - 20, frame.nx, frame.ny);
        paintNoise(*plane, onPlane, dice);
        const Ref<ilSPMemoryImg> wanted = flatImage();
        plane->readRegion(onPlane, wanted->data(), onPlane);
        const std::vector<std::uint8_t> before = bytesOf(wanted.get(), wanted->box());
        drawPlainly(*tree.root, *wanted, {tree.root->opacity()});

        GroupRenderRequest request;
        ilPageTileManager tiles;
        const ilTile asked = intersection(anyBox(dice), frame);
        tiles.addTile(asked);
        request.tiles = &tiles;
        request.target = plane;
        request.originIsSet = true;
        request.originX = 30;
        request.originY = -20;
        ASSERT_EQ(tree.root->renderGroup(request).get(), plane.get());
        const std::vector<std::uint8_t> drawn = bytesOf(plane.get(), onPlane);
        const std::vector<std::uint8_t> all = bytesOf(wanted.get(), wanted->box());
        std::vector<std::uint8_t> expected = before;
        for (int y = 0; y < frame.ny; ++y)
            for (int x = 0; x < frame.nx; ++x) {
                const auto at = static_cast<std::size_t>(4 * (y * frame.nx + x));
                if (holds(asked, frame.x + x, frame.y + y))
                    std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(at), 4,
                                expected.begin() + static_cast<std::ptrdiff_t>(at));
            }
        ASSERT_EQ(difference(drawn, expected, 4), "");
    }
}

// What was changed without a mark shows whether a tile was drawn.
TEST(GroupRender, ADirtyTileIsDrawnAndNoOther) {
    Dice dice(3);
    const Ref<LayerGroup> outer(new LayerGroup(znString::IString("outer")));
    const Ref<LayerGroup> inner(new LayerGroup(znString::IString("inner")));
    outer->setBlendMode(0);
    inner->setBlendMode(1);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, flatTile(0, 0, 256, 256), dice));
    outer->insertChild(*inner, 0);
    inner->insertChild(*layer, 0);
    const Ref<ilImage> cache = outer->renderGroup({});
    const ilTile marked = flatTile(10, 10, 20, 20), unmarked = flatTile(140, 10, 20, 20);
    const auto old = bytesOf(cache.get(), unmarked);
    paintNoise(*layer->colorImageRef(), marked, dice);
    paintNoise(*layer->colorImageRef(), unmarked, dice);
    layer->propagateChange(false, &marked);
    EXPECT_TRUE(outer->needsRender(-1));
    GroupRenderRequest all;
    all.tileBox = flatTile(0, 0, 256, 256);
    ASSERT_EQ(outer->renderGroup(all).get(), cache.get());
    EXPECT_EQ(bytesOf(cache.get(), marked), bytesOf(layer->colorImageRef(), marked));
    EXPECT_EQ(bytesOf(cache.get(), unmarked), old);
    EXPECT_FALSE(outer->needsRender(-1));
    // Nothing is stale: nothing is drawn.
    paintNoise(*layer->colorImageRef(), marked, dice);
    const auto clean = bytesOf(cache.get(), marked);
    ASSERT_EQ(outer->renderGroup(all).get(), cache.get());
    EXPECT_EQ(bytesOf(cache.get(), marked), clean);
    // Another tag, or a change of the mode: all of it.
    all.tag = 7;
    ASSERT_EQ(outer->renderGroup(all).get(), cache.get());
    EXPECT_EQ(bytesOf(cache.get(), unmarked), bytesOf(layer->colorImageRef(), unmarked));
}

TEST(GroupRender, AHiddenGroupsCacheIsWhatItShowsWhenShown) {
    Dice dice(4);
    const ilTile box = flatTile(-5, -5, 40, 40);
    const Ref<LayerGroup> group(new LayerGroup(znString::IString("g")));
    group->setBlendMode(0);
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, box, dice));
    group->insertChild(*layer, 0);
    group->setVisible(false);
    group->setOpacity(0.2f);
    const Ref<ilImage> cache = group->effectiveImage(nullptr, nullptr, true, true);
    EXPECT_EQ(bytesOf(cache.get(), box), bytesOf(layer->colorImageRef(), box));
}

TEST(GroupRender, FlagsChooseMembersAndAnEmptyGroupIsBlank) {
    Dice dice(6);
    const ilTile box = flatTile(0, 0, 30, 30);
    const Ref<LayerGroup> group(new LayerGroup(znString::IString("g")));
    group->setBlendMode(0);
    GroupRenderRequest request;
    request.tileBox = box;
    EXPECT_TRUE(boxOf(group->renderGroup(request).get()).isEmpty());
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, noise(4, box, dice));
    group->insertChild(*layer, 0);
    layer->setFlags(0x2000);
    request.flagMask = 0x1000;
    const Ref<ilImage> cache = group->renderGroup(request);
    EXPECT_EQ(bytesOf(cache.get(), box), std::vector<std::uint8_t>(30 * 30 * 4, 0));
}

// A live stroke through a mask is drawn at its layer's depth, without becoming part of it.
TEST(GroupRender, AMaskedStrokeShowsAtItsDepth) {
    Dice dice(8);
    const ilTile box = flatTile(0, 0, 100, 60);
    const Ref<LayerGroup> group(new LayerGroup(znString::IString("g")));
    group->setBlendMode(0);
    const Ref<Layer> below = makeLayer(LayerRole::Paint, noise(4, box, dice), 7.0f, 0.0f);
    const Ref<Layer> above = makeLayer(LayerRole::Paint, noise(4, box, dice));
    above->setBlendMode(1);
    group->insertChild(*below, 0);
    group->insertChild(*above, -2);
    const Ref<ilSmartImage> mask = blank(1);
    paintSolid(*mask, flatTile(0, 0, 50, 60), {255});
    const Ref<PaintOps> painter(below->paintOpsFor());
    const Ref<MaskingPaintOps> masked(new MaskingPaintOps);
    masked->setInner(painter.get());
    masked->setMask(mask.get(), 0, 0);
    masked->beginAccess();
    constexpr std::uint8_t red[4] = {255, 0, 0, 255};
    masked->fillRegion(box, ilPixel(TypeUChar, 4, red));
    GroupRenderRequest request;
    request.tileBox = flatTile(0, 0, 128, 128);
    request.selectionMask = masked.get();
    request.activeLayer = below.get();
    const Ref<ilSmartImage> live = ilSmartImage::from(group->renderGroup(request).get())->clone();
    masked->endAccess();
    group->markCache(nullptr);
    const Ref<ilImage> after = group->renderGroup(request);
    EXPECT_EQ(bytesOf(live.get(), request.tileBox), bytesOf(after.get(), request.tileBox));
}

TEST(GroupRender, AThumbnailShowsTheMembersOfAPassThroughGroup) {
    const Ref<ilSmartImage> image = blank(4);
    paintSolid(*image, flatTile(0, 0, 30, 20), {10, 20, 30, 200});
    const Ref<LayerGroup> group(new LayerGroup(znString::IString(u"G")));
    group->insertChild(*makeLayer(LayerRole::Paint, image, 5.0f, 0.0f), 0);
    ASSERT_TRUE(group->LayerGroup::isPassThrough());
    ilSPMemoryImg* const picture = group->thumbnailImage(nullptr, 0, 0);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(std::count(picture->data(), picture->data() + picture->byteSize(), 200), 30 * 20);
}

class ToldLayer : public Layer {
  public:
    explicit ToldLayer(int& told)
        : Layer(blank(4).get(), nullptr, LayerRole::Paint, plainFlags, 0.0f, 0.0f), told_(told) {}

  protected:
    void aboutToRelease() override { ++told_; }

  private:
    int& told_;
};

TEST(GroupRender, MembersAreToldThatTheirGroupGoes) {
    int told = 0;
    const Ref<Layer> member(new ToldLayer(told));
    Ref<LayerGroup> group(new LayerGroup(znString::IString(u"G")));
    group->insertChild(*member, 0);
    group = Ref<LayerGroup>();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(member->parent, nullptr);
}

}  // namespace
}  // namespace brushwork::test
