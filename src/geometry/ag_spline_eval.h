// Evaluation on the node list: slow and plain. It is the definition that the compact form is held
// against.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "geometry/ag_spline.h"

namespace brushwork {

// One evaluation's work space; kept over many it allocates once.
using AgNodeScratch = std::vector<double>;

// The last node at or left of t where a span of some length begins; of the domain's spans the
// nearest for a t outside. The walk starts at `hint`, a node of the list, or at node0 for null.
[[nodiscard]] const AG_NODE* agSpanAt(const AG_SPLINE& spline, double t,
                                      const AG_NODE* hint = nullptr);

// The polynomial of the span that begins at `begin`, at t, wherever t lies: agStride doubles each,
// for a rational spline in homogeneous coordinates (see agProject). Null derivatives aren't
// computed.
void agEvalSpan(const AG_SPLINE& spline, const AG_NODE& begin, double t, AgNodeScratch& scratch,
                double* value, double* first, double* second);

// The point at t, which is clamped to the domain, and the derivatives if wanted: `dim` doubles
// each. Leaves `node` at the span found. The spline is one that agSplineIsEvaluable accepts.
// False, and nothing written, if a span of the caller's is too short.
bool agEval(AG_SPLINE& spline, double t, std::span<double> point, std::span<double> first = {},
            std::span<double> second = {});

}  // namespace brushwork
