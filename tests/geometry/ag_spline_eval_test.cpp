#include "geometry/ag_spline_eval.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "brushwork/ref.h"
#include "geometry/ag_compact_spline.h"
#include "geometry/ag_de_boor.h"
#include "geometry/spline_makers.h"

namespace brushwork {
namespace {

using test::BasisOracle;
using test::circle;
using test::make;
using test::randomSpline;
using test::SplineNumbers;
using znAG::agCompactSpline;

struct Derived {
    std::vector<double> point, first, second;
    explicit Derived(std::int32_t dim)
        : point(static_cast<std::size_t>(dim)), first(point), second(point) {}
};

double scaleOf(const SplineNumbers& s) {
    return s.rat == AG_NOT_RATIONAL ? 10.0 : 150.0;
}

TEST(SplineEval, BothFormsFollowTheDefinition) {
    std::mt19937 random(5);
    for (int round = 0; round < 400; ++round) {
        const SplineNumbers s = randomSpline(random);
        const AgSplinePtr nodes = make(s).spline;
        ASSERT_TRUE(nodes) << round;
        const auto compact = makeRef<agCompactSpline>(*nodes);
        const BasisOracle oracle(s);
        for (int i = 0; i < 12; ++i) {
            double t = test::between(random, s.start(), s.end());
            if (i == 0) t = s.start();
            if (i == 1 && *nodes->node0->next->t < s.end()) t = *nodes->node0->next->t;
            Derived a(s.dim), b(s.dim);
            ASSERT_TRUE(agEval(*nodes, t, a.point, a.first, a.second));
            ASSERT_TRUE(compact->evaluate(t, b.point, b.first, b.second));
            const std::vector<long double> exact = oracle.point(t);
            for (std::size_t c = 0; c < exact.size(); ++c) {
                EXPECT_NEAR(a.point[c], static_cast<double>(exact[c]), 1e-13 * scaleOf(s))
                    << "round " << round << " degree " << s.degree << " t " << t;
            }
            // Unrolled or not, near the hint or not: to the last bit.
            EXPECT_EQ(a.point, b.point);
            EXPECT_EQ(a.first, b.first);
            EXPECT_EQ(a.second, b.second);
        }
    }
}

TEST(SplineEval, BasisSumsToOne) {
    std::mt19937 random(6);
    for (int round = 0; round < 200; ++round) {
        SplineNumbers s = randomSpline(random);
        s.rat = AG_NOT_RATIONAL;
        s.dim = 1;
        s.points.assign(s.knots.size() - static_cast<std::size_t>(s.degree) + 1, 1.0);
        const auto compact = makeRef<agCompactSpline>(*make(s).spline);
        for (int i = 0; i <= 20; ++i) {
            const double t = s.start() + (s.end() - s.start()) * i / 20.0;
            double point[1], first[1], second[1];
            ASSERT_TRUE(compact->evaluate(t, point, first, second));
            EXPECT_NEAR(point[0], 1.0, 1e-14);
            EXPECT_NEAR(first[0], 0.0, 1e-12);
            EXPECT_NEAR(second[0], 0.0, 1e-10);
        }
    }
}

TEST(SplineEval, ClampedEndsAreTheEndPointsAndParametersAreClamped) {
    SplineNumbers s;
    s.rat = AG_NON_HOMOGENEOUS;
    s.knots = {1, 1, 1, 2, 4, 4, 4};
    s.points = {0.1, 0.7, 2, 1, 3, 0.5, 4, -1, 1, 5, 0.3, 3, 6.2, 8.4, 0.25};
    const AgSplinePtr nodes = make(s).spline;
    const auto compact = makeRef<agCompactSpline>(*nodes);
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double t : {1.0, 0.0, -1e300, nan, -infinity}) {
        double p[2], q[2];
        ASSERT_TRUE(compact->evaluate(t, p));
        ASSERT_TRUE(agEval(*nodes, t, q));
        EXPECT_DOUBLE_EQ(p[0], 0.1);
        EXPECT_DOUBLE_EQ(p[1], 0.7);
        EXPECT_DOUBLE_EQ(q[1], 0.7);
    }
    for (const double t : {4.0, 5.0, 1e300, infinity}) {
        double p[2], q[2];
        ASSERT_TRUE(compact->evaluate(t, p));
        ASSERT_TRUE(agEval(*nodes, t, q));
        EXPECT_DOUBLE_EQ(p[0], 6.2);
        EXPECT_DOUBLE_EQ(p[1], 8.4);
        EXPECT_DOUBLE_EQ(q[0], 6.2);
    }
    double tooShort[1];
    EXPECT_FALSE(compact->evaluate(2.0, tooShort));
    EXPECT_FALSE(agEval(*nodes, 2.0, tooShort));
}

// Spans of no length at the ends of the domain, where other forms have their knots outside of it.
TEST(SplineEval, MultipleEndKnotsMayLieWithinTheDomain) {
    SplineNumbers s;
    s.dim = 1;
    s.knots = {-2, -1, 0, 0, 1, 2, 2, 3, 4};
    s.points = {3, 1, 4, 1, 5, 9, 2};
    const AgSplinePtr nodes = make(s).spline;
    ASSERT_TRUE(nodes);
    ASSERT_EQ(nodes->n, 4);
    const auto compact = makeRef<agCompactSpline>(*nodes);
    for (const double end : {0.0, 2.0}) {
        double p[1], q[1], near[1];
        ASSERT_TRUE(compact->evaluate(end, p));
        ASSERT_TRUE(agEval(*nodes, end, q));
        ASSERT_TRUE(compact->evaluate(end == 0.0 ? 1e-9 : 2.0 - 1e-9, near));
        EXPECT_EQ(p[0], q[0]);
        EXPECT_NEAR(p[0], near[0], 1e-7);
    }
}

TEST(SplineEval, DerivativesAreThoseOfDifferences) {
    std::mt19937 random(8);
    int compared = 0;
    for (int round = 0; round < 300; ++round) {
        const SplineNumbers s = randomSpline(random);
        const auto compact = makeRef<agCompactSpline>(*make(s).spline);
        const double t = test::between(random, s.start(), s.end());
        const double h = 1e-4;
        bool crossesKnot = false;
        for (const double knot : s.knots) crossesKnot |= std::abs(knot - t) < 3 * h;
        if (crossesKnot) continue;
        ++compared;
        // Five-point formulas over long-double points of the definition.
        const BasisOracle oracle(s);
        std::vector<std::vector<long double>> p;
        for (int k = -2; k <= 2; ++k)
            p.push_back(
                oracle.point(static_cast<long double>(t) + k * static_cast<long double>(h)));
        Derived d(s.dim);
        ASSERT_TRUE(compact->evaluate(t, d.point, d.first, d.second));
        for (std::size_t c = 0; c < d.point.size(); ++c) {
            const long double first = (p[0][c] - 8 * p[1][c] + 8 * p[3][c] - p[4][c]) /
                                      (12 * static_cast<long double>(h));
            const long double second =
                (-p[0][c] + 16 * p[1][c] - 30 * p[2][c] + 16 * p[3][c] - p[4][c]) /
                (12 * static_cast<long double>(h) * static_cast<long double>(h));
            const double size = std::max({1.0, std::abs(d.first[c]), std::abs(d.second[c])});
            EXPECT_NEAR(d.first[c], static_cast<double>(first), 1e-6 * size) << round;
            EXPECT_NEAR(d.second[c], static_cast<double>(second), 1e-5 * size) << round;
        }
    }
    EXPECT_GT(compared, 200);
}

// At a knot of multiplicity k, derivatives up to degree - k run on, and the next one jumps.
TEST(SplineEval, KnotMultiplicityDecidesSmoothness) {
    for (const std::int32_t multiplicity : {1, 2, 3}) {
        SplineNumbers s;
        s.dim = 1;
        s.knots = {0, 0, 0};
        s.knots.insert(s.knots.end(), static_cast<std::size_t>(multiplicity), 1.0);
        s.knots.insert(s.knots.end(), {2, 2, 2});
        s.points = {0, 1, 3, 4, 9, 11, 30};
        s.points.resize(static_cast<std::size_t>(multiplicity) + 4);
        const AgSplinePtr nodes = make(s).spline;
        ASSERT_TRUE(nodes) << multiplicity;
        EXPECT_EQ(nodes->n, multiplicity + 1);
        const AG_NODE* const left = agSpanAt(*nodes, 0.5);
        const AG_NODE* const right = agSpanAt(*nodes, 1.0);
        AgNodeScratch scratch;
        double a[3], b[3];
        agEvalSpan(*nodes, *left, 1.0, scratch, a, a + 1, a + 2);
        agEvalSpan(*nodes, *right, 1.0, scratch, b, b + 1, b + 2);
        for (std::int32_t k = 0; k <= 3 - multiplicity && k < 3; ++k)
            EXPECT_NEAR(a[k], b[k], 1e-12) << multiplicity << " derivative " << k;
        if (multiplicity == 1) continue;
        EXPECT_GT(std::abs(a[4 - multiplicity] - b[4 - multiplicity]), 0.1);
    }
}

TEST(SplineEval, RationalCirclesAreCircles) {
    for (const std::int32_t rat : {AG_NON_HOMOGENEOUS, AG_HOMOGENEOUS}) {
        const AgSplinePtr nodes = make(circle(rat)).spline;
        ASSERT_TRUE(nodes);
        const auto compact = makeRef<agCompactSpline>(*nodes);
        for (int i = 0; i <= 4000; ++i) {
            const double t = i / 1000.0;
            double p[2], d[2], q[2];
            ASSERT_TRUE(compact->evaluate(t, p, d));
            ASSERT_TRUE(agEval(*nodes, t, q));
            EXPECT_NEAR(std::hypot(p[0], p[1]), 1.0, 1e-12);
            EXPECT_NEAR(std::hypot(q[0], q[1]), 1.0, 1e-12);
            EXPECT_NEAR((p[0] * d[0] + p[1] * d[1]) / std::hypot(d[0], d[1]), 0.0, 1e-12);
        }
    }
}

TEST(SplineEval, FindsSpansFromAnyCurrentNode) {
    std::mt19937 random(9);
    for (int round = 0; round < 100; ++round) {
        const SplineNumbers s = randomSpline(random);
        const AgSplinePtr nodes = make(s).spline;
        const double t = test::between(random, s.start() - 1, s.end() + 1);
        const AG_NODE* const begin = agSpanAt(*nodes, t);
        EXPECT_LT(*begin->t, *begin->next->t);
        for (const AG_NODE* hint = agFirstNode(*nodes); hint; hint = hint->next)
            EXPECT_EQ(agSpanAt(*nodes, t, hint), begin);
    }
}

}  // namespace
}  // namespace brushwork
