#include "geometry/curve_length.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

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

Spline bezier(std::int32_t degree, std::vector<double> points) {
    SplineNumbers s;
    s.degree = degree;
    s.knots.assign(static_cast<std::size_t>(degree), 0.0);
    s.knots.insert(s.knots.end(), static_cast<std::size_t>(degree), 1.0);
    s.points = std::move(points);
    return compact(s);
}

TEST(CurveLength, IsExactWhereAFormulaIsKnown) {
    const Spline circle = compact(test::circle(AG_HOMOGENEOUS));
    EXPECT_NEAR(CurveLength(*circle).length(), 2.0 * std::numbers::pi, 1e-10);
    EXPECT_NEAR(CurveLength(*bezier(1, {1, 2, 4, 6})).length(), 5.0, 1e-13);
    // y = x^2 from 0 to 1.
    const double root = std::sqrt(5.0);
    EXPECT_NEAR(CurveLength(*bezier(2, {0, 0, 0.5, 0, 1, 1})).length(),
                root / 2.0 + std::asinh(2.0) / 4.0, 1e-12);
    // (x^2, x^3) from -1 to 1, with its cusp: twice (13 sqrt(13) - 8) / 27.
    EXPECT_NEAR(CurveLength(*bezier(3, {1, -1, -1.0 / 3.0, 1, -1.0 / 3.0, -1, 1, 1})).length(),
                2.0 * (13.0 * std::sqrt(13.0) - 8.0) / 27.0, 1e-6);
    // There and back on one line.
    EXPECT_NEAR(CurveLength(*bezier(2, {0, 0, 2, 0, 0, 0})).length(), 2.0, 1e-6);
}

TEST(CurveLength, ParametersAndLengthsGoBothWays) {
    std::mt19937 random(41);
    for (int round = 0; round < 60; ++round) {
        SplineNumbers s = test::randomSpline(random);
        if (s.dim < 2) continue;
        const Spline spline = compact(s);
        const CurveLength arc(*spline);
        EXPECT_EQ(arc.parameterAt(-1.0), s.start());
        EXPECT_EQ(arc.parameterAt(arc.length() + 1.0), s.end());
        EXPECT_EQ(arc.parameterAt(std::nan("")), s.start());
        EXPECT_EQ(arc.lengthTo(s.end() + 1), arc.length());
        double before = s.start();
        double walked = 0.0;
        CurvePoint last = curvePoint(*spline, before).value();
        for (int i = 1; i <= 500; ++i) {
            const double length = arc.length() * i / 500.0;
            const double t = arc.parameterAt(length);
            ASSERT_GE(t, before);
            before = t;
            EXPECT_NEAR(arc.lengthTo(t), length, 1e-8 * arc.length()) << round;
            const CurvePoint p = curvePoint(*spline, t).value();
            const double chord = std::hypot(p.x - last.x, p.y - last.y);
            EXPECT_LE(chord, arc.length() / 500.0 * (1 + 1e-6));
            walked += chord;
            last = p;
        }
        EXPECT_NEAR(walked, arc.length(), 1e-2 * arc.length());
    }
}

// Where the curve stands still, lengths say next to nothing about parameters; yet none is lost.
TEST(CurveLength, ParametersStayInOrderAcrossCusps) {
    for (const Spline& spline : {bezier(2, {0, 0, 2, 0, 0, 0}), bezier(3, {0, 0, 0, 0, 0, 0, 1, 0}),
                                 bezier(3, {1, -1, -1.0 / 3.0, 1, -1.0 / 3.0, -1, 1, 1})}) {
        const CurveLength arc(*spline);
        double before = 0.0;
        for (int i = 0; i <= 3000; ++i) {
            const double s = arc.length() * i / 3000.0;
            const double t = arc.parameterAt(s);
            ASSERT_TRUE(t >= before && t <= 1.0) << i;
            ASSERT_NEAR(arc.lengthTo(t), s, 1e-6) << i;
            before = t;
        }
    }
}

}  // namespace
}  // namespace brushwork::znAG
