#include "geometry/ag_compact_surface.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "brushwork/ref.h"
#include "geometry/spline_makers.h"
#include "support/allocation_count.h"

namespace brushwork::znAG {
namespace {

using test::BasisOracle;
using test::between;
using test::SplineNumbers;

void setKnots(agCompactSurface& surface, AgDirection direction, const SplineNumbers& along) {
    std::int32_t index = 1 - along.degree;
    for (const double knot : along.knots) surface.setKnot(direction, index++, knot);
    surface.setKnot(direction, -along.degree, along.knots.front());
    surface.setKnot(direction, index, along.knots.back());
}

AgSurfaceSizes sizesOf(const SplineNumbers& along) {
    return {static_cast<std::int32_t>(along.knots.size()) - 2 * along.degree + 1, along.degree, 0};
}

// A random tensor-product surface with its definition.
struct Patch {
    SplineNumbers u, v;
    Ref<agCompactSurface> surface;

    Patch(std::mt19937& random, std::int32_t dim, bool rational)
        : u(test::randomSpline(random)), v(test::randomSpline(random)) {
        surface = makeRef<agCompactSurface>(sizesOf(u), sizesOf(v), dim, rational);
        setKnots(*surface, AgDirection::U, u);
        setKnots(*surface, AgDirection::V, v);
        for (std::int32_t i = 0; i < rows(); ++i)
            for (std::int32_t j = 0; j < columns(); ++j) {
                const std::span<double> p = surface->point(i, j);
                for (double& coordinate : p) coordinate = between(random, -5, 5);
                if (rational) p.back() = between(random, 0.5, 2.0);
            }
    }
    [[nodiscard]] std::int32_t rows() const { return sizesOf(u).spans + u.degree; }
    [[nodiscard]] std::int32_t columns() const { return sizesOf(v).spans + v.degree; }

    [[nodiscard]] std::vector<long double> exact(long double s, long double t) const {
        const BasisOracle alongU(u), alongV(v);
        std::vector<long double> sum(static_cast<std::size_t>(surface->stride()), 0.0L);
        for (std::int32_t i = 0; i < rows(); ++i)
            for (std::int32_t j = 0; j < columns(); ++j) {
                const long double by = alongU.basis(static_cast<std::size_t>(i),
                                                    static_cast<std::size_t>(u.degree), s) *
                                       alongV.basis(static_cast<std::size_t>(j),
                                                    static_cast<std::size_t>(v.degree), t);
                for (std::size_t c = 0; c < sum.size(); ++c) sum[c] += by * surface->point(i, j)[c];
            }
        if (surface->isRational())
            for (long double& coordinate : sum) coordinate /= sum.back();
        return sum;
    }
};

bool nearKnot(const SplineNumbers& along, double t, double h) {
    for (const double knot : along.knots)
        if (std::abs(knot - t) < 3 * h) return true;
    return false;
}

TEST(CompactSurface, FollowsTheDefinitionWithDerivatives) {
    std::mt19937 random(21);
    const double h = 1e-4;
    const long double lh = h;
    int compared = 0;
    for (int round = 0; round < 60; ++round) {
        const bool rational = round % 2 == 1;
        const Patch patch(random, 1 + round % 3, rational);
        const double s = between(random, patch.u.start(), patch.u.end());
        const double t = between(random, patch.v.start(), patch.v.end());
        std::array<double, 3> p{}, pu{}, pv{}, puu{}, puv{}, pvv{};
        ASSERT_TRUE(patch.surface->evaluate(
            s, t, p, {pu.data(), pv.data(), puu.data(), puv.data(), pvv.data()}));
        const auto exact = patch.exact(s, t);
        std::array<double, 3> alone{};
        ASSERT_TRUE(patch.surface->evaluate(s, t, alone));
        EXPECT_EQ(alone, p);
        if (nearKnot(patch.u, s, h) || nearKnot(patch.v, t, h)) continue;
        ++compared;
        const auto at = [&](int i, int j) { return patch.exact(s + i * lh, t + j * lh); };
        const auto e = at(1, 0), w = at(-1, 0), n = at(0, 1), so = at(0, -1);
        const auto ne = at(1, 1), nw = at(-1, 1), se = at(1, -1), sw = at(-1, -1);
        for (std::size_t c = 0; c < static_cast<std::size_t>(patch.surface->dim()); ++c) {
            EXPECT_NEAR(p[c], static_cast<double>(exact[c]), 1e-11) << round;
            const double size =
                std::max({1.0, std::abs(puu[c]), std::abs(puv[c]), std::abs(pvv[c])});
            const auto expectNear = [&](double got, long double wanted) {
                EXPECT_NEAR(got, static_cast<double>(wanted), 3e-3 * size) << round;
            };
            expectNear(pu[c], (e[c] - w[c]) / (2 * lh));
            expectNear(pv[c], (n[c] - so[c]) / (2 * lh));
            expectNear(puu[c], (e[c] - 2 * exact[c] + w[c]) / (lh * lh));
            expectNear(pvv[c], (n[c] - 2 * exact[c] + so[c]) / (lh * lh));
            expectNear(puv[c], (ne[c] - nw[c] - se[c] + sw[c]) / (4 * lh * lh));
        }
    }
    EXPECT_GT(compared, 40);
}

TEST(CompactSurface, AQuarterCylinderHasItsRadius) {
    const auto surface =
        makeRef<agCompactSurface>(AgSurfaceSizes{1, 2, 0}, AgSurfaceSizes{1, 1, 0}, 3, true);
    for (std::int32_t k = -2; k <= 3; ++k) surface->setKnot(AgDirection::U, k, k > 0);
    for (std::int32_t k = -1; k <= 2; ++k) surface->setKnot(AgDirection::V, k, k > 0 ? 2 : 0);
    const double w = std::sqrt(0.5);
    const double arc[3][3] = {{3, 0, 1}, {3, 3, w}, {0, 3, 1}};
    for (std::int32_t i = 0; i < 3; ++i)
        for (std::int32_t j = 0; j < 2; ++j) {
            const double* const a = arc[i];
            const std::span<double> p = surface->point(i, j);
            p[0] = a[0] * a[2];
            p[1] = a[1] * a[2];
            p[2] = 5.0 * j * a[2];
            p[3] = a[2];
        }
    surface->updateBounds();
    EXPECT_DOUBLE_EQ(surface->high()[2], 5.0);
    std::array<double, 3> p{};
    ASSERT_TRUE(surface->evaluate(0.5, 1.0, p));
    const auto before = test::allocations();
    for (int i = 0; i <= 100; ++i) {
        ASSERT_TRUE(surface->evaluate(i / 100.0, i / 50.0, p));
        EXPECT_NEAR(std::hypot(p[0], p[1]), 3.0, 3e-12);
        EXPECT_NEAR(p[2], i / 20.0, 1e-12);
    }
    EXPECT_EQ(test::allocations() - before, 0u);
    ASSERT_TRUE(surface->evaluate(-7.0, std::nan(""), p));
    EXPECT_EQ(p, (std::array<double, 3>{3, 0, 0}));
    const auto copy = makeRef<agCompactSurface>(*surface);
    surface->point(0, 0)[0] = 100.0;
    ASSERT_TRUE(copy->evaluate(0.0, 0.0, p));
    EXPECT_EQ(p[0], 3.0);
}

TEST(CompactSurface, RefusesSizesThatDoNotFit) {
    const auto surface =
        makeRef<agCompactSurface>(AgSurfaceSizes{2, 2, 0}, AgSurfaceSizes{2, 2, 0}, 2, false);
    surface->point(0, 0)[0] = 4.0;
    EXPECT_TRUE(surface->rebuild({2, 2, 1}, {2, 2, 2}, 2, false));
    EXPECT_EQ(surface->sizes(AgDirection::V).form, 2);
    EXPECT_EQ(surface->point(0, 0)[0], 4.0);
    constexpr std::int32_t huge = std::numeric_limits<std::int32_t>::max();
    for (const AgSurfaceSizes bad : {AgSurfaceSizes{0, 2, 0},
                                     {2, 0, 0},
                                     {2, 2, 3},
                                     {huge, 2, 0},
                                     {2, huge, 0},
                                     {20000, 20000, 0}}) {
        EXPECT_FALSE(surface->rebuild(bad, bad, 2, false));
        EXPECT_EQ(surface->sizes(AgDirection::U).spans, 0);
        std::array<double, 3> p{};
        EXPECT_FALSE(surface->evaluate(0, 0, p));
    }
    EXPECT_FALSE(surface->rebuild({2, 2, 0}, {2, 2, 0}, huge, true));
    EXPECT_FALSE(surface->rebuild({2, 2, 0}, {2, 2, 0}, 0, true));
}

}  // namespace
}  // namespace brushwork::znAG
