#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "document/layer/layer_recipe.h"
#include "document/layer/placed_copy.h"
#include "document/layer/view_levels.h"

namespace brushwork::test {
namespace {

TransformRecord recordOf(float x, float y, float scaleX, float scaleY, float rotation) {
    TransformRecord record;
    record.x = x;
    record.y = y;
    record.scaleX = scaleX;
    record.scaleY = scaleY;
    record.rotation = rotation;
    return record;
}

std::array<int, 4> pixelAt(Layer& layer, int x, int y) {
    const std::uint32_t value =
        layer.smartColor()->getPixel(x - layer.offsetXInt(), y - layer.offsetYInt());
    return {static_cast<int>(value & 255), static_cast<int>(value >> 8 & 255),
            static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 24)};
}

std::array<double, 4> bilinear(ilSmartImage& image, double x, double y) {
    const double left = std::floor(x - 0.5), bottom = std::floor(y - 0.5);
    const double fx = x - 0.5 - left, fy = y - 0.5 - bottom;
    std::array<double, 4> sum{};
    for (int dy = 0; dy < 2; ++dy)
        for (int dx = 0; dx < 2; ++dx) {
            const std::uint32_t value =
                image.getPixel(static_cast<int>(left) + dx, static_cast<int>(bottom) + dy);
            const double weight = (dx ? fx : 1 - fx) * (dy ? fy : 1 - fy);
            for (int c = 0; c < 4; ++c)
                sum[static_cast<std::size_t>(c)] += weight * (value >> 8 * c & 255);
        }
    return sum;
}

// Smooth, so that a sampler's rounding shows and its choice of neighbours doesn't.
Ref<ilSmartImage> smoothPicture(const ilTile& box) {
    const Ref<ilSmartImage> image = blank(4);
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < box.ny; ++y)
        for (int x = 0; x < box.nx; ++x)
            for (const int value : {x / 2 % 200, y / 2 % 200, (x + y) / 4 % 200, 255})
                bytes.push_back(static_cast<std::uint8_t>(value));
    image->writeRegion(box, bytes.data(), box);
    return image;
}

TEST(LayerResample, TheIdentityChangesNothing) {
    Dice dice(1);
    for (const SampleMode mode : {SampleMode::Nearest, SampleMode::Bilinear, SampleMode::Bicubic}) {
        const Ref<Layer> layer =
            makeLayer(LayerRole::Paint, noise(4, anyBox(dice), dice), 10.3f, -4.0f);
        const auto before = bytesOf(layer->colorImageRef());
        EXPECT_TRUE(layer->affineResample({}, mode));
        EXPECT_EQ(bytesOf(layer->colorImageRef()), before);
        // A move by whole pixels is exact, too.
        EXPECT_TRUE(layer->affineResample(recordOf(300.0f, -7.0f, 1.0f, 1.0f, 0.0f), mode));
        const int dx = 310 - layer->offsetXInt(), dy = -11 - layer->offsetYInt();
        ilTile there = frame;
        there.x += dx;
        there.y += dy;
        EXPECT_EQ(difference(bytesOf(layer->colorImageRef(), there), before, 4), "");
    }
}

TEST(LayerResample, QuarterTurnsAndMirrorsAreExact) {
    for (unsigned seed = 0; seed < 24; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<ilSmartImage> color = noise(4, anyBox(dice, 170), dice);
        const Ref<Layer> layer =
            makeLayer(LayerRole::Paint, color, static_cast<float>(pick(dice, -90, 90)), 17.0f);
        const int offsetX = layer->offsetXInt();
        const auto mode = static_cast<SampleMode>(seed % 3);
        const int quarter = pick(dice, 0, 3);
        const bool mirrored = pick(dice, 0, 1) == 0;
        layer->setPivot(12.0f, -40.0f, true);
        ASSERT_TRUE(layer->affineResample(recordOf(5.0f, 6.0f, mirrored ? -1.0f : 1.0f, 1.0f,
                                                   90.0f * static_cast<float>(quarter)),
                                          mode));
        const ilTile box = boxOf(color.get());
        int mismatches = 0;
        for (int y = box.y; y < box.endY(); ++y)
            for (int x = box.x; x < box.endX(); ++x) {
                // Middles, doubled to stay whole.
                int px = 2 * (x + offsetX) + 1 - 24, py = 2 * (y + 17) + 1 + 80;
                if (mirrored) px = -px;
                for (int n = 0; n < quarter; ++n) std::tie(px, py) = std::pair(-py, px);
                const auto is = pixelAt(*layer, (px + 24 + 10 - 1) / 2, (py - 80 + 12 - 1) / 2);
                const std::uint32_t value = color->getPixel(x, y);
                const std::array<int, 4> wanted{
                    static_cast<int>(value & 255), static_cast<int>(value >> 8 & 255),
                    static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 24)};
                mismatches += is != wanted;
            }
        ASSERT_EQ(mismatches, 0);
    }
}

TEST(LayerResample, AHalfIsTheMeanOfBlocks) {
    const Ref<ilSmartImage> color = smoothPicture(flatTile(-100, -60, 300, 200));
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, color, 40.0f, 20.0f);
    layer->setPivot(40.0f, 20.0f, true);  // pixel (0, 0)
    ASSERT_TRUE(layer->affineResample(recordOf(0.0f, 0.0f, 0.5f, 0.5f, 0.0f), SampleMode::Bicubic));
    for (int y = -29; y < 69; ++y)
        for (int x = -49; x < 99; ++x) {
            const auto is = pixelAt(*layer, 40 + x, 20 + y);
            const auto wanted = bilinear(*color, 2 * x + 1.0, 2 * y + 1.0);
            for (std::size_t c = 0; c < 4; ++c) ASSERT_NEAR(is[c], wanted[c], 1.01);
        }
}

TEST(LayerResample, AnyPlaceAgreesWithTheFormula) {
    for (unsigned seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<ilSmartImage> color = smoothPicture(flatTile(-70, -20, 330, 270));
        const Ref<Layer> layer = makeLayer(LayerRole::Paint, color, 33.0f, -8.0f);
        const float scaleX = 0.6f + static_cast<float>(pick(dice, 0, 100)) / 50.0f;
        const float scaleY = 0.6f + static_cast<float>(pick(dice, 0, 100)) / 50.0f;
        const auto angle = static_cast<float>(pick(dice, -180, 180)) + 0.5f;
        layer->setPivot(90.25f, 110.5f, true);
        ASSERT_TRUE(layer->affineResample(recordOf(3.75f, -9.5f, scaleX, scaleY, angle),
                                          SampleMode::Bilinear));
        const double radians = static_cast<double>(angle) * 3.14159265358979 / 180.0;
        int inside = 0;
        for (int n = 0; n < 3000; ++n) {
            const int x = pick(dice, -400, 600), y = pick(dice, -400, 600);
            const double dx = x + 0.5 - 3.75 - 90.25, dy = y + 0.5 + 9.5 - 110.5;
            const double back = 1.0 / static_cast<double>(scaleX);
            const double u =
                (dx * std::cos(radians) + dy * std::sin(radians)) * back + 90.25 - 33.0;
            const double v =
                (dy * std::cos(radians) - dx * std::sin(radians)) / static_cast<double>(scaleY) +
                110.5 + 8.0;
            const auto is = pixelAt(*layer, x, y);
            if (u > -69 && v > -19 && u < 259 && v < 249) {
                ++inside;
                // Wrapping of the ramps aside.
                if (std::fmod(u + 70, 400) > 395 || std::fmod(v + 20, 400) > 395) continue;
                const auto wanted = bilinear(*color, u, v);
                for (std::size_t c = 0; c < 4; ++c) ASSERT_NEAR(is[c], wanted[c], 1.6);
            } else if (u < -72 || v < -22 || u > 262 || v > 252) {
                ASSERT_EQ(is[3], 0) << x << ", " << y;
            }
        }
        ASSERT_GT(inside, 50);
    }
}

// Noise shows at once where the pages of the copy were drawn without a look beyond their edges.
TEST(LayerResample, PagesOfTheCopyHaveNoSeams) {
    Dice dice(21);
    const ilTile box = flatTile(-40, -30, 150, 140);
    const Ref<ilSmartImage> color = noise(4, box, dice);
    TransformRecord record = recordOf(0.3f, 0.7f, 4.7f, 3.3f, 0.0f);
    const auto placing = placingByRecord(record, box, 0.0, 0.0);
    ASSERT_TRUE(placing);
    const ilTile target = placedBox(*placing, SampleMode::Bilinear);
    const Ref<ilSmartImage> copy = placedCopy(*color, *placing, SampleMode::Bilinear, target);
    ASSERT_TRUE(copy);
    for (int y = 0; y < target.ny; ++y)
        for (int x = 0; x < target.nx; ++x) {
            const auto wanted = bilinear(*color, (target.x + x + 0.5 - 0.3) / 4.7,
                                         (target.y + y + 0.5 - 0.7) / 3.3);
            const std::uint32_t is = copy->getPixel(x, y);
            for (std::size_t c = 0; c < 4; ++c)
                ASSERT_NEAR(static_cast<int>(is >> 8 * c & 255), wanted[c], 3.0) << x << ", " << y;
        }
}

// A sampler with negative weights overshoots in each channel by itself.
TEST(LayerResample, NoColourExceedsItsAlpha) {
    for (unsigned seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<Layer> layer =
            makeLayer(LayerRole::Paint, noise(4, flatTile(-20, -30, 90, 80), dice));
        const auto angle = static_cast<float>(pick(dice, -180, 180)) + 0.5f;
        ASSERT_TRUE(
            layer->affineResample(recordOf(0.3f, 0.6f, 1.7f, 1.2f, angle), SampleMode::Bicubic));
        const auto bytes = bytesOf(layer->colorImageRef(), boxOf(layer->colorImageRef()));
        for (std::size_t n = 0; n < bytes.size(); ++n)
            ASSERT_LE(bytes[n], bytes[n | 3]) << "byte " << n;
    }
}

TEST(LayerResample, CornersFallWhereTheyAreAsked) {
    const ilTile box = flatTile(5, 7, 200, 140);
    const Ref<ilSmartImage> color = blank(4);
    paintSolid(*color, box, {10, 20, 30, 255});
    paintSolid(*color, flatTile(5, 7, 100, 70), {200, 0, 0, 255});
    struct Case {
        QuadCorners corners;
        QuadPoint inside;
        std::size_t reflex;  // bent over: it shows what lies over it
    };
    for (const Case& each :
         {Case{{{{20, 10}, {400, 60}, {330, 300}, {0, 220}}}, {190, 150}, 4},
          Case{{{{0, 0}, {300, 0}, {300, 200}, {0, 200}}}, {150, 100}, 4},
          Case{{{{0, 0}, {300, 0}, {60, 60}, {0, 300}}}, {40, 40}, 2}}) {  // concave
        const Ref<Layer> layer = makeLayer(LayerRole::Paint, color->clone(), 50.0f, 60.0f);
        ASSERT_TRUE(layer->perspectiveWarp(each.corners, SampleMode::Bilinear));
        // A little inside of each corner its own colour shows, outside nothing.
        for (std::size_t k = 0; k < 4; ++k) {
            if (k == each.reflex) continue;
            const QuadPoint& p = each.corners[k];
            const auto toward = [&](float part) {
                return pixelAt(*layer,
                               static_cast<int>(std::floor(p.x + (each.inside.x - p.x) * part)),
                               static_cast<int>(std::floor(p.y + (each.inside.y - p.y) * part)));
            };
            const auto inside = toward(0.1f);
            ASSERT_EQ(inside[0], k == 0 ? 200 : 10) << k;
            ASSERT_EQ(inside[3], 255);
            ASSERT_EQ(toward(-0.1f)[3], 0) << k;
        }
    }
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, color->clone());
    const auto before = bytesOf(layer->colorImageRef());
    EXPECT_FALSE(
        layer->perspectiveWarp({{{0, 0}, {10, 10}, {20, 20}, {5, 5}}}, SampleMode::Nearest));
    EXPECT_FALSE(layer->affineResample(recordOf(0, 0, 0.0f, 1.0f, 0), SampleMode::Nearest));
    EXPECT_EQ(bytesOf(layer->colorImageRef()), before);
}

TEST(LayerResample, MovedCornersBendThePlacedBox) {
    const ilTile box = flatTile(0, 0, 100, 80);
    const Ref<ilSmartImage> color = blank(4);
    paintSolid(*color, box, {9, 9, 9, 255});
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, color);
    TransformRecord record = recordOf(0, 0, 2.0f, 2.0f, 0.0f);
    record.corners = {0, 0, 0, 0, 30, 40, 0, 0};  // the third: (width, height)
    layer->setPivot(0.0f, 0.0f, true);
    ASSERT_TRUE(layer->affineResample(record, SampleMode::Nearest));
    EXPECT_EQ(pixelAt(*layer, 225, 193)[3], 255);
    EXPECT_EQ(pixelAt(*layer, 232, 202)[3], 0);
    EXPECT_EQ(pixelAt(*layer, 1, 1)[3], 255);
}

// Uniform pages stay uniform, and a stencil that hides much costs little.
TEST(LayerResample, TheStencilGoesAlong) {
    const Ref<ilSmartImage> color = blank(4);
    paintSolid(*color, flatTile(0, 0, 256, 256), {50, 60, 70, 255});
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, color);
    paintSolid(*layer->stencilImage(), flatTile(0, 0, 128, 256), {0});
    layer->setPivot(0.0f, 0.0f, true);
    ASSERT_TRUE(layer->affineResample(recordOf(0, 0, 1.5f, 1.5f, 180.0f), SampleMode::Bilinear));
    layer->bakeStencil();
    EXPECT_EQ(pixelAt(*layer, -100, -100)[3], 0);
    EXPECT_EQ(pixelAt(*layer, -300, -100)[3], 255);
    EXPECT_EQ(pixelAt(*layer, -383, -383)[3], 255);
}

TEST(LayerResample, AFloatingTransformLeavesThePictureAsItWas) {
    for (const std::int32_t mode : {0, 1}) {
        Dice dice(9);
        const Ref<ilSmartImage> color = noise(4, flatTile(-30, 12, 140, 77), dice);
        const Ref<Layer> layer = makeLayer(LayerRole::Paint, color, 21.0f, 4.0f);
        const auto before = bytesOf(color.get());
        layer->beginTransform(mode, 5, true);
        ASSERT_TRUE(layer->inTransform());
        ASSERT_TRUE(layer->previewAffine(recordOf(10, 0, 0.7f, 1.3f, 30.0f), SampleMode::Bilinear));
        ASSERT_TRUE(layer->previewAffine(recordOf(-4, 9, 2.0f, 2.0f, 0.0f), SampleMode::Nearest));
        // From the picture it began with, not from the last preview.
        float px = 0.0f, py = 0.0f;
        layer->pivot(&px, &py);
        EXPECT_EQ(px, 21.0f - 30.0f + 70.0f);
        EXPECT_EQ(py, 4.0f + 12.0f + 38.0f);
        const int cornerX = static_cast<int>(px + (21.0f - 30.0f - px) * 2 - 4);
        const int cornerY = static_cast<int>(py + (4.0f + 12.0f - py) * 2 + 9);
        for (int y = 0; y < 154; ++y)
            for (int x = 0; x < 280; ++x) {
                const std::uint32_t value = color->getPixel(-30 + x / 2, 12 + y / 2);
                ASSERT_EQ(pixelAt(*layer, cornerX + x, cornerY + y)[0],
                          static_cast<int>(value & 255));
            }
        EXPECT_EQ(layer->transform().previewColor.get(),
                  mode == 0 ? nullptr : layer->colorImageRef());
        layer->endTransform(false);
        EXPECT_EQ(layer->colorImageRef(), color.get());
        EXPECT_EQ(bytesOf(layer->colorImageRef()), before);
        EXPECT_EQ(layer->offsetXInt(), 21);
        EXPECT_EQ(layer->offsetYInt(), 4);
        EXPECT_FALSE(layer->inTransform());
    }
}

// Dragging the preview drags the picture, about a pivot that was set and about the middle.
TEST(LayerResample, AMoveDuringAFloatingTransformMovesWhatComesBack) {
    for (const bool pivotSet : {false, true}) {
        const Ref<ilSmartImage> color = blank(4);
        paintSolid(*color, flatTile(0, 0, 64, 64), {1, 2, 3, 255});
        const Ref<Layer> layer = makeLayer(LayerRole::Paint, color, 100.0f, 50.0f);
        if (pivotSet) layer->setPivot(100.0f, 50.0f, true);
        layer->beginTransform(0, 0, true);
        const TransformRecord twice = recordOf(0, 0, 2.0f, 2.0f, 0.0f);
        ASSERT_TRUE(layer->previewAffine(twice, SampleMode::Bilinear));
        float x = 0.0f, y = 0.0f;
        layer->offset(&x, &y);
        layer->setTransform(twice, x + 40.0f, y - 10.0f);
        layer->endTransform(true);
        // About a fixed pivot a doubled picture moves twice as far as its original.
        EXPECT_EQ(layer->offsetXInt(), pivotSet ? 120 : 140);
        EXPECT_EQ(layer->offsetYInt(), pivotSet ? 45 : 40);
    }
}

TEST(LayerResample, ALayerThatCannotMoveStays) {
    const Ref<ilSmartImage> color = blank(4);
    const Ref<Layer> layer(new Layer(color.get(), nullptr, LayerRole::Paint, 0x80, 3.0f, 4.0f));
    layer->setOffset(9.0f, 9.0f);
    EXPECT_EQ(layer->offsetXInt(), 0);
}

TEST(LayerResample, ThePlacedCopyIsKeptWhileNothingChanges) {
    Dice dice(2);
    const Ref<Layer> layer =
        makeLayer(LayerRole::Paint, smoothPicture(flatTile(0, 0, 256, 128)), 10.0f, 20.0f);
    const TransformRecord record = recordOf(0, 0, 0.25f, 0.25f, 0.0f);
    std::int32_t x = 0, y = 0;
    const Ref<ilImage> image = layer->renderTransformed(record, &x, &y);
    ASSERT_TRUE(image);
    EXPECT_EQ(layer->renderTransformed(record, &x, &y).get(), image.get());
    const auto middle = ilSmartImage::from(image.get())->getPixel(2 + 32 - x, 5 + 16 - y);
    const auto wanted = bilinear(*layer->smartColor(), 130.0, 66.0);
    EXPECT_NEAR(static_cast<int>(middle & 255), wanted[0], 3.0);
    EXPECT_EQ(middle >> 24, 255u);
    layer->touch();
    EXPECT_NE(layer->renderTransformed(record, &x, &y).get(), image.get());
}

// Where moved corners stretch what the scale shrinks, edges are as sharp as the picture's own.
TEST(LayerResample, NoReducedLevelIsStretched) {
    const Ref<ilSmartImage> color = blank(4);
    paintSolid(*color, flatTile(0, 0, 20, 20), {40, 50, 60, 255});
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, color);
    TransformRecord record = recordOf(0, 0, 0.5f, 0.5f, 0.0f);
    for (const float skew : {0.0f, 20.0f}) {
        record.corners = {0, 0, 90, 0, 90, 90 + skew, 0, 90};
        std::int32_t x = 0, y = 0;
        const Ref<ilImage> image = layer->renderTransformed(record, &x, &y);
        ASSERT_TRUE(image);
        ilSmartImage& shown = *ilSmartImage::from(image.get());
        EXPECT_EQ(shown.getPixel(95 - x, 50 - y) >> 24, 255u);
        EXPECT_EQ(shown.getPixel(104 - x, 50 - y) >> 24, 0u);
    }
}

// Blocks are counted from pixel (0, 0), in both directions.
TEST(ViewLevels, ALevelHoldsTheMeansOfItsBlocks) {
    Dice dice(12);
    for (const int channels : {1, 4}) {
        const Ref<ilSmartImage> image = blank(channels);
        paintNoise(*image, flatTile(-600, -77, 700, 170), dice);
        paintSolid(*image, flatTile(-512, -128, 256, 256), {8, 9, 10, 255});
        for (const std::int32_t block : {2, 4, 8, 16}) {
            const Ref<ilSmartImage> level = reducedCopy(*image, block);
            ASSERT_TRUE(level);
            for (int n = 0; n < 2000; ++n) {
                const int x = pick(dice, -640 / block, 128 / block);
                const int y = pick(dice, -128 / block, 128 / block);
                for (int c = 0; c < channels; ++c) {
                    int sum = 0;
                    for (int k = 0; k < block * block; ++k)
                        sum += static_cast<int>(
                            image->getPixel(x * block + k % block, y * block + k / block) >> 8 * c &
                            255);
                    ASSERT_EQ(static_cast<int>(level->getPixel(x, y) >> 8 * c & 255),
                              sum / (block * block))
                        << x << ", " << y << " by " << block;
                }
            }
        }
    }
    EXPECT_EQ(reducingBlock(0.5f), 2);
    EXPECT_EQ(reducingBlock(0.51f), 1);
    EXPECT_EQ(reducingBlock(0.0001f), 16);
    EXPECT_EQ(reducingBlock(0.126f), 4);
}

TEST(LayerPreview, TheThumbnailShowsTheContentInTheMiddle) {
    const Ref<ilSmartImage> color = blank(4);
    paintSolid(*color, flatTile(-1000, 300, 1600, 400), {40, 80, 120, 255});
    const Ref<Layer> layer = makeLayer(LayerRole::Paint, color);
    const ilTile box = flatTile(0, 0, 4, 500);
    ilSPMemoryImg* const picture = layer->thumbnailImage(&box, 1, 2);
    ASSERT_EQ(picture->sizeX(), 50);
    ASSERT_EQ(picture->sizeY(), 40);
    const std::uint8_t* const bytes = picture->data();
    const auto alphaAt = [&](int x, int y) { return bytes[4 * (y * 50 + x) + 3]; };
    EXPECT_EQ(alphaAt(25, 20), 255);
    EXPECT_EQ(bytes[4 * (20 * 50 + 25)], 40);
    EXPECT_EQ(alphaAt(25, 10), 0);
    EXPECT_EQ(alphaAt(25, 30), 0);
    EXPECT_EQ(layer->thumbnail().bounds.nx, 16);
    EXPECT_TRUE(layer->isThumbnailCurrent(&box, 1, 2));
    EXPECT_FALSE(layer->isThumbnailCurrent(&box, 1, 3));
    layer->touch();
    EXPECT_FALSE(layer->isThumbnailCurrent(&box, 1, 2));

    // Frozen while there is a layer above.
    layer->setFlags(layer->flags() | Layer::FrozenThumbnail);
    layer->next = makeLayer(LayerRole::Paint, blank(4));
    color->fillRegion(boxOf(color.get()), color->fill());
    EXPECT_EQ(layer->thumbnailImage(&box, 1, 2)->data()[4 * (20 * 50 + 25)], 40);
    layer->next.reset();
    EXPECT_EQ(layer->thumbnailImage(&box, 1, 2)->data()[4 * (20 * 50 + 25)], 0);

    layer->setThumbnailSize(4, 1000);
    EXPECT_EQ(layer->thumbnail().width, 16);
    EXPECT_EQ(layer->thumbnail().height, 256);
    EXPECT_EQ(layer->thumbnailImage(nullptr, 0, 0)->sizeY(), 256);
}

}  // namespace
}  // namespace brushwork::test
