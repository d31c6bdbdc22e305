// AG_NODE: one knot of a spline with its control point, in a list linked both ways.
//
// Nodes of a multiple knot share one knot value: their `t` are the same pointer. A list of n spans
// and degree m has n + 2m - 1 nodes. Numbered from 0 at the left, node i carries the control point
// whose knots are those of nodes i to i + m - 1; so the first n + m nodes, up to the one where the
// domain ends, carry one, and the m - 1 behind it don't.
#pragma once

#include <span>

namespace brushwork {

// Two knots nearer to each other than this aren't different; parameters that differ by no more are
// the same.
inline constexpr double agParameterTolerance = 1e-12;
// Coordinates that differ by no more are the same, as are directions whose unit vectors do.
inline constexpr double agPointTolerance = 1e-5;

// A parameter brought into a domain; one that is no number becomes its start.
[[nodiscard]] constexpr double agClampParameter(double t, double start, double end) {
    return !(t > start) ? start : t < end ? t : end;
}

// Borrows all it points to.
struct AG_NODE {
    AG_NODE* next = nullptr;
    AG_NODE* prev = nullptr;
    double* t = nullptr;     // the knot value
    std::span<double> Pw{};  // the coordinates, and behind them the weight if there are weights
};

// The node beside a node, or null at the end of the list. A node that doesn't point back is no
// neighbour; walks along these two therefore end, or come back to where they began.
[[nodiscard]] inline const AG_NODE* agNodeAfter(const AG_NODE* node) {
    return node->next && node->next->prev == node ? node->next : nullptr;
}
[[nodiscard]] inline const AG_NODE* agNodeBefore(const AG_NODE* node) {
    return node->prev && node->prev->next == node ? node->prev : nullptr;
}

}  // namespace brushwork
