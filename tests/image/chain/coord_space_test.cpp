#include "image/chain/coord_space.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace brushwork {
namespace {

using Int = std::int32_t;

// Where a pixel lies on the screen (column from the left, row from the top), by the names of the
// spaces alone.
Extent<Int> onScreen(Extent<Int> p, Int space, Extent<Int> screen) {
    const std::string name = coordSpaceName(space);
    const auto has = [&](const char* word) { return name.find(word) != std::string::npos; };
    if (has("(Y")) p = {p.y, p.x};
    return {has("right") ? screen.x - 1 - p.x : p.x, has("lower") ? screen.y - 1 - p.y : p.y};
}

Extent<Int> sizeIn(Int space, Extent<Int> screen) {
    return isTransposed(space) ? Extent<Int>{screen.y, screen.x} : screen;
}

template <class T>
void expectThereAndBack(Int from, Int to, Extent<Int> screen, Rect<Int> box, Extent<Int> point) {
    const auto convert = [](Extent<Int> e) {
        return Extent<T>{static_cast<T>(e.x), static_cast<T>(e.y)};
    };
    const auto here = convert(sizeIn(from, screen));
    const auto there = convert(sizeIn(to, screen));
    const auto p = convert(point);
    const Rect<T> r{static_cast<T>(box.x), static_cast<T>(box.y), static_cast<T>(box.w),
                    static_cast<T>(box.h)};
    EXPECT_EQ(mapPoint(mapPoint(p, from, to, there), to, from, here), p);
    EXPECT_EQ(mapVector(mapVector(p, from, to), to, from), p);
    EXPECT_EQ(mapRect(mapRect(r, from, to, there), to, from, here), r);
    EXPECT_EQ(spaceMap(from, to).apply(p, there), mapPoint(p, from, to, there));
}

TEST(CoordSpace, All64PairsShowTheSamePixel) {
    std::mt19937 random(3);
    const auto draw = [&](int low, int high) {
        return std::uniform_int_distribution<Int>(low, high)(random);
    };
    for (Int from = 1; from <= 8; ++from) {
        for (Int to = 1; to <= 8; ++to) {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            for (int round = 0; round < 50; ++round) {
                const Extent<Int> screen{draw(1, 300), draw(1, 300)};
                const auto target = sizeIn(to, screen);
                const Extent<Int> point{draw(-400, 400), draw(-400, 400)};
                const Rect<Int> box{draw(-400, 400), draw(-400, 400), draw(1, 99), draw(1, 99)};
                const auto mapped = mapPoint(point, from, to, target);
                EXPECT_EQ(onScreen(point, from, screen), onScreen(mapped, to, screen));
                // A box holds the images of its corner pixels, a vector joins two images.
                const auto rect = mapRect(box, from, to, target);
                const auto a = mapPoint<Int>({box.x, box.y}, from, to, target);
                const auto b =
                    mapPoint<Int>({box.x + box.w - 1, box.y + box.h - 1}, from, to, target);
                EXPECT_EQ(rect, (Rect<Int>{std::min(a.x, b.x), std::min(a.y, b.y),
                                           std::abs(a.x - b.x) + 1, std::abs(a.y - b.y) + 1}));
                const auto vector = mapVector<Int>({box.w - 1, box.h - 1}, from, to);
                EXPECT_EQ(vector, (Extent<Int>{b.x - a.x, b.y - a.y}));
                expectThereAndBack<Int>(from, to, screen, box, point);
                expectThereAndBack<float>(from, to, screen, box, point);
            }
        }
    }
}

TEST(CoordSpace, FlipsAndTransposes) {
    const Extent<Int> screen{7, 5};
    for (Int space = 1; space <= 8; ++space) {
        SCOPED_TRACE(space);
        const auto size = sizeIn(space, screen);
        const Extent<Int> p{2, 1};
        EXPECT_EQ(mapPoint(p, space, flippedX(space), size), (Extent<Int>{size.x - 3, 1}));
        EXPECT_EQ(mapPoint(p, space, flippedY(space), size), (Extent<Int>{2, size.y - 2}));
        EXPECT_EQ(mapPoint(p, space, transposed(space), {size.y, size.x}), (Extent<Int>{1, 2}));
    }
    EXPECT_EQ(flippedX(0), 3);
    EXPECT_EQ(flippedY(0), 1);
    EXPECT_EQ(transposed(0), 8);
    EXPECT_STREQ(coordSpaceName(4), "lower-left (X varies fastest)");
    EXPECT_STREQ(coordSpaceName(9), "");
    EXPECT_EQ(mapPoint<Int>({3, 4}, 9, 2, {10, 10}), (Extent<Int>{3, 4}));
}

}  // namespace
}  // namespace brushwork
