// The base painter: what it hands on, and what it answers alone. ImageBlender on top of it.
#include "blending/paint/paint_ops.h"

#include <gtest/gtest.h>

#include "blending/paint/image_blender.h"
#include "blending/paint/paint_recipe.h"
#include "blending/paint/soft_paint_ops.h"

namespace brushwork {
namespace {

using namespace brushwork::test;

bool leaveAlone(ilSPMemoryImg&) {
    return true;
}

TEST(PaintOps, AloneItAnswersMinusOne) {
    const Ref<PaintOps> ops(new PaintOps);
    const ilTile box = flatTile(0, 0, 4, 4);
    std::uint32_t pixel = 0;
    EXPECT_EQ(ops->clear(), -1);
    EXPECT_EQ(ops->setLocked(true), -1);
    EXPECT_EQ(ops->blendingChanges(), -1);
    EXPECT_EQ(ops->fillRegion(box, ilPixel()), -1);
    EXPECT_EQ(ops->rect_copy(0, 0, 1, 1, PaintSource::of(&pixel), {}, 0, 1, 1), -1);
    EXPECT_EQ(ops->drawHook(), -1);
    EXPECT_EQ(ops->drawImage(nullptr, 0, 0), -1);
    EXPECT_EQ(ops->beginAccess(), -1);
    EXPECT_EQ(ops->endAccess(), -1);
    EXPECT_EQ(ops->channels(), -1);
    EXPECT_EQ(ops->setFill(ilPixel()), -1);
    EXPECT_EQ(ops->setStrokeImage(nullptr), -1);
    EXPECT_EQ(ops->setPreview(true), -1);
    EXPECT_EQ(ops->drawSoftBox(box, 2), -1);
    EXPECT_EQ(ops->setBackup(nullptr), -1);
    EXPECT_EQ(ops->applyColorAdjust(box, leaveAlone), -1);
    EXPECT_EQ(ops->setMarker(true), -1);
    EXPECT_EQ(ops->setMixRate0(1), -1);
    EXPECT_EQ(ops->mixRate2(), -1.0F);
    EXPECT_EQ(ops->brushKind(), -1);
    EXPECT_FALSE(ops->isWet());
    EXPECT_EQ(ops->fill(box), -1);
    EXPECT_EQ(ops->commitStroke(), -1);
    EXPECT_EQ(ops->setLockAlpha(1), -1);
    EXPECT_EQ(ops->flush(), -1);
    EXPECT_EQ(ops->beginBatch(), -1);
    EXPECT_EQ(ops->endBatch(), -1);
    EXPECT_EQ(ops->image(), nullptr);
    EXPECT_EQ(ops->pendingStroke(), nullptr);
    EXPECT_EQ(ops->readPixels(0, 0, 1, 1, &pixel, {}), 0);
    ilTile bounds = box;
    ops->bounds(bounds);
    EXPECT_TRUE(bounds.isEmpty());
}

// Through two fronts everything reaches the painter that draws, and comes back from it.
TEST(PaintOps, HandsOnToItsChild) {
    Picture below(20, 20, 4);
    const Ref<ilSmartImage> target = smartOf(below), other = smartOf(below);
    const Ref<SoftPaintOps> soft(new SoftPaintOps(target.get()));
    const Ref<PaintOps> middle(new PaintOps), front(new PaintOps);
    middle->setChild(soft.get());
    front->setChild(middle.get());

    EXPECT_EQ(front->image(), target.get());
    EXPECT_EQ(front->channels(), 4);
    front->setColor(1, 2, 3, 4);
    const std::uint32_t words[] = {5, 6, 7, 8};
    EXPECT_EQ(soft->color()[3], 4U);
    front->setColor(words);
    std::int32_t count = 0;
    EXPECT_EQ(front->color(count), soft->color());
    EXPECT_EQ(count, 4);
    EXPECT_EQ(soft->color()[0], 5U);
    front->enableBlend(true);
    EXPECT_EQ(soft->blendFactors(), (BlendFactors{0, 7}));
    EXPECT_TRUE(front->state().writeEnable);
    front->enableBlend(false);
    EXPECT_EQ(front->blendFactors(), (BlendFactors{1, 7}));
    front->setZoom(2.0F, 3.0F);
    EXPECT_EQ(front->state().zoomY, 3.0F);
    front->setLocked(true);
    EXPECT_TRUE(soft->locked());
    front->setBounds(flatTile(1, 2, 3, 4));
    ilTile bounds;
    front->bounds(bounds);
    EXPECT_EQ(bounds, flatTile(1, 2, 3, 4));
    EXPECT_EQ(front->clear(), -1);
    EXPECT_EQ(target->getPixel(1, 2), 0x08070605U);
    EXPECT_EQ(target->getPixel(0, 2), 0U);
    std::uint32_t pixel = 0;
    EXPECT_EQ(front->readPixels(1, 2, 1, 1, &pixel, {}), -1);
    EXPECT_EQ(pixel, 0x08070605U);
    EXPECT_EQ(front->readPixels(1, 2, 0, 1, &pixel, {}), 0);

    EXPECT_EQ(front->mixRate1(), 0.5F);
    front->setMixRate0(0.1F);
    front->setMixRate1(0.2F);
    front->setMixRate2(0.3F);
    EXPECT_EQ(soft->mixRate0(), 0.1F);
    EXPECT_EQ(soft->mixRate1(), 0.2F);
    EXPECT_EQ(soft->mixRate2(), 0.3F);
    const std::int32_t kinds[] = {1, 2, 3, 4, 6, 9};
    for (const std::int32_t kind : kinds) {
        front->setBrushKind(kind);
        const bool tests[] = {front->isMarker(),          front->isSmudge(), front->isColorSmudge(),
                              front->isMarkerColorless(), front->isPastel(), front->isGlow()};
        for (std::size_t n = 0; n < 6; ++n) EXPECT_EQ(tests[n], kinds[n] == kind);
        EXPECT_TRUE(front->isWet());
    }
    front->setMarker(false);
    EXPECT_EQ(soft->brushKind(), 0);
    front->setBackup(other.get());
    front->setStrokeImage(other.get());
    front->setPreview(true);
    front->setLockAlpha(1);
    EXPECT_EQ(soft->backup(), other.get());
    EXPECT_EQ(front->strokeImage(), other.get());
    EXPECT_TRUE(front->preview());
    EXPECT_EQ(front->lockAlpha(), 1);
    front->setImage(other.get());
    EXPECT_EQ(front->imageForRead(below.box()), other.get());
    EXPECT_EQ(soft->image(), other.get());
    front->setChild(nullptr);
    EXPECT_EQ(front->image(), nullptr);
}

TEST(ImageBlender, EachModeIsItsPair) {
    constexpr std::uint32_t seed = 75;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    Picture below(60, 50, 4, dice), above(30, 20, 4, dice);
    const Ref<ilMemoryImg> source = memoryOf(above), target = memoryOf(below);
    const Ref<ImageBlender> blender(new ImageBlender(target.get()));
    EXPECT_EQ(blender->factors(), pairCopy);
    const std::pair<std::int32_t, BlendFactors> modes[] = {
        {1, {1, 7}}, {2, {9, 1}}, {3, {0, 6}}, {4, {0, 7}}, {0, {1, 0}}, {1, {1, 7}}, {99, {1, 0}}};
    for (const auto& [mode, pair] : modes) {
        blender->setMode(mode);
        EXPECT_EQ(blender->factors(), pair);
        target->writeRegion(below.box(), below.bytes.data(), below.box());
        EXPECT_EQ(blender->blend(7, 9, 30, 20, PaintSource::of(source.get())), -1);
        Picture wanted = below;
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 30; ++x) {
                const Pixel out = drawnPixel(pair, above.get(x, y), 4, below.get(x + 7, y + 9), 4);
                std::copy_n(out.begin(), 4, wanted.at(x + 7, y + 9));
            }
        }
        EXPECT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes) << mode;
    }
}

}  // namespace
}  // namespace brushwork
