#include "shapes/warp_wires.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace brushwork {
namespace {

using Place = WarpWires::Place;

// The weight below falls by at most 1.54 over one reach; twice that keeps the picture from folding.
constexpr double reachOfPull = 3.0;
constexpr double leastReach = 4.0;  // cells
constexpr double knotsPerCell = 1.0;
constexpr double mostKnots = 512.0;

PolylineCurve lineOf(HostCurve curve) {
    const std::vector<HostSegment> pieces = curvePieces(curve);
    std::vector<Place> places;
    for (const HostSegment& piece : pieces) {
        if (places.empty())
            places.push_back({static_cast<double>(piece.x), static_cast<double>(piece.y)});
        places.push_back(
            {static_cast<double>(piece.x + piece.dx), static_cast<double>(piece.y + piece.dy)});
    }
    return {std::move(places), PolylineCurve::Ends::Open};
}

// 1 on the wire, 0 from its reach on, level at both.
double weightAt(double part) {
    if (!(part < 1.0)) return 0.0;
    const double rest = 1.0 - part * part;
    return rest * rest;
}

double square(double x, double y) {
    return x * x + y * y;
}

OutlineExtent boxOf(const PolylineCurve& line) {
    const PolylineCurve::Box box = line.bounds();
    return {box.low.x, box.low.y, box.high.x, box.high.y};
}

// Squared, from a place to the piece between two others.
double squareToPiece(Place a, Place b, Place place) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double length = square(dx, dy);
    const double along = (place.x - a.x) * dx + (place.y - a.y) * dy;
    const double part = length > 0.0 ? std::clamp(along / length, 0.0, 1.0) : 0.0;
    return square(a.x + part * dx - place.x, a.y + part * dy - place.y);
}

}  // namespace

WarpWires::WarpWires(std::span<const HostCurve> curves, double cell)
    : softness_(square(cell / knotsPerCell, 0.0)) {
    for (std::size_t i = 0; i < curves.size(); i += 2) {
        const PolylineCurve before = lineOf(curves[i]);
        const PolylineCurve after = i + 1 < curves.size() ? lineOf(curves[i + 1]) : before;
        if (before.isEmpty() || after.isEmpty()) continue;
        const double pieces =
            std::clamp(std::ceil(after.length() * knotsPerCell / cell), 1.0, mostKnots);
        Wire wire;
        double farthest = 0.0;
        for (double n = 0.0; n <= pieces; ++n) {
            const Place to = after.at(after.length() * n / pieces);
            const Place from = before.at(before.length() * n / pieces);
            wire.knots.push_back({to, {from.x - to.x, from.y - to.y}});
            farthest = std::max(farthest, std::hypot(from.x - to.x, from.y - to.y));
        }
        wire.reach = std::max(leastReach * cell, reachOfPull * farthest);
        wire.box = boxOf(after).grown(wire.reach);
        wires_.push_back(std::move(wire));
    }
}

std::optional<OutlineExtent> WarpWires::extent() const {
    std::optional<OutlineExtent> all;
    for (const Wire& wire : wires_) {
        for (const auto& [at, pull] : wire.knots) {
            const OutlineExtent own{std::min(at.x, at.x + pull.x), std::min(at.y, at.y + pull.y),
                                    std::max(at.x, at.x + pull.x), std::max(at.y, at.y + pull.y)};
            all = all ? unionOf(*all, own.grown(wire.reach)) : own.grown(wire.reach);
        }
    }
    return all;
}

// All knots have their say, the nearer the more. The nearest one alone would tear the picture
// wherever two parts of a bent wire are equally near.
WarpWires::Share WarpWires::shareOf(const Wire& wire, Place place) const {
    Share share;
    const OutlineExtent& box = wire.box;
    if (place.x < box.lowX || place.x > box.highX || place.y < box.lowY || place.y > box.highY)
        return share;
    double sum = 0.0;
    double nearest = std::numeric_limits<double>::infinity();
    Place before = wire.knots.front().at;
    for (const auto& [at, pull] : wire.knots) {
        nearest = std::min(nearest, squareToPiece(before, at, place));
        before = at;
        const double distance = square(at.x - place.x, at.y - place.y) + softness_;
        const double say = 1.0 / (distance * distance);
        share.pull.x += say * pull.x;
        share.pull.y += say * pull.y;
        sum += say;
    }
    share.pull.x /= sum;
    share.pull.y /= sum;
    share.weight = weightAt(std::sqrt(nearest) / wire.reach);
    return share;
}

// Each wire's pull by its own weight, shared out among wires that are about as near.
Place WarpWires::pullAt(Place place) const {
    double sum = 0.0;
    Place pull;
    for (const Wire& wire : wires_) {
        const Share share = shareOf(wire, place);
        pull.x += share.weight * share.weight * share.pull.x;
        pull.y += share.weight * share.weight * share.pull.y;
        sum += share.weight;
    }
    if (!(sum > 0.0)) return {};
    return {pull.x / sum, pull.y / sum};
}

}  // namespace brushwork
