#include "tools/reference_curves.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "geometry/curve_nearest.h"
#include "geometry/curve_services.h"

namespace brushwork::tools {
namespace {

using Place = ReferenceCurve::Place;
using Spline = Ref<znAG::agCompactSpline>;

constexpr std::size_t mostPlaces = 1u << 20;

// Of pieces that meet in their end points, a unit of the parameter each.
Spline piecewise(std::int32_t pieces, std::int32_t degree, bool closed, bool rational) {
    const std::int32_t spans = degree * (pieces - 1) + 1;
    Spline spline =
        makeRef<znAG::agCompactSpline>(spans, degree, closed ? AG_CLOSED : AG_OPEN, 2, rational);
    if (spline->spans() != spans) return {};
    for (std::int32_t n = -degree; n <= spans + degree; ++n) {
        const std::int32_t piece = n <= 0 ? 0 : (n + degree - 1) / degree;
        spline->setKnot(n, std::min(piece, pieces));
    }
    return spline;
}

std::unique_ptr<ReferenceCurve> finish(const Spline& spline) {
    if (!spline) return nullptr;
    spline->updateBounds();
    return std::make_unique<ReferenceCurve>(spline);
}

std::unique_ptr<ReferenceCurve> ofPoints(std::span<const Place> points, std::int32_t degree,
                                         bool closed) {
    const auto pieces = (points.size() - 1) / static_cast<std::size_t>(degree);
    const Spline spline = piecewise(static_cast<std::int32_t>(pieces), degree, closed, false);
    if (!spline) return nullptr;
    for (std::size_t n = 0; n < points.size(); ++n) {
        const std::span<double> point = spline->point(static_cast<std::int32_t>(n));
        point[0] = points[n].x;
        point[1] = points[n].y;
    }
    return finish(spline);
}

Place towards(Place from, Place along, double part) {
    return {from.x + along.x * part, from.y + along.y * part};
}

ReferenceCurve& curveOf(HostCurve curve) {
    return *static_cast<ReferenceCurve*>(curve);
}

bool curvePoint(HostCurve curve, double arc, double* x, double* y) {
    ReferenceCurve& asked = curveOf(curve);
    const auto place = znAG::curvePoint(asked.spline(), asked.arc().parameterAt(arc));
    if (!place) return false;
    *x = place->x;
    *y = place->y;
    return true;
}

bool curveDirection(HostCurve curve, double arc, double* x, double* y) {
    ReferenceCurve& asked = curveOf(curve);
    const auto way = znAG::curveDirection(asked.spline(), asked.arc().parameterAt(arc));
    if (!way || (way->x == 0.0 && way->y == 0.0)) return false;
    *x = way->x;
    *y = way->y;
    return true;
}

double curveNearest(HostCurve curve, double x, double y) {
    ReferenceCurve& asked = curveOf(curve);
    const auto nearest = znAG::nearestOnCurve(asked.spline(), {x, y});
    return nearest ? asked.arc().lengthTo(nearest->t) : 0.0;
}

bool curveBounds(HostCurve curve, double* low, double* high) {
    const auto box = znAG::curveBounds(curveOf(curve).spline());
    if (!box) return false;
    low[0] = box->low.x;
    low[1] = box->low.y;
    high[0] = box->high.x;
    high[1] = box->high.y;
    return true;
}

HostSegment* tessellateCurve(HostCurve curve, double tolerance, std::int32_t* count) {
    *count = 0;
    znAG::TessellationOptions options;
    options.tolerance = std::max(tolerance, 1e-4);
    const auto samples = znAG::tessellateCurve(curveOf(curve).spline(), options);
    if (samples.size() < 2) return nullptr;
    auto segments = std::make_unique<HostSegment[]>(samples.size() - 1);
    for (std::size_t n = 0; n + 1 < samples.size(); ++n) {
        const auto& from = samples[n];
        const auto& to = samples[n + 1];
        segments[n] = {static_cast<float>(from.x), static_cast<float>(from.y),
                       static_cast<float>(to.x - from.x), static_cast<float>(to.y - from.y)};
    }
    *count = static_cast<std::int32_t>(samples.size() - 1);
    return segments.release();
}

}  // namespace

std::unique_ptr<ReferenceCurve> ReferenceCurve::straight(std::span<const Place> places, Ends ends) {
    if (places.size() < 2 || places.size() > mostPlaces) return nullptr;
    std::vector<Place> points(places.begin(), places.end());
    if (ends == Ends::Joined) points.push_back(points.front());
    return ofPoints(points, 1, ends == Ends::Joined);
}

// Each place's tangent runs along its two neighbours.
std::unique_ptr<ReferenceCurve> ReferenceCurve::smooth(std::span<const Place> places, Ends ends) {
    if (places.size() < 2 || places.size() > mostPlaces) return nullptr;
    const bool joined = ends == Ends::Joined;
    const std::size_t count = places.size();
    const auto tangent = [&](std::size_t n) {
        const std::size_t before = n > 0 ? n - 1 : joined ? count - 1 : 0;
        const std::size_t after = n + 1 < count ? n + 1 : joined ? 0 : n;
        return Place{(places[after].x - places[before].x) / 2.0,
                     (places[after].y - places[before].y) / 2.0};
    };
    std::vector<Place> points{places[0]};
    for (std::size_t n = 0; n < (joined ? count : count - 1); ++n) {
        const std::size_t next = (n + 1) % count;
        points.push_back(towards(places[n], tangent(n), 1.0 / 3.0));
        points.push_back(towards(places[next], tangent(next), -1.0 / 3.0));
        points.push_back(places[next]);
    }
    return ofPoints(points, 3, joined);
}

std::unique_ptr<ReferenceCurve> ReferenceCurve::bezier(std::span<const Place> points) {
    if (points.size() < 4 || points.size() % 3 != 1 || points.size() > mostPlaces) return nullptr;
    const bool closed = points.front().x == points.back().x && points.front().y == points.back().y;
    return ofPoints(points, 3, closed);
}

// Four quarters, each a rational parabola with a weight at its corner.
std::unique_ptr<ReferenceCurve> ReferenceCurve::ellipse(Place center, double radiusX,
                                                        double radiusY) {
    if (!(radiusX > 0.0) || !(radiusY > 0.0)) return nullptr;
    const Spline spline = piecewise(4, 2, true, true);
    if (!spline) return nullptr;
    constexpr int ways[9][2] = {{1, 0},   {1, 1},  {0, 1},  {-1, 1}, {-1, 0},
                                {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
    for (std::int32_t n = 0; n < 9; ++n) {
        const double weight = n % 2 == 0 ? 1.0 : std::sqrt(0.5);
        const std::span<double> point = spline->point(n);
        point[0] = (center.x + ways[n][0] * radiusX) * weight;
        point[1] = (center.y + ways[n][1] * radiusY) * weight;
        point[2] = weight;
    }
    return finish(spline);
}

std::unique_ptr<ReferenceCurve> ReferenceCurve::copy() const {
    return std::make_unique<ReferenceCurve>(makeRef<znAG::agCompactSpline>(*spline_));
}

const znAG::CurveLength& ReferenceCurve::arc() {
    if (!arc_) arc_ = std::make_unique<znAG::CurveLength>(*spline_);
    return *arc_;
}

void ReferenceCurve::map(const double* m) {
    for (std::int32_t n = 0; n < spline_->pointCount(); ++n) {
        const std::span<double> point = spline_->point(n);
        const double weight = spline_->isRational() ? point[2] : 1.0;
        const double x = m[0] * point[0] + m[1] * point[1] + m[2] * weight;
        const double y = m[3] * point[0] + m[4] * point[1] + m[5] * weight;
        point[0] = x;
        point[1] = y;
    }
    spline_->updateBounds();
    arc_.reset();
}

void serveCurves(HostCallTable& table) {
    table.curveIsClosed = [](HostCurve curve) {
        return znAG::isClosedCurve(curveOf(curve).spline());
    };
    table.curveLength = [](HostCurve curve) { return curveOf(curve).arc().length(); };
    table.curveNearest = curveNearest;
    table.curvePoint = curvePoint;
    table.curveDirection = curveDirection;
    table.mapCurve = [](HostCurve curve, const double* m) { curveOf(curve).map(m); };
    table.releaseCurve = [](HostCurve curve) {
        std::unique_ptr<ReferenceCurve>(static_cast<ReferenceCurve*>(curve)).reset();
    };
    table.curveBounds = curveBounds;
    table.tessellateCurve = tessellateCurve;
    table.freeSegments = [](HostSegment* segments) {
        std::unique_ptr<HostSegment[]>(segments).reset();
    };
}

}  // namespace brushwork::tools
