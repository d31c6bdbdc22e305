#include "strokes/stamp/stamp_maker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "foundation/tasks/task_pool.h"
#include "image/filter/kernel_recipe.h"
#include "strokes/stamp/stamp_bands.h"
#include "support/allocation_count.h"
#include "support/test_seed.h"

namespace brushwork::npc {
namespace {

Ref<ilSPMemoryImg> picture(int width, int height, int channels, unsigned seed = 1) {
    std::mt19937 random(seed);
    const auto image = makeRef<ilSPMemoryImg>(width, height, channels);
    for (std::size_t n = 0; n < image->byteSize(); ++n)
        image->data()[n] = static_cast<std::uint8_t>(random());
    return image;
}

Ref<ImagePaintObj> ladderOf(const Ref<ilSPMemoryImg>& image) {
    return makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
}

std::vector<std::uint8_t> bytesOf(ilSPMemoryImg* image) {
    if (!image) return {};
    return {image->data(), image->data() + image->byteSize()};
}

StampPoint pointOf(float radius, float x = 100.25f, float y = 80.5f, float angle = 0.0f) {
    StampPoint point;
    point.radius = radius;
    point.x = x;
    point.y = y;
    point.angle = angle;
    return point;
}

std::vector<StampTip> tips() {
    std::vector<StampTip> all(6);
    all[0].hardness = 0.28f;
    all[1].shape = ladderOf(picture(61, 40, 1));
    all[2].shape = all[1].shape;
    all[2].procedural = false;
    all[3] = all[2];
    all[3].color = ladderOf(picture(50, 50, 4));
    all[3].colors = StampColors::Kept;
    all[4] = all[3];
    all[4].colors = StampColors::Fresh;
    all[5].procedural = false;  // a full box
    return all;
}

TEST(StampBands, CoverAllRowsInBandsOfEnoughPixels) {
    for (const int workers : {1, 2, 8}) {
        TaskPool::setDefaultSize(workers);
        for (const int width : {1, 16, 130, 1000, 40000})
            for (const int height : {1, 31, 130, 1000, 1331}) {
                const StampBands bands(width, height);
                int next = 0;
                for (std::size_t n = 0; n < bands.count(); ++n) {
                    const auto band = bands.band(n);
                    ASSERT_EQ(band.firstRow, next);
                    ASSERT_GT(band.rows, 0);
                    if (n + 1 < bands.count()) {
                        ASSERT_GE(band.rows * width, 32768);
                    }
                    next += band.rows;
                }
                ASSERT_EQ(next, height);
            }
    }
    TaskPool::setDefaultSize(0);
    EXPECT_EQ(StampBands(181, 181).count(), 1u);
    EXPECT_EQ(StampBands(0, 5).count(), 0u);
}

// The same points, whatever makes them: cache, workers, vectors.
TEST(StampMaker, AllWaysGiveTheSamePixels) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto share = [&random] { return std::uniform_real_distribution<float>(0, 1)(random); };
    std::vector<StampPoint> points;
    for (int n = 0; n < 30; ++n) {
        StampPoint point = pointOf(n < 3 ? 300.0f * share() : 40.0f * share() * share(),
                                   100 * share(), 100 * share(), 360 * share());
        point.scaleY = n % 2 ? 1.0f : share();
        for (int again = 0; again < 2; ++again) points.push_back(point);
    }
    for (const StampTip& tip : tips()) {
        std::vector<std::vector<std::uint8_t>> expected;
        for (const int workers : {1, 2, 8})
            for (const bool cached : {false, true})
                for (const VectorLevel level : {VectorLevel::Scalar, VectorLevel::Avx2}) {
                    TaskPool::setDefaultSize(workers);
                    const test::AtLevel forced(level);
                    StampMaker maker(makeRef<StampImageCache>());
                    maker.setTip(tip);
                    maker.setCacheEnabled(cached);
                    std::vector<std::vector<std::uint8_t>> got;
                    for (const StampPoint& point : points) {
                        const StampImages& stamp = maker.make(maker.quantized(point));
                        ASSERT_TRUE(stamp.mask);
                        ASSERT_EQ(stamp.mask->sizeX() % 16, 0);
                        ASSERT_LT(stamp.mask->sizeX() - stamp.box.nx, 16);
                        ASSERT_EQ(stamp.mask->sizeY(), stamp.box.ny);
                        ASSERT_EQ(static_cast<bool>(stamp.color), tip.colors != StampColors::None);
                        got.push_back(bytesOf(stamp.mask));
                        got.push_back(bytesOf(stamp.color));
                    }
                    if (expected.empty()) expected = got;
                    ASSERT_TRUE(got == expected) << workers << " workers, cached " << cached;
                }
    }
    TaskPool::setDefaultSize(0);
}

TEST(StampMaker, APlainBoxIsFullAndASymmetricTipStaysSymmetric) {
    StampMaker maker({});
    StampTip tip;
    tip.procedural = false;
    maker.setTip(tip);
    StampPoint point = pointOf(5.0f, 20.0f, 20.0f);
    const StampImages& full = maker.make(maker.quantized(point));
    EXPECT_EQ(full.box, flatTile(14, 14, 13, 13));
    for (int n = 0; n < 16 * 13; ++n) ASSERT_EQ(full.mask->data()[n], n % 16 < 13 ? 255 : 0);

    const auto white = makeRef<ilSPMemoryImg>(10, 10, 1);
    std::fill_n(white->data(), 100, std::uint8_t{255});
    tip.shape = makeRef<ImagePaintObj>(white, ImagePaintObj::Levels::Single);
    maker.setTip(tip);
    for (const float angle : {0.0f, 45.0f, 90.0f, 180.0f}) {
        point.angle = angle;
        point.x = point.y = 20.5f;  // the middle of a pixel
        const StampImages& stamp = maker.make(maker.quantized(point));
        const int cx = 20 - stamp.box.x, cy = 20 - stamp.box.y, row = stamp.mask->sizeX();
        const auto at = [&](int dx, int dy) {
            return int{stamp.mask->data()[(cy + dy) * row + cx + dx]};
        };
        for (int dy = -5; dy <= 5; ++dy)
            for (int dx = -5; dx <= 5; ++dx)
                ASSERT_NEAR(at(dx, dy), at(-dx, -dy), 2) << angle << ": " << dx << ", " << dy;
        EXPECT_EQ(at(0, 0), 255);
    }
}

TEST(StampMaker, NoticesEveryChangeOfTheBrush) {
    const auto cache = makeRef<StampImageCache>();
    StampMaker maker(cache), fresh({});
    const auto shape = ladderOf(picture(30, 30, 1, 2));
    const auto colors = ladderOf(picture(30, 30, 4, 3));
    const StampPoint point = pointOf(6.0f);
    const auto expectRight = [&](const char* what) {
        fresh.setTip(maker.tip());
        const StampImages& right = fresh.make(fresh.quantized(point));
        const StampImages& got = maker.make(maker.quantized(point));
        EXPECT_EQ(bytesOf(got.mask), bytesOf(right.mask)) << what;
        EXPECT_EQ(bytesOf(got.color), bytesOf(right.color)) << what;
    };
    StampTip tip;
    tip.smears = true;  // so that the hardness changes no radius and with it no key
    const auto change = [&](const char* what, auto apply) {
        apply();
        maker.setTip(tip);
        expectRight(what);
        expectRight(what);
    };
    change("first", [] {});
    change("hardness", [&] { tip.hardness = 0.3f; });
    change("shape", [&] { tip.shape = shape; });
    change("not computed", [&] { tip.procedural = false; });
    change("colours, not wanted", [&] { tip.color = colors; });
    change("colours", [&] { tip.colors = StampColors::Kept; });
    change("fresh colours", [&] { tip.colors = StampColors::Fresh; });
    change("kept again", [&] { tip.colors = StampColors::Kept; });
    // Without a word to the maker.
    shape->setSingleImage(picture(12, 12, 1, 7));
    expectRight("shape replaced");
    colors->setImageLadder(picture(25, 12, 4, 8));
    expectRight("colours replaced");
    colors->setSingleImage(picture(25, 12, 1, 8));
    expectRight("colours of one channel");
    EXPECT_FALSE(maker.make(maker.quantized(point)).color);

    // Two makers of two brushes at one cache.
    StampMaker second(cache);
    StampTip other;
    other.hardness = 0.8f;
    other.smears = true;
    second.setTip(other);
    for (int n = 0; n < 3; ++n) {
        (void)second.make(second.quantized(point));
        expectRight("shared cache");
    }
}

TEST(StampMaker, FreshColoursMayBeWrittenOn) {
    StampMaker maker(makeRef<StampImageCache>());
    StampTip tip = tips()[4];
    maker.setTip(tip);
    const StampPoint point = maker.quantized(pointOf(9.0f));
    const auto first = bytesOf(maker.make(point).color);
    std::fill_n(maker.make(point).color->data(), first.size(), std::uint8_t{1});
    EXPECT_EQ(bytesOf(maker.make(point).color), first);
}

// No smaller part holds all of the mask.
TEST(StampMaker, TheInkedPartIsTight) {
    for (const StampTip& tip : tips())
        for (const float radius : {0.0625f, 0.9f, 4.0f, 17.3f, 80.0f})
            for (const float angle : {0.0f, 33.0f}) {
                StampMaker maker(makeRef<StampImageCache>());
                maker.setTip(tip);
                const StampImages& stamp =
                    maker.make(maker.quantized(pointOf(radius, 10.3f, -7.6f, angle)));
                const ilTile& inked = stamp.inked;
                std::int32_t left = INT32_MAX, right = INT32_MIN, low = INT32_MAX, high = INT32_MIN;
                for (std::int32_t y = 0; y < stamp.mask->sizeY(); ++y)
                    for (std::int32_t x = 0; x < stamp.mask->sizeX(); ++x)
                        if (stamp.mask->data()[y * stamp.mask->sizeX() + x]) {
                            left = std::min(left, stamp.box.x + x);
                            right = std::max(right, stamp.box.x + x + 1);
                            low = std::min(low, stamp.box.y + y);
                            high = std::max(high, stamp.box.y + y + 1);
                        }
                if (left > right) {
                    EXPECT_TRUE(inked.isEmpty()) << radius;
                    continue;
                }
                EXPECT_EQ(inked, flatTile(left, low, right - left, high - low))
                    << radius << " at " << angle;
            }
}

TEST(StampMaker, WarmStampsAllocateNothing) {
    std::vector<StampTip> all = tips();
    for (const bool cached : {true, false})
        for (const StampTip& tip : all) {
            StampMaker maker(makeRef<StampImageCache>());
            maker.setTip(tip);
            maker.setCacheEnabled(cached);
            const auto walk = [&] {
                for (int n = 0; n < 32; ++n)
                    (void)maker.make(
                        maker.quantized(pointOf(12.0f, 10.0f + static_cast<float>(n) / 16.0f)));
            };
            walk();
            const auto before = test::allocations();
            const auto images = ilSPMemoryImg::liveCount();
            walk();
            EXPECT_EQ(test::allocations(), before) << "cached " << cached;
            EXPECT_EQ(ilSPMemoryImg::liveCount(), images);
        }
}

TEST(StampMaker, WhatCantBeMadeIsNoStamp) {
    StampMaker maker(makeRef<StampImageCache>());
    StampPoint point = pointOf(500.0f);
    point.scaleX = 5000.0f;
    const StampImages& stamp = maker.make(maker.quantized(point));
    EXPECT_TRUE(stamp.box.isEmpty());
    EXPECT_FALSE(stamp.mask);
}

}  // namespace
}  // namespace brushwork::npc
