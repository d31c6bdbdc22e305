#include "geometry/ag_compact_spline_eval.h"

#include <algorithm>

#include "geometry/ag_de_boor.h"
#include "geometry/ag_node.h"

namespace brushwork::znAG {

std::int32_t agFindSpan(const AgCompactView& view, double t, std::int32_t hint) {
    const double* const k = view.knots;
    const std::int32_t last = view.spans - 1;
    const std::int32_t near = std::clamp(hint, 0, last);
    if (k[near] <= t && t < k[near + 1]) return near;
    if (near < last && k[near + 1] <= t && t < k[near + 2]) return near + 1;
    std::int32_t span =
        static_cast<std::int32_t>(std::upper_bound(k + 1, k + view.spans, t) - k) - 1;
    // At the end of the domain: back over spans of no length.
    while (span > 0 && !(k[span] < k[span + 1])) --span;
    return span;
}

double* agCompactSplineEval::scratch(std::size_t count, double* few) {
    if (count <= fewDoubles) return few;
    if (work_.size() < count) work_.resize(count);
    return work_.data();
}

bool agCompactSplineEval::evaluate(const AgCompactView& view, double t, double* point,
                                   double* first, double* second) {
    if (view.spans < 1) return false;
    t = agClampParameter(t, view.start(), view.end());
    spanHint_ = agFindSpan(view, t, spanHint_);
    const std::size_t stride = static_cast<std::size_t>(view.stride);
    const std::size_t degree = static_cast<std::size_t>(view.degree);
    const AgSpan span{degree, stride, view.knots + (spanHint_ - view.degree + 1),
                      view.points + static_cast<std::size_t>(spanHint_) * stride};
    // Low degrees of few doubles need no work space.
    const std::size_t work =
        degree <= agUnrolledDegree && stride <= agUnrolledStride ? 0 : agDeBoorWork(degree, stride);
    double few[fewDoubles];
    if (!view.rational) {
        agDeBoor(span, t, scratch(work, few), point, first, second);
        return true;
    }
    const std::size_t dim = static_cast<std::size_t>(view.dim);
    double* const value = scratch(work + 3 * stride, few);
    double* const one = first || second ? value + stride : nullptr;
    double* const two = second ? value + 2 * stride : nullptr;
    agDeBoor(span, t, value + 3 * stride, value, one, two);
    agProject(dim, value, one, two);
    std::copy_n(value, dim, point);
    if (first) std::copy_n(one, dim, first);
    if (second) std::copy_n(two, dim, second);
    return true;
}

}  // namespace brushwork::znAG
