#include "geometry/ag_compact_spline.h"

#include <algorithm>
#include <limits>
#include <new>

#include "geometry/ag_spline_check.h"

namespace brushwork::znAG {

agCompactSpline::agCompactSpline(std::int32_t spans, std::int32_t degree, std::int32_t form,
                                 std::int32_t dim, bool rational) {
    rebuild(spans, degree, form, dim, rational);
}

agCompactSpline::agCompactSpline(const agCompactSpline& other) : zn::ReferenceCount() {
    if (!rebuild(other.spans_, other.degree_, other.form_, other.dim_, other.rational_)) return;
    ctype_ = other.ctype_;
    plainWeights_ = other.plainWeights_;
    spanHint_ = other.spanHint_;
    std::copy_n(other.block_.get(), blockSize(), block_.get());
}

agCompactSpline::agCompactSpline(const AG_SPLINE& spline) {
    convert(&spline);
}

void agCompactSpline::clear() {
    spans_ = degree_ = dim_ = stride_ = spanHint_ = knotCount_ = pointCount_ = firstKnot_ = 0;
    form_ = AG_OPEN;
    rational_ = plainWeights_ = false;
    ctype_ = AG_NOTHING_SPECIAL;
    low_ = high_ = knots_ = points_ = nullptr;
    block_.reset();
}

bool agCompactSpline::rebuild(std::int32_t spans, std::int32_t degree, std::int32_t form,
                              std::int32_t dim, bool rational) {
    if (form < -2 || form > 2) {
        clear();
        return false;
    }
    const bool same =
        block_ && spans == spans_ && degree == degree_ && dim == dim_ && rational == rational_;
    if (!same && !allocate(spans, degree, dim, rational)) {
        clear();
        return false;
    }
    form_ = form;
    ctype_ = AG_NOTHING_SPECIAL;
    plainWeights_ = false;
    spanHint_ = 0;
    pointIntoBlock();
    return true;
}

bool agCompactSpline::allocate(std::int32_t spans, std::int32_t degree, std::int32_t dim,
                               bool rational) {
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max() / 8;
    if (spans < 1 || degree < 1 || dim < 1 || dim >= most) return false;
    const std::int64_t stride = std::int64_t{dim} + (rational ? 1 : 0);
    const std::int64_t points = std::int64_t{spans} + degree;
    const std::int64_t knots = std::int64_t{spans} - 1 + (std::int64_t{degree} + 1) * 2;
    const std::int64_t size = points * stride + 2 * std::int64_t{dim} + knots;
    if (size > most) return false;
    block_.reset();
    block_.reset(new (std::nothrow) double[static_cast<std::size_t>(size)]());
    if (!block_) return false;
    spans_ = spans;
    degree_ = degree;
    dim_ = dim;
    stride_ = static_cast<std::int32_t>(stride);
    rational_ = rational;
    pointCount_ = static_cast<std::int32_t>(points);
    knotCount_ = static_cast<std::int32_t>(knots);
    firstKnot_ = -degree;
    return true;
}

void agCompactSpline::pointIntoBlock() {
    points_ = block_.get();
    low_ = points_ + static_cast<std::size_t>(pointCount_) * static_cast<std::size_t>(stride_);
    high_ = low_ + dim_;
    knots_ = high_ + dim_ + degree_;
}

std::size_t agCompactSpline::blockSize() const {
    return static_cast<std::size_t>(pointCount_) * static_cast<std::size_t>(stride_) +
           2 * static_cast<std::size_t>(dim_) + static_cast<std::size_t>(knotCount_);
}

bool agCompactSpline::convert(const AG_SPLINE* spline) {
    if (!spline) {
        clear();
        return true;
    }
    const bool rational = spline->rat != AG_NOT_RATIONAL;
    if (!agSplineIsEvaluable(spline) ||
        !rebuild(spline->n, spline->m, spline->form, spline->dim, rational)) {
        clear();
        return false;
    }
    ctype_ = static_cast<std::uint8_t>(spline->ctype);
    plainWeights_ = spline->rat == AG_NON_HOMOGENEOUS;
    std::int32_t index = 1 - degree_;
    for (const AG_NODE* node = agFirstNode(*spline); node; node = node->next, ++index) {
        knots_[index] = *node->t;
        if (index > spans_) continue;
        const std::span<double> to = point(index + degree_ - 1);
        std::copy_n(node->Pw.begin(), to.size(), to.begin());
        if (plainWeights_)
            for (double& coordinate : to.first(to.size() - 1)) coordinate *= to.back();
    }
    knots_[-degree_] = knots_[1 - degree_];
    knots_[spans_ + degree_] = knots_[spans_ + degree_ - 1];
    updateBounds();
    return true;
}

AgSplinePtr agCompactSpline::toNodes() const {
    if (spans_ < 1) return nullptr;
    std::vector<double> unweighted(points().begin(), points().end());
    if (plainWeights_) {
        const std::size_t stride = static_cast<std::size_t>(stride_);
        for (std::size_t i = 0; i < unweighted.size(); ++i)
            if (i % stride + 1 != stride) unweighted[i] /= unweighted[i - i % stride + stride - 1];
    }
    AgSplineData data;
    data.dim = dim_;
    data.degree = degree_;
    data.rat = !rational_ ? AG_NOT_RATIONAL : plainWeights_ ? AG_NON_HOMOGENEOUS : AG_HOMOGENEOUS;
    data.form = form_;
    data.ctype = ctype_;
    data.knots = knots().subspan(1, knots().size() - 2);
    data.points = unweighted;
    return agMakeSpline(data).spline;
}

bool agCompactSpline::evaluateInto(double t, std::span<double> point, double* first,
                                   double* second) {
    if (point.size() < static_cast<std::size_t>(dim_)) return false;
    agCompactSplineEval eval(spanHint_, std::move(work_));
    const bool done = eval.evaluate(view(), t, point.data(), first, second);
    spanHint_ = eval.spanHint();
    work_ = eval.takeWork();
    return done;
}

bool agCompactSpline::evaluate(double t, std::span<double> point) {
    return evaluateInto(t, point, nullptr, nullptr);
}

bool agCompactSpline::evaluate(double t, std::span<double> point, std::span<double> first) {
    if (first.size() < static_cast<std::size_t>(dim_)) return false;
    return evaluateInto(t, point, first.data(), nullptr);
}

bool agCompactSpline::evaluate(double t, std::span<double> point, std::span<double> first,
                               std::span<double> second) {
    const std::size_t dim = static_cast<std::size_t>(dim_);
    if (first.size() < dim || second.size() < dim) return false;
    return evaluateInto(t, point, first.data(), second.data());
}

std::span<const double> agCompactSpline::knots() const {
    if (spans_ < 1) return {};
    return {knots_ + firstKnot_, static_cast<std::size_t>(knotCount_)};
}

std::span<double> agCompactSpline::point(std::int32_t index) {
    const std::size_t stride = static_cast<std::size_t>(stride_);
    return {points_ + static_cast<std::size_t>(index) * stride, stride};
}

std::span<const double> agCompactSpline::points() const {
    return {points_, static_cast<std::size_t>(pointCount_) * static_cast<std::size_t>(stride_)};
}

std::span<const double> agCompactSpline::low() const {
    return {low_, static_cast<std::size_t>(dim_)};
}
std::span<const double> agCompactSpline::high() const {
    return {high_, static_cast<std::size_t>(dim_)};
}

void agCompactSpline::updateBounds() {
    for (std::int32_t c = 0; c < dim_; ++c) {
        low_[c] = std::numeric_limits<double>::infinity();
        high_[c] = -low_[c];
        for (std::int32_t i = 0; i < pointCount_; ++i) {
            const std::span<const double> p = point(i);
            const double at = p[static_cast<std::size_t>(c)] / (rational_ ? p.back() : 1.0);
            low_[c] = std::min(low_[c], at);
            high_[c] = std::max(high_[c], at);
        }
    }
}

AgCompactView agCompactSpline::view() const {
    return {spans_, degree_, dim_, stride_, rational_, knots_, points_};
}

}  // namespace brushwork::znAG
