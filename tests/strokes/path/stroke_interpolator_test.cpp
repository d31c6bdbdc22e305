#include "strokes/path/stroke_interpolator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <vector>

#include "foundation/services/random_source.h"
#include "strokes/path/stroke_switches.h"
#include "support/allocation_count.h"

namespace brushwork {
namespace {

using npc::StrokeInterpolator;

StampPoint at(float x, float y, float radius = 10.0f) {
    StampPoint point;
    point.x = x;
    point.y = y;
    point.radius = radius;
    return point;
}

StampPoint turned(float x, float angle) {
    StampPoint point = at(x, 0.0f);
    point.angle = angle;
    return point;
}

std::vector<StampPoint> drain(StrokeInterpolator& interpolator) {
    std::vector<StampPoint> stamps;
    StampPoint stamp;
    while (interpolator.nextStamp(stamp)) stamps.push_back(stamp);
    return stamps;
}

std::vector<StampPoint> stroke(const StrokeParameters& parameters, std::vector<StampPoint> points) {
    StrokeInterpolator interpolator;
    interpolator.begin(&parameters);
    interpolator.setSpacingScale(parameters.spacing);
    std::vector<StampPoint> stamps;
    for (StampPoint& point : points) {
        interpolator.addPoint(point);
        for (const StampPoint& stamp : drain(interpolator)) stamps.push_back(stamp);
    }
    return stamps;
}

StrokeParameters straight() {
    StrokeParameters parameters;
    parameters.interpolationKind = 0;
    return parameters;
}

bool same(const StampPoint& a, const StampPoint& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(StrokeInterpolator, BeginsAtTheFirstPointAndInterpolatesEachField) {
    for (const std::int32_t kind : {0, 1}) {
        StrokeParameters parameters;
        parameters.interpolationKind = kind;
        StampPoint first = {100, 50, 8, 0.2f, 0.9f, 40, 1.0f, 0.5f, 0.1f};
        StampPoint second = {200, 50, 16, 0.8f, 0.1f, 80, 2.0f, 1.0f, 0.9f};
        StrokeInterpolator interpolator;
        StampPoint stamp;
        EXPECT_FALSE(interpolator.nextStamp(stamp));
        interpolator.begin(&parameters);
        interpolator.addPoint(first);
        EXPECT_FALSE(interpolator.nextStamp(stamp));
        interpolator.addPoint(second);
        const std::vector<StampPoint> stamps = drain(interpolator);
        ASSERT_GT(stamps.size(), 5u);
        EXPECT_TRUE(same(first, stamps.front())) << kind;
        for (const StampPoint& s : stamps) {
            const double t = (static_cast<double>(s.radius) - 8) / 8;
            EXPECT_TRUE(kind == 1 || std::abs(100 + 100 * t - static_cast<double>(s.x)) < 1e-3);
            EXPECT_NEAR(0.2 + 0.6 * t, static_cast<double>(s.opacity), 1e-6);
            EXPECT_NEAR(0.9 - 0.8 * t, static_cast<double>(s.flow), 1e-6);
            EXPECT_NEAR(40 + 40 * t, static_cast<double>(s.angle), 1e-4);
            EXPECT_NEAR(1 + t, static_cast<double>(s.scaleX), 1e-6);
            EXPECT_NEAR(0.5 + 0.5 * t, static_cast<double>(s.scaleY), 1e-6);
            EXPECT_NEAR(0.1 + 0.8 * t, static_cast<double>(s.textureStrength), 1e-6);
        }
    }
}

TEST(StrokeInterpolator, AnglesTurnTheShortWay) {
    const double rows[][3] = {// from, to, at half way
                              {350, 10, 0}, {10, 350, 0},     {0, 180, 270},    {180, 0, 90},
                              {90, 270, 0}, {20, 199, 109.5}, {199, 20, 109.5}, {0, 359, 359.5}};
    for (const auto& row : rows) {
        const float from = static_cast<float>(row[0]), to = static_cast<float>(row[1]);
        StrokeInterpolator interpolator;
        const StrokeParameters parameters = straight();
        interpolator.begin(&parameters);
        StampPoint first = turned(0, from), second = turned(600, to);
        interpolator.addPoint(first);
        interpolator.addPoint(second);
        EXPECT_EQ(to, second.angle);
        for (const StampPoint& stamp : drain(interpolator)) {
            EXPECT_GE(stamp.angle, 0.0f);
            EXPECT_LT(stamp.angle, 360.0f);
            if (std::abs(stamp.x - 300.0f) < 1.6f) {
                const double off = std::remainder(static_cast<double>(stamp.angle) - row[2], 360.0);
                EXPECT_NEAR(0.0, off, 1.0) << row[0] << " to " << row[1];
            }
        }
    }
    // A stroke's third point starts from the angle in range.
    const std::vector<StampPoint> stamps =
        stroke(straight(), {turned(0, 350), turned(60, 10), turned(120, 30), turned(180, -1e-9f)});
    for (const StampPoint& stamp : stamps)
        if (stamp.x >= 60 && stamp.x <= 120) {
            EXPECT_NEAR(10 + (stamp.x - 60) / 3, stamp.angle, 1e-3f);
        }
    EXPECT_LT(stamps.back().angle, 360.0f);
}

TEST(StrokeInterpolator, AnglesFollowTheWay) {
    StrokeParameters parameters = straight();
    parameters.followDirection = true;
    // The way, and the angle with y up and with y down; the pen's own angle is 30.
    const float rows[][4] = {
        {1, 0, 300, 60}, {0, 1, 30, 150}, {-1, 0, 120, 240}, {0, -1, 210, 330}, {1, 1, 345, 105}};
    for (const auto& row : rows) {
        for (const std::int32_t flip : {0, 1}) {
            setYFlipMode(flip);
            StampPoint start = turned(0, 30), end = turned(row[0] * 100, 30);
            end.y = row[1] * 100;
            for (const StampPoint& stamp : stroke(parameters, {start, end}))
                EXPECT_NEAR(row[2 + flip], stamp.angle, 1e-3f) << row[0] << ' ' << row[1];
        }
    }
    parameters.followDirection = false;
    for (const StampPoint& stamp : stroke(parameters, {turned(0, 30), turned(50, 30)}))
        EXPECT_EQ(330.0f, stamp.angle);
    setYFlipMode(0);
    // No way, no turn.
    const auto resting = stroke(parameters, {turned(5, 30), turned(5, 30)});
    ASSERT_EQ(1u, resting.size());
    EXPECT_EQ(30.0f, resting[0].angle);
}

// Jitter drawn by hand from the same seed, in its order, over the stamps of a stroke without any.
TEST(StrokeInterpolator, JitterDrawsInItsOrder) {
    const auto u = [] { return static_cast<float>(randomValue()); };
    const auto both = [&] { return 2.0f * u() / 32767.0f - 1.0f; };
    for (int mask = 1; mask < 16; ++mask) {
        StrokeParameters plain = straight(), shaken = straight();
        if (mask & 1) shaken.opacityJitter = 7.0f;
        if (mask & 2) shaken.flowJitter = 13.0f;
        if (mask & 4) shaken.angleJitter = 25.0f;
        if (mask & 8) shaken.radiusJitter = 5.0f;
        std::vector<StampPoint> points = {turned(0, 90)};
        for (int i = 1; i < 40; ++i) points.push_back(turned(static_cast<float>(i) * 7.3f, 90));
        // One radius only, so that the radius doesn't move the stamps: the step hangs on it.
        if (mask & 8) {
            for (StampPoint& p : points) p.radius = 0.5f;  // under 1.05 all steps are alike
        }
        const std::vector<StampPoint> before = stroke(plain, points);
        seedRandom(static_cast<std::uint64_t>(mask));
        const std::vector<StampPoint> got = stroke(shaken, points);
        const int after = randomValue();
        ASSERT_EQ(before.size(), got.size());
        seedRandom(static_cast<std::uint64_t>(mask));
        for (std::size_t i = 0; i < before.size(); ++i) {
            StampPoint wanted = before[i];
            if (mask & 8) {
                wanted.radius -= both() * (5.0f * wanted.radius / 20.0f);
                wanted.radius = std::clamp(wanted.radius, 0.0625f, 511.0f);
            }
            if (mask & 1) wanted.opacity -= u() / 32767.0f * (wanted.opacity * 7.0f / 20.0f);
            if (mask & 2) wanted.flow -= u() / 32767.0f * (wanted.flow * 13.0f / 20.0f);
            if (mask & 4) wanted.angle -= both() * 25.0f;
            ASSERT_TRUE(same(wanted, got[i])) << mask << ' ' << i;
        }
        EXPECT_EQ(after, randomValue());
    }
}

TEST(StrokeInterpolator, WildJitterStaysInRange) {
    StrokeParameters wild = straight();
    wild.opacityJitter = wild.flowJitter = wild.radiusJitter = 200.0f;
    wild.angleJitter = 5000.0f;
    wild.spacingJitter = 4.0f;
    bool none = false;
    for (const StampPoint& stamp : stroke(wild, {at(0, 0, 100), at(3000, 0, 500)})) {
        EXPECT_GE(stamp.opacity, 0.0f);
        EXPECT_GE(stamp.flow, 0.0f);
        EXPECT_GE(stamp.radius, minimumStampRadius);
        EXPECT_LE(stamp.radius, maximumStampRadius);
        EXPECT_GE(stamp.angle, 0.0f);
        EXPECT_LT(stamp.angle, 360.0f);
        none = none || stamp.opacity == 0.0f;
    }
    EXPECT_TRUE(none);
}

TEST(StrokeInterpolator, ASlowPenDrawsNoNewStep) {
    StrokeParameters parameters = straight();
    parameters.spacingJitter = 0.8f;
    std::vector<StampPoint> fast = {at(0, 0, 40)}, slow = {at(0, 0, 40)};
    for (int i = 1; i <= 2000; ++i) {
        slow.push_back(at(static_cast<float>(i) * 0.25f, 0, 40));
        if (i % 200 == 0) fast.push_back(slow.back());
    }
    seedRandom(5);
    const std::vector<StampPoint> few = stroke(parameters, fast);
    seedRandom(5);
    const std::vector<StampPoint> many = stroke(parameters, slow);
    ASSERT_EQ(few.size(), many.size());
    for (std::size_t i = 0; i < few.size(); ++i) EXPECT_NEAR(few[i].x, many[i].x, 1e-2f);
    EXPECT_GT(few.size(), 30u);
}

TEST(StrokeInterpolator, BeginForgetsTheStrokeBefore) {
    StrokeParameters parameters = straight();
    parameters.spacingJitter = 0.5f;
    StrokeInterpolator interpolator;
    const auto run = [&] {
        seedRandom(9);
        interpolator.begin(&parameters);
        std::vector<StampPoint> stamps;
        for (const StampPoint& each : {at(0, 0), at(50, 9, 12), at(20, 90, 14)}) {
            StampPoint point = each;
            interpolator.addPoint(point);
            for (const StampPoint& stamp : drain(interpolator)) stamps.push_back(stamp);
        }
        interpolator.setTransform({2, 0, 0, 0, 2, 0});
        interpolator.setSpacingScale(7.0f);
        return stamps;
    };
    const std::vector<StampPoint> first = run(), second = run();
    ASSERT_EQ(first.size(), second.size());
    for (std::size_t i = 0; i < first.size(); ++i) EXPECT_TRUE(same(first[i], second[i])) << i;
}

TEST(StrokeInterpolator, Kind3GoesOnFromTheStrokeBefore) {
    StrokeParameters parameters = straight();
    StrokeInterpolator interpolator;
    interpolator.begin(&parameters);
    StampPoint points[] = {at(0, 0, 20), at(60, 0, 20), at(60, 60, 20)};
    interpolator.addPoint(points[0]);
    interpolator.addPoint(points[1]);
    const StampPoint last = drain(interpolator).back();
    parameters.interpolationKind = 3;
    interpolator.begin(&parameters);
    interpolator.addPoint(points[2]);
    const std::vector<StampPoint> stamps = drain(interpolator);
    ASSERT_FALSE(stamps.empty());
    EXPECT_NEAR(6.0f, (60.0f - last.x) + stamps[0].y, 1e-3f);
    EXPECT_NEAR(60.0f, stamps[0].x, 1e-3f);
    // Without a stroke before it's a smoothing one.
    StrokeInterpolator fresh;
    fresh.begin(&parameters);
    EXPECT_EQ(Interpolate2D::Smooth, fresh.follower()->kind());
}

TEST(StrokeInterpolator, TheTransformMovesPlacesAndTurnsTheTangent) {
    StrokeParameters parameters = straight();
    parameters.followDirection = true;
    StrokeInterpolator interpolator;
    interpolator.begin(&parameters);
    float dx = 9, dy = 9;
    interpolator.tangent(dx, dy);
    EXPECT_EQ(0.0f, dx);
    EXPECT_EQ(0.0f, dy);
    interpolator.setTransform({0, -2, 100, 2, 0, 7});  // a quarter turn
    StampPoint a = at(10, 20), b = at(40, 20);
    interpolator.addPoint(a);
    interpolator.addPoint(b);
    const std::vector<StampPoint> stamps = drain(interpolator);
    ASSERT_FALSE(stamps.empty());
    EXPECT_EQ(60.0f, stamps[0].x);
    EXPECT_EQ(27.0f, stamps[0].y);
    EXPECT_NEAR(0.0f, std::remainder(stamps[0].angle, 360.0f), 1e-4f);
    interpolator.tangent(dx, dy);
    EXPECT_EQ(0.0f, dx);
    EXPECT_EQ(2.0f, dy);
    EXPECT_EQ(100.0f, interpolator.getTransform()[2]);
}

TEST(StrokeInterpolator, OddInputNeverHangsNorLeavesTheRange) {
    StrokeInterpolator interpolator;
    StampPoint stamp, point = at(1, 1);
    interpolator.begin(nullptr);
    interpolator.addPoint(point);
    EXPECT_FALSE(interpolator.nextStamp(stamp));
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const StrokeParameters parameters = straight();
    // Points that aren't numbers leave no trace.
    std::vector<StampPoint> points = {at(0, 0), at(30, 40), at(60, 0)};
    const std::vector<StampPoint> clean = stroke(parameters, points);
    for (const float odd : {infinity, -infinity, nan}) {
        points.insert(points.begin(), at(odd, 0));
        points.insert(points.begin() + 2, at(5, odd));
        points.insert(points.begin() + 2, at(5, 5, odd));
        points.insert(points.begin() + 2, turned(5, odd));
    }
    const std::vector<StampPoint> dirty = stroke(parameters, points);
    ASSERT_EQ(clean.size(), dirty.size());
    for (std::size_t i = 0; i < clean.size(); ++i) EXPECT_TRUE(same(clean[i], dirty[i]));
    // From one end of the world to the other, with the largest steps; and a step at the far end
    // that is the shortest.
    const auto far = stroke(parameters, {at(-1e30f, -1e30f, 511), at(1e30f, 1e30f, 511)});
    EXPECT_NEAR(1048576 * std::numbers::sqrt2 / 153.3, static_cast<double>(far.size()), 3.0);
    StrokeParameters dense = parameters;
    dense.spacing = 1e-6f;
    const auto near =
        stroke(dense, {at(524000, 524000, 0.0f), at(524288, 524288, 0.0f), at(524288, 524000, 0)});
    EXPECT_NEAR((288 * std::numbers::sqrt2 + 288) * 8, static_cast<double>(near.size()), 4.0);
    for (const StampPoint& each : near) EXPECT_EQ(minimumStampRadius, each.radius);
    for (const StampPoint& each : stroke(parameters, {at(0, 0, 9e9f), at(900, 0, 9e9f)}))
        EXPECT_EQ(maximumStampRadius, each.radius);
    // A tip without width has no next stamp.
    std::vector<StampPoint> flat = {at(0, 0), at(50, 0), at(90, 0)};
    for (StampPoint& each : flat) each.scaleX = 0.0f;
    EXPECT_LE(stroke(parameters, flat).size(), 1u);
}

TEST(StrokeInterpolator, NothingAllocatesAfterBegin) {
    for (const std::int32_t kind : {0, 1}) {
        StrokeParameters parameters;
        parameters.interpolationKind = kind;
        parameters.followDirection = true;
        parameters.spacingJitter = 0.2f;
        parameters.radiusJitter = parameters.angleJitter = 2.0f;
        StrokeInterpolator interpolator;
        interpolator.begin(&parameters);
        const std::uint64_t before = test::allocations();
        StampPoint stamp;
        int stamps = 0;
        for (int i = 0; i < 200; ++i) {
            StampPoint point = at(static_cast<float>(i % 20) * 30, static_cast<float>(i), 5);
            interpolator.addPoint(point);
            while (interpolator.nextStamp(stamp)) ++stamps;
        }
        EXPECT_EQ(0u, test::allocations() - before);
        EXPECT_GT(stamps, 1000);
        interpolator.begin(&parameters);
        EXPECT_GT(test::allocations(), before);  // the counter counts
    }
}

}  // namespace
}  // namespace brushwork
