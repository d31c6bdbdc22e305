#include "geometry/curve_services.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "brushwork/ref.h"
#include "geometry/curve_length.h"
#include "geometry/curve_nearest.h"
#include "geometry/spline_makers.h"

namespace brushwork::znAG {
namespace {

using test::between;
using test::circle;
using test::SplineNumbers;
using Spline = Ref<agCompactSpline>;

Spline compact(const SplineNumbers& numbers) {
    const AgSplinePtr nodes = test::make(numbers).spline;
    return nodes ? makeRef<agCompactSpline>(*nodes) : nullptr;
}

Spline bezier(std::vector<double> points) {
    SplineNumbers s;
    s.degree = static_cast<std::int32_t>(points.size() / 2) - 1;
    s.knots.assign(static_cast<std::size_t>(s.degree), 0.0);
    s.knots.insert(s.knots.end(), static_cast<std::size_t>(s.degree), 1.0);
    s.points = std::move(points);
    return compact(s);
}

// A random curve in the plane or above it, with all its crossings.
Spline randomCurve(std::mt19937& random) {
    for (;;) {
        const SplineNumbers s = test::randomSpline(random);
        if (s.dim >= 2) return compact(s);
    }
}

std::vector<CurveSample> samplesOf(const agCompactSpline& spline, int count) {
    std::vector<CurveSample> samples;
    for (int i = 0; i <= count; ++i) {
        const double t = spline.start() + (spline.end() - spline.start()) * i / count;
        const CurvePoint p = curvePoint(spline, t).value();
        samples.push_back({p.x, p.y, t});
    }
    return samples;
}

double distanceToPolyline(const std::vector<CurveSample>& line, const CurveSample& p) {
    double best = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < line.size(); ++i) {
        const double dx = line[i].x - line[i - 1].x, dy = line[i].y - line[i - 1].y;
        const double square = dx * dx + dy * dy;
        double part = ((p.x - line[i - 1].x) * dx + (p.y - line[i - 1].y) * dy) / square;
        part = square > 0 ? std::clamp(part, 0.0, 1.0) : 0.0;
        best = std::min(
            best, std::hypot(p.x - line[i - 1].x - part * dx, p.y - line[i - 1].y - part * dy));
    }
    return best;
}

// How far the curve goes along (x, y): the best of many samples, then narrowed down.
double summit(const agCompactSpline& spline, double x, double y) {
    const auto height = [&](double t) {
        const CurvePoint p = curvePoint(spline, t).value();
        return p.x * x + p.y * y;
    };
    const double step = (spline.end() - spline.start()) / 2000;
    double best = spline.start();
    for (int i = 0; i <= 2000; ++i)
        if (height(spline.start() + i * step) > height(best)) best = spline.start() + i * step;
    double low = best - step, high = best + step;
    for (int i = 0; i < 100; ++i) {
        const double a = low + (high - low) / 3, b = high - (high - low) / 3;
        (height(a) < height(b) ? low : high) = height(a) < height(b) ? a : b;
    }
    return std::max(height(best), height(low));
}

TEST(CurveServices, BoundsHoldTheCurveAndNoMore) {
    std::mt19937 random(31);
    for (int round = 0; round < 40; ++round) {
        const Spline spline = randomCurve(random);
        const CurveBox box = curveBounds(*spline).value();
        const double outward[] = {
            box.high.x - summit(*spline, 1, 0), box.high.y - summit(*spline, 0, 1),
            -box.low.x - summit(*spline, -1, 0), -box.low.y - summit(*spline, 0, -1)};
        for (const double by : outward) {
            EXPECT_GT(by, -1e-11) << round;
            EXPECT_LT(by, 1e-7) << round;
        }
    }
    const CurveBox round = curveBounds(*compact(circle(AG_HOMOGENEOUS))).value();
    EXPECT_NEAR(round.low.x, -1.0, 1e-9);
    EXPECT_NEAR(round.high.y, 1.0, 1e-9);
    // Far from the origin, where coordinates are coarse, it ends too.
    const double far = 1e9;
    const CurveBox away =
        curveBounds(*bezier({far, far, far + 1, far + 3, far + 2, far - 3, far + 3, far})).value();
    EXPECT_NEAR(away.high.x, far + 3, 1e-4);
    EXPECT_NEAR(away.high.y, far + std::sqrt(3.0) / 2.0, 1e-4);
}

TEST(CurveServices, TessellationKeepsItsTolerance) {
    std::mt19937 random(32);
    for (int round = 0; round < 40; ++round) {
        const Spline spline = randomCurve(random);
        for (const double tolerance : {1.0, 0.05, 0.002}) {
            const std::vector<CurveSample> line = tessellateCurve(*spline, {tolerance, 1u << 20});
            ASSERT_GE(line.size(), 2u);
            EXPECT_EQ(line.front().t, spline->start());
            EXPECT_EQ(line.back().t, spline->end());
            for (std::size_t i = 1; i < line.size(); ++i) {
                ASSERT_LT(line[i - 1].t, line[i].t);
                const CurvePoint p = curvePoint(*spline, line[i].t).value();
                EXPECT_NEAR(p.x, line[i].x, 1e-10);
                EXPECT_NEAR(p.y, line[i].y, 1e-10);
            }
            if (line.size() > 2000) continue;
            for (const CurveSample& p : samplesOf(*spline, 500))
                EXPECT_LE(distanceToPolyline(line, p), tolerance + 1e-10) << round;
        }
    }
}

TEST(CurveServices, TessellationIsFrugalAndBounded) {
    const Spline spline = compact(circle(AG_NON_HOMOGENEOUS));
    const std::vector<CurveSample> line = tessellateCurve(*spline, {0.001, 1000});
    EXPECT_LT(line.size(), 4 * 71u);  // 71 chords of equal length would do
    EXPECT_LE(tessellateCurve(*spline, {1e-300, 100}).size(), 100u);
    EXPECT_EQ(tessellateCurve(*spline, {1e-300, 100}).back().t, 4.0);
    EXPECT_TRUE(tessellateCurve(*spline, {0.0, 100}).empty());
    EXPECT_TRUE(tessellateCurve(*spline, {std::nan(""), 100}).empty());
    // One that comes back over itself: flat, but not its chord.
    const std::vector<CurveSample> back = tessellateCurve(*bezier({0, 0, 3, 0, -3, 0, 1, 0}), {});
    double low = 0.0;
    for (const CurveSample& p : back) low = std::min(low, p.x);
    EXPECT_LT(low, -0.3);
}

TEST(CurveServices, ClosedTessellationsCloseToTheBit) {
    std::mt19937 random(35);
    for (int round = 0; round < 30; ++round) {
        SplineNumbers s;
        s.form = AG_PERIODIC;
        for (int i = -2; i <= 9; ++i) s.knots.push_back(0.1 * i);
        for (int i = 0; i < 14; ++i) s.points.push_back(between(random, -10, 10));
        for (std::size_t i = 0; i < 6; ++i) s.points.push_back(s.points[i]);
        const Spline spline = compact(s);
        ASSERT_TRUE(spline);
        const std::vector<CurveSample> line = tessellateCurve(*spline);
        EXPECT_EQ(line.front().x, line.back().x);
        EXPECT_EQ(line.front().y, line.back().y);
    }
}

TEST(CurveServices, DirectionsAreThoseOfMovement) {
    std::mt19937 random(33);
    for (int round = 0; round < 100; ++round) {
        const Spline spline = randomCurve(random);
        const double t = between(random, spline->start(), spline->end());
        const CurvePoint d = curveDirection(*spline, t).value();
        EXPECT_NEAR(std::hypot(d.x, d.y), 1.0, 1e-14);
        const double h = 1e-7 * (spline->end() - spline->start());
        const CurvePoint a = curvePoint(*spline, t).value();
        const CurvePoint b = curvePoint(*spline, t + h).value();
        EXPECT_NEAR(d.x * (b.y - a.y) - d.y * (b.x - a.x), 0.0, 1e-8);
        EXPECT_GE(d.x * (b.x - a.x) + d.y * (b.y - a.y), -1e-8);
    }
    // A cusp, ends with doubled control points, a single point.
    const Spline cusp = bezier({0, 0, 1, 1, 0, 1, 1, 0});
    const Spline doubled = bezier({0, 0, 0, 0, 1, 2, 2, 2, 2, 2});
    const CurvePoint begin = curveDirection(*doubled, 0.0).value();
    EXPECT_NEAR(begin.x, std::sqrt(0.2), 1e-6);
    EXPECT_NEAR(begin.y, std::sqrt(0.8), 1e-6);
    const CurvePoint end = curveDirection(*doubled, 1.0).value();
    EXPECT_NEAR(end.x, 1.0, 1e-6);
    EXPECT_NEAR(end.y, 0.0, 1e-6);
    const CurvePoint tip = curveDirection(*cusp, 0.5).value();
    EXPECT_NEAR(std::hypot(tip.x, tip.y), 1.0, 1e-12);
    const CurvePoint none = curveDirection(*bezier({1, 1, 1, 1, 1, 1}), 0.3).value();
    EXPECT_EQ(none.x, 0.0);
    EXPECT_EQ(none.y, 0.0);
}

TEST(CurveServices, MeaninglessSplinesGetTheEmptyAnswer) {
    const Spline nothing = makeRef<agCompactSpline>();
    const Spline flat = makeRef<agCompactSpline>(2, 1, 0, 1, false);
    const Spline unset = makeRef<agCompactSpline>(3, 2, 0, 2, true);
    const Spline broken = bezier({0, 0, 1, 1, 2, 0});
    broken->point(1)[0] = std::nan("");
    const Spline disordered = bezier({0, 0, 1, 1, 2, 0});
    disordered->setKnot(disordered->firstKnot(), 0.5);
    for (const Spline& spline : {nothing, flat, unset, broken, disordered}) {
        EXPECT_FALSE(curveBounds(*spline));
        EXPECT_FALSE(nearestOnCurve(*spline, {0, 0}));
        EXPECT_TRUE(tessellateCurve(*spline).empty());
        const CurveLength arc(*spline);
        EXPECT_EQ(arc.length(), 0.0);
        EXPECT_EQ(arc.parameterAt(1.0), 0.0);
        EXPECT_EQ(arc.lengthTo(1.0), 0.0);
    }
    EXPECT_FALSE(nearestOnCurve(*bezier({0, 0, 1, 1}), {std::nan(""), 0}));
    // Weights of 0 and below, and knots in disorder: any answer, but one that comes.
    std::mt19937 random(34);
    for (int round = 0; round < 40; ++round) {
        const Spline wild = makeRef<agCompactSpline>(3, 1 + round % 4, round % 3, 2, round % 5 > 0);
        for (std::int32_t k = wild->firstKnot(); k <= wild->spans() + wild->degree(); ++k)
            wild->setKnot(k, round % 2 ? k : between(random, -2, 2));
        for (std::int32_t i = 0; i < wild->pointCount(); ++i)
            for (double& coordinate : wild->point(i)) coordinate = between(random, -1, 1);
        (void)curveBounds(*wild);
        (void)nearestOnCurve(*wild, {0.1, 0.2});
        (void)curveDirection(*wild, 0.5);
        EXPECT_LE(tessellateCurve(*wild, {0.01, 5000}).size(), 5000u);
        const CurveLength arc(*wild);
        EXPECT_TRUE(std::isfinite(arc.length()));
        (void)arc.parameterAt(0.5);
    }
}

}  // namespace
}  // namespace brushwork::znAG
