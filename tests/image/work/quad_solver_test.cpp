#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "image/filter/kernel_recipe.h"
#include "image/work/corner_warp_solver.h"
#include "image/work/perspective_warp_solver.h"
#include "image/work/sampling_kernels.h"
#include "image/work/solver_rows.h"

namespace brushwork {
namespace {

struct Place {
    double x, y;
};

Place bilinearMap(const QuadCorners& q, double u, double v) {
    const auto mix = [&](auto member) {
        return (1 - u) * (1 - v) * static_cast<double>(q[0].*member) +
               u * (1 - v) * static_cast<double>(q[1].*member) +
               u * v * static_cast<double>(q[2].*member) +
               (1 - u) * v * static_cast<double>(q[3].*member);
    };
    return {mix(&QuadPoint::x), mix(&QuadPoint::y)};
}

Place project(const ProjectiveMap& m, double x, double y) {
    const double w = m.c * x + m.f * y + m.i;
    return {(m.a * x + m.d * y + m.g) / w, (m.b * x + m.e * y + m.h) / w};
}

float between(std::mt19937& random, double low, double high) {
    return static_cast<float>(std::uniform_real_distribution<double>(low, high)(random));
}

// A convex quad around (300, 300), against the clock or with it.
QuadCorners convexQuad(std::mt19937& random, bool clockwise) {
    const auto at = [&](double x, double y) {
        return QuadPoint{between(random, x - 60, x + 60), between(random, y - 60, y + 60)};
    };
    QuadCorners quad = {at(150, 150), at(450, 150), at(450, 450), at(150, 450)};
    if (clockwise) std::swap(quad[1], quad[3]);
    return quad;
}

constexpr float width = 640.0f;
constexpr float height = 480.0f;

void expectPlace(const QuadSolver& solver, Place at, double u, double v, double tolerance) {
    float x = static_cast<float>(at.x);
    float y = static_cast<float>(at.y);
    ASSERT_TRUE(solver.solve(x, y)) << "u " << u << " v " << v;
    EXPECT_NEAR(static_cast<double>(x), u * static_cast<double>(width), tolerance) << u << " " << v;
    EXPECT_NEAR(static_cast<double>(y), v * static_cast<double>(height), tolerance)
        << u << " " << v;
}

TEST(CornerWarpSolver, InvertsTheBilinearMapOfConvexQuads) {
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        const QuadCorners quad = convexQuad(random, round % 2 == 1);
        const CornerWarpSolver solver(quad, width, height);
        for (double u = 0.01; u < 1.0; u += 0.14)
            for (double v = 0.01; v < 1.0; v += 0.14)
                expectPlace(solver, bilinearMap(quad, u, v), u, v, 0.01);
    }
}

// Float leaves an almost-parallelogram a tiny leading coefficient; the roots must keep their
// digits.
TEST(CornerWarpSolver, KeepsPrecisionOfAlmostParallelograms) {
    for (const float lean : {0.0f, 1e-4f, 1e-3f, 0.01f, 0.1f, 1.0f}) {
        const QuadCorners quad = {
            {{10.5f, 20.25f}, {1900.0f, 300.0f}, {1700.0f + lean, 2100.0f}, {-189.5f, 1820.25f}}};
        const CornerWarpSolver solver(quad, width, height);
        for (double u = 0.05; u < 1.0; u += 0.1)
            for (double v = 0.05; v < 1.0; v += 0.1)
                expectPlace(solver, bilinearMap(quad, u, v), u, v, 0.002);
    }
}

TEST(CornerWarpSolver, TakesTheLinearFormWhereOneAxisIsParallel) {
    const QuadCorners trapezoid = {{{0, 0}, {100, 0}, {80, 50}, {20, 50}}};
    for (const bool swapped : {false, true}) {
        QuadCorners quad = trapezoid;
        if (swapped) quad = {trapezoid[1], trapezoid[2], trapezoid[3], trapezoid[0]};
        const CornerWarpSolver solver(quad, width, height);
        EXPECT_NE(solver.form().linearU, solver.form().linearV);
        for (double u = 0.1; u < 1.0; u += 0.2)
            for (double v = 0.1; v < 1.0; v += 0.2)
                expectPlace(solver, bilinearMap(quad, u, v), u, v, 0.01);
    }
}

// A corner may fall a rounding outside; a hair inside it maps, to the corner's place.
TEST(QuadSolver, CornersMapToTheSourcesCorners) {
    std::mt19937 random(12);
    for (int round = 0; round < 100; ++round) {
        const QuadCorners quad = convexQuad(random, round % 2 == 1);
        const CornerWarpSolver corner(quad, width, height);
        const PerspectiveWarpSolver perspective(quad, width, height, quadToSquare(quad).value());
        const double e = 1e-5;
        for (const auto& [u, v] : {std::pair{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}}) {
            const double inU = u == 0.0 ? e : 1.0 - e;
            const double inV = v == 0.0 ? e : 1.0 - e;
            expectPlace(corner, bilinearMap(quad, inU, inV), u, v, 0.02);
            const Place at = project(squareToQuad(quad).value(), inU, inV);
            expectPlace(perspective, at, u, v, 0.02);
        }
    }
    const QuadCorners square = {{{0, 0}, {8, 0}, {8, 8}, {0, 8}}};
    const CornerWarpSolver exact(square, width, height);
    float x = 8.0f;
    float y = 0.0f;
    ASSERT_TRUE(exact.solve(x, y));
    EXPECT_EQ(x, width);
    EXPECT_EQ(y, 0.0f);
}

// From outside a quad nothing maps, and the point stays as it was.
TEST(QuadSolver, OutsideNothingMaps) {
    std::mt19937 random(13);
    for (int round = 0; round < 100; ++round) {
        const QuadCorners quad = convexQuad(random, round % 2 == 1);
        const CornerWarpSolver corner(quad, width, height);
        const PerspectiveWarpSolver perspective(quad, width, height, quadToSquare(quad).value());
        for (const QuadSolver* solver : {static_cast<const QuadSolver*>(&corner),
                                         static_cast<const QuadSolver*>(&perspective)}) {
            for (const auto& [px, py] : {std::pair{-50.0f, 300.0f},
                                         {700.0f, 300.0f},
                                         {300.0f, -50.0f},
                                         {300.0f, 700.0f},
                                         {1e9f, -1e9f}}) {
                float x = px;
                float y = py;
                EXPECT_FALSE(solver->solve(x, y));
                EXPECT_EQ(x, px);
                EXPECT_EQ(y, py);
            }
            float x = std::nanf("");
            float y = 300.0f;
            EXPECT_FALSE(solver->solve(x, y));
        }
    }
}

TEST(PerspectiveWarpSolver, InvertsTheProjectiveMap) {
    std::mt19937 random(14);
    for (int round = 0; round < 200; ++round) {
        const QuadCorners quad = convexQuad(random, round % 2 == 1);
        const ProjectiveMap forward = squareToQuad(quad).value();
        const Place corners[4] = {project(forward, 0, 0), project(forward, 1, 0),
                                  project(forward, 1, 1), project(forward, 0, 1)};
        for (std::size_t k = 0; k < 4; ++k) {
            EXPECT_NEAR(corners[k].x, static_cast<double>(quad[k].x), 1e-9);
            EXPECT_NEAR(corners[k].y, static_cast<double>(quad[k].y), 1e-9);
        }
        const PerspectiveWarpSolver solver(quad, width, height, quadToSquare(quad).value());
        for (double u = 0.01; u < 1.0; u += 0.14)
            for (double v = 0.01; v < 1.0; v += 0.14)
                expectPlace(solver, project(forward, u, v), u, v, 0.001);
    }
}

TEST(PerspectiveWarpSolver, MapsOfParallelogramsHaveNoDenominator) {
    const QuadCorners quad = {{{3, 7}, {103, 27}, {83, 127}, {-17, 107}}};
    const ProjectiveMap map = quadToSquare(quad).value();
    EXPECT_EQ(map.c, 0.0);
    EXPECT_EQ(map.f, 0.0);
    EXPECT_EQ(map.i, 1.0);
    const QuadCorners flat = {{{0, 0}, {10, 10}, {20, 20}, {30, 30}}};
    EXPECT_FALSE(quadToSquare(flat));
    EXPECT_FALSE(quadToSquare(QuadCorners{}));
}

TEST(PerspectiveWarpSolver, PassesTheHorizonWithoutDividingByZero) {
    ProjectiveMap map;  // u = x / w, v = y / w, w = x - 1
    map.c = 1.0;
    map.i = -1.0;
    const PerspectiveWarpSolver solver({}, 100.0f, 100.0f, map);
    float x = 1.0f;  // w is 0, which counts as 0.0001: u is 10000
    float y = 0.0f;
    EXPECT_FALSE(solver.solve(x, y));
    map.a = 0.00005;
    const PerspectiveWarpSolver faint({}, 100.0f, 100.0f, map);
    x = 1.0f;
    ASSERT_TRUE(faint.solve(x, y));
    EXPECT_NEAR(static_cast<double>(x), 50.0, 1e-4);
    // Just on the other side it is -0.0001.
    x = 0.99999f;
    EXPECT_FALSE(faint.solve(x, y));
}

// Beyond the fold of a concave quad no place exists: the discriminant is negative there.
TEST(CornerWarpSolver, ConcaveQuadsHaveNoPlaceBeyondTheFold) {
    const QuadCorners dart = {{{0, 0}, {100, 0}, {30, 30}, {0, 100}}};
    const CornerWarpSolver solver(dart, width, height);
    float x = 90.0f;
    float y = 90.0f;
    EXPECT_FALSE(solver.solve(x, y));
    int mapped = 0;
    for (int j = 0; j < 100; ++j)
        for (int i = 0; i < 100; ++i) {
            float px = static_cast<float>(i) + 0.5f;
            float py = static_cast<float>(j) + 0.5f;
            const QuadPoint asked{px, py};
            if (!solver.solve(px, py)) continue;
            ++mapped;
            const Place back = bilinearMap(dart, static_cast<double>(px / width),
                                           static_cast<double>(py / height));
            ASSERT_NEAR(back.x, static_cast<double>(asked.x), 0.02);
            ASSERT_NEAR(back.y, static_cast<double>(asked.y), 0.02);
        }
    EXPECT_GT(mapped, 2500);
}

// Vector rows against one solve a pixel, over quads of every kind.
TEST(RowSolver, VectorRowsEqualSingleSolves) {
    std::mt19937 random(15);
    std::uint64_t seen = 0;
    for (int round = 0; round < 600; ++round) {
        QuadCorners quad = convexQuad(random, round % 2 == 1);
        if (round % 5 == 1) quad[2] = {between(random, -100, 700), between(random, -100, 700)};
        if (round % 5 == 2) {  // a parallelogram to the last bit: its denominator is a constant
            for (QuadPoint& point : quad)
                point = {std::round(point.x * 8.0f) / 8.0f, std::round(point.y * 8.0f) / 8.0f};
            quad[2] = {quad[1].x + quad[3].x - quad[0].x, quad[1].y + quad[3].y - quad[0].y};
        }
        if (round % 5 == 3)
            quad = {{{0, 0}, {600, 0}, {between(random, 300, 600), 500}, {20, 500}}};
        const CornerWarpSolver corner(quad, width, height);
        ProjectiveMap map = quadToSquare(quad).value_or(ProjectiveMap{});
        if (round % 7 == 0) map = {1e-5, 0, 1.0 / 64, 0, 1e-5, -1.0 / 64, 0, 0, 0};  // a horizon
        if (round % 11 == 0)  // the same map at another scale: a denominator that isn't 1
            for (double* entry :
                 {&map.a, &map.b, &map.c, &map.d, &map.e, &map.f, &map.g, &map.h, &map.i})
                *entry *= 1.5;
        const PerspectiveWarpSolver perspective(quad, width, height, map);
        for (const QuadSolver* solver : {static_cast<const QuadSolver*>(&corner),
                                         static_cast<const QuadSolver*>(&perspective)}) {
            const auto count = static_cast<std::int32_t>(random() % 64 + 1);
            const RowRequest request{static_cast<std::int32_t>(random() % 600),
                                     static_cast<std::int32_t>(random() % 600), count,
                                     random() % 2 ? 0.5f : 0.0f};
            SolvedRow expected{};
            RowSolver(*solver, VectorLevel::Scalar).solve(request, expected);
            seen |= expected.mapped;
            for (const VectorLevel level : test::vectorLevels()) {
                SolvedRow got{};
                RowSolver(*solver, level).solve(request, got);
                ASSERT_EQ(lastKernelForm(), level);
                ASSERT_EQ(got.mapped, expected.mapped)
                    << vectorLevelName(level) << " round " << round << " count " << count;
                for (int n = 0; n < count; ++n)
                    if ((expected.mapped >> n) & 1) {
                        ASSERT_EQ(got.x[n], expected.x[n])
                            << vectorLevelName(level) << " " << round;
                        ASSERT_EQ(got.y[n], expected.y[n])
                            << vectorLevelName(level) << " " << round;
                    }
            }
        }
    }
    EXPECT_EQ(seen, ~std::uint64_t{0});
}

}  // namespace
}  // namespace brushwork
