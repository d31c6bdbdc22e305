#include "strokes/stroke/symmetry_stroke_interpolator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "strokes/path/stamp_ranges.h"
#include "strokes/path/stroke_switches.h"

namespace brushwork::npc {
namespace {

constexpr double wholeTurn = 2.0 * std::numbers::pi;
constexpr double radian = 180.0 / std::numbers::pi;  // in degrees

// Whole degrees come from axes and shares of a turn with some rounding. It is taken back here:
// stamps lie at whole degrees, always the next below, and quarter turns shall be exact.
double settledDegrees(double degrees) {
    constexpr double nearby = 1.0 / 8192.0;
    const double whole = std::round(degrees);
    return std::fabs(degrees - whole) < nearby ? whole : degrees;
}

struct Way {
    double x, y;
};

Way wayAt(double degrees) {
    const double quarters = degrees / 90.0;
    if (quarters == std::floor(quarters)) {
        constexpr Way exact[] = {{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}, {0.0, -1.0}};
        return exact[static_cast<std::int32_t>(quarters) & 3];
    }
    return {std::cos(degrees / radian), std::sin(degrees / radian)};
}

double axisDegrees(const SymmetrySetup& setup) {
    const double angle =
        std::atan2(static_cast<double>(setup.axisY), static_cast<double>(setup.axisX)) * radian;
    return settledDegrees(yFlipMode() == 1 ? -angle : angle);
}

// Looks the same however it is turned or mirrored.
bool isRound(const BrushParameters& brush, const StampPoint& laid) {
    return brush.proceduralTip && !brush.shapeObject && !brush.colorObject &&
           std::fabs(laid.scaleX) == laid.scaleY;
}

}  // namespace

SymmetryStrokeInterpolator::SymmetryStrokeInterpolator(const SymmetrySetup& setup)
    : setup_(usableSymmetry(setup)) {
    const double axis = axisDegrees(setup_);
    axisAngle_ = axis / radian;
    copies_.reserve(static_cast<std::size_t>(setup_.sectors));
    for (std::int32_t n = 0; n < setup_.sectors; ++n) {
        const bool mirrors = !setup_.rotationOnly && n % 2 == 1;
        const double turn = 360.0 * (mirrors ? n - 1 : n) / setup_.sectors;
        copies_.push_back(mirrors ? mirrored(2.0 * axis + turn) : turned(turn));
    }
}

SymmetryStrokeInterpolator::Copy SymmetryStrokeInterpolator::turned(double degrees) {
    const double turn = settledDegrees(degrees);
    const Way way = wayAt(turn);
    return {way.x, -way.y, way.y, way.x, static_cast<float>(turn), false};
}

// About the line at half the angle.
SymmetryStrokeInterpolator::Copy SymmetryStrokeInterpolator::mirrored(double degrees) {
    const double turn = settledDegrees(degrees);
    const Way way = wayAt(turn);
    // Half a turn more, since the tip is mirrored across, not along.
    return {way.x, way.y, way.y, -way.x, static_cast<float>(turn + 180.0), true};
}

void SymmetryStrokeInterpolator::setStampRenderer(std::shared_ptr<const StampRenderer> renderer) {
    renderer_ = std::move(renderer);
}

std::int32_t SymmetryStrokeInterpolator::sectorOf(float x, float y) const {
    const double dx = static_cast<double>(x) - static_cast<double>(setup_.centerX);
    double dy = static_cast<double>(y) - static_cast<double>(setup_.centerY);
    if (yFlipMode() == 1) dy = -dy;
    double angle = std::atan2(dy, dx) - axisAngle_;
    if (angle < 0.0)
        angle += wholeTurn;
    else if (angle >= wholeTurn)
        angle -= wholeTurn;
    if (!(angle > 0.0)) return 0;  // a place that isn't a number, too
    // A trace before the axis may have been rounded up to the whole turn.
    const auto sector = static_cast<std::int32_t>(angle / wholeTurn * setup_.sectors);
    return std::min(sector, setup_.sectors - 1);
}

void SymmetryStrokeInterpolator::addPoint(StampPoint& point) {
    if (first()) startSector_ = setup_.pinToSector ? sectorOf(point.x, point.y) : -1;
    StrokeInterpolator::addPoint(point);
    nextReplica_ = 0;
}

bool SymmetryStrokeInterpolator::isOutside(const StampPoint& stamp) const {
    if (!setup_.pinToSector) return false;
    const std::int32_t target = fixedSector_ >= 0 ? fixedSector_ : startSector_;
    return target >= 0 && sectorOf(stamp.x, stamp.y) != target;
}

bool SymmetryStrokeInterpolator::fetchStamp() {
    StampPoint stamp;
    do {
        if (!StrokeInterpolator::nextStamp(stamp)) return false;
    } while (isOutside(stamp));
    laid_ = laid(stamp);
    return true;
}

bool SymmetryStrokeInterpolator::nextStamp(StampPoint& stamp) {
    if (nextReplica_ == 0 || nextReplica_ >= setup_.sectors || hasReplica()) {
        nextReplica_ = 0;
        if (!fetchStamp()) return false;
        if (hasReplica()) nextReplica_ = replica_;
    }
    stamp = nextReplica_ == 0 ? last() : copyAt(laid_, nextReplica_);
    lastReplica_ = nextReplica_++;
    return true;
}

StampPoint SymmetryStrokeInterpolator::laid(const StampPoint& stamp) const {
    if (!renderer_) return stamp;
    const StampPoint rounded = renderer_->quantized(stamp);
    StampPoint laid = stamp;
    laid.x = rounded.x;
    laid.y = rounded.y;
    laid.angle = rounded.angle;
    laid.scaleX = rounded.scaleX;
    laid.scaleY = rounded.scaleY;
    return laid;
}

StampPoint SymmetryStrokeInterpolator::copyAt(const StampPoint& laid, std::int32_t n) const {
    const Copy& to = copies_[static_cast<std::size_t>(n)];
    const double centerX = static_cast<double>(setup_.centerX);
    const double centerY = static_cast<double>(setup_.centerY);
    const double dx = static_cast<double>(laid.x) - centerX;
    const double dy = static_cast<double>(laid.y) - centerY;
    StampPoint copy = laid;
    copy.x = static_cast<float>(centerX + (to.xx * dx + to.xy * dy));
    copy.y = static_cast<float>(centerY + (to.yx * dx + to.yy * dy));
    if (renderer_ && isRound(renderer_->parameters(), laid)) return copy;
    copy.angle = wrappedDegrees(to.mirrored ? to.turn - laid.angle : to.turn + laid.angle);
    if (to.mirrored) copy.scaleX = -laid.scaleX;
    return copy;
}

bool SymmetryStrokeInterpolator::copyOf(const StampPoint& stamp, std::int32_t n,
                                        StampPoint& copy) const {
    const std::int32_t count = hasReplica() ? 1 : setup_.sectors;
    if (n < 0 || n >= count || isOutside(stamp)) return false;
    const std::int32_t which = hasReplica() ? replica_ : n;
    copy = which == 0 ? stamp : copyAt(laid(stamp), which);
    return true;
}

void SymmetryStrokeInterpolator::tangent(float& x, float& y) {
    x = 0.0f;
    y = 0.0f;
    if (first()) return;
    float way[2];
    if (!follower()->tangent(&way[0], &way[1])) return;
    x = way[0];
    y = way[1];
}

void SymmetryStrokeInterpolator::stampTangent(float& x, float& y) {
    tangent(x, y);
    const Copy& to = copies_[static_cast<std::size_t>(lastReplica_)];
    const double dx = static_cast<double>(x), dy = static_cast<double>(y);
    x = static_cast<float>(to.xx * dx + to.xy * dy);
    y = static_cast<float>(to.yx * dx + to.yy * dy);
}

}  // namespace brushwork::npc
