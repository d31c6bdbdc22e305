#include "strokes/path/curve_interpolate_2d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "foundation/host/polyline_curves.h"
#include "strokes/path/follower_choice.h"

namespace brushwork {
namespace {

class CurveInterpolation : public ::testing::Test {
  protected:
    void SetUp() override { servePolylineCurves(hostCallTable()); }
    void TearDown() override { clearHostCallTable(); }

    static Ref<GuideCurve> guide(std::vector<PolylineCurve::Place> places,
                                 PolylineCurve::Ends ends) {
        return makeRef<GuideCurve>(
            toHostCurve(std::make_unique<PolylineCurve>(std::move(places), ends)));
    }
    static Ref<GuideCurve> straight() {
        return guide({{0, 10}, {100, 10}}, PolylineCurve::Ends::Open);
    }
    // Around (0, 0), nearly round.
    static Ref<GuideCurve> ring() {
        std::vector<PolylineCurve::Place> places;
        for (int i = 0; i < 360; ++i) {
            const double a = i * std::numbers::pi / 180;
            places.push_back({100 * std::cos(a), 100 * std::sin(a)});
        }
        return guide(std::move(places), PolylineCurve::Ends::Joined);
    }
    static void add(Interpolate2D& follower, float x, float y) {
        const float xy[2] = {x, y};
        follower.addPoint(xy);
    }
    struct Walked {
        float x, y, t;
    };
    static std::vector<Walked> drain(Interpolate2D& follower, float step) {
        std::vector<Walked> all;
        float xy[2], t;
        while (follower.advance(step, xy, &t)) all.push_back({xy[0], xy[1], t});
        return all;
    }
};

TEST_F(CurveInterpolation, FollowsTheGuideThereAndBack) {
    CurveInterpolate2D follower(straight());
    float xy[2], t, dx, dy;
    EXPECT_FALSE(follower.advance(1, xy, &t));
    EXPECT_FALSE(follower.pending());
    add(follower, 20, 47);
    EXPECT_FALSE(follower.finish(xy, &t));
    std::vector<Walked> walk = drain(follower, 4);
    ASSERT_EQ(1u, walk.size());
    EXPECT_EQ(20, walk[0].x);
    EXPECT_EQ(10, walk[0].y);
    EXPECT_EQ(0, walk[0].t);
    add(follower, 30, -5);
    walk = drain(follower, 4);
    ASSERT_EQ(2u, walk.size());
    EXPECT_EQ(28, walk[1].x);
    EXPECT_EQ(0.8f, walk[1].t);
    // Nearer than a step: nothing, and the next step is measured from the last stamp.
    add(follower, 31, 0);
    EXPECT_TRUE(drain(follower, 4).empty());
    EXPECT_TRUE(follower.pending());
    add(follower, 33, 0);
    walk = drain(follower, 4);
    ASSERT_EQ(1u, walk.size());
    EXPECT_EQ(32, walk[0].x);
    ASSERT_TRUE(follower.tangent(&dx, &dy));
    EXPECT_EQ(1, dx);
    add(follower, 20, 0);
    walk = drain(follower, 4);
    ASSERT_EQ(3u, walk.size());
    EXPECT_EQ(20, walk[2].x);
    ASSERT_TRUE(follower.tangent(&dx, &dy));
    EXPECT_EQ(-1, dx);
    EXPECT_EQ(0, dy);
    add(follower, 500, 0);
    ASSERT_TRUE(follower.finish(xy, &t));
    EXPECT_EQ(100, xy[0]);
    EXPECT_EQ(1, t);
    EXPECT_FALSE(follower.pending());
}

TEST_F(CurveInterpolation, GoesTheShortWayRoundAClosedGuide) {
    for (const int way : {1, -1}) {
        CurveInterpolate2D follower(ring());
        // From 20 degrees past the joint to 20 before it, and on round and round.
        double angle = 20.0 * way;
        std::vector<Walked> all;
        for (int i = 0; i < 40; ++i) {
            const double a = angle * std::numbers::pi / 180;
            add(follower, static_cast<float>(130 * std::cos(a)),
                static_cast<float>(130 * std::sin(a)));
            const std::vector<Walked> walk = drain(follower, 2.0f);
            float lastT = -1;
            for (const Walked& w : walk) {
                EXPECT_GT(w.t, lastT);
                lastT = w.t;
            }
            all.insert(all.end(), walk.begin(), walk.end());
            angle -= 40.0 * way;
        }
        EXPECT_NEAR(39 * 40 * std::numbers::pi / 180 * 100 / 2, static_cast<double>(all.size()),
                    3.0);
        for (std::size_t i = 1; i < all.size(); ++i) {
            const auto& a = all[i - 1];
            const auto& b = all[i];
            ASSERT_NEAR(2.0, std::hypot(a.x - b.x, a.y - b.y), 0.002) << i;
            const float turn = a.x * b.y - a.y * b.x;
            ASSERT_LT(turn * static_cast<float>(way), 0.0f) << i;
        }
    }
}

TEST_F(CurveInterpolation, AGuideThatNobodyServesPaintsNothing) {
    clearHostCallTable();
    int box = 0;
    CurveInterpolate2D follower(makeRef<GuideCurve>(&box));
    float dx = 5, dy = 5;
    for (int i = 0; i < 4; ++i) {
        add(follower, static_cast<float>(i), 9);
        EXPECT_TRUE(drain(follower, 1).empty());
    }
    EXPECT_FALSE(follower.tangent(&dx, &dy));
    EXPECT_EQ(5, dx);
}

TEST_F(CurveInterpolation, NumbersThatAreNoneEndTheWalk) {
    HostCallTable& table = hostCallTable();
    static double answer = 0;
    table.curveLength = [](HostCurve) { return std::numeric_limits<double>::quiet_NaN(); };
    table.curveNearest = [](HostCurve, double, double) { return answer; };
    for (const double wild : {std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity(), 1e300}) {
        CurveInterpolate2D follower(straight());
        answer = 0;
        add(follower, 1, 1);
        EXPECT_EQ(1u, drain(follower, 1).size());
        answer = wild;
        add(follower, 2, 2);
        EXPECT_LE(drain(follower, 1e30f).size(), 1u);
        float xy[2], t;
        (void)follower.finish(xy, &t);
        answer = 5;
        add(follower, 3, 3);
        EXPECT_TRUE(drain(follower, 1).empty());
    }
}

TEST_F(CurveInterpolation, TheKindPicksTheFollowerAndMapsTheGuideOnce) {
    const Ref<GuideCurve> curve = straight();
    curve->setMapping({1, 0, 50, 0, 1, 200});
    const Ref<Interpolate2D> none;
    const auto kind = [&](std::int32_t k, const Ref<GuideCurve>& g, const Ref<Interpolate2D>& p) {
        return chooseFollower(k, g, p)->kind();
    };
    EXPECT_EQ(0, kind(0, curve, none));
    EXPECT_EQ(1, kind(1, curve, none));
    EXPECT_EQ(1, kind(3, curve, none));
    EXPECT_EQ(1, kind(2, {}, none));
    EXPECT_EQ(1, kind(3, {}, none));
    EXPECT_EQ(1, kind(77, curve, none));
    EXPECT_EQ(1, kind(-1, {}, none));
    EXPECT_EQ(10.0, curve->at(0)->y);  // no stroke followed it yet
    const Ref<Interpolate2D> walker = chooseFollower(2, curve, none);
    EXPECT_EQ(2, walker->kind());
    EXPECT_EQ(50.0, curve->at(0)->x);
    EXPECT_EQ(210.0, curve->at(0)->y);
    (void)chooseFollower(2, curve, none);
    EXPECT_EQ(210.0, curve->at(0)->y);
    EXPECT_EQ(walker, chooseFollower(3, {}, walker));
    EXPECT_NE(walker, chooseFollower(3, curve, walker));
}

}  // namespace
}  // namespace brushwork
