#include "geometry/ag_spline_eval.h"

#include <algorithm>

#include "geometry/ag_de_boor.h"

namespace brushwork {
namespace {

// Copies the 2m knots and m + 1 points around a span.
void gather(const AG_SPLINE& spline, const AG_NODE& begin, double* knots, double* points) {
    const std::size_t m = static_cast<std::size_t>(spline.m);
    const std::size_t dim = static_cast<std::size_t>(spline.dim);
    const std::size_t stride = agStride(spline);
    const AG_NODE* node = &begin;
    for (std::size_t i = 1; i < m; ++i) node = node->prev;
    for (std::size_t i = 0; i < 2 * m; ++i, node = node->next) {
        knots[i] = *node->t;
        if (i > m) continue;
        double* point = points + i * stride;
        std::copy_n(node->Pw.begin(), stride, point);
        if (spline.rat != AG_NON_HOMOGENEOUS) continue;
        for (std::size_t c = 0; c < dim; ++c) point[c] *= point[dim];
    }
}

}  // namespace

const AG_NODE* agSpanAt(const AG_SPLINE& spline, double t, const AG_NODE* hint) {
    const AG_NODE* node = hint ? hint : spline.node0;
    // A hint beyond the domain is as good as the nearer end of it.
    if (!(*node->t > *spline.node0->t)) node = spline.node0;
    if (*node->t >= *spline.noden->t) node = spline.noden->prev;
    while (node->next != spline.noden && *node->next->t <= t) node = node->next;
    while (node != spline.node0 && *node->t > t) node = node->prev;
    // Past the nodes of a multiple knot to the one where its span begins, or back from the end.
    while (node->next != spline.noden && node->next->t == node->t) node = node->next;
    while (node != spline.node0 && node->next->t == node->t) node = node->prev;
    return node;
}

void agEvalSpan(const AG_SPLINE& spline, const AG_NODE& begin, double t, AgNodeScratch& scratch,
                double* value, double* first, double* second) {
    const std::size_t m = static_cast<std::size_t>(spline.m);
    const std::size_t work = agDeBoorWork(m, agStride(spline));
    scratch.resize(2 * m + 2 * work);
    double* const knots = scratch.data();
    double* const points = knots + 2 * m;
    gather(spline, begin, knots, points);
    agDeBoorPlain({m, agStride(spline), knots, points}, t, points + work, value, first, second);
}

bool agEval(AG_SPLINE& spline, double t, std::span<double> point, std::span<double> first,
            std::span<double> second) {
    const std::size_t dim = static_cast<std::size_t>(spline.dim);
    const auto fits = [&](std::span<double> out) { return out.empty() || out.size() >= dim; };
    if (point.size() < dim || !fits(first) || !fits(second)) return false;
    t = agClampParameter(t, *spline.node0->t, *spline.noden->t);
    const AG_NODE* begin = agSpanAt(spline, t, spline.node);
    AgNodeScratch scratch;
    const std::size_t stride = agStride(spline);
    std::vector<double> out(3 * stride);
    double* const value = out.data();
    const bool derived = !first.empty() || !second.empty();
    double* const one = derived ? value + stride : nullptr;
    double* const two = second.empty() ? nullptr : value + 2 * stride;
    agEvalSpan(spline, *begin, t, scratch, value, one, two);
    if (spline.rat != AG_NOT_RATIONAL) agProject(dim, value, one, two);
    std::copy_n(value, dim, point.begin());
    if (!first.empty()) std::copy_n(one, dim, first.begin());
    if (!second.empty()) std::copy_n(two, dim, second.begin());
    spline.node = begin->next->prev;
    return true;
}

}  // namespace brushwork
