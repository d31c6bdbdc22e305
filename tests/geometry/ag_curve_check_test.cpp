#include "geometry/ag_curve_check.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "geometry/ag_curve_compare.h"
#include "geometry/spline_makers.h"

namespace brushwork {
namespace {

using test::SplineNumbers;

// A parabola over [start, start + 1].
AgSplinePtr arc(double start, std::int32_t dim = 2) {
    SplineNumbers s;
    s.dim = dim;
    s.degree = 2;
    s.knots = {start, start, start + 1, start + 1};
    for (std::size_t i = 0; i < 3 * static_cast<std::size_t>(dim); ++i)
        s.points.push_back(start + static_cast<double>(i % 3));
    return test::make(s).spline;
}

AgCurvePtr arcs(std::size_t count) {
    std::vector<AgSplinePtr> splines;
    for (std::size_t i = 0; i < count; ++i) splines.push_back(arc(static_cast<double>(i)));
    return agMakeCurve(std::move(splines)).curve;
}

TEST(CurveCheck, EverySpoiledCurveEarnsItsMessage) {
    std::set<std::int32_t> seen;
    static AgSplinePtr stranger;
    stranger = arc(0);
    const auto expect = [&](std::int32_t message, auto spoil) {
        SCOPED_TRACE(message);
        const AgCurvePtr curve = arcs(4);
        ASSERT_TRUE(curve);
        ASSERT_EQ(ag_check(curve.get()), 0);
        AG_SPLINE* const s[4] = {curve->bs0, curve->bs0->next, curve->bs0->next->next,
                                 curve->bs0->prev};
        curve->bs = s[1];
        spoil(*curve, s);
        EXPECT_EQ(agCheckCurve(curve.get()), message);
        EXPECT_EQ(ag_copy(curve.get()) == nullptr, message != 0);
        std::ostringstream out;
        ag_print(curve.get(), out);
        const AgCurvePtr other = arcs(4);
        EXPECT_TRUE(ag_compare(curve.get(), other.get()) <= 9);
        EXPECT_TRUE(ag_compare(other.get(), curve.get()) <= 9);
        seen.insert(message);
    };
    using Splines = AG_SPLINE* const*;
    expect(1, [](AG_CURVE& c, Splines) { c.cls = &agPob1Class; });
    expect(1, [](AG_CURVE& c, Splines) { c.cls = nullptr; });
    expect(2, [](AG_CURVE& c, Splines) { c.bs0 = nullptr; });
    expect(3, [](AG_CURVE& c, Splines) { c.nbs = 0; });
    expect(4, [](AG_CURVE& c, Splines) { c.form = 3; });
    expect(5, [](AG_CURVE& c, Splines) { c.bs0->prev = nullptr; });
    expect(6, [](AG_CURVE&, Splines s) { s[3]->next = s[2]; });
    expect(7, [](AG_CURVE&, Splines s) { s[3]->noden = nullptr; });
    expect(7, [](AG_CURVE&, Splines s) { *s[3]->noden->t = 0.0; });
    expect(8, [](AG_CURVE&, Splines s) { s[0]->form = 9; });
    expect(9, [](AG_CURVE&, Splines s) { s[3]->form = 9; });
    expect(10, [](AG_CURVE&, Splines s) { s[1]->form = 9; });
    expect(10, [](AG_CURVE& c, Splines) { c.bs = nullptr; });
    expect(11, [](AG_CURVE& c, Splines) { c.dim = 3; });
    expect(11, [](AG_CURVE&, Splines s) { s[2]->dim = 1; });
    expect(12, [](AG_CURVE&, Splines s) { *s[2]->node0->t += 1e-9; });
    expect(12, [](AG_CURVE&, Splines s) { s[2]->node0 = nullptr; });
    expect(13, [](AG_CURVE& c, Splines) { c.nbs = 3; });
    expect(13, [](AG_CURVE& c, Splines) { c.nbs = 2147483647; });
    expect(13, [](AG_CURVE&, Splines s) { s[2]->prev = s[0]; });
    expect(13, [](AG_CURVE& c, Splines s) {  // turns back on itself, never reaching bs0
        c.nbs = 2147483647;
        s[2]->next = s[1];
    });
    expect(14, [](AG_CURVE& c, Splines) { c.bs = stranger.get(); });
    for (std::int32_t message = 1; message <= 14; ++message)
        EXPECT_TRUE(seen.count(message)) << message;
    stranger.reset();
}

TEST(CurveBuilder, LinksARingAndTellsWhatIsWrong) {
    const AgCurvePtr one = arcs(1);
    ASSERT_TRUE(one);
    EXPECT_EQ(one->bs0->next, one->bs0);
    EXPECT_EQ(agMakeCurve({}).message, 3);
    std::vector<AgSplinePtr> gap;
    gap.push_back(arc(0));
    gap.push_back(arc(2));
    EXPECT_EQ(agMakeCurve(std::move(gap)).message, 12);
    std::vector<AgSplinePtr> mixed;
    mixed.push_back(arc(0));
    mixed.push_back(arc(1, 3));
    EXPECT_EQ(agMakeCurve(std::move(mixed)).message, 11);
    std::vector<AgSplinePtr> hole(2);
    hole[0] = arc(0);
    EXPECT_EQ(agMakeCurve(std::move(hole)).message, 13);
}

TEST(CurveCompare, FindsEveryDifference) {
    const AgCurvePtr one = arcs(3);
    const auto differ = [&](auto change) {
        const AgCurvePtr two = agCopyCurve(*one);
        change(*two, *two->bs0->next);
        return ag_compare(one.get(), two.get());
    };
    EXPECT_EQ(differ([](AG_CURVE&, AG_SPLINE&) {}), 0);
    EXPECT_EQ(differ([](AG_CURVE& c, AG_SPLINE&) { c.dim = 3; }), 1);
    EXPECT_EQ(differ([](AG_CURVE& c, AG_SPLINE&) { c.form = 1; }), 2);
    EXPECT_EQ(differ([](AG_CURVE& c, AG_SPLINE&) { c.nbs = 2; }), 3);
    EXPECT_EQ(differ([](AG_CURVE&, AG_SPLINE& s) { s.next = nullptr; }), 4);
    EXPECT_EQ(differ([](AG_CURVE&, AG_SPLINE& s) { s.cls = nullptr; }), 4);
    EXPECT_EQ(differ([](AG_CURVE&, AG_SPLINE& s) { s.ctype = 2; }), 5);
    EXPECT_EQ(differ([](AG_CURVE&, AG_SPLINE& s) { s.n = 2; }), 6);
    EXPECT_EQ(differ([](AG_CURVE&, AG_SPLINE& s) { *s.node0->t += 0.5; }), 7);
    EXPECT_EQ(differ([](AG_CURVE&, AG_SPLINE& s) { s.node0->next = nullptr; }), 8);
    EXPECT_EQ(differ([](AG_CURVE&, AG_SPLINE& s) { s.noden->Pw[0] += 1; }), 9);
}

TEST(CurveCopy, StandsAloneWithTheSameCurrentSpline) {
    AgCurvePtr one = arcs(3);
    one->bs = one->bs0->next;
    one->bs->node = one->bs->noden->next;
    const AgObjectPtr copy = ag_copy(one.get());
    ASSERT_TRUE(copy);
    EXPECT_EQ(ag_compare(one.get(), copy.get()), 0);
    one.reset();
    const AG_CURVE& c = static_cast<const AG_CURVE&>(*copy);
    EXPECT_EQ(ag_check(&c), 0);
    EXPECT_EQ(c.bs, c.bs0->next);
    EXPECT_EQ(c.bs->node, c.bs->noden->next);
}

}  // namespace
}  // namespace brushwork
