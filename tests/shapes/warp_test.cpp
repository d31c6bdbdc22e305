// Warps: grid, wires, and pixels as they come out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "shapes/shape.h"
#include "shapes/shape_rig.h"
#include "shapes/warp_render.h"

namespace brushwork {
namespace {

using test::bytesOf;
using test::Places;
using test::ShapeHost;
using test::TestOwner;
using test::TestShape;

constexpr ilTile document = flatTile(0, 0, 240, 200);

// A pair: the line lies at `from` and goes to `to`.
struct Pair {
    TestShape shape;
    Pair(Places from, Places to) { shape.line(std::move(from)).line(std::move(to)); }
};

TEST(WarpGrid, IsSnappedWithCellsToSpare) {
    const auto grid = WarpGrid::over({-7.0, 12.0, 33.0, 19.9}, 5.0f);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->left, -2 - 4);
    EXPECT_EQ(grid->low, 2 - 4);
    EXPECT_EQ(grid->across, 6 + 6 - -6 - 2);
    EXPECT_EQ(grid->down, 3 + 6 - -2 - 2);
    EXPECT_TRUE(grid->box().contains(flatTile(-7, 12, 41, 8)));
    EXPECT_FALSE(WarpGrid::over({0, 0, 1e7, 1e7}, 5.0f));
    EXPECT_FALSE(WarpGrid::over({0, 0, 1e12, 1}, 5.0f));
    EXPECT_FALSE(WarpGrid::over({0, 0, 1, 1}, 0.0f));
}

TEST(WarpSpan, RunsThroughNodesAndKeepsStraightLinesStraight) {
    for (const double place : {-13.7, 0.0, 4.0, 17.3, 39.99}) {
        const WarpSpan span(4.0f, -10, 30, place);
        ASSERT_TRUE(span.isInside);
        double sum = 0.0, mean = 0.0;
        for (int n = 0; n < 4; ++n) {
            const double weight = static_cast<double>(span.weights[static_cast<std::size_t>(n)]);
            sum += weight;
            mean += weight * 4.0 * (span.first + n - 10);
        }
        EXPECT_NEAR(sum, 1.0, 1e-6);
        EXPECT_NEAR(mean, place, 1e-5);
    }
    EXPECT_EQ(WarpSpan(4.0f, -10, 30, 8.0).weights[1], 1.0f);
    EXPECT_FALSE(WarpSpan(4.0f, 0, 8, 3.0).isInside);
    EXPECT_TRUE(WarpSpan(4.0f, 0, 8, 4.0).isInside);
    EXPECT_FALSE(WarpSpan(4.0f, 0, 8, 24.0).isInside);
}

TEST(WarpWires, PullTheLineWhereItGoesAndNothingFarOff) {
    const ShapeHost host;
    Pair pair({{60, 100}, {180, 100}}, {{60, 112}, {180, 112}});
    const WarpWires wires(test::curvesOf(pair.shape), 5.0);
    for (const double x : {60.0, 101.0, 180.0}) {
        const auto pull = wires.pullAt({x, 112});
        EXPECT_NEAR(pull.x, 0.0, 1e-9);
        EXPECT_NEAR(pull.y, -12.0, 1e-9);
    }
    EXPECT_EQ(wires.pullAt({120, 112 + 36}).y, 0.0);
    EXPECT_LT(wires.pullAt({120, 112 + 35}).y, 0.0);
    // Going up, what is seen never turns back.
    for (double y = 70; y < 160; y += 0.5)
        EXPECT_GT(y + 0.5 + wires.pullAt({120, y + 0.5}).y, y + wires.pullAt({120, y}).y);
    // A wire without a partner holds on.
    pair.shape.line({{60, 140}, {180, 140}});
    const WarpWires held(test::curvesOf(pair.shape), 5.0);
    EXPECT_GT(held.pullAt({120, 130}).y, wires.pullAt({120, 130}).y);
    EXPECT_TRUE(WarpWires({}, 5.0).isEmpty());
    EXPECT_FALSE(WarpWires({}, 5.0).extent());
}

class Warp : public testing::Test {
  protected:
    Warp() {
        owner.document = document;
        owner.picture = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
        std::mt19937 random(7);
        std::vector<std::uint8_t> bytes;
        for (int y = 0; y < document.ny; ++y) {
            for (int x = 0; x < document.nx; ++x) {
                const auto tone =
                    static_cast<std::uint8_t>(static_cast<unsigned>(x * 5 ^ y * 3) + random() % 20);
                bytes.insert(bytes.end(), {tone, static_cast<std::uint8_t>(x),
                                           static_cast<std::uint8_t>(y), 255});
            }
        }
        owner.picture->writeRegion(document, bytes.data(), document);
        parms->kind = ShapeKind::Warp;
    }

    Ref<ilSmartImage> warped(TestShape& curves, SampleMode filter = SampleMode::Bilinear) {
        shape = makeRef<Shape>(&owner, &curves, nullptr, parms);
        shape->warpRenderer().setFilter(filter);
        Ref<ilSmartImage> target = owner.picture->clone();
        shape->draw(target.get());
        return target;
    }

    ShapeHost host;
    TestOwner owner;
    Ref<ShapeImageParms> parms = makeRef<ShapeImageParms>();
    Ref<Shape> shape;
};

// The spline in double, node by node, and a bilinear look at the picture.
double shownAt(const WarpSpline& spline, const std::vector<std::uint8_t>& picture, int x, int y,
               int channel) {
    const WarpGrid& grid = spline.grid();
    const double cell = static_cast<double>(grid.cell);
    const double u = (x + 0.5) / cell - grid.left, v = (y + 0.5) / cell - grid.low;
    const int i = static_cast<int>(u), j = static_cast<int>(v);
    const auto weights = [](double t) {
        return std::array{-0.5 * t + t * t - 0.5 * t * t * t, 1 - 2.5 * t * t + 1.5 * t * t * t,
                          0.5 * t + 2 * t * t - 1.5 * t * t * t, -0.5 * t * t + 0.5 * t * t * t};
    };
    const auto across = weights(u - i), up = weights(v - j);
    double sx = 0, sy = 0;
    for (int b = 0; b < 4; ++b) {
        for (int a = 0; a < 4; ++a) {
            const double w = across[static_cast<std::size_t>(a)] * up[static_cast<std::size_t>(b)];
            sx += w * static_cast<double>(spline.sourceX(i - 1 + a, j - 1 + b));
            sy += w * static_cast<double>(spline.sourceY(i - 1 + a, j - 1 + b));
        }
    }
    sx -= 0.5, sy -= 0.5;
    const int px = static_cast<int>(std::floor(sx)), py = static_cast<int>(std::floor(sy));
    const auto at = [&](int qx, int qy) -> double {
        if (qx < 0 || qy < 0 || qx >= document.nx || qy >= document.ny) return 0.0;
        return picture[static_cast<std::size_t>((qy * document.nx + qx) * 4 + channel)];
    };
    const double fx = sx - px, fy = sy - py;
    return (at(px, py) * (1 - fx) + at(px + 1, py) * fx) * (1 - fy) +
           (at(px, py + 1) * (1 - fx) + at(px + 1, py + 1) * fx) * fy;
}

TEST_F(Warp, EveryPixelComesFromWhereTheSplineSays) {
    Places bent;
    for (int n = 0; n <= 40; ++n) bent.push_back({20.0 + 5 * n, 90 + 25 * std::sin(n * 0.3)});
    Pair pair({{20, 90}, {220, 90}}, bent);
    pair.shape.ring(test::circle(120, 150, 20, 30)).ring(test::circle(120, 150, 28, 30));
    const auto picture = bytesOf(*owner.picture, document);
    const auto got = bytesOf(*warped(pair.shape), document);
    const WarpSpline& spline = *shape->warpRenderer().spline();
    int moved = 0;
    double sum = 0;
    for (int y = 0; y < document.ny; ++y) {
        for (int x = 0; x < document.nx; ++x) {
            if (!spline.grid().box().contains(flatTile(x, y, 1, 1))) continue;
            for (int c = 0; c < 4; ++c) {
                const auto at = static_cast<std::size_t>((y * document.nx + x) * 4 + c);
                // Weights have 8 bits.
                const double off = std::fabs(got[at] - shownAt(spline, picture, x, y, c));
                ASSERT_LE(off, 4.0) << x << " " << y << " " << c;
                sum += off;
            }
            const auto pull = spline.pullAt(x + 0.5, y + 0.5);
            moved += pull.x != 0 || pull.y != 0;
        }
    }
    EXPECT_GT(moved, 20000);
    EXPECT_LT(sum / moved / 4, 0.8);
}

TEST_F(Warp, WhatDoesNotMoveStaysToTheBit) {
    // Both lines alike: the grid is there, and nothing moves.
    Pair still({{40, 90}, {200, 90}}, {{40, 90}, {200, 90}});
    owner.place = {3, -2};  // were it drawn, it would be seen
    EXPECT_EQ(bytesOf(*warped(still.shape), document), bytesOf(*owner.picture, document));
    owner.place = {};
    Pair pulled({{100, 60}, {140, 60}}, {{100, 66}, {140, 66}});
    for (const SampleMode mode : {SampleMode::Nearest, SampleMode::Bilinear, SampleMode::Bicubic}) {
        const auto before = bytesOf(*owner.picture, document);
        const auto after = bytesOf(*warped(pulled.shape, mode), document);
        const WarpSpline& spline = *shape->warpRenderer().spline();
        int kept = 0, changed = 0;
        for (int y = 0; y < document.ny; ++y) {
            for (int x = 0; x < document.nx; ++x) {
                const auto at = static_cast<std::size_t>((y * document.nx + x) * 4);
                const bool same = std::equal(&before[at], &before[at] + 4, &after[at]);
                const auto pull = spline.pullAt(x + 0.5, y + 0.5);
                const bool rests = pull.x == 0.0 && pull.y == 0.0;
                ASSERT_TRUE(!rests || same) << x << " " << y;
                kept += rests;
                changed += !same;
            }
        }
        EXPECT_GT(kept, 30000);
        EXPECT_GT(changed, 1000);
    }
}

TEST_F(Warp, ThePictureMayLieElsewhereAndAClipHolds) {
    Pair pulled({{100, 60}, {140, 60}}, {{100, 72}, {140, 72}});
    const auto whole = bytesOf(*warped(pulled.shape), document);
    // The same picture, told to lie where it was moved to.
    const Ref<ilSmartImage> away = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
    away->copyRegion(flatTile(-50, 30, document.nx, document.ny), *owner.picture, 0, 0, 0, nullptr,
                     CopyDirection::FromOther);
    const Ref<ilSmartImage> target = owner.picture->clone();
    owner.picture = away;
    owner.place = {50, -30};
    const ilTile clip = flatTile(0, 0, 120, 200);
    shape->draw(target.get(), &clip);
    const auto half = bytesOf(*target, document);
    const auto left = [](const std::vector<std::uint8_t>& all) {
        std::vector<std::uint8_t> part;
        for (std::size_t i = 0; i < all.size(); ++i)
            if (i / 4 % static_cast<std::size_t>(document.nx) < 120) part.push_back(all[i]);
        return part;
    };
    EXPECT_EQ(left(half), left(whole));
    EXPECT_NE(half, whole);
    // Nothing to draw from, or not of its kind.
    owner.picture.reset();
    shape->draw(target.get());
    owner.picture = makeRef<ilSmartImage>();
    shape->draw(target.get());
    EXPECT_EQ(bytesOf(*target, document), half);
    EXPECT_FALSE(renderWarp(*shape->warpRenderer().spline(), {target.get(), 0, 0},
                            SampleMode::Bilinear, *target, document));
}

TEST_F(Warp, CellsGrowWithTheDocument) {
    Pair pulled({{100, 60}, {140, 60}}, {{100, 72}, {140, 72}});
    (void)warped(pulled.shape);
    EXPECT_EQ(shape->warpRenderer().spline()->grid().cell, 5.0f);
    owner.document = flatTile(0, 0, 100, 4000);
    parms->warpDensity = 2.0f;
    (void)warped(pulled.shape);
    EXPECT_EQ(shape->warpRenderer().spline()->grid().cell, 20.0f);
    ilTile box;
    EXPECT_TRUE(shape->bounds(box));
    EXPECT_EQ(box, shape->warpRenderer().spline()->grid().box());
}

}  // namespace
}  // namespace brushwork
