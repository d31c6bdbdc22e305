#include "brushwork/guide_curve.h"

#include <cmath>

#include "foundation/host/host_calls.h"

namespace brushwork {

GuideCurve::GuideCurve(HostCurve curve) : curve_(curve) {}

GuideCurve::~GuideCurve() {
    if (curve_) hostReleaseCurve(curve_);
}

void GuideCurve::mapToLayer() {
    if (!mapping_) return;
    hostMapCurve(curve_, mapping_->data());
    mapping_.reset();
}

bool GuideCurve::isClosed() const {
    return hostCurveIsClosed(curve_);
}

double GuideCurve::length() const {
    const double length = hostCurveLength(curve_);
    return std::isfinite(length) && length > 0.0 ? length : 0.0;
}

double GuideCurve::nearest(double x, double y) const {
    return hostCurveNearest(curve_, x, y);
}

std::optional<GuideCurve::Place> GuideCurve::at(double arc) const {
    Place place;
    if (!hostCurvePoint(curve_, arc, &place.x, &place.y)) return std::nullopt;
    return place;
}

std::optional<GuideCurve::Place> GuideCurve::direction(double arc) const {
    Place way;
    if (!hostCurveDirection(curve_, arc, &way.x, &way.y)) return std::nullopt;
    return way;
}

}  // namespace brushwork
