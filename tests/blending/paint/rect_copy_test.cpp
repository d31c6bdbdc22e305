// SoftPaintOps::rect_copy and what stands on it, against a loop over pixels.
#include <gtest/gtest.h>

#include <cmath>

#include "blending/paint/paint_recipe.h"
#include "blending/paint/soft_paint_ops.h"
#include "foundation/services/log.h"
#include "image/work/il_const_img.h"

namespace brushwork {
namespace {

using namespace brushwork::test;

constexpr std::int32_t done = PaintOps::done;

Ref<SoftPaintOps> painterOn(ilImage* image, BlendFactors pair) {
    Ref<SoftPaintOps> ops(new SoftPaintOps(image));
    ops->setBlendFactors(pair.source, pair.target);
    return ops;
}

void setColor(PaintOps& ops, const Pixel& p) {
    ops.setColor(p[0], p[1], p[2], p[3]);
}

// Draws `source` at (x, y) of `target` as the model does.
void drawModel(Picture& target, int x, int y, Picture& source, BlendFactors pair, Pixel color) {
    for (int v = 0; v < source.height; ++v) {
        for (int u = 0; u < source.width; ++u) {
            if (!target.has(x + u, y + v)) continue;
            const Pixel d = target.get(x + u, y + v);
            const Pixel out =
                drawnPixel(pair, source.get(u, v), source.channels, d, target.channels, color);
            std::copy_n(out.begin(), target.channels, target.at(x + u, y + v));
        }
    }
}

// Images that hold a picture: memory, or smart at an offset from the grid of pages.
enum class Holder { Memory, Smart };

// A random rectangle of each kind of source into each kind of target, at places over the edges.
TEST(RectCopy, DrawsLikeALoopOverPixels) {
    constexpr std::uint32_t seed = 20261121;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    constexpr int sizes[][2] = {{4, 4}, {1, 1}, {4, 1}, {1, 4}};
    int drawn = 0;
    for (int round = 0; round < 8; ++round) {
        for (const auto& [from, to] : sizes) {
            for (const BlendFactors pair : allPairs()) {
                const bool covers = from == 1 && to == 4;
                if (from == 4 && to == 1 && pair != pairKeepInside && pair != pairKeepOutside)
                    continue;
                if (covers && pair != pairKeepInside && pair != pairKeepOutside && pair != pairOver)
                    continue;
                Picture below(pick(dice, 1, 300), pick(dice, 1, 200), to, dice);
                Picture above(pick(dice, 1, 200), pick(dice, 1, 200), from, dice);
                const bool smartTarget = pick(dice, 0, 1) == 1;
                const int kind = pick(dice, 0, 2);  // memory image, smart image, bytes
                const Ref<ilImage> target =
                    smartTarget ? Ref<ilImage>(smartOf(below)) : Ref<ilImage>(memoryOf(below));
                const int sx = kind == 1 ? pick(dice, -200, 200) : 0;
                const int sy = kind == 1 ? pick(dice, -200, 200) : 0;
                const Ref<ilImage> source = kind == 1 ? Ref<ilImage>(smartOf(above, sx, sy))
                                                      : Ref<ilImage>(memoryOf(above));
                const Pixel color = drawPixel(dice);
                const int x = pick(dice, -150, below.width), y = pick(dice, -150, below.height);
                const Ref<SoftPaintOps> ops = painterOn(target.get(), pair);
                setColor(*ops, color);
                PaintFormat format;
                format.channels = from;
                const std::int32_t result =
                    ops->rect_copy(x, y, above.width, above.height,
                                   kind == 2 ? PaintSource::of(above.bytes.data())
                                             : PaintSource::of(source.get(), sx, sy),
                                   format, 0, 1.0F, 1.0F);
                const bool meets = smartTarget || (x < below.width && y < below.height &&
                                                   x + above.width > 0 && y + above.height > 0);
                EXPECT_EQ(result, meets ? done : 0);
                Picture wanted = below;
                drawModel(wanted, x, y, above, pair, color);
                Picture got = pictureOf(*target, below.box());
                ASSERT_EQ(got.bytes, wanted.bytes)
                    << nameOf(pair) << " " << from << " into " << to << " smart " << smartTarget
                    << " kind " << kind << " at " << x << ", " << y;
                ++drawn;
            }
        }
    }
    EXPECT_EQ(drawn, 8 * (8 + 8 + 2 + 3));
}

// Where solid pages meet, no page is made.
TEST(RectCopy, SolidPagesStaySolid) {
    const Ref<ilSmartImage> empty(new ilSmartImage(ilPixel(TypeUChar, 4)));
    const Ref<ilSmartImage> target(new ilSmartImage(ilPixel(TypeUChar, 4)));
    const Pixel red{200, 0, 0, 255};
    target->fillRegion(flatTile(0, 0, 512, 512), ilPixel(TypeUChar, 4, red.data()));
    const Pixel half{60, 60, 60, 128};
    const Ref<ilConstImg> veil(new ilConstImg(ilPixel(TypeUChar, 4, half.data())));
    std::uint32_t value = 0;
    for (const BlendFactors pair : allPairs()) {
        const Ref<SoftPaintOps> ops = painterOn(target.get(), pair);
        for (ilImage* const source :
             {static_cast<ilImage*>(veil.get()), static_cast<ilImage*>(empty.get())}) {
            ops->rect_copy(0, 0, 512, 512, PaintSource::of(source), {}, 0, 1.0F, 1.0F);
            EXPECT_TRUE(target->isSolid(flatTile(0, 0, 512, 512), value, false)) << nameOf(pair);
        }
        target->fillRegion(flatTile(0, 0, 512, 512), ilPixel(TypeUChar, 4, red.data()));
    }
    // What changes nothing doesn't widen the image either.
    const Ref<ilSmartImage> small(new ilSmartImage(ilPixel(TypeUChar, 4)));
    painterOn(small.get(), pairOver)
        ->rect_copy(0, 0, 4096, 4096, PaintSource::of(empty.get()), {}, 0, 1.0F, 1.0F);
    ilTile bounds;
    small->bounds(bounds);
    EXPECT_TRUE(bounds.isEmpty());
}

TEST(RectCopy, PlainCopiesSharePages) {
    Dice dice(5);
    Picture picture(256, 256, 4, dice);
    const Ref<ilSmartImage> source = smartOf(picture);
    const Ref<ilSmartImage> target(new ilSmartImage(ilPixel(TypeUChar, 4)));
    EXPECT_EQ(painterOn(target.get(), pairCopy)->drawImage(source.get(), 128, 0), done);
    EXPECT_EQ(pictureOf(*target, flatTile(128, 0, 256, 256)).bytes, picture.bytes);
    const SmartPageRef* const mine = target->pages().pageRef(128, 0, false);
    const SmartPageRef* const theirs = source->pages().pageRef(0, 0, false);
    ASSERT_TRUE(mine && theirs);
    EXPECT_EQ(mine->get(), theirs->get());
}

TEST(RectCopy, MapsScalesAndBiases) {
    constexpr std::uint32_t seed = 96;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    for (int round = 0; round < 60; ++round) {
        Picture below(40, 30, 4, dice), above(25, 20, 4, dice);
        PaintFormat format;
        format.channels = 4;
        for (std::int32_t& entry : format.map) entry = pick(dice, -1, 4);
        if (round % 3 == 0) format.map = {};
        ScaleBias change;
        if (round % 2 == 0) {
            for (std::size_t c = 0; c < 4; ++c) {
                change.scale[c] = static_cast<float>(pick(dice, -4, 12)) / 8.0F;
                change.bias[c] = static_cast<float>(pick(dice, -4, 4)) / 16.0F;
            }
        }
        Picture changed = above;
        for (int y = 0; y < above.height; ++y) {
            for (int x = 0; x < above.width; ++x) {
                for (std::size_t c = 0; c < 4; ++c) {
                    const int entry = format.isIdentity() ? static_cast<int>(c) : format.map[c];
                    const float v = entry < 0 || entry > 3 ? 0.0F : above.at(x, y)[entry];
                    const float out =
                        change.isNeutral() ? v : v * change.scale[c] + change.bias[c] * 255.0F;
                    changed.at(x, y)[c] =
                        static_cast<std::uint8_t>(std::min(std::max(out, 0.0F), 255.0F));
                }
            }
        }
        for (const BlendFactors pair : {pairCopy, pairAdd, pairKeepOutside}) {
            const Ref<ilMemoryImg> source = memoryOf(above), target = memoryOf(below);
            const Ref<SoftPaintOps> ops = painterOn(target.get(), pair);
            ops->setScaleBias(change);
            // Rows with padding, from memory; or an image.
            const bool memory = round % 4 == 1;
            std::vector<std::uint8_t> padded(static_cast<std::size_t>(above.height) * 120, 7);
            for (int y = 0; y < above.height; ++y)
                std::copy_n(above.at(0, y), 100, padded.begin() + 120 * y);
            EXPECT_EQ(ops->rect_copy(
                          3, 4, 25, 20,
                          memory ? PaintSource::of(padded.data()) : PaintSource::of(source.get()),
                          format, memory ? 120 : 0, 1.0F, 1.0F),
                      done);
            Picture wanted = below;
            drawModel(wanted, 3, 4, changed, pair, {});
            ASSERT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes)
                << nameOf(pair) << " round " << round;
        }
    }
}

// One channel of four, chosen by the map.
TEST(RectCopy, AMapPicksTheChannelOfAGrayTarget) {
    Dice dice(8);
    Picture above(20, 20, 4, dice), below(20, 20, 1, dice);
    const Ref<ilMemoryImg> source = memoryOf(above), target = memoryOf(below);
    PaintFormat format;
    format.map = {2, 0, 0, 0};
    EXPECT_EQ(painterOn(target.get(), pairCopy)
                  ->rect_copy(0, 0, 20, 20, PaintSource::of(source.get()), format, 0, 1, 1),
              done);
    Picture got = pictureOf(*target, below.box());
    for (int i = 0; i < 400; ++i)
        ASSERT_EQ(got.bytes[static_cast<std::size_t>(i)],
                  above.bytes[static_cast<std::size_t>(4 * i + 2)]);
}

TEST(RectCopy, ZoomsRoundBothEnds) {
    constexpr std::uint32_t seed = 12;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    Picture picture(40, 40, 4, dice);
    for (int round = 0; round < 100; ++round) {
        static constexpr float zooms[] = {0.1F, 0.5F, 0.7F, 1.0F, 1.5F, 2.0F, 3.25F};
        const float zx = zooms[pick(dice, 0, 6)], zy = zooms[pick(dice, 0, 6)];
        const float stretch = pick(dice, 0, 1) ? 1.0F : 2.0F;
        const int x = pick(dice, -20, 60), y = pick(dice, -20, 60);
        const int w = pick(dice, 0, 20), h = pick(dice, 0, 20);
        Picture below(150, 150, 4, dice);
        const Ref<ilMemoryImg> source = memoryOf(picture), target = memoryOf(below);
        const Ref<SoftPaintOps> ops = painterOn(target.get(), pairAdd);
        ops->setZoom(zx, zy);
        ops->setZoomNearest(true);
        const std::int32_t result = ops->rect_copy(x, y, w, h, PaintSource::of(source.get(), 2, 3),
                                                   {}, 0, stretch, stretch);
        const auto placed = [](int start, int extent, float zoom) {
            const auto end = [zoom](int place) {
                return static_cast<int>(std::lround(static_cast<float>(place) * zoom));
            };
            return std::pair<int, int>{end(start), end(start + extent) - end(start)};
        };
        const auto [px, pw] = placed(x, w, zx);
        const auto [py, ph] = placed(y, h, zy);
        if (pw < 1 || ph < 1) {
            EXPECT_EQ(result, 0);
            EXPECT_EQ(pictureOf(*target, below.box()).bytes, below.bytes);
            continue;
        }
        Picture wanted = below;
        const auto sourceAt = [&](int place, int start, int extent, float zoom, int origin) {
            const double at = ((place + 0.5) / double{zoom} - start) / double{stretch};
            const int shown = static_cast<int>(std::ceil(extent / double{stretch}));
            return origin + std::clamp(static_cast<int>(std::floor(at)), 0, shown - 1);
        };
        for (int v = py; v < py + ph; ++v) {
            for (int u = px; u < px + pw; ++u) {
                if (!wanted.has(u, v)) continue;
                const Pixel s = picture.get(sourceAt(u, x, w, zx, 2), sourceAt(v, y, h, zy, 3));
                const Pixel out = drawnPixel(pairAdd, s, 4, wanted.get(u, v), 4);
                std::copy_n(out.begin(), 4, wanted.at(u, v));
            }
        }
        ASSERT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes)
            << "round " << round << " zoom " << zx << ", " << zy << " stretch " << stretch
            << " box " << x << " " << y << " " << w << " " << h;
    }
}

TEST(RectCopy, AZoomedEndIsAFloat) {
    ZoomedSpan span;
    ASSERT_TRUE(zoomSpan(5, 10, 0.7F, span));  // in more digits the float 0.7 stays below 3.5
    EXPECT_EQ(span.start, 4);
    EXPECT_EQ(span.extent, 7);  // 10.5 is 11
    ASSERT_TRUE(zoomSpan(-5, 5, 0.7F, span));
    EXPECT_EQ(span.start, -4);
    ASSERT_TRUE(zoomSpan((1 << 24) + 1, 2, 1.0F, span));
    EXPECT_EQ(span.start, (1 << 24) + 1);
    EXPECT_EQ(span.extent, 2);
    EXPECT_FALSE(zoomSpan(-(1 << 29), 1 << 30, 2.0F, span));  // an extent of 2^31
    EXPECT_FALSE(zoomSpan(1, 1, std::nanf(""), span));
}

TEST(RectCopy, ASmoothZoomKeepsOneColourAndItsOrder) {
    Picture step(2, 1, 1);
    step.bytes = {0, 240};
    const Ref<ilMemoryImg> source = memoryOf(step);
    Picture below(16, 1, 1);
    const Ref<ilMemoryImg> target = memoryOf(below);
    const Ref<SoftPaintOps> ops = painterOn(target.get(), pairAdd);
    ops->setZoom(8.0F, 1.0F);
    ops->rect_copy(0, 0, 2, 1, PaintSource::of(source.get()), {}, 0, 1.0F, 1.0F);
    const Picture got = pictureOf(*target, below.box());
    EXPECT_EQ(got.bytes, (std::vector<std::uint8_t>{0, 0, 0, 0, 15, 45, 75, 105, 135, 165, 195, 225,
                                                    240, 240, 240, 240}));
}

TEST(RectCopy, AZoomCountsUntilItIsPushedOff) {
    const Ref<SoftPaintOps> ops(new SoftPaintOps);
    EXPECT_EQ(ops->pushZoomOff(false), 0);
    EXPECT_EQ(ops->pushZoomOff(true), 1);
    EXPECT_EQ(ops->pushZoomOff(true), 2);
    ops->setZoom(2.0F, 2.0F);
    EXPECT_EQ(ops->pushZoomOff(true), 2);
    ilTile box;
    EXPECT_TRUE(ops->place(3, 3, 5, 5, box));
    EXPECT_EQ(box, flatTile(3, 3, 5, 5));
    EXPECT_EQ(ops->pushZoomOff(false), 1);
    EXPECT_TRUE(ops->isUnzoomed());
    EXPECT_EQ(ops->pushZoomOff(false), 0);
    EXPECT_FALSE(ops->isUnzoomed());
    EXPECT_TRUE(ops->place(3, 3, 5, 5, box));
    EXPECT_EQ(box, flatTile(6, 6, 10, 10));
    EXPECT_EQ(ops->setZoom(0.0F, 1.0F), 0);
    EXPECT_EQ(ops->setZoom(1.0F, std::nanf("")), 0);
}

class LogText {
  public:
    LogText() {
        setLogSink([this](std::string_view text) { text_ += text; });
    }
    ~LogText() { setLogSink({}); }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_;
};

TEST(RectCopy, WhatNoPathTakesIsLoggedAndLeavesTheTarget) {
    Dice dice(3);
    Picture below(30, 30, 1, dice), above(30, 30, 4, dice);
    const Ref<ilMemoryImg> target = memoryOf(below), source = memoryOf(above);
    const Ref<ilMemoryImg> odd(new ilMemoryImg(30, 30, 1, 3, TypeUChar, OrderInterleaved));
    const std::string text =
        "SoftPaintOps::rect_copy unable to blend due to image format incompatibilities\n";
    const auto refused = [&](ilImage* from, BlendFactors pair) {
        const LogText log;
        const Ref<SoftPaintOps> ops = painterOn(target.get(), pair);
        EXPECT_EQ(ops->drawImage(from, 0, 0), 0);
        EXPECT_EQ(log.text(), text);
        EXPECT_EQ(pictureOf(*target, below.box()).bytes, below.bytes);
    };
    refused(source.get(), pairOver);
    refused(odd.get(), pairOver);
    refused(source.get(), {8, 8});
    const Ref<SoftPaintOps> ops = painterOn(target.get(), pairOver);
    EXPECT_EQ(ops->drawImage(nullptr, 0, 0), -1);
    EXPECT_EQ(ops->rect_copy(0, 0, 0, 5, PaintSource::of(source.get()), {}, 0, 1, 1), 0);
    EXPECT_EQ(
        ops->rect_copy(INT32_MAX, 0, INT32_MAX, 5, PaintSource::of(source.get()), {}, 0, 1, 1), 0);
}

// The target as its own source: as if from a picture taken before.
TEST(RectCopy, DrawsATargetIntoItself) {
    Dice dice(31);
    Picture picture(300, 260, 4, dice);
    for (const bool smart : {false, true}) {
        for (const BlendFactors pair : {pairCopy, pairOver, pairAdd}) {
            const Ref<ilImage> target =
                smart ? Ref<ilImage>(smartOf(picture)) : Ref<ilImage>(memoryOf(picture));
            painterOn(target.get(), pair)
                ->rect_copy(5, 7, 290, 250, PaintSource::of(target.get()), {}, 0, 1.0F, 1.0F);
            Picture wanted = picture, part(290, 250, 4);
            for (int y = 0; y < 250; ++y)
                for (int x = 0; x < 290; ++x) std::copy_n(picture.at(x, y), 4, part.at(x, y));
            drawModel(wanted, 5, 7, part, pair, {});
            ASSERT_EQ(pictureOf(*target, picture.box()).bytes, wanted.bytes)
                << smart << nameOf(pair);
        }
    }
}

TEST(SoftPaintOps, FillsKeepToTheBoundsAndThePair) {
    Dice dice(11);
    for (const bool smart : {false, true}) {
        for (const BlendFactors pair : allPairs()) {
            Picture below(200, 150, 4, dice);
            const Ref<ilImage> target =
                smart ? Ref<ilImage>(smartOf(below)) : Ref<ilImage>(memoryOf(below));
            const Ref<SoftPaintOps> ops = painterOn(target.get(), pair);
            const Pixel color = drawPixel(dice);
            setColor(*ops, color);
            ops->setBounds(flatTile(10, 10, 150, 100));
            EXPECT_EQ(ops->fill(flatTile(-20, 50, 190, 300)), done);
            Picture wanted = below;
            for (int y = 50; y < 110; ++y) {
                for (int x = 10; x < 160; ++x) {
                    const Pixel d = wanted.get(x, y);
                    const Pixel out = drawnPixel(pair, color, 4, d, 4);
                    std::copy_n(out.begin(), 4, wanted.at(x, y));
                }
            }
            ASSERT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes) << nameOf(pair);
            EXPECT_EQ(ops->clear(), done);
            EXPECT_EQ(ops->blendFactors(), pair);
            EXPECT_EQ(pictureOf(*target, flatTile(10, 10, 1, 1)).get(0, 0), color);
            EXPECT_EQ(pictureOf(*target, flatTile(9, 10, 1, 1)).get(0, 0), wanted.get(9, 10));
        }
    }
}

TEST(SoftPaintOps, OneChannelInverts) {
    Picture mask(256, 1, 1);
    for (std::size_t i = 0; i < 256; ++i) mask.bytes[i] = static_cast<std::uint8_t>(i);
    const Ref<ilSmartImage> target = smartOf(mask);
    const Ref<SoftPaintOps> ops = painterOn(target.get(), pairInvert);
    ops->setColor(255, 0, 0, 0);
    ops->fill(mask.box());
    const Picture got = pictureOf(*target, mask.box());
    for (std::size_t i = 0; i < 256; ++i) ASSERT_EQ(got.bytes[i], 255 - i);
}

TEST(SoftPaintOps, ASoftBoxFadesInItsBorder) {
    Picture below(30, 30, 4);
    const Ref<ilMemoryImg> target = memoryOf(below);
    const Ref<SoftPaintOps> ops(new SoftPaintOps(target.get()));
    ops->setColor(0, 100, 0, 255);
    EXPECT_EQ(ops->drawSoftBox(flatTile(10, 10, 10, 10), 3), done);
    Picture got = pictureOf(*target, below.box());
    const int alphas[] = {0, 62, 126, 190, 255};
    for (int n = 0; n < 5; ++n) EXPECT_EQ(got.get(6 + n, 15)[3], alphas[n]) << n;
    EXPECT_EQ(got.get(7, 9)[3], 62);
    EXPECT_EQ(got.get(19, 19), (Pixel{0, 100, 0, 255}));
    EXPECT_EQ(got.get(23, 19)[3], 0);
    EXPECT_EQ(ops->blendFactors(), pairCopy);
}

TEST(SoftPaintOps, AStrokeImageIsDrawnThroughASourceOfOneChannel) {
    Dice dice(77);
    Picture below(150, 140, 4, dice), colors(150, 140, 4, dice), cover(100, 90, 1, dice);
    const Ref<ilSmartImage> target = smartOf(below), stroke = smartOf(colors);
    const Ref<ilMemoryImg> coverage = memoryOf(cover);
    for (const bool preview : {false, true}) {
        target->writeRegion(below.box(), below.bytes.data(), below.box());
        const Ref<SoftPaintOps> ops = painterOn(target.get(), pairOver);
        ops->setStrokeImage(stroke.get());
        ops->setPreview(preview);
        EXPECT_EQ(ops->drawImage(coverage.get(), 20, 30), done);
        Picture wanted = below;
        for (int y = 0; y < 90; ++y) {
            for (int x = 0; x < 100; ++x) {
                const Pixel d = below.get(20 + x, 30 + y), s = colors.get(20 + x, 30 + y);
                const std::uint8_t m = cover.get(x, y)[0];
                const Pixel out =
                    preview ? mixedPixel(s, d, m) : drawnPixel(pairOver, {m}, 1, d, 4, s);
                std::copy_n(out.begin(), 4, wanted.at(20 + x, 30 + y));
            }
        }
        ASSERT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes) << preview;
    }
}

TEST(SoftPaintOps, ColorAdjustWritesBackWhatChanged) {
    Dice dice(2);
    Picture below(200, 40, 4, dice);
    const Ref<ilSmartImage> target = smartOf(below);
    const Ref<SoftPaintOps> ops(new SoftPaintOps(target.get()));
    const auto halve = [](ilSPMemoryImg& pixels) {
        for (std::size_t i = 0; i < pixels.byteSize(); ++i)
            pixels.data()[i] = static_cast<std::uint8_t>(pixels.data()[i] / 2);
        return true;
    };
    EXPECT_EQ(ops->applyColorAdjust(flatTile(50, 10, 100, 20), halve), done);
    Picture wanted = below;
    for (int y = 10; y < 30; ++y)
        for (int i = 4 * 50; i < 4 * 150; ++i) wanted.at(0, y)[i] /= 2;
    EXPECT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes);
    EXPECT_EQ(ops->applyColorAdjust(below.box(), [](ilSPMemoryImg&) { return false; }), 0);
    EXPECT_EQ(
        ops->applyColorAdjust(below.box(), [](ilSPMemoryImg& p) { return p.rotate90() == 0; }), 0);
    EXPECT_EQ(pictureOf(*target, below.box()).bytes, wanted.bytes);
}

TEST(SoftPaintOps, AStrokeFollowsUndo) {
    Dice dice(9);
    Picture below(130, 130, 4, dice);
    const Ref<ilSmartImage> target = smartOf(below);
    const Ref<SoftPaintOps> ops(new SoftPaintOps(target.get()));
    EXPECT_EQ(ops->pendingStroke(), nullptr);
    EXPECT_EQ(ops->followUndo(true), done);
    ilImage* const stroke = ops->pendingStroke();
    ASSERT_NE(stroke, nullptr);
    ilSmartImage::from(stroke)->setPixel(5, 6, 0xFF00FF00);
    EXPECT_EQ(pictureOf(*target, below.box()).bytes, below.bytes);
    EXPECT_EQ(ops->followUndo(false), done);
    EXPECT_EQ(target->getPixel(5, 6), 0xFF00FF00);
    EXPECT_EQ(ops->pendingStroke(), nullptr);
    EXPECT_EQ(ops->commitStroke(), 0);
}

}  // namespace
}  // namespace brushwork
