#include "geometry/ag_curve.h"

#include <cstddef>
#include <limits>

namespace brushwork {
namespace {

// Freeing never follows a link.
struct CurveStorage : AG_CURVE {
    std::vector<AgSplinePtr> splines;
};

}  // namespace

void agFreeCurve(AG_CURVE* curve) noexcept {
    delete static_cast<CurveStorage*>(curve);
}

AgCurveResult agMakeCurve(std::vector<AgSplinePtr> splines, std::int32_t form) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    if (splines.empty() || splines.size() > most) return {nullptr, 3};
    for (std::size_t i = 0; i < splines.size(); ++i)
        if (!splines[i]) return {nullptr, i == 0 ? 2 : 13};
    auto storage = std::make_unique<CurveStorage>();
    storage->splines = std::move(splines);
    const std::vector<AgSplinePtr>& ring = storage->splines;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        ring[i]->next = ring[(i + 1) % ring.size()].get();
        ring[i]->next->prev = ring[i].get();
    }
    storage->cls = &agCurveClass;
    storage->dim = ring.front()->dim;
    storage->nbs = static_cast<std::int32_t>(ring.size());
    storage->form = form;
    storage->bs0 = storage->bs = ring.front().get();
    AgCurvePtr curve(storage.release());
    if (const std::int32_t message = ag_check(curve.get())) return {nullptr, message};
    return {std::move(curve), 0};
}

AgCurvePtr agCopyCurve(const AG_CURVE& curve) {
    if (agCurveClass.operations.ag_check(&curve) != 0) return nullptr;
    std::vector<AgSplinePtr> copies;
    std::size_t current = 0;
    const AG_SPLINE* spline = curve.bs0;
    for (std::int32_t i = 0; i < curve.nbs; ++i, spline = spline->next) {
        if (spline == curve.bs) current = copies.size();
        copies.push_back(agCopySpline(*spline));
    }
    AG_SPLINE* const bs = copies[current].get();
    AgCurvePtr copy = agMakeCurve(std::move(copies), curve.form).curve;
    if (copy) copy->bs = bs;
    return copy;
}

}  // namespace brushwork
