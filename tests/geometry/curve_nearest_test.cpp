#include "geometry/curve_nearest.h"

#include <gtest/gtest.h>

#include <cmath>

#include "brushwork/ref.h"
#include "geometry/curve_services.h"
#include "geometry/spline_makers.h"

namespace brushwork::znAG {
namespace {

using test::SplineNumbers;
using Spline = Ref<agCompactSpline>;

Spline compact(const SplineNumbers& numbers) {
    return makeRef<agCompactSpline>(*test::make(numbers).spline);
}

// The least distance over many samples; never below the true one.
double sampledDistance(const agCompactSpline& spline, CurvePoint p, int count) {
    double least = 1e300;
    for (int i = 0; i <= count; ++i) {
        const double t = spline.start() + (spline.end() - spline.start()) * i / count;
        const CurvePoint at = curvePoint(spline, t).value();
        least = std::min(least, std::hypot(at.x - p.x, at.y - p.y));
    }
    return least;
}

TEST(NearestOnCurve, NoSampleIsNearerOnRandomCurves) {
    std::mt19937 random(51);
    for (int round = 0; round < 150; ++round) {
        const SplineNumbers s = test::randomSpline(random);
        if (s.dim < 2) continue;
        const Spline spline = compact(s);
        for (int k = 0; k < 4; ++k) {
            CurvePoint p{test::between(random, -12, 12), test::between(random, -12, 12)};
            if (k == 3)  // on the curve
                p = curvePoint(*spline, test::between(random, s.start(), s.end())).value();
            const NearestPlace found = nearestOnCurve(*spline, p).value();
            const CurvePoint at = curvePoint(*spline, found.t).value();
            EXPECT_EQ(at.x, found.place.x);
            EXPECT_EQ(at.y, found.place.y);
            EXPECT_DOUBLE_EQ(found.distance, std::hypot(at.x - p.x, at.y - p.y));
            EXPECT_LE(found.distance, sampledDistance(*spline, p, 3000) + 1e-8)
                << "round " << round << " degree " << s.degree;
            EXPECT_LE(found.distance, k == 3 ? 1e-7 : 40.0);
        }
    }
}

// A walk of a point around a figure of eight, and through the place where it crosses itself: every
// point's distance is that of a far finer search.
TEST(NearestOnCurve, FindsTheGlobalMinimumOnASelfCrossingCurve) {
    SplineNumbers eight;
    eight.form = AG_CLOSED;
    eight.knots = {0, 0, 0, 1, 2, 3, 4, 5, 6, 6, 6};
    eight.points = {0, 0, 30, 40, 70, 40, 70, -40, 0, 0, -70, 40, -70, -40, -30, -40, 0, 0};
    const Spline spline = compact(eight);
    for (int i = 0; i < 80; ++i) {
        const double angle = i * 0.0785398;
        const double reach = 5.0 + i % 7 * 12.0;
        const CurvePoint p{reach * std::cos(angle), reach * std::sin(2 * angle)};
        const NearestPlace found = nearestOnCurve(*spline, p).value();
        const double sampled = sampledDistance(*spline, p, 20000);
        EXPECT_LE(found.distance, sampled + 1e-9) << i;
        EXPECT_GE(found.distance, sampled - 1e-2) << i;
    }
}

TEST(NearestOnCurve, EndsWherePlacesAreEquallyNear) {
    const Spline circle = compact(test::circle(AG_HOMOGENEOUS));
    EXPECT_NEAR(nearestOnCurve(*circle, {0, 0}).value().distance, 1.0, 1e-12);
    EXPECT_NEAR(nearestOnCurve(*circle, {1e-9, 0}).value().distance, 1.0, 1e-8);
    const NearestPlace out = nearestOnCurve(*circle, {-3, 4}).value();
    EXPECT_NEAR(out.distance, 4.0, 1e-12);
    EXPECT_NEAR(out.place.x, -0.6, 1e-9);
    EXPECT_NEAR(nearestOnCurve(*circle, {1e12, 0}).value().place.x, 1.0, 1e-9);
    // A curve that runs there and back on one line.
    SplineNumbers twice;
    twice.degree = 2;
    twice.knots = {0, 0, 1, 1};
    twice.points = {0, 0, 10, 0, 0, 0};
    EXPECT_NEAR(nearestOnCurve(*compact(twice), {3, 2}).value().distance, 2.0, 1e-9);
    EXPECT_NEAR(nearestOnCurve(*compact(twice), {9, 0}).value().distance, 4.0, 1e-9);
}

}  // namespace
}  // namespace brushwork::znAG
