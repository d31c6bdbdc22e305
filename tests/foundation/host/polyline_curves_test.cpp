#include "foundation/host/polyline_curves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "foundation/host/host_calls.h"
#include "support/test_seed.h"

namespace brushwork {
namespace {

using Ends = PolylineCurve::Ends;

class PolylineCurves : public ::testing::Test {
  protected:
    void TearDown() override { clearHostCallTable(); }
    static HostCurve serve(std::vector<PolylineCurve::Place> places, Ends ends) {
        servePolylineCurves(hostCallTable());
        return toHostCurve(std::make_unique<PolylineCurve>(std::move(places), ends));
    }
};

TEST_F(PolylineCurves, AnswersAlongARectangleThatIsJoined) {
    // A doubled corner has no length and must not stop anything.
    const HostCurve curve = serve({{10, 10}, {40, 10}, {40, 10}, {40, 50}, {10, 50}}, Ends::Joined);
    EXPECT_TRUE(hostCurveIsClosed(curve));
    EXPECT_DOUBLE_EQ(140.0, hostCurveLength(curve));
    double x = 0, y = 0;
    const double expected[][5] = {{0, 10, 10, 1, 0},   {30, 40, 10, 0, 1},   {50, 40, 30, 0, 1},
                                  {85, 25, 50, -1, 0}, {120, 10, 30, 0, -1}, {140, 10, 10, 0, -1},
                                  {-5, 10, 10, 1, 0},  {999, 10, 10, 0, -1}};
    for (const auto& row : expected) {
        ASSERT_TRUE(hostCurvePoint(curve, row[0], &x, &y));
        EXPECT_DOUBLE_EQ(row[1], x) << row[0];
        EXPECT_DOUBLE_EQ(row[2], y) << row[0];
        ASSERT_TRUE(hostCurveDirection(curve, row[0], &x, &y));
        EXPECT_DOUBLE_EQ(row[3], x) << row[0];
        EXPECT_DOUBLE_EQ(row[4], y) << row[0];
    }
    EXPECT_DOUBLE_EQ(50.0, hostCurveNearest(curve, 55.0, 30.0));
    EXPECT_DOUBLE_EQ(130.0, hostCurveNearest(curve, 0.0, 20.0));
    double low[2], high[2];
    ASSERT_TRUE(hostCurveBounds(curve, low, high));
    EXPECT_EQ(10, low[0]);
    EXPECT_EQ(10, low[1]);
    EXPECT_EQ(40, high[0]);
    EXPECT_EQ(50, high[1]);
    const std::vector<HostSegment> pieces = hostTessellateCurve(curve, 0.1);
    ASSERT_EQ(5u, pieces.size());
    EXPECT_EQ(50.0f, pieces[4].y);
    EXPECT_EQ(-40.0f, pieces[4].dy);
    hostReleaseCurve(curve);
}

TEST_F(PolylineCurves, MapsItsCornersAndMeasuresAnew) {
    const HostCurve curve = serve({{0, 0}, {3, 4}}, Ends::Open);
    const double m[] = {0, -2, 100, 2, 0, 10};  // a quarter turn, twice the size, moved
    hostMapCurve(curve, m);
    EXPECT_DOUBLE_EQ(10.0, hostCurveLength(curve));
    double x = 0, y = 0;
    ASSERT_TRUE(hostCurvePoint(curve, 10.0, &x, &y));
    EXPECT_DOUBLE_EQ(92.0, x);
    EXPECT_DOUBLE_EQ(16.0, y);
    hostReleaseCurve(curve);
}

TEST_F(PolylineCurves, NearestIsTheNearestOfAFineRow) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> coordinate(0.0, 100.0);
    for (int round = 0; round < 20; ++round) {
        std::vector<PolylineCurve::Place> places;
        for (int i = 0; i < 7; ++i) places.push_back({coordinate(random), coordinate(random)});
        const PolylineCurve curve(places, round % 2 ? Ends::Open : Ends::Joined);
        const PolylineCurve::Place p{coordinate(random), coordinate(random)};
        double least = 1e9;
        for (int i = 0; i <= 4000; ++i) {
            const auto q = curve.at(curve.length() * i / 4000);
            least = std::min(least, std::hypot(q.x - p.x, q.y - p.y));
        }
        const auto found = curve.at(curve.nearest(p));
        const double distance = std::hypot(found.x - p.x, found.y - p.y);
        EXPECT_LE(distance, least + 1e-9);
        EXPECT_GE(distance, least - curve.length() / 4000);
    }
}

TEST_F(PolylineCurves, EmptyCurvesAndEmptySlotsAnswerNothing) {
    double x = 7, y = 8;
    const auto expectNothing = [&](HostCurve curve) {
        EXPECT_FALSE(hostCurveIsClosed(curve));
        EXPECT_EQ(0.0, hostCurveLength(curve));
        EXPECT_EQ(0.0, hostCurveNearest(curve, 1, 2));
        EXPECT_FALSE(hostCurvePoint(curve, 0, &x, &y));
        EXPECT_FALSE(hostCurveDirection(curve, 0, &x, &y));
        EXPECT_FALSE(hostCurveBounds(curve, &x, &y));
        EXPECT_TRUE(hostTessellateCurve(curve, 0.1).empty());
        const double m[6] = {};
        hostMapCurve(curve, m);
        EXPECT_EQ(7, x);
        EXPECT_EQ(8, y);
    };
    expectNothing(&x);  // a curve, and no one to ask about it
    const HostCurve empty = serve({}, Ends::Joined);
    expectNothing(empty);
    hostReleaseCurve(empty);
    expectNothing(nullptr);
    hostReleaseCurve(nullptr);
    clearHostCallTable();
    EXPECT_FALSE(hostStartTimer(
                     5, [](void*) {}, nullptr)
                     .has_value());
    hostStopTimer(3);
}

TEST_F(PolylineCurves, ASinglePlaceIsACurveWithoutLength) {
    const HostCurve curve = serve({{5, 6}}, Ends::Open);
    double x = 0, y = 0;
    EXPECT_TRUE(hostCurvePoint(curve, 3.0, &x, &y));
    EXPECT_EQ(5, x);
    EXPECT_EQ(6, y);
    EXPECT_FALSE(hostCurveDirection(curve, 0.0, &x, &y));
    EXPECT_EQ(0.0, hostCurveNearest(curve, 50, 60));
    hostReleaseCurve(curve);
}

}  // namespace
}  // namespace brushwork
