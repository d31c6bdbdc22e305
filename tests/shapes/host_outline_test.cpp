#include "shapes/host_outline.h"

#include <gtest/gtest.h>

#include <limits>

#include "shapes/shape_rig.h"

namespace brushwork {
namespace {

using test::ShapeHost;
using test::TestShape;

// A curve of several rings, as one that was cut in pieces at once.
const std::vector<HostSegment>* servedPieces = nullptr;
int lentOut = 0;

void servePieces(const std::vector<HostSegment>& pieces) {
    servedPieces = &pieces;
    hostCallTable().tessellateCurve = [](HostCurve, double, std::int32_t* count) {
        ++lentOut;
        *count = static_cast<std::int32_t>(servedPieces->size());
        return const_cast<HostSegment*>(servedPieces->data());
    };
    hostCallTable().freeSegments = [](HostSegment*) { --lentOut; };
}

TEST(HostOutline, ClosesEachChainThatStandsOpen) {
    const ShapeHost host;
    const std::vector<HostSegment> pieces = {{0, 0, 10, 0},
                                             {10, 0, 0, 10},  // open
                                             {20, 20, 5, 0},
                                             {25, 20, 0, 5},
                                             {25, 25, -5, -5}};  // closed
    servePieces(pieces);
    TestShape shape;
    shape.line({{0, 0}, {1, 1}});
    const auto curves = test::curvesOf(shape);
    const auto outline = closedOutline(curves);
    ASSERT_EQ(outline.size(), 6u);
    EXPECT_EQ(outline[2].x, 10.0f);
    EXPECT_EQ(outline[2].dy, -10.0f);
    EXPECT_EQ(outline[5].dx, -5.0f);
    EXPECT_EQ(lentOut, 0);  // all was given back
    const auto chains = outlineChains(pieces);
    ASSERT_EQ(chains.size(), 2u);
    EXPECT_EQ(chainPoints(chains[0]).size(), 3u);
    EXPECT_EQ(chainPoints(chains[0]).back().y, 10.0f);
    EXPECT_TRUE(outlineChains({}).empty());
}

TEST(HostOutline, WhatIsNoNumberIsLeftOut) {
    const ShapeHost host;
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<HostSegment> pieces = {{0, 0, 1, 1}, {nan, 0, 1, 1}, {1, 1, nan, 0}};
    servePieces(pieces);
    TestShape shape;
    shape.line({{0, 0}});
    EXPECT_EQ(curvePieces(&shape.curves[0]).size(), 1u);
    hostCallTable().curveBounds = [](HostCurve, double* low, double* high) {
        low[0] = low[1] = std::numeric_limits<double>::quiet_NaN();
        high[0] = high[1] = 4;
        return true;
    };
    EXPECT_FALSE(outlineExtent(test::curvesOf(shape)));
}

TEST(HostOutline, CurvesOfAShape) {
    TestShape shape;
    shape.ring({{0, 0}, {8, -2}, {3, 5}}).line({{20, 1}, {30, 2}});
    EXPECT_TRUE(shapeCurves(&shape).empty());  // no host
    const ShapeHost host;
    const auto curves = shapeCurves(&shape);
    ASSERT_EQ(curves.size(), 2u);
    const auto extent = outlineExtent(curves);
    ASSERT_TRUE(extent);
    EXPECT_EQ(extent->lowY, -2.0);
    EXPECT_EQ(extent->highX, 30.0);
    EXPECT_TRUE(shapeCurves(nullptr).empty());
    EXPECT_FALSE(outlineExtent({}));
    // A list without an end comes to one all the same.
    hostCallTable().shapeCurve = [](HostShape s, std::int32_t) -> HostCurve { return s; };
    EXPECT_LE(shapeCurves(&shape).size(), 65536u);
}

}  // namespace
}  // namespace brushwork
