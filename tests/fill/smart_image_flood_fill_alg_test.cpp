#include "fill/smart_image_flood_fill_alg.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <numeric>
#include <string>

#include "fill/naive_flood.h"
#include "image/cache/smart_image_cache.h"

namespace brushwork::test {
namespace {

using Method = SmartImageFloodFillAlg::Method;

// Counts how often pages were entered, and enters them in an order of its own.
class WatchedFlood : public SmartImageFloodFillAlg {
  public:
    std::map<std::int32_t, int> visits;
    Random* random = nullptr;

  protected:
    void afterPage(std::int32_t page, std::int32_t, std::int32_t) override { ++visits[page]; }
    [[nodiscard]] std::int32_t nextPage(const PageQueue& waiting) override {
        if (!random) return SmartImageFloodFillAlg::nextPage(waiting);
        const std::int32_t page =
            waiting.firstFrom(static_cast<std::int32_t>(between(*random, 0, 24)));
        return page < 0 ? waiting.first() : page;
    }
};

struct Setting {
    std::int32_t x, y;
    int tolerance;
    bool smooth;
    Method method;
};

void flood(SmartImageFloodFillAlg& alg, ilSmartImage& image, ilSmartImage& mask,
           const Setting& setting) {
    alg.setImages(image, mask);
    alg.setTolerance(static_cast<std::uint8_t>(setting.tolerance));
    alg.setSmoothEdges(setting.smooth);
    alg.setMethod(setting.method);
    alg.setSeed(setting.x, setting.y);
    alg.run();
}

ilTile widened(const ilTile& box, std::int32_t by) {
    return flatTile(box.x - by, box.y - by, box.nx + 2 * by, box.ny + 2 * by);
}

// The mask in the picture's box; beyond it must be nothing.
std::vector<std::uint8_t> maskIn(ilSmartImage& mask, const ilTile& box) {
    const auto around = bytesOf(mask, widened(box, 140));
    const auto inside = bytesOf(mask, box);
    const auto sum = [](const std::vector<std::uint8_t>& bytes) {
        return std::accumulate(bytes.begin(), bytes.end(), std::uint64_t{0});
    };
    EXPECT_EQ(sum(around), sum(inside)) << "coverage outside the picture";
    return inside;
}

std::string firstDifference(const Picture& picture, const std::vector<std::uint8_t>& got,
                            const std::vector<std::uint8_t>& wanted) {
    for (std::int32_t y = picture.box.y; y < picture.box.endY(); ++y)
        for (std::int32_t x = picture.box.x; x < picture.box.endX(); ++x) {
            const std::size_t i = picture.index(x, y);
            if (got[i] != wanted[i])
                return "at " + std::to_string(x) + ", " + std::to_string(y) + ": " +
                       std::to_string(got[i]) + " for " + std::to_string(wanted[i]);
        }
    return {};
}

constexpr ilTile places[] = {flatTile(-70, -200, 430, 390), flatTile(0, 0, 256, 384),
                             flatTile(1000, 3, 259, 300)};

// Pages that an idle scan would turn solid do so.
void settle() {
    while (SmartImageCache::instance().idleStep()) {
    }
}

void compareAll(Motif motif, std::uint32_t seed) {
    SCOPED_TRACE("motif " + std::to_string(static_cast<int>(motif)) + " seed " +
                 std::to_string(seed));
    Random random(seed);
    const ilTile box = places[seed % 3];
    const std::int32_t channels = seed % 4 == 3 ? 1 : 4;
    const Picture picture = makePicture(motif, box, channels, random);
    const Ref<ilSmartImage> image = smartOf(picture);
    if (seed % 2 == 0) settle();
    const std::vector<std::uint8_t> nothing(picture.pixels.size(), 0);
    for (const int tolerance : {0, 1, 5, 31, 32, 33, 90, 127, 128, 200, 254, 255}) {
        // On either side of the borders of a page, and anywhere.
        const std::int32_t borderX = (box.x + box.nx / 2) & ~127;
        const std::int32_t borderY = (box.y + box.ny / 2) & ~127;
        const std::int32_t any = static_cast<std::int32_t>(between(random, 0, 200));
        const std::int32_t seeds[][2] = {{borderX, borderY + any % 90 - 20},
                                         {borderX - 1, borderY},
                                         {borderX + any % 70, borderY - 1},
                                         {borderX - 1, borderY - 1},
                                         {box.x + any, box.y + any}};
        const auto& [x, y] = seeds[between(random, 0, 4)];
        const bool smooth = between(random, 0, 2) != 0;
        const auto expected = naiveFlood(picture, x, y, tolerance, smooth, nothing);
        for (const Method method : {Method::Rows, Method::Waves}) {
            const bool shuffled = between(random, 0, 1) != 0;
            const Ref<ilSmartImage> mask = newMask();
            WatchedFlood alg;
            if (shuffled) alg.random = &random;
            flood(alg, *image, *mask, {x, y, tolerance, smooth, method});
            EXPECT_EQ(firstDifference(picture, maskIn(*mask, box), expected), "")
                << "tolerance " << tolerance << " smooth " << smooth << " seed " << x << ", " << y
                << " method " << static_cast<int>(method) << " shuffled " << shuffled;
        }
    }
}

TEST(SmartImageFloodFillAlg, AgreesWithANaiveFloodInAnyPageOrder) {
    for (const Motif motif : {Motif::Noise, Motif::Drawing, Motif::Gradient, Motif::Solids})
        for (std::uint32_t seed = 0; seed < 4; ++seed) compareAll(motif, seed);
}

// Every level of the kernels, on what has both hard and soft edges.
TEST(SmartImageFloodFillAlg, GivesTheSameMaskAtEveryVectorLevel) {
    Random random(7);
    const Picture picture = makePicture(Motif::Drawing, places[0], 4, random);
    const Ref<ilSmartImage> image = smartOf(picture);
    std::vector<std::vector<std::uint8_t>> masks;
    for (const VectorLevel level : {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2}) {
        forceVectorLevel(level);
        const Ref<ilSmartImage> mask = newMask();
        SmartImageFloodFillAlg alg;
        flood(alg, *image, *mask, {0, 0, 40, true, Method::Rows});
        masks.push_back(bytesOf(*mask, picture.box));
    }
    forceVectorLevel(VectorLevel::Avx2);
    EXPECT_EQ(masks[0], masks[1]);
    EXPECT_EQ(masks[0], masks[2]);
}

// What a mask holds already stays, and bounds a flood.
TEST(SmartImageFloodFillAlg, RaisesTheCoverageThatWasThere) {
    for (std::uint32_t seed = 0; seed < 6; ++seed) {
        Random random(seed);
        const Motif motif = seed % 2 == 0 ? Motif::Solids : Motif::Drawing;
        const ilTile box = places[seed % 3];
        const Picture picture = makePicture(motif, box, 4, random);
        Picture before(box, 1, 0);
        before.fill(flatTile(box.x + 40, box.y + 60, 200, 30), 255);
        before.fill(flatTile(box.x + 100, box.y, 20, 300), between(random, 1, 254));
        before.fill(flatTile((box.x + 200) & ~127, (box.y + 200) & ~127, 128, 128), 140);
        const std::vector<std::uint8_t> old = before.bytes();
        const Ref<ilSmartImage> image = smartOf(picture);
        settle();
        for (const bool smooth : {false, true}) {
            const std::int32_t x = box.x + 5;
            const std::int32_t y = box.y + 5;
            const auto expected = naiveFlood(picture, x, y, 60, smooth, old);
            for (const Method method : {Method::Rows, Method::Waves}) {
                const Ref<ilSmartImage> mask = smartOf(before);
                settle();
                SmartImageFloodFillAlg alg;
                flood(alg, *image, *mask, {x, y, 60, smooth, method});
                EXPECT_EQ(firstDifference(picture, maskIn(*mask, box), expected), "")
                    << "seed " << seed << " smooth " << smooth << " method "
                    << static_cast<int>(method);
            }
        }
    }
}

TEST(SmartImageFloodFillAlg, EntersEachPageOfALargeFlatAreaOnce) {
    const ilTile box = flatTile(-5120, -4096, 10240, 9984);  // 102 megapixels, 80 by 78 pages
    const Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    const std::uint8_t paper[4] = {250, 249, 240, 255};
    image->fillRegion(box, ilPixel(TypeUChar, 4, paper));
    for (const Method method : {Method::Rows, Method::Waves}) {
        const Ref<ilSmartImage> mask = newMask();
        WatchedFlood alg;
        flood(alg, *image, *mask, {100, 100, 32, true, method});
        EXPECT_EQ(alg.visits.size(), 80U * 78U);
        for (const auto& [page, count] : alg.visits) ASSERT_EQ(count, 1) << "page " << page;
        std::uint32_t value = 0;
        EXPECT_TRUE(mask->isSolid(box, value, false)) << "a page took memory";
        EXPECT_EQ(value, 255U);
    }
}

TEST(SmartImageFloodFillAlg, LeavesOtherPagesAloneAndSeedsOutsideDoNothing) {
    Picture picture(flatTile(10, 10, 500, 300), 4, greyWord(255));
    picture.fill(flatTile(100, 10, 3, 300), greyWord(0));
    const Ref<ilSmartImage> image = smartOf(picture);
    const Ref<ilSmartImage> mask = newMask();
    SmartImageFloodFillAlg alg;
    for (const auto& [x, y] : {std::pair{9, 20}, {510, 20}, {20, 310}, {-5000, 5}, {20, 9}})
        flood(alg, *image, *mask, {x, y, 32, true, Method::Rows});
    EXPECT_EQ(mask->pages().heldPages(), 0U);
    flood(alg, *image, *mask, {20, 20, 32, true, Method::Rows});
    EXPECT_EQ(mask->pages().heldPages(), 3U);  // the pages left of the wall
    SmartImageFloodFillAlg unset;
    unset.setSeed(1, 1);
    unset.run();
    flood(alg, *image, *image, {20, 20, 32, true, Method::Rows});
    EXPECT_EQ(image->getPixel(20, 20), greyWord(255));
}

// A diagonal joins nothing; a transparent target sees alpha alone.
TEST(SmartImageFloodFillAlg, FourDirectionsAndClearTargets) {
    Picture picture(flatTile(0, 0, 200, 200), 4, greyWord(0));
    picture.fill(flatTile(20, 20, 30, 30), greyWord(255));
    picture.fill(flatTile(50, 50, 30, 30), greyWord(255));
    const Ref<ilSmartImage> mask = newMask();
    SmartImageFloodFillAlg alg;
    flood(alg, *smartOf(picture), *mask, {30, 30, 32, false, Method::Rows});
    EXPECT_EQ(mask->getPixel(49, 49), 255U);
    EXPECT_EQ(mask->getPixel(50, 50), 0U);

    Picture clear(flatTile(0, 0, 200, 200), 4, 0x00FFFFFF);
    clear.fill(flatTile(50, 0, 50, 200), 0x00000000);
    clear.fill(flatTile(100, 0, 50, 200), 0x40000000);
    const Ref<ilSmartImage> other = newMask();
    flood(alg, *smartOf(clear), *other, {10, 10, 32, false, Method::Rows});
    EXPECT_EQ(other->getPixel(99, 100), 255U);
    EXPECT_EQ(other->getPixel(100, 100), 0U);
}

}  // namespace
}  // namespace brushwork::test
