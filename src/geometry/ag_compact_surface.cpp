#include "geometry/ag_compact_surface.h"

#include <algorithm>
#include <limits>
#include <new>

namespace brushwork::znAG {
namespace {

constexpr std::int64_t mostDoubles = std::numeric_limits<std::int32_t>::max() / 8;

bool isPossible(const AgSurfaceSizes& sizes) {
    return sizes.spans >= 1 && sizes.degree >= 1 && sizes.spans < mostDoubles &&
           sizes.degree < mostDoubles && sizes.form >= -2 && sizes.form <= 2;
}

bool sameButForm(const AgSurfaceSizes& a, const AgSurfaceSizes& b) {
    return a.spans == b.spans && a.degree == b.degree;
}

std::int64_t pointsOf(const AgSurfaceSizes& sizes) {
    return std::int64_t{sizes.spans} + sizes.degree;
}
std::int64_t knotsOf(const AgSurfaceSizes& sizes) {
    return std::int64_t{sizes.spans} - 1 + (std::int64_t{sizes.degree} + 1) * 2;
}

// 0 for sizes that are too large.
std::int64_t doublesOf(const AgSurfaceSizes& u, const AgSurfaceSizes& v, std::int64_t dim,
                       std::int64_t stride) {
    const std::int64_t row = pointsOf(v);
    if (dim >= mostDoubles || row > mostDoubles / stride) return 0;
    if (pointsOf(u) > mostDoubles / (row * stride)) return 0;
    const std::int64_t all = pointsOf(u) * row * stride + 2 * dim + knotsOf(u) + knotsOf(v);
    return all > mostDoubles ? 0 : all;
}

}  // namespace

agCompactSurface::agCompactSurface(const AgSurfaceSizes& u, const AgSurfaceSizes& v,
                                   std::int32_t dim, bool rational) {
    rebuild(u, v, dim, rational);
}

agCompactSurface::agCompactSurface(const agCompactSurface& other) : zn::ReferenceCount() {
    if (!rebuild(other.sizes(AgDirection::U), other.sizes(AgDirection::V), other.dim_,
                 other.rational_))
        return;
    for (const AgDirection d : {AgDirection::U, AgDirection::V})
        along(d).spanHint = other.along(d).spanHint;
    std::copy_n(other.block_.get(), blockSize_, block_.get());
}

void agCompactSurface::clear() {
    directions_.reset();
    dim_ = stride_ = 0;
    rational_ = false;
    low_ = high_ = points_ = nullptr;
    blockSize_ = 0;
    block_.reset();
}

bool agCompactSurface::rebuild(const AgSurfaceSizes& u, const AgSurfaceSizes& v, std::int32_t dim,
                               bool rational) {
    const bool possible = isPossible(u) && isPossible(v) && dim >= 1;
    const bool same = possible && block_ && sameButForm(u, sizes(AgDirection::U)) &&
                      sameButForm(v, sizes(AgDirection::V)) && dim == dim_ && rational == rational_;
    if (!possible || (!same && !allocate(u, v, dim, rational))) {
        clear();
        return false;
    }
    for (const AgDirection d : {AgDirection::U, AgDirection::V}) {
        Direction& direction = along(d);
        direction.sizes = d == AgDirection::U ? u : v;
        direction.spanHint = 0;
        direction.knotCount = static_cast<std::int32_t>(knotsOf(direction.sizes));
        direction.pointCount = static_cast<std::int32_t>(pointsOf(direction.sizes));
        direction.firstKnot = -direction.sizes.degree;
    }
    pointIntoBlock();
    return true;
}

bool agCompactSurface::allocate(const AgSurfaceSizes& u, const AgSurfaceSizes& v, std::int32_t dim,
                                bool rational) {
    const std::int64_t stride = std::int64_t{dim} + (rational ? 1 : 0);
    const std::int64_t size = doublesOf(u, v, dim, stride);
    if (size == 0) return false;
    block_.reset();
    block_.reset(new (std::nothrow) double[static_cast<std::size_t>(size)]());
    if (!directions_) directions_.reset(new (std::nothrow) Direction[2]);
    if (!block_ || !directions_) return false;
    blockSize_ = static_cast<std::size_t>(size);
    dim_ = dim;
    stride_ = static_cast<std::int32_t>(stride);
    rational_ = rational;
    return true;
}

void agCompactSurface::pointIntoBlock() {
    Direction& u = along(AgDirection::U);
    Direction& v = along(AgDirection::V);
    points_ = block_.get();
    low_ = points_ + std::ptrdiff_t{u.pointCount} * v.pointCount * stride_;
    high_ = low_ + dim_;
    u.knots = high_ + dim_ - u.firstKnot;
    v.knots = u.knots + u.firstKnot + u.knotCount - v.firstKnot;
}

bool agCompactSurface::evaluate(double u, double v, std::span<double> point,
                                const AgSurfaceDerivatives& derivatives) {
    if (!directions_ || point.size() < static_cast<std::size_t>(dim_)) return false;
    Direction& du = along(AgDirection::U);
    Direction& dv = along(AgDirection::V);
    agCompactSurfaceEval eval({du.spanHint, dv.spanHint}, std::move(work_));
    const bool done = eval.evaluate(view(), u, v, point.data(), derivatives);
    du.spanHint = eval.hints()[0];
    dv.spanHint = eval.hints()[1];
    work_ = eval.takeWork();
    return done;
}

AgSurfaceSizes agCompactSurface::sizes(AgDirection direction) const {
    return directions_ ? along(direction).sizes : AgSurfaceSizes{};
}

double agCompactSurface::knot(AgDirection direction, std::int32_t index) const {
    return along(direction).knots[index];
}

void agCompactSurface::setKnot(AgDirection direction, std::int32_t index, double value) {
    along(direction).knots[index] = value;
}

std::span<double> agCompactSurface::point(std::int32_t i, std::int32_t j) {
    const std::ptrdiff_t at = std::ptrdiff_t{i} * along(AgDirection::V).pointCount + j;
    return {points_ + at * stride_, static_cast<std::size_t>(stride_)};
}

std::span<const double> agCompactSurface::low() const {
    return {low_, static_cast<std::size_t>(dim_)};
}
std::span<const double> agCompactSurface::high() const {
    return {high_, static_cast<std::size_t>(dim_)};
}

void agCompactSurface::updateBounds() {
    if (!directions_) return;
    const std::ptrdiff_t count = (low_ - points_) / stride_;
    for (std::int32_t c = 0; c < dim_; ++c) {
        low_[c] = std::numeric_limits<double>::infinity();
        high_[c] = -low_[c];
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            const double* p = points_ + i * stride_;
            const double at = rational_ ? p[c] / p[dim_] : p[c];
            low_[c] = std::min(low_[c], at);
            high_[c] = std::max(high_[c], at);
        }
    }
}

AgCompactSurfaceView agCompactSurface::view() const {
    if (!directions_) return {};
    const auto seen = [](const Direction& d) {
        return AgCompactDirection{d.sizes.spans, d.sizes.degree, d.knots};
    };
    return {seen(along(AgDirection::U)),
            seen(along(AgDirection::V)),
            dim_,
            stride_,
            rational_,
            points_};
}

}  // namespace brushwork::znAG
