#include "geometry/ag_spline_check.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "geometry/ag_de_boor.h"
#include "geometry/ag_spline_eval.h"

namespace brushwork {

const char* const agSplineCheckMessages[32] = {
    "0: 31 (number of valid AG_SPLINE ag_check() messages)",
    "1: The AG_SPLINE object class record is corrupt.",
    "2: NULL ->node pointer",
    "3: NULL ->noden pointer",
    "4: dimension < 1",
    "5: degree < 1",
    "6: illegal number of spans",
    "7: illegal ->rat flag",
    "8: illegal ->form flag",
    "9: illegal ->ctype flag",
    "10: too few nodes to the left of ->node0",
    "11: too many nodes to the left of ->node0",
    "12: NULL ->node0->next pointer",
    "13: too few nodes to the right of ->node0",
    "14: ->noden incorrectly set",
    "15: too few nodes to the right of ->noden",
    "16: too many nodes to the right of ->noden",
    "17: illegal ->node pointer",
    "18: node has a NULL ->t pointer",
    "19: *bs->noden->t <= *bs->node0->t",
    "20: knot with multiplicity > degree",
    "21: knots descending or too close together",
    "22: node has NULL ->Pw pointer",
    "23: illegal non-positive weight",
    "24: non-positive denominator at ->node0->t",
    "25: non-positive denominator at ->noden->t",
    "26: non-positive denominator",
    "27: an incorrect ->form flag",
    "28: ->ctype = AG_POWER.. or AG_BEZIER.. but not a Bezier",
    "29: ->ctype = AG_C2_CUBIC but spline is not a cubic",
    "30: ->ctype != an allowed curve or spline type",
    "31: bspline is not G1 and has degree >= 2"};

namespace {

std::int32_t checkFields(const AG_SPLINE& s) {
    if (!s.node0 || !s.node) return 2;
    if (!s.noden) return 3;
    if (s.dim < 1) return 4;
    if (s.m < 1) return 5;
    if (s.n < 1) return 6;
    if (s.rat < -1 || s.rat > 1) return 7;
    if (s.form < -2 || s.form > 2) return 8;
    if (s.ctype < 0 || s.ctype > 255) return 9;
    return 0;
}

enum class Way { Left, Right };

// Goes up to `steps` nodes on, ends before a node that isn't there and before coming round to
// `from` again. Answers how many it went.
std::int32_t walk(const AG_NODE*& node, Way way, std::int32_t steps) {
    const AG_NODE* const from = node;
    std::int32_t gone = 0;
    while (gone < steps) {
        const AG_NODE* other = way == Way::Left ? agNodeBefore(node) : agNodeAfter(node);
        if (!other || other == from) break;
        node = other;
        ++gone;
    }
    return gone;
}

std::int32_t checkLinks(const AG_SPLINE& s) {
    const AG_NODE* left = s.node0;
    if (walk(left, Way::Left, s.m - 1) < s.m - 1) return left->prev == s.node0 ? 11 : 10;
    if (left->prev) return 11;
    if (!s.node0->next) return 12;
    const AG_NODE* end = s.node0;
    if (walk(end, Way::Right, s.n) < s.n) return 13;
    if (end != s.noden) return 14;
    const AG_NODE* right = end;
    if (walk(right, Way::Right, s.m - 1) < s.m - 1) return 15;
    if (right->next) return 16;
    return 0;
}

std::int32_t checkKnots(const AG_SPLINE& s) {
    bool found = false;
    for (const AG_NODE* node = agFirstNode(s); node; node = node->next) found |= node == s.node;
    if (!found) return 17;
    for (const AG_NODE* node = agFirstNode(s); node; node = node->next)
        if (!node->t) return 18;
    if (!(*s.noden->t > *s.node0->t)) return 19;
    std::int32_t run = 1;
    for (const AG_NODE* node = agFirstNode(s)->next; node; node = node->next) {
        run = node->t == node->prev->t ? run + 1 : 1;
        if (run > s.m) return 20;
    }
    for (const AG_NODE* node = agFirstNode(s)->next; node; node = node->next) {
        if (node->t == node->prev->t) continue;
        const double gap = *node->t - *node->prev->t;
        if (!(gap >= agParameterTolerance) || !std::isfinite(gap)) return 21;
    }
    return 0;
}

std::int32_t checkPoints(const AG_SPLINE& s) {
    const AG_NODE* const end = s.noden->next;
    for (const AG_NODE* node = agFirstNode(s); node != end; node = node->next)
        if (!node->Pw.data() || node->Pw.size() < agStride(s)) return 22;
    if (s.rat != AG_NON_HOMOGENEOUS) return 0;
    for (const AG_NODE* node = agFirstNode(s); node != end; node = node->next)
        if (!(node->Pw[static_cast<std::size_t>(s.dim)] > 0.0)) return 23;
    return 0;
}

// One spline's points and tangents, for the rules that are tested by evaluation.
class Probe {
  public:
    explicit Probe(const AG_SPLINE& spline)
        : spline_(spline), dim_(static_cast<std::size_t>(spline.dim)), value_(dim_ + 1) {}

    [[nodiscard]] bool denominatorIsPositive(const AG_NODE& begin, double t) {
        agEvalSpan(spline_, begin, t, scratch_, value_.data(), nullptr, nullptr);
        return value_[dim_] > 0.0;
    }
    [[nodiscard]] std::vector<double> pointAt(const AG_NODE& begin, double t) {
        agEvalSpan(spline_, begin, t, scratch_, value_.data(), nullptr, nullptr);
        if (spline_.rat != AG_NOT_RATIONAL) agProject(dim_, value_.data(), nullptr, nullptr);
        return {value_.begin(), value_.begin() + static_cast<std::ptrdiff_t>(dim_)};
    }
    // Of length 1; of length 0 where the curve stands still and so has no tangent.
    [[nodiscard]] std::vector<double> tangentAt(const AG_NODE& begin, double t) {
        std::vector<double> first(dim_ + 1);
        agEvalSpan(spline_, begin, t, scratch_, value_.data(), first.data(), nullptr);
        if (spline_.rat != AG_NOT_RATIONAL) agProject(dim_, value_.data(), first.data(), nullptr);
        first.resize(dim_);
        double largest = 0.0;
        for (const double d : first) largest = std::max(largest, std::abs(d));
        if (!(largest > agParameterTolerance)) return std::vector<double>(dim_, 0.0);
        double sum = 0.0;
        for (const double d : first) sum += (d / largest) * (d / largest);
        for (double& d : first) d /= largest * std::sqrt(sum);
        return first;
    }

  private:
    const AG_SPLINE& spline_;
    std::size_t dim_;
    std::vector<double> value_;
    AgNodeScratch scratch_;
};

bool areSamePlace(const std::vector<double>& a, const std::vector<double>& b) {
    return std::ranges::equal(
        a, b, [](double x, double y) { return std::abs(x - y) <= agPointTolerance; });
}

bool areSameDirection(const std::vector<double>& a, const std::vector<double>& b) {
    const auto isZero = [](const std::vector<double>& v) {
        return std::ranges::all_of(v, [](double d) { return d == 0.0; });
    };
    return isZero(a) || isZero(b) || areSamePlace(a, b);
}

const AG_NODE& firstSpan(const AG_SPLINE& s) {
    return *agSpanAt(s, *s.node0->t);
}
const AG_NODE& lastSpan(const AG_SPLINE& s) {
    return *agSpanAt(s, *s.noden->t);
}

std::int32_t checkDenominators(const AG_SPLINE& s) {
    if (s.rat == AG_NOT_RATIONAL) return 0;
    Probe probe(s);
    if (!probe.denominatorIsPositive(firstSpan(s), *s.node0->t)) return 24;
    if (!probe.denominatorIsPositive(lastSpan(s), *s.noden->t)) return 25;
    for (const AG_NODE* node = s.node0->next; node != s.noden; node = node->next)
        if (node->t != node->next->t && !probe.denominatorIsPositive(*node, *node->t)) return 26;
    return 0;
}

bool formIsRight(const AG_SPLINE& s) {
    if (s.form < AG_CLOSED) return true;
    Probe probe(s);
    const AG_NODE& first = firstSpan(s);
    const AG_NODE& last = lastSpan(s);
    if (!areSamePlace(probe.pointAt(first, *s.node0->t), probe.pointAt(last, *s.noden->t)))
        return false;
    if (s.form < AG_PERIODIC || s.m < 2) return true;
    return areSameDirection(probe.tangentAt(first, *s.node0->t),
                            probe.tangentAt(last, *s.noden->t));
}

// One span, and the nodes on either side of it are those of its end knots.
bool isBezier(const AG_SPLINE& s) {
    if (s.n != 1) return false;
    for (const AG_NODE* node = s.node0; node; node = node->prev)
        if (node->t != s.node0->t) return false;
    for (const AG_NODE* node = s.noden; node; node = node->next)
        if (node->t != s.noden->t) return false;
    return true;
}

std::int32_t checkType(const AG_SPLINE& s) {
    if (s.ctype >= AG_POWER && s.ctype <= AG_POWER_STD) return isBezier(s) ? 0 : 28;
    if (s.ctype == AG_C2_CUBIC) return s.m == 3 ? 0 : 29;
    return s.ctype <= AG_HYPERBOLA ? 0 : 30;
}

// Below full multiplicity a spline has no corners.
bool hasNoCorners(const AG_SPLINE& s) {
    if (s.m < 2) return true;
    Probe probe(s);
    const AG_NODE* before = &firstSpan(s);
    std::int32_t run = 0;
    for (const AG_NODE* node = before->next; node != s.noden; node = node->next) {
        run = node->t == node->prev->t ? run + 1 : 1;
        if (node->t == node->next->t) continue;
        if (run == s.m &&
            !areSameDirection(probe.tangentAt(*before, *node->t), probe.tangentAt(*node, *node->t)))
            return false;
        before = node;
    }
    return true;
}

std::int32_t checkEvaluable(const AG_GOB* object) {
    if (!agIsOfClass(object, agSplineClass)) return 1;
    const AG_SPLINE& s = *static_cast<const AG_SPLINE*>(object);
    for (const auto step : {checkFields, checkLinks, checkKnots, checkPoints, checkDenominators})
        if (const std::int32_t message = step(s)) return message;
    return 0;
}

}  // namespace

std::int32_t agCheckSpline(const AG_GOB* object) {
    if (const std::int32_t message = checkEvaluable(object)) return message;
    const AG_SPLINE& s = *static_cast<const AG_SPLINE*>(object);
    if (!formIsRight(s)) return 27;
    if (const std::int32_t message = checkType(s)) return message;
    return hasNoCorners(s) ? 0 : 31;
}

bool agSplineIsEvaluable(const AG_GOB* object) {
    return checkEvaluable(object) == 0;
}

bool agNodesHoldTogether(const AG_SPLINE& s) {
    return s.node0 && s.noden && s.m > 0 && s.n > 0 && checkLinks(s) == 0;
}

}  // namespace brushwork
