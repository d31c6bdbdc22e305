#include "geometry/ag_curve_check.h"

#include <cmath>

namespace brushwork {

const char* const agCurveCheckMessages[15] = {
    "0: 14 (number of valid AG_CURVE ag_check() messages)",
    "1: AG_CURVE object class record is corrupt.",
    "2: ->bs0 is NULL.",
    "3: ->nbs < 1.",
    "4: ->form < -2 or ->form > 2.",
    "5: ->bs0->prev is NULL.",
    "6: ->bs0->prev->next != ->bs0.",
    "7: Unable to determine curve's domain.",
    "8: ->bs0 is a corrupt bspline.",
    "9: ->bs0->prev is a corrupt bspline.",
    "10: ->bs is a corrupt bspline.",
    "11: ->dim != ->bs->dim.",
    "12: Neighboring bsplines not continuously parametrized.",
    "13: Curve does not contain a loop of ->nbs bsplines.",
    "14: ->bs does not point to a bspline in curve's loop."};

namespace {

std::int32_t checkHead(const AG_CURVE& c) {
    if (!c.bs0) return 2;
    if (c.nbs < 1) return 3;
    if (c.form < -2 || c.form > 2) return 4;
    if (!c.bs0->prev) return 5;
    if (c.bs0->prev->next != c.bs0) return 6;
    const AG_NODE* const start = c.bs0->node0;
    const AG_NODE* const end = c.bs0->prev->noden;
    if (!start || !start->t || !end || !end->t || !(*start->t < *end->t)) return 7;
    return 0;
}

bool isSpline(const AG_SPLINE* spline) {
    return agSplineClass.operations.ag_check(spline) == 0;
}

// Of the ring from bs0 to where it closes or breaks, at most nbs splines.
template <class Test>
bool everyPair(const AG_CURVE& c, Test test) {
    const AG_SPLINE* spline = c.bs0;
    for (std::int32_t i = 1; i < c.nbs; ++i) {
        const AG_SPLINE* after = agSplineAfter(spline);
        if (!after || after == c.bs0) break;
        if (!test(*spline, *after)) return false;
        spline = after;
    }
    return true;
}

bool runsOn(const AG_SPLINE& before, const AG_SPLINE& after) {
    return isSpline(&after) && std::abs(*after.node0->t - *before.noden->t) <= agParameterTolerance;
}

std::int32_t checkRing(const AG_CURVE& c) {
    const auto hasDimension = [&](const AG_SPLINE&, const AG_SPLINE& after) {
        return after.dim == c.dim;
    };
    if (c.dim != c.bs->dim || c.dim != c.bs0->dim || !everyPair(c, hasDimension)) return 11;
    if (!everyPair(c, runsOn)) return 12;
    if (!agRingHoldsTogether(c)) return 13;
    bool found = c.bs == c.bs0;
    everyPair(c, [&](const AG_SPLINE&, const AG_SPLINE& after) {
        found |= &after == c.bs;
        return !found;
    });
    return found ? 0 : 14;
}

}  // namespace

std::int32_t agCheckCurve(const AG_GOB* object) {
    if (!agIsOfClass(object, agCurveClass)) return 1;
    const AG_CURVE& c = *static_cast<const AG_CURVE*>(object);
    if (const std::int32_t message = checkHead(c)) return message;
    if (!isSpline(c.bs0)) return 8;
    if (!isSpline(c.bs0->prev)) return 9;
    if (!isSpline(c.bs)) return 10;
    return checkRing(c);
}

bool agRingHoldsTogether(const AG_CURVE& c) {
    if (!c.bs0) return false;
    const AG_SPLINE* spline = c.bs0;
    for (std::int32_t i = 1; i <= c.nbs; ++i) {
        spline = agSplineAfter(spline);
        if (!spline) return false;
        if (spline == c.bs0) return i == c.nbs;
    }
    return false;
}

}  // namespace brushwork
