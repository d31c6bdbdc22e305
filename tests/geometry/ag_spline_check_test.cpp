#include "geometry/ag_spline_check.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <sstream>
#include <string>

#include "brushwork/ref.h"
#include "geometry/ag_compact_spline.h"
#include "geometry/ag_spline_compare.h"
#include "geometry/spline_makers.h"

namespace brushwork {
namespace {

using test::circle;
using test::make;
using test::SplineNumbers;

// Degree 3, three spans, no knot twice but the ends, whose multiplicity is 2: nodes of all kinds.
SplineNumbers plain() {
    SplineNumbers s;
    s.knots = {-1, 0, 0, 1, 2, 3, 3, 4};
    s.points = {0, 0, 1, 2, 3, 2, 4, 0, 5, -1, 7, 3};
    return s;
}

// Every node of a spline, left to right.
std::vector<AG_NODE*> nodesOf(AG_SPLINE& spline) {
    AG_NODE* node = spline.node0;
    while (node->prev) node = node->prev;
    std::vector<AG_NODE*> nodes;
    for (; node; node = node->next) nodes.push_back(node);
    return nodes;
}

class SpoiledSpline : public ::testing::Test {
  protected:
    // A fresh valid spline, spoiled; its message must be `message`.
    template <class Spoil>
    void expect(std::int32_t message, const SplineNumbers& numbers, Spoil spoil) {
        SCOPED_TRACE(message);
        const AgSplinePtr spline = make(numbers).spline;
        ASSERT_TRUE(spline);
        ASSERT_EQ(ag_check(spline.get()), 0);
        spoil(*spline, nodesOf(*spline));
        EXPECT_EQ(ag_check(spline.get()), message);
        seen_.insert(message);
        std::ostringstream out;
        EXPECT_EQ(ag_print(spline.get(), out), message > 1);
        const Ref<znAG::agCompactSpline> compact = makeRef<znAG::agCompactSpline>();
        EXPECT_EQ(compact->convert(spline.get()), message > 26);
    }
    template <class Spoil>
    void expect(std::int32_t message, Spoil spoil) {
        expect(message, plain(), spoil);
    }
    std::set<std::int32_t> seen_;
};

using Nodes = const std::vector<AG_NODE*>&;

TEST_F(SpoiledSpline, EarnsEveryMessage) {
    expect(1, [](AG_SPLINE& s, Nodes) { s.cls = nullptr; });
    expect(2, [](AG_SPLINE& s, Nodes) { s.node0 = nullptr; });
    expect(2, [](AG_SPLINE& s, Nodes) { s.node = nullptr; });
    expect(3, [](AG_SPLINE& s, Nodes) { s.noden = nullptr; });
    expect(4, [](AG_SPLINE& s, Nodes) { s.dim = 0; });
    expect(5, [](AG_SPLINE& s, Nodes) { s.m = 0; });
    expect(6, [](AG_SPLINE& s, Nodes) { s.n = 0; });
    expect(7, [](AG_SPLINE& s, Nodes) { s.rat = 2; });
    expect(8, [](AG_SPLINE& s, Nodes) { s.form = -3; });
    expect(9, [](AG_SPLINE& s, Nodes) { s.ctype = 256; });
    expect(10, [](AG_SPLINE& s, Nodes) { s.m = 4; });
    expect(10, [](AG_SPLINE& s, Nodes) { s.m = std::numeric_limits<std::int32_t>::max(); });
    expect(10, [](AG_SPLINE&, Nodes n) { n[0]->next = n[3]; });
    expect(11, [](AG_SPLINE& s, Nodes) { s.m = 2; });
    expect(11, [](AG_SPLINE& s, Nodes n) {  // a ring of two nodes, each before the other
        s.m = 1000000;
        n[1]->prev = n[2];
        n[2]->next = n[1];
    });
    expect(12, [](AG_SPLINE& s, Nodes) { s.node0->next = nullptr; });
    expect(13, [](AG_SPLINE& s, Nodes) { s.n = 6; });
    expect(13, [](AG_SPLINE& s, Nodes) { s.n = std::numeric_limits<std::int32_t>::max(); });
    expect(13, [](AG_SPLINE&, Nodes n) { n[4]->next = n[3]; });
    expect(14, [](AG_SPLINE& s, Nodes) { s.n = 2; });
    expect(14, [](AG_SPLINE& s, Nodes) { s.noden = s.noden->prev; });
    expect(15, [](AG_SPLINE&, Nodes n) { n[6]->next = nullptr; });
    expect(15, [](AG_SPLINE&, Nodes n) { n[7]->prev = n[5]; });
    expect(16, [](AG_SPLINE&, Nodes n) { n[7]->next = n[0]; });
    expect(17, [](AG_SPLINE& s, Nodes) {
        static AG_NODE stranger;
        s.node = &stranger;
    });
    expect(18, [](AG_SPLINE&, Nodes n) { n[7]->t = nullptr; });
    expect(19, [](AG_SPLINE& s, Nodes) { *s.noden->t = 0.0; });
    expect(19, [](AG_SPLINE& s, Nodes) { *s.noden->t = std::nan(""); });
    expect(20, [](AG_SPLINE&, Nodes n) { n[3]->t = n[0]->t = n[1]->t; });
    expect(21, [](AG_SPLINE&, Nodes n) { *n[3]->t = 2.5; });
    expect(21, [](AG_SPLINE&, Nodes n) { *n[3]->t = 2.0; });
    expect(21, [](AG_SPLINE&, Nodes n) { *n[0]->t = -1e-13; });
    expect(21, [](AG_SPLINE&, Nodes n) { *n[7]->t = std::numeric_limits<double>::infinity(); });
    expect(22, [](AG_SPLINE&, Nodes n) { n[5]->Pw = {}; });
    expect(22, [](AG_SPLINE& s, Nodes) { s.dim = 1000000; });
    expect(22, [](AG_SPLINE& s, Nodes) { s.rat = 1; });
    const auto weight = [](std::size_t node, double value) {
        return [node, value](AG_SPLINE&, Nodes n) { n[node]->Pw[2] = value; };
    };
    expect(23, circle(AG_NON_HOMOGENEOUS), weight(3, 0.0));
    expect(23, circle(AG_NON_HOMOGENEOUS), weight(3, std::nan("")));
    expect(24, circle(AG_HOMOGENEOUS), weight(0, 0.0));
    expect(25, circle(AG_HOMOGENEOUS), weight(8, -1.0));
    expect(26, circle(AG_HOMOGENEOUS), weight(4, -0.1));
    expect(27, [](AG_SPLINE& s, Nodes) { s.form = AG_CLOSED; });
    expect(27, circle(AG_NON_HOMOGENEOUS), [](AG_SPLINE&, Nodes n) { n[7]->Pw[0] = 1.5; });
    expect(28, [](AG_SPLINE& s, Nodes) { s.ctype = AG_BEZIER; });
    expect(29, circle(AG_HOMOGENEOUS), [](AG_SPLINE& s, Nodes) { s.ctype = AG_C2_CUBIC; });
    expect(30, [](AG_SPLINE& s, Nodes) { s.ctype = 6; });
    expect(31, circle(AG_NON_HOMOGENEOUS), [](AG_SPLINE&, Nodes n) { n[3]->Pw[1] = 1.5; });
    for (std::int32_t message = 1; message <= 31; ++message)
        EXPECT_TRUE(seen_.count(message)) << message;
}

TEST(SplineCheck, AcceptsWhatTheRulesAllow) {
    // Points at infinity, a current node outside of the domain, types with their spans.
    SplineNumbers half;
    half.degree = 2;
    half.rat = AG_HOMOGENEOUS;
    half.ctype = AG_BEZIER01;
    half.knots = {0, 0, 1, 1};
    half.points = {1, 0, 1, 0, 1, 0, -1, 0, 1};
    const AgSplinePtr spline = make(half).spline;
    ASSERT_TRUE(spline);
    spline->node = spline->node0->prev;
    EXPECT_EQ(ag_check(spline.get()), 0);
    SplineNumbers line;
    line.degree = 1;
    line.ctype = AG_POWER;
    line.knots = {0, 1};
    line.points = {0, 0, 1, 1};
    const AgSplinePtr straight = make(line).spline;
    ASSERT_TRUE(straight);
    EXPECT_EQ(straight->node0->prev, nullptr);
    // A corner is allowed at degree 1, and a record elsewhere that says the same is the class.
    SplineNumbers corner = line;
    corner.ctype = AG_NOTHING_SPECIAL;
    corner.knots = {0, 1, 2};
    corner.points = {0, 0, 1, 1, 2, 0};
    const AgSplinePtr bent = make(corner).spline;
    ASSERT_TRUE(bent);
    AG_CLASS twin = agSplineClass;
    bent->cls = &twin;
    EXPECT_EQ(ag_check(bent.get()), 0);
    twin.size = 55;
    EXPECT_EQ(ag_check(bent.get()), 1);
}

TEST(SplineBuilder, TellsTheMessageThatItsNumbersEarn) {
    const auto messageOf = [](auto change) {
        SplineNumbers s = plain();
        change(s);
        const AgSplineResult result = make(s);
        EXPECT_EQ(result.spline == nullptr, result.message != 0);
        return result.message;
    };
    EXPECT_EQ(messageOf([](SplineNumbers&) {}), 0);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.dim = -1; }), 4);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.degree = 0; }), 5);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.degree = 2147483647; }), 6);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.degree = 5; }), 6);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.dim = 2147483647; }), 22);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.points.pop_back(); }), 22);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.knots = {0, 0, 0, 0, 0, 0, 0, 0}; }), 19);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.knots[3] = 5; }), 21);
    EXPECT_EQ(messageOf([](SplineNumbers& s) { s.ctype = 7; }), 30);
}

TEST(SplineCheck, EndsOnAnySpoiledList) {
    std::mt19937 random(3);
    std::size_t valid = 0;
    for (int round = 0; round < 4000; ++round) {
        const AgSplinePtr spline = make(test::randomSpline(random)).spline;
        ASSERT_TRUE(spline) << round;
        const AgSplinePtr other = agCopySpline(*spline);
        ASSERT_TRUE(other);
        ASSERT_EQ(ag_compare(spline.get(), other.get()), 0);
        const std::vector<AG_NODE*> nodes = nodesOf(*spline);
        const auto anyNode = [&]() -> AG_NODE* {
            const std::size_t at = static_cast<std::size_t>(random()) % (nodes.size() + 1);
            return at < nodes.size() ? nodes[at] : nullptr;
        };
        const auto anyCount = [&] {
            const std::int32_t counts[] = {-1, 0, 1, 2, 3, 5, 9, 2147483647, -2147483647 - 1};
            return counts[random() % 9];
        };
        for (int spoils = test::pick(random, 1, 4); spoils > 0; --spoils) {
            AG_NODE* const node = nodes[random() % nodes.size()];
            switch (random() % 12) {
                case 0: node->next = anyNode(); break;
                case 1: node->prev = anyNode(); break;
                case 2: spline->node0 = anyNode(); break;
                case 3: spline->noden = anyNode(); break;
                case 4: spline->node = anyNode(); break;
                case 5: spline->n = anyCount(); break;
                case 6: spline->m = anyCount(); break;
                case 7: spline->dim = anyCount(); break;
                case 8: spline->rat = anyCount(); break;
                case 9: node->Pw = node->Pw.first(node->Pw.size() / 2); break;
                case 10:
                    if (node->t) *node->t = test::between(random, -9, 9);
                    break;
                default: node->t = random() % 2 ? nullptr : nodes[0]->t; break;
            }
        }
        const std::int32_t message = ag_check(spline.get());
        EXPECT_TRUE(message >= 0 && message <= 31);
        valid += message == 0;
        const std::int32_t difference = ag_compare(spline.get(), other.get());
        EXPECT_TRUE(difference >= 0 && difference <= 12);
        EXPECT_TRUE(ag_compare(other.get(), spline.get()) >= 0);
        std::ostringstream out;
        EXPECT_TRUE(ag_print(spline.get(), out));
        const AgObjectPtr copy = ag_copy(spline.get());
        EXPECT_EQ(copy != nullptr, message == 0);
    }
    EXPECT_GT(valid, 100u);
    EXPECT_LT(valid, 3000u);
}

TEST(SplineCompare, FindsEveryDifference) {
    const SplineNumbers base = circle(AG_HOMOGENEOUS);
    const AgSplinePtr one = make(base).spline;
    const auto differ = [&](auto change) {
        const AgSplinePtr two = agCopySpline(*one);
        change(*two, nodesOf(*two));
        const std::int32_t difference = ag_compare(one.get(), two.get());
        EXPECT_EQ(ag_compare(two.get(), one.get()), difference);
        return difference;
    };
    EXPECT_EQ(differ([](AG_SPLINE&, Nodes) {}), 0);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.dim = 1; }), 1);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.ctype = 0; }), 2);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.form = 0; }), 3);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.m = 3; }), 4);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.n = 3; }), 5);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.rat = 1; }), 6);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { *s.noden->t += 1e-9; }), 7);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { *s.noden->t += 4e-16; }), 0);
    EXPECT_EQ(differ([](AG_SPLINE&, Nodes n) { *n[2]->t += 1e-9; }), 8);
    EXPECT_EQ(differ([](AG_SPLINE&, Nodes n) { n[4]->t = n[3]->t; }), 9);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.node0->next = nullptr; }), 10);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.noden = nullptr; }), 10);
    EXPECT_EQ(differ([](AG_SPLINE&, Nodes n) { n[5]->t = nullptr; }), 10);
    EXPECT_EQ(differ([](AG_SPLINE&, Nodes n) { n[4]->Pw[1] += 2e-5; }), 11);
    EXPECT_EQ(differ([](AG_SPLINE&, Nodes n) { n[4]->Pw[1] += 5e-6; }), 0);
    EXPECT_EQ(differ([](AG_SPLINE&, Nodes n) { n[4]->Pw = {}; }), 11);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.bbox->high[0] = 3; }), 12);
    EXPECT_EQ(differ([](AG_SPLINE& s, Nodes) { s.bbox = nullptr; }), 0);
}

TEST(SplinePrint, SaysWhatThereIs) {
    SplineNumbers s;
    s.degree = 2;
    s.rat = AG_NON_HOMOGENEOUS;
    s.ctype = AG_PARABOLA;
    s.knots = {0, 0, 0.5, 2, 2};
    s.points = {0, 0, 1, 1, 2.5, 1, 2, 0, 0.75, 1e9, 0, 1};
    const AgSplinePtr spline = make(s).spline;
    ASSERT_TRUE(spline);
    std::ostringstream out;
    ASSERT_TRUE(ag_print(spline.get(), out));
    const std::string text = out.str();
    const std::size_t links = text.find("->prev ");
    ASSERT_NE(links, std::string::npos);
    EXPECT_EQ(text.substr(0, links),
              "dimension: 2\ndegree 2  spans 2\nnon-homogeneous rational\n"
              "B-spline type: 2 (PARABOLA)\nform: open\n");
    EXPECT_NE(text.find("  ->next "), std::string::npos);
    EXPECT_EQ(text.substr(text.find("knot vector")),
              "knot vector (multiplicity) value\n(2) 0\n(1) 0.5\n(2) 2\nControl points:\n0 0 1\n"
              "1 2.5 1\n2 0 0.75\n1e+09 0 1\n");
    spline->ctype = 11;
    spline->form = -2;
    out.str("");
    ag_print(spline.get(), out);
    EXPECT_NE(out.str().find("B-spline type: 11 (?UNKNOWN?)\nform: invalid\n"), std::string::npos);
}

}  // namespace
}  // namespace brushwork
