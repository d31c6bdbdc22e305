#include "geometry/ag_compact_spline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <thread>

#include "brushwork/ref.h"
#include "geometry/spline_makers.h"
#include "support/allocation_count.h"

namespace brushwork::znAG {
namespace {

using test::circle;
using test::make;
using test::randomSpline;
using test::SplineNumbers;

TEST(CompactSpline, ConvertsThereAndBack) {
    std::mt19937 random(12);
    const auto compact = makeRef<agCompactSpline>();
    for (int round = 0; round < 300; ++round) {
        const SplineNumbers s = randomSpline(random);
        const AgSplinePtr nodes = make(s).spline;
        ASSERT_TRUE(compact->convert(nodes.get()));
        EXPECT_EQ(compact->stride(), s.dim + (s.rat != 0));
        EXPECT_EQ(compact->knotCount(), nodes->n - 1 + (s.degree + 1) * 2);
        EXPECT_EQ(compact->pointCount(), nodes->n + s.degree);
        EXPECT_EQ(compact->firstKnot(), -s.degree);
        EXPECT_EQ(compact->start(), s.start());
        EXPECT_EQ(compact->end(), s.end());
        EXPECT_EQ(compact->knot(-s.degree), s.knots.front());
        EXPECT_EQ(compact->knot(compact->spans() + s.degree), s.knots.back());
        const AgSplinePtr back = compact->toNodes();
        ASSERT_TRUE(back);
        EXPECT_EQ(ag_compare(nodes.get(), back.get()), 0);
        const auto again = makeRef<agCompactSpline>(*back);
        EXPECT_TRUE(std::ranges::equal(again->knots(), compact->knots()));
        for (std::size_t i = 0; i < again->points().size(); ++i)
            EXPECT_NEAR(again->points()[i], compact->points()[i], 1e-14 * 30);
    }
    const AgSplinePtr round = make(circle(AG_NON_HOMOGENEOUS)).spline;
    ASSERT_TRUE(compact->convert(round.get()));
    EXPECT_EQ(ag_compare(round.get(), compact->toNodes().get()), 0);
    EXPECT_DOUBLE_EQ(compact->points()[3], std::sqrt(0.5));  // multiplied by its weight
    EXPECT_DOUBLE_EQ(compact->low()[0], -1.0);
    EXPECT_DOUBLE_EQ(compact->high()[1], 1.0);
}

TEST(CompactSpline, NullAndSpoiledNodesClear) {
    const AgSplinePtr nodes = make(circle(AG_HOMOGENEOUS)).spline;
    const auto compact = makeRef<agCompactSpline>(*nodes);
    double p[2];
    EXPECT_TRUE(compact->convert(nullptr));
    EXPECT_EQ(compact->spans(), 0);
    EXPECT_FALSE(compact->evaluate(0.0, p));
    EXPECT_EQ(compact->toNodes(), nullptr);
    EXPECT_TRUE(compact->knots().empty());
    EXPECT_TRUE(compact->points().empty());
    const auto copyOfNothing = makeRef<agCompactSpline>(*compact);
    EXPECT_EQ(copyOfNothing->spans(), 0);
    ASSERT_TRUE(compact->convert(nodes.get()));
    nodes->node0->next = nullptr;
    EXPECT_FALSE(compact->convert(nodes.get()));
    EXPECT_EQ(compact->spans(), 0);
    // What makes a spline improper but not meaningless doesn't keep it from being evaluated.
    const AgSplinePtr odd = make(circle(AG_HOMOGENEOUS)).spline;
    odd->ctype = AG_C2_CUBIC;
    EXPECT_TRUE(compact->convert(odd.get()));
    EXPECT_EQ(compact->toNodes(), nullptr);
}

TEST(CompactSpline, RebuildKeepsTheArraysIfOnlyTheFormChanges) {
    const auto spline = makeRef<agCompactSpline>(4, 3, AG_OPEN, 2, true);
    ASSERT_EQ(spline->spans(), 4);
    spline->point(6)[2] = 5.0;
    const double* const block = spline->points().data();
    EXPECT_TRUE(spline->rebuild(4, 3, AG_PERIODIC, 2, true));
    EXPECT_EQ(spline->form(), AG_PERIODIC);
    EXPECT_EQ(spline->points().data(), block);
    EXPECT_EQ(spline->points().back(), 5.0);
    EXPECT_TRUE(spline->rebuild(4, 3, AG_OPEN, 3, true));
    EXPECT_EQ(spline->points().size(), 28u);
    EXPECT_EQ(std::ranges::count(spline->points(), 0.0), 28);
    constexpr std::int32_t huge = 2147483647;
    for (const auto& [spans, degree, form, dim] : {std::array{0, 3, 0, 2},
                                                   {4, 0, 0, 2},
                                                   {4, 3, 0, 0},
                                                   {4, 3, 3, 2},
                                                   {-1, -1, 0, -1},
                                                   {huge, 3, 0, 2},
                                                   {4, huge, 0, 2},
                                                   {4, 3, 0, huge},
                                                   {huge, huge, 0, huge},
                                                   {65536, 65536, 0, 65536}}) {
        EXPECT_FALSE(spline->rebuild(spans, degree, form, dim, false));
        EXPECT_EQ(spline->spans(), 0);
    }
    // Knots that nobody set are no reason to break.
    const auto unset = makeRef<agCompactSpline>(5, 2, AG_OPEN, 2, true);
    double p[2];
    EXPECT_TRUE(unset->evaluate(1.0, p));
    EXPECT_EQ(unset->toNodes(), nullptr);
}

TEST(CompactSpline, CopiesAreDeep) {
    const AgSplinePtr nodes = make(circle(AG_HOMOGENEOUS)).spline;
    const auto one = makeRef<agCompactSpline>(*nodes);
    const auto two = makeRef<agCompactSpline>(*one);
    one->point(0)[0] = 9.0;
    EXPECT_EQ(ag_compare(nodes.get(), two->toNodes().get()), 0);
}

TEST(CompactSpline, TheHintFollowsTheEvaluations) {
    const auto spline = makeRef<agCompactSpline>(*make(circle(AG_HOMOGENEOUS)).spline);
    double p[2];
    for (const double t : {3.5, 0.5, 4.0, 1.0, 2.999}) {
        ASSERT_TRUE(spline->evaluate(t, p));
        const std::int32_t span = spline->spanHint();
        EXPECT_LE(spline->knot(span), t);
        EXPECT_TRUE(t < spline->knot(span + 1) || t == 4.0);
        EXPECT_LT(spline->knot(span), spline->knot(span + 1));
    }
    // From every hint, a senseless one too, the same span.
    for (std::int32_t hint = -3; hint < 12; ++hint)
        EXPECT_EQ(agFindSpan(spline->view(), 2.0, hint), 4);
}

TEST(CompactSpline, AMillionEvaluationsAllocateNothingAfterTheFirst) {
    SplineNumbers tall;  // high enough to need work space
    tall.degree = 9;
    tall.dim = 3;
    tall.rat = AG_NON_HOMOGENEOUS;
    for (int i = 0; i < 40; ++i) tall.knots.push_back(i);
    for (int i = 0; i < 32 * 4; ++i) tall.points.push_back(1 + i % 7);
    for (const SplineNumbers& numbers : {circle(AG_HOMOGENEOUS), tall}) {
        const auto spline = makeRef<agCompactSpline>(*make(numbers).spline);
        double point[3], first[3], second[3];
        ASSERT_TRUE(spline->evaluate(spline->start(), point, first, second));
        const double step = (spline->end() - spline->start()) / 1e6;
        double sum = 0.0;
        const auto before = test::allocations();
        for (int i = 0; i < 1000000; i += 2) {
            const double t = spline->start() + step * static_cast<double>((i * 7919LL) % 1000000);
            spline->evaluate(t, point);
            spline->evaluate(t, point, first, second);
            sum += point[0];
        }
        EXPECT_EQ(test::allocations() - before, 0u);
        EXPECT_TRUE(std::isfinite(sum));
    }
    const auto before = test::allocations();
    ::operator delete(::operator new(1));
    EXPECT_EQ(test::allocations() - before, 1u);
}

TEST(CompactSpline, OneSplineServesManyEvaluators) {
    const auto spline = makeRef<agCompactSpline>(*make(circle(AG_HOMOGENEOUS)).spline);
    std::vector<std::thread> threads;
    for (int k = 0; k < 4; ++k)
        threads.emplace_back([&spline, k] {
            agCompactSplineEval eval;
            for (int i = 0; i < 5000; ++i) {
                double p[2];
                eval.evaluate(spline->view(), (i * (k + 3) % 4001) / 1000.0, p);
                EXPECT_NEAR(std::hypot(p[0], p[1]), 1.0, 1e-12);
            }
        });
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace brushwork::znAG
