// Splines for the tests of the geometry kernel, and their definition in long double.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "geometry/ag_spline.h"

namespace brushwork::test {

struct SplineNumbers {
    std::int32_t dim = 2;
    std::int32_t degree = 3;
    std::int32_t rat = AG_NOT_RATIONAL;
    std::int32_t form = AG_OPEN;
    std::int32_t ctype = AG_NOTHING_SPECIAL;
    std::vector<double> knots;  // as AgSplineData has them
    std::vector<double> points;

    [[nodiscard]] std::size_t stride() const {
        return static_cast<std::size_t>(dim) + (rat != 0 ? 1u : 0u);
    }
    [[nodiscard]] double start() const { return knots[static_cast<std::size_t>(degree) - 1]; }
    [[nodiscard]] double end() const {
        return knots[knots.size() - static_cast<std::size_t>(degree)];
    }
    [[nodiscard]] AgSplineData data() const {
        return {dim, degree, rat, form, ctype, knots, points};
    }
};

inline AgSplineResult make(const SplineNumbers& numbers) {
    return agMakeSpline(numbers.data());
}

inline double between(std::mt19937& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}
inline std::int32_t pick(std::mt19937& random, std::int32_t low, std::int32_t high) {
    return std::uniform_int_distribution<std::int32_t>(low, high)(random);
}

// Any degree, dimension and kind of weights; knots of every multiplicity that leaves no corner;
// ends clamped or not.
inline SplineNumbers randomSpline(std::mt19937& random) {
    SplineNumbers s;
    s.dim = pick(random, 1, 5);
    s.degree = pick(random, 1, 6);
    s.rat = pick(random, -1, 1);
    const std::size_t m = static_cast<std::size_t>(s.degree);
    const std::size_t spans = static_cast<std::size_t>(pick(random, 1, 9));
    const bool clamped = pick(random, 0, 1) == 1;
    double t = between(random, -5, 5);
    std::size_t run = 1;
    for (std::size_t i = 0; i < spans + 2 * m - 1; ++i) {
        const bool outside = i < m || i >= spans + m;
        const bool repeat = i > 0 && run + 1 < m && pick(random, 0, 3) == 0;
        const bool step = i > 0 && !(clamped && outside) && !repeat;
        run = step || i == spans + m - 1 ? 1 : run + 1;
        if (step || i == spans + m - 1) t += between(random, 0.1, 2.0);
        s.knots.push_back(t);
    }
    for (std::size_t i = 0; i < spans + m; ++i) {
        for (std::int32_t c = 0; c < s.dim; ++c) s.points.push_back(between(random, -10, 10));
        if (s.rat != 0) s.points.push_back(between(random, 0.2, 3.0));
    }
    return s;
}

// The unit circle around (0, 0) in four arcs, by the nine-point square.
inline SplineNumbers circle(std::int32_t rat) {
    const double w = std::sqrt(0.5);
    const double square[9][3] = {{1, 0, 1},   {1, 1, w},  {0, 1, 1},  {-1, 1, w}, {-1, 0, 1},
                                 {-1, -1, w}, {0, -1, 1}, {1, -1, w}, {1, 0, 1}};
    SplineNumbers s;
    s.degree = 2;
    s.rat = rat;
    s.form = AG_PERIODIC;
    s.ctype = AG_CIRCLE;
    s.knots = {0, 0, 1, 1, 2, 2, 3, 3, 4, 4};
    for (const auto& p : square) {
        const double by = rat == AG_HOMOGENEOUS ? p[2] : 1.0;
        s.points.insert(s.points.end(), {p[0] * by, p[1] * by, p[2]});
    }
    return s;
}

// The Cox-de Boor basis function i of a degree, straight from its definition, right-continuous. The
// knots are a spline's own with the first and the last doubled.
class BasisOracle {
  public:
    explicit BasisOracle(const SplineNumbers& numbers) : numbers_(numbers) {
        knots_.push_back(numbers.knots.front());
        knots_.insert(knots_.end(), numbers.knots.begin(), numbers.knots.end());
        knots_.push_back(numbers.knots.back());
    }

    [[nodiscard]] long double basis(std::size_t i, std::size_t degree, long double t) const {
        if (degree == 0) return knots_[i] <= t && t < knots_[i + 1] ? 1.0L : 0.0L;
        long double sum = 0.0L;
        const long double left = knots_[i + degree] - knots_[i];
        const long double right = knots_[i + degree + 1] - knots_[i + 1];
        if (left > 0.0L) sum += (t - knots_[i]) / left * basis(i, degree - 1, t);
        if (right > 0.0L) sum += (knots_[i + degree + 1] - t) / right * basis(i + 1, degree - 1, t);
        return sum;
    }

    // The point at t, left of the end of the domain.
    [[nodiscard]] std::vector<long double> point(long double t) const {
        const std::size_t m = static_cast<std::size_t>(numbers_.degree);
        const std::size_t dim = static_cast<std::size_t>(numbers_.dim);
        const std::size_t stride = numbers_.stride();
        std::vector<long double> sum(dim, 0.0L);
        long double weights = 0.0L;
        for (std::size_t i = 0; i * stride < numbers_.points.size(); ++i) {
            const double* const p = numbers_.points.data() + i * stride;
            const long double weight = numbers_.rat != 0 ? p[dim] : 1.0L;
            const long double by = basis(i, m, t);
            weights += by * weight;
            for (std::size_t c = 0; c < dim; ++c)
                sum[c] += by * p[c] * (numbers_.rat == AG_NON_HOMOGENEOUS ? weight : 1.0L);
        }
        for (long double& coordinate : sum) coordinate /= weights;
        return sum;
    }

  private:
    const SplineNumbers& numbers_;
    std::vector<long double> knots_;
};

}  // namespace brushwork::test
