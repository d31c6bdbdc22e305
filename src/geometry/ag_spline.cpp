#include "geometry/ag_spline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace brushwork {
namespace {

// All memory of one spline. Freeing never follows a link.
struct SplineStorage : AG_SPLINE {
    std::vector<AG_NODE> nodes;
    std::vector<double> knots;
    std::vector<double> points;
    std::vector<double> corners;
    AG_BOX box;
};

// What can be told before there are nodes: 0 or the number of a check message.
std::int32_t messageOf(const AgSplineData& data) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max() / 4;
    if (data.dim < 1) return 4;
    if (data.degree < 1) return 5;
    const std::size_t m = static_cast<std::size_t>(data.degree);
    if (m > most || data.knots.size() > most || data.knots.size() < 2 * m) return 6;
    if (data.rat < -1 || data.rat > 1) return 7;
    const std::size_t pointCount = data.knots.size() - m + 1;
    const std::size_t stride = static_cast<std::size_t>(data.dim) + (data.rat != 0 ? 1u : 0u);
    if (data.points.size() / stride != pointCount || data.points.size() % stride != 0) return 22;
    return 0;
}

void linkNodes(SplineStorage& spline, const AgSplineData& data) {
    const std::size_t m = static_cast<std::size_t>(data.degree);
    const std::size_t stride = agStride(spline);
    spline.nodes.resize(data.knots.size());
    spline.knots.reserve(data.knots.size());
    spline.points.assign(data.points.begin(), data.points.end());
    for (std::size_t i = 0; i < spline.nodes.size(); ++i) {
        AG_NODE& node = spline.nodes[i];
        if (i > 0) {
            node.prev = &spline.nodes[i - 1];
            node.prev->next = &node;
        }
        const double knot = data.knots[i];
        if (i == 0 || !(std::abs(knot - spline.knots.back()) < agParameterTolerance))
            spline.knots.push_back(knot);
        node.t = &spline.knots.back();
        if ((i + 1) * stride <= spline.points.size())
            node.Pw = std::span(spline.points).subspan(i * stride, stride);
    }
    spline.node0 = &spline.nodes[m - 1];
    spline.noden = &spline.nodes[spline.nodes.size() - m];
    spline.node = spline.node0;
}

std::ptrdiff_t stepsFromFirst(const AG_SPLINE& spline, const AG_NODE* wanted) {
    std::ptrdiff_t steps = 0;
    for (const AG_NODE* node = agFirstNode(spline); node && node != wanted; node = node->next)
        ++steps;
    return steps;
}

}  // namespace

void agFreeSpline(AG_SPLINE* spline) noexcept {
    delete static_cast<SplineStorage*>(spline);
}

AgSplineResult agMakeSpline(const AgSplineData& data) {
    if (const std::int32_t message = messageOf(data)) return {nullptr, message};
    auto storage = std::make_unique<SplineStorage>();
    storage->cls = &agSplineClass;
    storage->ctype = data.ctype;
    storage->dim = data.dim;
    storage->m = data.degree;
    storage->n = static_cast<std::int32_t>(data.knots.size()) - 2 * data.degree + 1;
    storage->rat = data.rat;
    storage->form = data.form;
    linkNodes(*storage, data);
    AgSplinePtr spline(storage.release());
    if (const std::int32_t message = ag_check(spline.get())) return {nullptr, message};
    agUpdateBox(*spline);
    return {std::move(spline), 0};
}

AgSplinePtr agCopySpline(const AG_SPLINE& spline) {
    if (agSplineClass.operations.ag_check(&spline) != 0) return nullptr;
    std::vector<double> knots;
    std::vector<double> points;
    for (const AG_NODE* node = agFirstNode(spline); node; node = node->next) {
        knots.push_back(*node->t);
        if (knots.size() <= static_cast<std::size_t>(spline.n) + static_cast<std::size_t>(spline.m))
            points.insert(points.end(), node->Pw.begin(),
                          node->Pw.begin() + static_cast<std::ptrdiff_t>(agStride(spline)));
    }
    AgSplinePtr copy =
        agMakeSpline({spline.dim, spline.m, spline.rat, spline.form, spline.ctype, knots, points})
            .spline;
    if (copy) {
        AG_NODE* node = copy->node0;
        while (node->prev) node = node->prev;
        for (std::ptrdiff_t steps = stepsFromFirst(spline, spline.node); steps > 0; --steps)
            node = node->next;
        copy->node = node;
    }
    return copy;
}

void agUpdateBox(AG_SPLINE& spline) {
    SplineStorage& storage = static_cast<SplineStorage&>(spline);
    const std::size_t dim = static_cast<std::size_t>(spline.dim);
    storage.corners.resize(2 * dim);
    storage.box = {std::span(storage.corners).first(dim), std::span(storage.corners).last(dim)};
    std::ranges::fill(storage.box.low, std::numeric_limits<double>::infinity());
    std::ranges::fill(storage.box.high, -std::numeric_limits<double>::infinity());
    const AG_NODE* end = spline.noden->next;
    for (const AG_NODE* node = agFirstNode(spline); node != end; node = node->next) {
        for (std::size_t c = 0; c < dim; ++c) {
            const double at =
                spline.rat == AG_HOMOGENEOUS ? node->Pw[c] / node->Pw[dim] : node->Pw[c];
            storage.box.low[c] = std::min(storage.box.low[c], at);
            storage.box.high[c] = std::max(storage.box.high[c], at);
        }
    }
    spline.bbox = &storage.box;
}

const AG_NODE* agFirstNode(const AG_SPLINE& spline) {
    const AG_NODE* node = spline.node0;
    if (!node) return nullptr;
    while (const AG_NODE* before = agNodeBefore(node)) {
        if (before == spline.node0) return nullptr;
        node = before;
    }
    return node;
}

}  // namespace brushwork
