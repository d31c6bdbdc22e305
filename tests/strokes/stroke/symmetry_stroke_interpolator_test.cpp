#include "strokes/stroke/symmetry_stroke_interpolator.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "foundation/services/random_source.h"
#include "strokes/path/stroke_switches.h"

namespace brushwork::npc {
namespace {

using Matrix = std::array<double, 9>;  // row by row
constexpr double pi = std::numbers::pi;

struct FlipMode {
    explicit FlipMode(std::int32_t mode) { setYFlipMode(mode); }
    ~FlipMode() { setYFlipMode(0); }
};

Matrix operator*(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k) product[3 * i + j] += a[3 * i + k] * b[3 * k + j];
    return product;
}

Matrix moved(double x, double y) {
    return {1, 0, x, 0, 1, y, 0, 0, 1};
}
Matrix rotated(double angle) {
    return {std::cos(angle), -std::sin(angle), 0, std::sin(angle), std::cos(angle), 0, 0, 0, 1};
}
constexpr Matrix flipped = {1, 0, 0, 0, -1, 0, 0, 0, 1};

// The n-th copy by the factors of its map, one after the other.
StampPoint modelCopy(const SymmetrySetup& setup, const StampPoint& stamp, int n, double flip) {
    const double axis = flip * std::atan2(setup.axisY, setup.axisX);
    const bool mirrors = !setup.rotationOnly && n % 2 == 1;
    const double turn = (mirrors ? n - 1 : n) * 2.0 * pi / setup.sectors;
    Matrix m = moved(setup.centerX, setup.centerY);
    m = mirrors ? m * rotated(axis) * rotated(turn) * flipped * rotated(-axis) : m * rotated(turn);
    m = m * moved(-setup.centerX, -setup.centerY);
    StampPoint copy = stamp;
    copy.x = static_cast<float>(m[0] * stamp.x + m[1] * stamp.y + m[2]);
    copy.y = static_cast<float>(m[3] * stamp.x + m[4] * stamp.y + m[5]);
    const double degrees = 180.0 / pi;
    copy.angle = mirrors ? static_cast<float>((2.0 * axis + turn) * degrees + 180.0) - stamp.angle
                         : static_cast<float>(turn * degrees) + stamp.angle;
    if (mirrors) copy.scaleX = -copy.scaleX;
    return copy;
}

float apart(float a, float b) {
    return std::fabs(std::remainder(a - b, 360.0f));
}

std::vector<StampPoint> somePen(std::mt19937& random) {
    std::uniform_real_distribution<float> place(-400.0f, 400.0f), part(0.0f, 1.0f);
    std::vector<StampPoint> pen(4);
    for (StampPoint& point : pen)
        point = {place(random),       place(random), 4.0f + 20.0f * part(random),
                 part(random),        part(random),  359.0f * part(random),
                 0.5f + part(random), 0.7f,          part(random)};
    return pen;
}

StrokeParameters jittering() {
    StrokeParameters parameters;
    parameters.radiusJitter = parameters.opacityJitter = parameters.flowJitter = 5.0f;
    parameters.angleJitter = 40.0f;
    parameters.spacingJitter = 0.3f;
    parameters.followDirection = true;
    return parameters;
}

template <class Interpolator>
std::vector<StampPoint> stampsOf(Interpolator& interpolator, const std::vector<StampPoint>& pen,
                                 const StrokeParameters& parameters) {
    seedRandom(99);
    std::vector<StampPoint> stamps;
    interpolator.begin(&parameters);
    for (StampPoint point : pen) {
        interpolator.addPoint(point);
        StampPoint stamp;
        while (interpolator.nextStamp(stamp)) stamps.push_back(stamp);
    }
    return stamps;
}

void expectCopy(const StampPoint& got, const StampPoint& want, const std::string& which) {
    EXPECT_NEAR(got.x, want.x, 2e-3f) << which;
    EXPECT_NEAR(got.y, want.y, 2e-3f) << which;
    EXPECT_LT(apart(got.angle, want.angle), 3e-4f) << which;
    EXPECT_GE(got.angle, 0.0f) << which;
    EXPECT_LT(got.angle, 360.0f) << which;
    EXPECT_EQ(got.scaleX, want.scaleX) << which;
    EXPECT_EQ(got.scaleY, want.scaleY) << which;
    EXPECT_EQ(got.radius, want.radius) << which;
    EXPECT_EQ(got.opacity, want.opacity) << which;
    EXPECT_EQ(got.flow, want.flow) << which;
    EXPECT_EQ(got.textureStrength, want.textureStrength) << which;
}

TEST(SymmetryStrokeInterpolator, EachStampOfThePlainStrokeIsFollowedByItsCopies) {
    std::mt19937 random(17);
    const StrokeParameters parameters = jittering();
    for (int n = 0; n < 63 * 4; ++n) {
        const FlipMode flip(n % 8 == 7 ? 1 : 0);
        SymmetrySetup setup;
        setup.sectors = 2 + n / 4;
        setup.rotationOnly = n % 2 == 0;
        setup.centerX = 33.5f;
        setup.centerY = -20.25f;
        const double axis = n % 4 < 2 ? 0.5 * pi * (n % 7) : 0.37 * n;
        setup.axisX = static_cast<float>(std::cos(axis));
        setup.axisY = static_cast<float>(std::sin(axis));
        const std::vector<StampPoint> pen = somePen(random);
        StrokeInterpolator plain;
        SymmetryStrokeInterpolator symmetric(setup);
        const auto alone = stampsOf(plain, pen, parameters);
        const auto all = stampsOf(symmetric, pen, parameters);
        const auto sectors = static_cast<std::size_t>(symmetric.setup().sectors);
        ASSERT_GT(alone.size(), 10u);
        ASSERT_EQ(all.size(), alone.size() * sectors);
        for (std::size_t k = 0; k < all.size(); ++k) {
            const auto copy = static_cast<int>(k % sectors);
            expectCopy(all[k],
                       modelCopy(symmetric.setup(), alone[k / sectors], copy,
                                 yFlipMode() == 1 ? -1.0 : 1.0),
                       "setup " + std::to_string(n) + ", copy " + std::to_string(copy));
        }
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(SymmetryStrokeInterpolator, QuarterTurnsAndMirrorsAlongTheAxesAreExact) {
    for (const auto& [x, y, center] :
         {std::array{1.1875f, -7.3125f, 0.5f}, std::array{0.0f, 9.0f, 0.0f},  // on the axis
          std::array{8101.1875f, -5907.3125f, 4.0f}})
        for (const float axis : {0.0f, 90.0f, 180.0f, 270.0f, 45.0f})
            for (const bool rotates : {false, true}) {
                const double angle = axis * pi / 180.0;
                SymmetryStrokeInterpolator interpolator(
                    {rotates, 4, center, center, static_cast<float>(std::cos(angle)),
                     static_cast<float>(std::sin(angle)), false});
                const float dx = std::fabs(x - center), dy = std::fabs(y - center);
                StampPoint copy;
                for (int n = 0; interpolator.copyOf({x, y}, n, copy); ++n) {
                    const float cx = std::fabs(copy.x - center), cy = std::fabs(copy.y - center);
                    EXPECT_TRUE((cx == dx && cy == dy) || (cx == dy && cy == dx))
                        << axis << " " << rotates << " " << n << ": " << copy.x << ", " << copy.y;
                    EXPECT_EQ(std::fmod(copy.angle, 90.0f), 0.0f) << axis << " " << n;
                }
            }
}

TEST(SymmetryStrokeInterpolator, APinnedStrokeStaysInItsSector) {
    std::mt19937 random(3);
    StrokeParameters parameters;
    for (int n = 0; n < 200; ++n) {
        SymmetrySetup setup;
        setup.sectors = 2 + n % 63;
        setup.rotationOnly = n % 2 == 0;
        setup.axisX = static_cast<float>(std::cos(0.7 * n));
        setup.axisY = static_cast<float>(std::sin(0.7 * n));
        setup.pinToSector = true;
        const auto pen = somePen(random);
        SymmetryStrokeInterpolator pinned(setup);
        pinned.setReplica(0);
        const bool fixed = n % 5 == 0;
        if (fixed) pinned.setFixedSector(n % 2);
        const auto got = stampsOf(pinned, pen, parameters);
        EXPECT_EQ(pinned.startSector(), pinned.sectorOf(pen[0].x, pen[0].y));
        const std::int32_t sector = fixed ? n % 2 : pinned.startSector();
        // Those of the whole stroke that lie there, found by turning the sector onto the axis.
        StrokeInterpolator plain;
        std::vector<StampPoint> want;
        const double axis = std::atan2(setup.axisY, setup.axisX);
        for (const StampPoint& stamp : stampsOf(plain, pen, parameters)) {
            const double wide = 2.0 * pi / pinned.setup().sectors;
            const double back = -(axis + wide * (sector + 0.5));
            const double x = std::cos(back) * stamp.x - std::sin(back) * stamp.y;
            const double y = std::sin(back) * stamp.x + std::cos(back) * stamp.y;
            if (std::fabs(std::atan2(y, x)) < 0.5 * wide) want.push_back(stamp);
        }
        ASSERT_EQ(got.size(), want.size()) << n;
        for (std::size_t k = 0; k < got.size(); ++k)
            ASSERT_TRUE(got[k].x == want[k].x && got[k].y == want[k].y) << n;
        EXPECT_TRUE(fixed || !got.empty()) << n;
    }
}

TEST(SymmetryStrokeInterpolator, AReplicaIsOneCopyOfAll) {
    std::mt19937 random(5);
    const auto pen = somePen(random);
    const StrokeParameters parameters = jittering();
    const SymmetrySetup setup{false, 6, 10.0f, 20.0f, 0.6f, 0.8f, false};
    SymmetryStrokeInterpolator all(setup);
    const auto stamps = stampsOf(all, pen, parameters);
    for (std::size_t replica = 0; replica < 6; ++replica) {
        SymmetryStrokeInterpolator one(setup);
        one.setReplica(static_cast<std::int32_t>(replica));
        const auto got = stampsOf(one, pen, parameters);
        ASSERT_EQ(got.size() * 6, stamps.size());
        for (std::size_t k = 0; k < got.size(); ++k)
            EXPECT_EQ(std::memcmp(&got[k], &stamps[6 * k + replica], sizeof(StampPoint)), 0)
                << replica << ", " << k;
    }
}

TEST(SymmetryStrokeInterpolator, TheWayOfACopyIsTheWayBetweenItsStamps) {
    const SymmetrySetup setup{false, 6, 10.0f, 20.0f, 0.6f, 0.8f, false};
    StrokeParameters parameters;
    parameters.interpolationKind = 0;
    SymmetryStrokeInterpolator interpolator(setup);
    interpolator.begin(&parameters);
    StampPoint from{50.0f, 60.0f, 20.0f}, to{80.0f, 100.0f, 20.0f};
    interpolator.addPoint(from);
    interpolator.addPoint(to);
    std::array<StampPoint, 6> before{};
    StampPoint stamp;
    for (std::size_t n = 0; interpolator.nextStamp(stamp); ++n) {
        float x = 0.0f, y = 0.0f;
        interpolator.stampTangent(x, y);
        if (n >= 6) {
            const float dx = stamp.x - before[n % 6].x, dy = stamp.y - before[n % 6].y;
            EXPECT_NEAR(x, dx / std::hypot(dx, dy), 1e-4f) << n;
            EXPECT_NEAR(y, dy / std::hypot(dx, dy), 1e-4f) << n;
        }
        before[n % 6] = stamp;
        interpolator.tangent(x, y);
        EXPECT_NEAR(x, 0.6f, 1e-5f);
        EXPECT_NEAR(y, 0.8f, 1e-5f);
    }
}

}  // namespace
}  // namespace brushwork::npc
