#include "geometry/ag_spline_compare.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "geometry/ag_spline_check.h"

namespace brushwork {

const char* const agSplineCompareMessages[13] = {
    "0: 12 (number of valid AG_SPLINE ag_compare() messages)",
    "1: Different dimensions",
    "2: Different ->ctype flags",
    "3: Different ->form flags",
    "4: Different degrees",
    "5: Different number of spans",
    "6: Different ->rat flags",
    "7: Different domains",
    "8: Different knot values",
    "9: Different knot multiplicities",
    "10: Corrupt knot vector found",
    "11: Different control points",
    "12: Different bounding boxes"};

namespace {

bool isSameParameter(double a, double b) {
    return std::abs(a - b) <= agParameterTolerance;
}

bool areSameCoordinates(std::span<const double> a, std::span<const double> b, std::size_t count) {
    if (!a.data() || !b.data() || a.size() < count || b.size() < count) return false;
    return std::ranges::equal(a.first(count), b.first(count), [](double x, double y) {
        return std::abs(x - y) <= agPointTolerance;
    });
}

std::int32_t compareFields(const AG_SPLINE& a, const AG_SPLINE& b) {
    if (a.dim != b.dim) return 1;
    if (a.ctype != b.ctype) return 2;
    if (a.form != b.form) return 3;
    if (a.m != b.m) return 4;
    if (a.n != b.n) return 5;
    if (a.rat != b.rat) return 6;
    return 0;
}

bool hasDomain(const AG_SPLINE& s) {
    return s.node0 && s.noden && s.node0->t && s.noden->t;
}

struct Knot {
    double value;
    std::int32_t multiplicity;
};

// Empty for a list that doesn't hold together.
std::vector<Knot> knotsOf(const AG_SPLINE& s) {
    std::vector<Knot> knots;
    if (!agNodesHoldTogether(s)) return knots;
    const double* last = nullptr;
    for (const AG_NODE* node = agFirstNode(s); node; node = node->next) {
        if (!node->t) return {};
        if (node->t == last)
            ++knots.back().multiplicity;
        else
            knots.push_back({*node->t, 1});
        last = node->t;
    }
    return knots;
}

std::int32_t compareKnots(const AG_SPLINE& a, const AG_SPLINE& b) {
    if (!hasDomain(a) || !hasDomain(b)) return 10;
    if (!isSameParameter(*a.node0->t, *b.node0->t) || !isSameParameter(*a.noden->t, *b.noden->t))
        return 7;
    const std::vector<Knot> ka = knotsOf(a);
    const std::vector<Knot> kb = knotsOf(b);
    if (ka.empty() || kb.empty()) return 10;
    if (!std::ranges::equal(ka, kb, isSameParameter, &Knot::value, &Knot::value)) return 8;
    return std::ranges::equal(ka, kb, {}, &Knot::multiplicity, &Knot::multiplicity) ? 0 : 9;
}

std::int32_t comparePoints(const AG_SPLINE& a, const AG_SPLINE& b) {
    if (a.dim < 1) return 11;
    const AG_NODE* other = agFirstNode(b);
    for (const AG_NODE* node = agFirstNode(a); node != a.noden->next; node = node->next) {
        if (!areSameCoordinates(node->Pw, other->Pw, agStride(a))) return 11;
        other = other->next;
    }
    if (!a.bbox || !b.bbox) return 0;
    const std::size_t dim = static_cast<std::size_t>(a.dim);
    const bool same = areSameCoordinates(a.bbox->low, b.bbox->low, dim) &&
                      areSameCoordinates(a.bbox->high, b.bbox->high, dim);
    return same ? 0 : 12;
}

}  // namespace

std::int32_t agCompareSplines(const AG_GOB* a, const AG_GOB* b) {
    if (!agIsOfClass(a, agSplineClass) || !agIsOfClass(b, agSplineClass)) return -1;
    const AG_SPLINE& s = *static_cast<const AG_SPLINE*>(a);
    const AG_SPLINE& t = *static_cast<const AG_SPLINE*>(b);
    for (const auto step : {compareFields, compareKnots, comparePoints})
        if (const std::int32_t message = step(s, t)) return message;
    return 0;
}

}  // namespace brushwork
