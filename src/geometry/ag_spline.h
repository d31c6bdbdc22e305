// AG_SPLINE: a B-spline curve as a list of nodes, the form for editing. For evaluation in numbers
// see agCompactSpline.
//
//     AgSplineData data{.dim = 2, .degree = 3, .knots = knots, .points = points};
//     AgSplineResult made = agMakeSpline(data);
//     if (!made.spline) log(agMessage(agSplineClass.checkMessages, made.message));
//
// The record is plain and everyone may edit it; ag_check tells whether it still keeps its rules.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "geometry/ag_class_record.h"
#include "geometry/ag_node.h"

namespace brushwork {

// What a curve is, never how it is stored: the nodes describe it whatever the type.
enum AG_CTYPE : std::int32_t {
    AG_NOTHING_SPECIAL = 0,
    AG_LINE = 1,
    AG_PARABOLA = 2,
    AG_CIRCLE = 3,
    AG_ELLIPSE = 4,
    AG_HYPERBOLA = 5,
    AG_C2_CUBIC = 10,  // of degree 3
    AG_POWER = 101,    // these five: of one span whose end knots have full multiplicity
    AG_POWER01 = 102,
    AG_BEZIER = 103,
    AG_BEZIER01 = 104,
    AG_POWER_STD = 105
};

enum AG_RAT : std::int32_t {
    AG_HOMOGENEOUS = -1,     // points are multiplied by their weights; weights may be 0 or less as
                             // long as the curve's denominator is positive
    AG_NOT_RATIONAL = 0,     // points have no weights
    AG_NON_HOMOGENEOUS = 1,  // points are as they are seen; all weights are above 0
};

// Below 0 a form is not determined.
enum AG_FORM : std::int32_t {
    AG_OPEN = 0,      // promises nothing: the ends may happen to meet
    AG_CLOSED = 1,    // the ends meet
    AG_PERIODIC = 2,  // the ends meet in one tangent, from degree 2 on
};

// A box around a curve: `dim` coordinates each.
struct AG_BOX {
    std::span<double> low{};
    std::span<double> high{};
};

// Borrows all it points to. Of its nodes m - 1 lie left of node0, the domain runs over n steps from
// node0 to noden, and m - 1 more follow.
struct AG_SPLINE : AG_GOB {
    AG_SPLINE* next = nullptr;  // the ring of the curve it belongs to; null outside of one
    AG_SPLINE* prev = nullptr;
    std::int32_t ctype = AG_NOTHING_SPECIAL;
    std::int32_t dim = 0;  // coordinates of a point
    std::int32_t m = 0;    // degree
    std::int32_t n = 0;    // spans, those of no length too
    std::int32_t rat = AG_NOT_RATIONAL;
    std::int32_t form = AG_OPEN;
    AG_NODE* node0 = nullptr;
    AG_NODE* noden = nullptr;
    AG_NODE* node = nullptr;  // the current one: where the last evaluation found its span
    AG_BOX* bbox = nullptr;   // null while nobody has asked for it
    void* data = nullptr;     // the owner's; never read, copied or freed here
};
static_assert(sizeof(void*) != 4 || sizeof(AG_SPLINE) == 56);
using ag_spline = AG_SPLINE;

extern const AG_CLASS agSplineClass;

void agFreeSpline(AG_SPLINE* spline) noexcept;  // one made by agMakeSpline; null is fine
struct AgFreeSpline {
    void operator()(AG_SPLINE* spline) const noexcept { agFreeSpline(spline); }
};
// Frees nodes, knots, points and box with the spline, however their links were edited.
using AgSplinePtr = std::unique_ptr<AG_SPLINE, AgFreeSpline>;

// What a spline is built from. Read while it is built, then forgotten.
struct AgSplineData {
    std::int32_t dim = 2;
    std::int32_t degree = 3;
    std::int32_t rat = AG_NOT_RATIONAL;
    std::int32_t form = AG_OPEN;
    std::int32_t ctype = AG_NOTHING_SPECIAL;
    // n + 2 * degree - 1 values, left to right; values within the tolerance of the first of them
    // are one multiple knot.
    std::span<const double> knots{};
    // n + degree points, each `dim` coordinates and a weight if rational.
    std::span<const double> points{};
};

// Null together with the number of the check message that the data would earn.
struct AgSplineResult {
    AgSplinePtr spline;
    std::int32_t message = 0;
};

[[nodiscard]] AgSplineResult agMakeSpline(const AgSplineData& data);
// A copy outside of any ring, with the same current node and without `data`; null for a spline that
// fails its check.
[[nodiscard]] AgSplinePtr agCopySpline(const AG_SPLINE& spline);
// Sets the box around the control points, which holds the curve where all weights are positive, of
// a valid spline made by agMakeSpline. Call it again after moving points.
void agUpdateBox(AG_SPLINE& spline);

// Doubles of a control point.
[[nodiscard]] inline std::size_t agStride(const AG_SPLINE& spline) {
    return static_cast<std::size_t>(spline.dim) + (spline.rat != AG_NOT_RATIONAL ? 1u : 0u);
}
// The leftmost node; null without node0.
[[nodiscard]] const AG_NODE* agFirstNode(const AG_SPLINE& spline);

}  // namespace brushwork
