// MaskingPaintOps: draws, then what the mask protects comes back, against a composite by mask.
#include "blending/paint/masking_paint_ops.h"

#include <gtest/gtest.h>

#include "blending/paint/paint_recipe.h"
#include "blending/paint/soft_paint_ops.h"

namespace brushwork {
namespace {

using namespace brushwork::test;

struct Masked {
    Picture maskPicture;
    Ref<ilSmartImage> mask;
    int maskX = 0, maskY = 0;  // pixel of the mask on the target's (0, 0)
    std::uint8_t fill = 0;

    [[nodiscard]] int at(int x, int y) {
        const int u = x + maskX - placeX, v = y + maskY - placeY;
        return maskPicture.has(u, v) ? maskPicture.get(u, v)[0] : fill;
    }
    int placeX = 0, placeY = 0;  // of the picture in the mask's image
};

enum class Edge { Hard, Soft };

Masked drawMask(Dice& dice, Edge edge, std::uint8_t fill) {
    Masked masked;
    masked.fill = fill;
    masked.maskPicture = Picture(pick(dice, 1, 250), pick(dice, 1, 250), 1, dice);
    if (edge == Edge::Hard)
        for (std::uint8_t& m : masked.maskPicture.bytes) m = m < 128 ? 0 : 255;
    // Parts of one value, so that solid pages come up.
    if (pick(dice, 0, 2) == 0)
        std::fill(masked.maskPicture.bytes.begin(), masked.maskPicture.bytes.end(),
                  static_cast<std::uint8_t>(pick(dice, 0, 1) * 255));
    masked.placeX = pick(dice, -150, 150);
    masked.placeY = pick(dice, -150, 150);
    masked.maskX = pick(dice, -60, 60);
    masked.maskY = pick(dice, -60, 60);
    masked.mask = smartOf(masked.maskPicture, masked.placeX, masked.placeY, fill);
    return masked;
}

// `drawn` where the mask is 0, `before` where it is 255.
Picture composite(Picture& before, Picture& drawn, Masked& masked) {
    Picture result = drawn;
    for (int y = 0; y < before.height; ++y) {
        for (int x = 0; x < before.width; ++x) {
            const Pixel p = mixedPixel(before.get(x, y), drawn.get(x, y), masked.at(x, y));
            std::copy_n(p.begin(), before.channels, result.at(x, y));
        }
    }
    return result;
}

// A random operation on any painter; the same for the same dice.
void drawSomething(PaintOps& ops, Dice dice, int channels) {
    const std::vector<BlendFactors> pairs = allPairs();
    const BlendFactors pair = pairs[static_cast<std::size_t>(pick(dice, 0, 7))];
    ops.setBlendFactors(pair.source, pair.target);
    const Pixel color = drawPixel(dice);
    ops.setColor(channels == 1 ? color[3] : color[0], color[1], color[2], color[3]);
    const ilTile box = flatTile(pick(dice, -60, 150), pick(dice, -60, 150), pick(dice, 20, 200),
                                pick(dice, 20, 200));
    Picture picture(90, 70, channels, dice);
    const Ref<ilMemoryImg> image = memoryOf(picture);
    switch (pick(dice, 0, 4)) {
        case 0: ops.fill(box); break;
        case 1: ops.drawImage(image.get(), box.x, box.y); break;
        case 2: ops.applyColorAdjust(box, [](ilSPMemoryImg& p) { return p.invert() == 0; }); break;
        case 3:
            ops.setZoom(1.5F, 0.5F);
            ops.drawImage(image.get(), box.x, box.y);
            ops.setZoom(1.0F, 1.0F);
            break;
        default:
            ops.setBlendFactors(1, 7);
            ops.drawSoftBox(box, 9);
            break;
    }
}

TEST(MaskingPaintOps, GivesBackByTheMask) {
    constexpr std::uint32_t seed = 705;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    int partly = 0;
    for (int round = 0; round < 160; ++round) {
        const int channels = round % 4 == 3 ? 1 : 4;
        const std::uint8_t fill = round % 2 == 0 ? 0 : 255;
        const Edge edge = round % 3 == 0 ? Edge::Hard : Edge::Soft;
        Picture below(pick(dice, 100, 200), pick(dice, 100, 200), channels, dice);
        const bool smart = pick(dice, 0, 2) != 0;
        const auto made = [&] {
            return smart ? Ref<ilImage>(smartOf(below)) : Ref<ilImage>(memoryOf(below));
        };
        const Ref<ilImage> target = made(), plain = made();
        Masked masked = drawMask(dice, edge, fill);
        const Ref<SoftPaintOps> inner(new SoftPaintOps(target.get()));
        const Ref<MaskingPaintOps> ops(new MaskingPaintOps);
        ops->setInner(inner.get());
        ASSERT_EQ(ops->setMask(masked.mask.get(), masked.maskX, masked.maskY), -1);
        const Ref<SoftPaintOps> free(new SoftPaintOps(plain.get()));
        const Dice one(static_cast<std::uint32_t>(dice()));
        drawSomething(*ops, one, channels);
        drawSomething(*free, one, channels);
        Picture drawn = pictureOf(*plain, below.box());
        Picture wanted = composite(below, drawn, masked);
        Picture got = pictureOf(*target, below.box());
        ASSERT_EQ(got.bytes, wanted.bytes) << "round " << round << " channels " << channels
                                           << " fill " << int{fill} << " smart " << smart;
        EXPECT_FALSE(ops->isSnapshotActive());
        EXPECT_EQ(inner->blendFactors(), free->blendFactors());
        EXPECT_EQ(inner->strokeImage(), nullptr);
        EXPECT_FALSE(inner->preview());
        if (drawn.bytes != below.bytes && got.bytes != below.bytes && got.bytes != drawn.bytes)
            ++partly;
    }
    EXPECT_GT(partly, 20);
}

// Many operations between beginAccess and endAccess: what the mask protects is what was there
// before the first. Reads in between see it so already.
TEST(MaskingPaintOps, ABatchIsOneComposite) {
    constexpr std::uint32_t seed = 2930;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    for (int round = 0; round < 32; ++round) {
        const int channels = round % 4 == 3 ? 1 : 4;
        Picture below(pick(dice, 100, 200), pick(dice, 100, 200), channels, dice);
        const bool smart = pick(dice, 0, 2) != 0;
        const auto made = [&] {
            return smart ? Ref<ilImage>(smartOf(below)) : Ref<ilImage>(memoryOf(below));
        };
        const Ref<ilImage> target = made(), plain = made();
        Masked masked =
            drawMask(dice, round % 3 == 0 ? Edge::Hard : Edge::Soft, round % 2 == 0 ? 0 : 255);
        Ref<MaskingPaintOps> ops(new MaskingPaintOps);
        ops->setInner(Ref<PaintOps>(new SoftPaintOps(target.get())).get());
        ops->setMask(masked.mask.get(), masked.maskX, masked.maskY);
        const Ref<SoftPaintOps> free(new SoftPaintOps(plain.get()));
        // Where an operation misses the mask's pixels under a fill of 255 it draws nothing at all,
        // which is no different once all is restored.
        ops->beginBatch();
        EXPECT_TRUE(ops->inBatch());
        for (int n = 0; n < 6; ++n) {
            const Dice one(static_cast<std::uint32_t>(dice()));
            drawSomething(*ops, one, channels);
            drawSomething(*free, one, channels);
            const ilTile look =
                intersection(flatTile(pick(dice, 0, 90), pick(dice, 0, 90), 70, 50), below.box());
            Picture drawn = pictureOf(*plain, below.box());
            Picture seen = composite(below, drawn, masked);
            std::vector<std::uint8_t> read(static_cast<std::size_t>(look.nx * look.ny * channels));
            ASSERT_EQ(ops->readPixels(look.x, look.y, look.nx, look.ny, read.data(), {}), -1);
            for (int y = 0; y < look.ny; ++y)
                for (int i = 0; i < look.nx * channels; ++i)
                    ASSERT_EQ(read[static_cast<std::size_t>(y * look.nx * channels + i)],
                              seen.at(look.x, look.y + y)[i])
                        << "round " << round << " step " << n;
        }
        Picture drawn = pictureOf(*plain, below.box());
        Picture wanted = composite(below, drawn, masked);
        if (round % 2 == 0)
            ops->endBatch();
        else
            ops.reset();  // ends the batch, too
        ASSERT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes) << "round " << round;
    }
}

TEST(MaskingPaintOps, DrawsNothingWhereAllIsProtected) {
    Dice dice(4);
    Picture below(100, 100, 4, dice), hole(20, 20, 1);
    const Ref<ilSmartImage> target = smartOf(below), mask = smartOf(hole, 40, 40, 255);
    const Ref<MaskingPaintOps> ops(new MaskingPaintOps);
    EXPECT_EQ(ops->fillRegion(below.box(), ilPixel(TypeUChar, 4)), -1);  // nobody draws
    ops->setInner(Ref<PaintOps>(new SoftPaintOps(target.get())).get());
    ops->setMask(mask.get(), 0, 0);
    ops->setColor(9, 9, 9, 9);
    EXPECT_EQ(ops->fill(flatTile(0, 0, 40, 100)), 0);
    EXPECT_EQ(ops->fill(flatTile(39, 39, 2, 2)), -1);
    EXPECT_EQ(target->getPixel(40, 40), 0x09090909U);
    ilTile bounds;
    ops->bounds(bounds);
    EXPECT_EQ(bounds, flatTile(40, 40, 20, 20));
    ops->setMask(nullptr, 10, 0);  // moved: its pixels lie ten further to the left
    ops->bounds(bounds);
    EXPECT_EQ(bounds, flatTile(30, 40, 20, 20));
    EXPECT_EQ(ops->setMask(target.get(), 0, 0), 0);  // four channels are no mask
    const Ref<ilSmartImage> open = smartOf(hole, 40, 40, 0);
    ops->setMask(open.get(), 0, 0);
    ops->bounds(bounds);
    EXPECT_TRUE(bounds.contains(below.box()));
    EXPECT_EQ(ops->maskSource(), open.get());
}

// The restored pages of a wholly protected part are the pages of before.
TEST(MaskingPaintOps, WhollyProtectedPagesStayShared) {
    Dice dice(6);
    Picture below(256, 128, 4, dice), solid(128, 128, 1);
    std::fill(solid.bytes.begin(), solid.bytes.end(), std::uint8_t{255});
    const Ref<ilSmartImage> target = smartOf(below), mask = smartOf(solid);
    mask->fillRegion(flatTile(0, 0, 128, 128), ilPixel(TypeUChar, 1, solid.bytes.data()));
    const Ref<ilSmartImage> before = target->clone();
    const Ref<MaskingPaintOps> ops(new MaskingPaintOps);
    ops->setInner(Ref<PaintOps>(new SoftPaintOps(target.get())).get());
    ops->setMask(mask.get(), 0, 0);
    ops->setColor(1, 2, 3, 255);
    ops->fill(below.box());
    const auto page = [](ilSmartImage& image, int x) { return image.pages().pageRef(x, 0, false); };
    EXPECT_EQ(page(*target, 0)->get(), page(*before, 0)->get());
    EXPECT_NE(page(*target, 128)->get(), page(*before, 128)->get());
}

}  // namespace
}  // namespace brushwork
