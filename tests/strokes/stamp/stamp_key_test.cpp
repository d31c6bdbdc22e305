#include "strokes/stamp/stamp_key.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "strokes/stamp/stamp_frame.h"
#include "strokes/stamp/stamp_image_cache.h"
#include "support/test_seed.h"

namespace brushwork::npc {
namespace {

constexpr StampRounding hard{1.0f, true, false};

StampPoint pointOf(float radius, float angle = 0.0f, float scaleX = 1.0f, float scaleY = 1.0f) {
    StampPoint point;
    point.radius = radius;
    point.angle = angle;
    point.scaleX = scaleX;
    point.scaleY = scaleY;
    return point;
}

TEST(RadiusCompensation, IsLinearBetweenItsRows) {
    const struct {
        float hardness;
        double factor;
    } places[] = {{1.0f, 1.0},   {0.94f, 1.035}, {0.88f, 1.07}, {0.75f, 1.15}, {0.515f, 1.2},
                  {0.28f, 1.25}, {0.14f, 1.275}, {0.0f, 1.3},   {-1.0f, 1.3},  {2.0f, 1.0}};
    for (const auto& p : places)
        EXPECT_NEAR(radiusCompensation(p.hardness), p.factor, 1e-6) << p.hardness;
    EXPECT_EQ(quantizedStamp(pointOf(10.0f), {0.0f, true, false}).radius, 13.0f);
    EXPECT_EQ(quantizedStamp(pointOf(10.0f), {0.0f, true, true}).radius, 10.0f);
    EXPECT_EQ(quantizedStamp(pointOf(10.0f), {0.0f, false, false}).radius, 10.0f);
}

TEST(QuantizedStamp, RadiusAndPlaceByTheRadius) {
    const struct {
        float radius, place, quantized, snapped;
    } cases[] = {{0.0f, 3.99f, 0.0625f, 3.9375f}, {5.01f, -0.01f, 5.0625f, -0.0625f},
                 {15.99f, 2.3f, 16.0f, 2.25f},    {16.0f, 2.99f, 16.0f, 2.75f},
                 {63.9f, -1.1f, 64.0f, -1.25f},   {64.1f, 7.9f, 65.0f, 7.0f},
                 {900.0f, -0.5f, 511.0f, -1.0f},  {NAN, NAN, 0.0625f, 0.0f}};
    for (const auto& c : cases) {
        StampPoint point = pointOf(c.radius);
        point.x = point.y = c.place;
        const StampPoint q = quantizedStamp(point, hard);
        EXPECT_EQ(q.radius, c.quantized) << c.radius;
        EXPECT_EQ(q.x, c.snapped) << c.radius;
        EXPECT_EQ(q.y, c.snapped) << c.radius;
    }
}

TEST(QuantizedStamp, AnglesAndScales) {
    const struct {
        float given, held;
    } angles[] = {{359.7f, 359.0f}, {-0.2f, 359.0f},   {-1e-9f, 0.0f}, {360.0f, 0.0f},
                  {725.5f, 5.0f},   {-1000.5f, 79.0f}, {1e30f, 0.0f},  {INFINITY, 0.0f}};
    for (const auto& a : angles) {
        const float held = quantizedStamp(pointOf(4.0f, a.given), hard).angle;
        if (a.given == 1e30f)
            EXPECT_TRUE(held >= 0.0f && held < 360.0f && held == std::floor(held));
        else
            EXPECT_EQ(held, a.held) << a.given;
    }
    EXPECT_EQ(quantizedStamp(pointOf(4, 0, 1, 0.01f), hard).scaleY, 0.25f);
    EXPECT_EQ(quantizedStamp(pointOf(3, 0, 1, 0.01f), hard).scaleY, 10.0f / 32);
    EXPECT_EQ(quantizedStamp(pointOf(1, 0, 1, 0.01f), hard).scaleY, 1.0f / 32);
    EXPECT_EQ(quantizedStamp(pointOf(500, 0, 1, -2.0f), hard).scaleY, 1.0f / 32);
    // Compensated to 1.25: above 1, and the thickness goes by the nominal radius.
    EXPECT_EQ(quantizedStamp(pointOf(1, 0, 1, 0.5f), {0.28f, true, false}).scaleY, 1.0f);
    EXPECT_EQ(quantizedStamp(pointOf(4, 0, -0.51f, 1.99f), hard).scaleX, -17.0f / 32);
    EXPECT_EQ(quantizedStamp(pointOf(4, 0, 1, 1.99f), hard).scaleY, 63.0f / 32);
}

TEST(StampKey, FieldsFromTheTop) {
    StampPoint point = pointOf(5.0625f, 271.0f, 1.0f, 0.25f);
    point.x = 10.5f;
    point.y = -0.0625f;
    EXPECT_EQ(stampKey(point), 0x0051'010F'A0'88'08'0Full);
    point.scaleX = -5.0f;  // negative: its sign fills what is above
    EXPECT_EQ(stampKey(point), 0xFFFF'FFFF'E0'88'08'0Full);
    point.scaleX = 4.0f;  // a bit too many lies on the angle's
    EXPECT_EQ(stampKey(point), 0x0051'010F'00'88'08'0Full | 0x0000'0001'00'00'00'00ull);
    // FNV-1a: of eight zero bytes, and of "12345678" as it lies in memory.
    EXPECT_EQ(stampKeyHash(0), 0x9BE17165u);
    std::uint32_t hash = 2166136261u;
    for (const char c : std::string("12345678")) hash = (hash ^ std::uint32_t(c)) * 16777619u;
    EXPECT_EQ(stampKeyHash(0x3837363534333231ull), hash);
}

// Points that agree after rounding are one stamp; those with two keys differ in a field.
TEST(StampKey, TellsQuantizedStampsApart) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> share(0.0f, 1.0f);
    const auto sameStamp = [](const StampPoint& a, const StampPoint& b) {
        return a.radius == b.radius && a.angle == b.angle && a.scaleX == b.scaleX &&
               a.scaleY == b.scaleY && a.x - std::floor(a.x) == b.x - std::floor(b.x) &&
               a.y - std::floor(a.y) == b.y - std::floor(b.y);
    };
    int same = 0;
    for (int n = 0; n < 20000; ++n) {
        StampPoint a = pointOf(0.5f + 3.0f * share(random), 360.0f * share(random),
                               0.5f + share(random), 0.5f + share(random));
        a.x = 100.0f * share(random);
        a.y = 100.0f * share(random);
        StampPoint b = a;
        float* const fields[] = {&b.x, &b.y, &b.radius, &b.angle, &b.scaleX, &b.scaleY};
        *fields[random() % 6] += 0.04f * share(random);
        const StampPoint qa = quantizedStamp(a, hard), qb = quantizedStamp(b, hard);
        ASSERT_EQ(sameStamp(qa, qb), stampKey(qa) == stampKey(qb));
        same += sameStamp(qa, qb);
    }
    EXPECT_GT(same, 5000);
    EXPECT_LT(same, 19000);
}

TEST(StampFrame, BoxFollowsThePlace) {
    StampPoint point = pointOf(0.0625f);
    EXPECT_EQ(stampFrame(point).box, flatTile(-1, -1, 4, 4));
    point = pointOf(2.5f);  // 5 + 2 + 1 pixels
    point.x = 10.875f;
    point.y = -20.25f;
    EXPECT_EQ(stampFrame(point).box, flatTile(7, -24, 8, 8));
    // A quarter turn exchanges the sides.
    point = pointOf(8.0f, 90.0f, 1.0f, 0.5f);
    EXPECT_EQ(stampFrame(point).box.nx, 11);
    EXPECT_EQ(stampFrame(point).box.ny, 19);
    EXPECT_TRUE(stampFrame(pointOf(500.0f, 0.0f, 1000.0f)).box.isEmpty());
    point.x = 1e12f;
    EXPECT_TRUE(stampFrame(point).box.isEmpty());
}

// The map sends the stamp's middle to 0 and turns against the clock.
TEST(StampFrame, MapsPixelsIntoTheBrush) {
    StampPoint point = pointOf(20.0f, 30.0f, 1.5f, 0.5f);
    point.x = 100.25f;
    point.y = 50.75f;
    const StampFrame frame = stampFrame(point);
    const StampMap& m = frame.toBrush;
    const double turn = 30.0 * std::acos(-1.0) / 180.0;
    for (int k = 0; k < 12; ++k) {
        // A point of the brush's plane, scaled, turned, put in place.
        const double u = k - 6.0, v = 5.0 - k;
        const double x = point.x + std::cos(turn) * u * 1.5 - std::sin(turn) * v * 0.5;
        const double y = point.y + std::sin(turn) * u * 1.5 + std::cos(turn) * v * 0.5;
        const double i = x - frame.box.x - 0.5, j = y - frame.box.y - 0.5;
        EXPECT_NEAR(m.xx * i + m.xy * j + m.x0, u, 1e-4);
        EXPECT_NEAR(m.yx * i + m.yy * j + m.y0, v, 1e-4);
        const StampMap t = frame.toTable(64, 32);
        EXPECT_NEAR(t.xx * i + t.xy * j + t.x0, u * 64 / 40 + 32.5, 1e-3);
        EXPECT_NEAR(t.yx * i + t.yy * j + t.y0, v * 32 / 40 + 16.5, 1e-3);
    }
}

}  // namespace
}  // namespace brushwork::npc
