#include "foundation/host/polyline_curves.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace brushwork {

namespace {

using Place = PolylineCurve::Place;

// How far along the piece from a to b its nearest place to p lies, 0..1.
double nearestPart(Place a, Place b, Place p) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double square = dx * dx + dy * dy;
    if (!(square > 0.0)) return 0.0;
    return std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0);
}

Place between(Place a, Place b, double part) {
    return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part};
}

}  // namespace

PolylineCurve::PolylineCurve(std::vector<Place> places, Ends ends)
    : corners_(std::move(places)), closed_(ends == Ends::Joined && !corners_.empty()) {
    if (closed_) corners_.push_back(Place{corners_.front()});
    measure();
}

void PolylineCurve::measure() {
    arcs_.assign(corners_.size(), 0.0);
    for (std::size_t i = 1; i < corners_.size(); ++i)
        arcs_[i] = arcs_[i - 1] +
                   std::hypot(corners_[i].x - corners_[i - 1].x, corners_[i].y - corners_[i - 1].y);
}

double PolylineCurve::nearest(Place place) const {
    double least = std::numeric_limits<double>::infinity();
    double arc = 0.0;
    for (std::size_t i = 1; i < corners_.size(); ++i) {
        const double part = nearestPart(corners_[i - 1], corners_[i], place);
        const Place there = between(corners_[i - 1], corners_[i], part);
        const double distance = std::hypot(there.x - place.x, there.y - place.y);
        if (distance >= least) continue;
        least = distance;
        arc = arcs_[i - 1] + part * (arcs_[i] - arcs_[i - 1]);
    }
    return arc;
}

// The number of the corner where the piece begins; pieces without length are passed over.
std::size_t PolylineCurve::pieceAt(double arc) const {
    const auto past = std::upper_bound(arcs_.begin(), arcs_.end(), arc);
    if (past == arcs_.begin()) return pieceAt(0.0);
    if (past != arcs_.end()) return static_cast<std::size_t>(past - arcs_.begin()) - 1;
    // At the end: the last piece that has a length.
    const auto last = std::lower_bound(arcs_.begin(), arcs_.end(), arcs_.back());
    return last == arcs_.begin() ? 0 : static_cast<std::size_t>(last - arcs_.begin()) - 1;
}

Place PolylineCurve::at(double arc) const {
    if (corners_.size() < 2) return corners_.front();
    const std::size_t i = pieceAt(arc);
    const double length = arcs_[i + 1] - arcs_[i];
    if (!(length > 0.0)) return corners_[i];
    return between(corners_[i], corners_[i + 1], std::clamp((arc - arcs_[i]) / length, 0.0, 1.0));
}

Place PolylineCurve::direction(double arc) const {
    if (!(length() > 0.0)) return {};
    const std::size_t i = pieceAt(arc);
    const double length = arcs_[i + 1] - arcs_[i];
    return {(corners_[i + 1].x - corners_[i].x) / length,
            (corners_[i + 1].y - corners_[i].y) / length};
}

void PolylineCurve::map(const double* m) {
    for (Place& p : corners_) p = {m[0] * p.x + m[1] * p.y + m[2], m[3] * p.x + m[4] * p.y + m[5]};
    measure();
}

PolylineCurve::Box PolylineCurve::bounds() const {
    Box box{corners_.front(), corners_.front()};
    for (const Place& p : corners_) {
        box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y)};
        box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y)};
    }
    return box;
}

std::vector<HostSegment> PolylineCurve::segments() const {
    std::vector<HostSegment> pieces;
    for (std::size_t i = 1; i < corners_.size(); ++i)
        pieces.push_back({static_cast<float>(corners_[i - 1].x),
                          static_cast<float>(corners_[i - 1].y),
                          static_cast<float>(corners_[i].x - corners_[i - 1].x),
                          static_cast<float>(corners_[i].y - corners_[i - 1].y)});
    return pieces;
}

namespace {

PolylineCurve& of(HostCurve curve) {
    return *static_cast<PolylineCurve*>(curve);
}

bool give(Place place, double* x, double* y) {
    *x = place.x;
    *y = place.y;
    return true;
}

HostSegment* tessellate(HostCurve curve, double, std::int32_t* count) {
    const std::vector<HostSegment> pieces = of(curve).segments();
    *count = static_cast<std::int32_t>(pieces.size());
    if (pieces.empty()) return nullptr;
    auto memory = std::make_unique<HostSegment[]>(pieces.size());
    std::copy(pieces.begin(), pieces.end(), memory.get());
    return memory.release();
}

}  // namespace

HostCurve toHostCurve(std::unique_ptr<PolylineCurve> curve) {
    return curve.release();
}

void servePolylineCurves(HostCallTable& table) {
    table.curveIsClosed = [](HostCurve curve) { return of(curve).isClosed(); };
    table.curveLength = [](HostCurve curve) { return of(curve).length(); };
    table.curveNearest = [](HostCurve curve, double x, double y) {
        return of(curve).nearest({x, y});
    };
    table.curvePoint = [](HostCurve curve, double arc, double* x, double* y) {
        return !of(curve).isEmpty() && give(of(curve).at(arc), x, y);
    };
    table.curveDirection = [](HostCurve curve, double arc, double* x, double* y) {
        return of(curve).length() > 0.0 && give(of(curve).direction(arc), x, y);
    };
    table.mapCurve = [](HostCurve curve, const double* m) { of(curve).map(m); };
    table.releaseCurve = [](HostCurve curve) {
        std::unique_ptr<PolylineCurve>(static_cast<PolylineCurve*>(curve)).reset();
    };
    table.curveBounds = [](HostCurve curve, double* low, double* high) {
        if (of(curve).isEmpty()) return false;
        const PolylineCurve::Box box = of(curve).bounds();
        return give(box.low, &low[0], &low[1]) && give(box.high, &high[0], &high[1]);
    };
    table.tessellateCurve = tessellate;
    table.freeSegments = [](HostSegment* segments) {
        std::unique_ptr<HostSegment[]>(segments).reset();
    };
}

}  // namespace brushwork
