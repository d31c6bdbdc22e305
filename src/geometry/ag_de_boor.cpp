#include "geometry/ag_de_boor.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace brushwork {
namespace {

// With d the points after r rounds, point k stands for the knots u[k] to u[k + m - r - 1] and r
// times t; every derivative is a difference of such points.
template <class Stride>
void firstDerivative(std::size_t m, Stride stride, const double* u, const double* d,
                     double* first) {
    const double scale = static_cast<double>(m) / (u[m] - u[m - 1]);
    for (std::size_t c = 0; c < stride; ++c)
        first[c] = (d[m * stride + c] - d[(m - 1) * stride + c]) * scale;
}

template <class Stride>
void secondDerivative(std::size_t m, Stride stride, const double* u, const double* d,
                      double* second) {
    const double scale = static_cast<double>(m * (m - 1)) / (u[m] - u[m - 1]);
    const double right = u[m + 1] - u[m - 1];
    const double left = u[m] - u[m - 2];
    for (std::size_t c = 0; c < stride; ++c) {
        const double a = d[(m - 2) * stride + c];
        const double b = d[(m - 1) * stride + c];
        const double e = d[m * stride + c];
        second[c] = ((e - b) / right - (b - a) / left) * scale;
    }
}

// Round r moves point k of a span of degree m.
template <class Stride>
inline void movePoint(std::size_t m, Stride stride, std::size_t r, std::size_t k, const double* u,
                      double t, double* d) {
    const double low = u[k - 1];
    const double part = (t - low) / (u[k + m - r] - low);
    for (std::size_t c = 0; c < stride; ++c)
        d[k * stride + c] = (1.0 - part) * d[(k - 1) * stride + c] + part * d[k * stride + c];
}

template <std::size_t degree, std::size_t stride>
struct Unrolled {
    using Stride = std::integral_constant<std::size_t, stride>;

    template <std::size_t r, std::size_t... j>
    static void round(std::index_sequence<j...>, const double* u, double t, double* d) {
        (movePoint(degree, Stride{}, r, degree - j, u, t, d), ...);
    }
    template <std::size_t r>
    static void rounds(const double* u, double t, double* d, double* first, double* second) {
        if constexpr (r + 1 == degree)
            if (second) secondDerivative(degree, Stride{}, u, d, second);
        if constexpr (r == degree)
            if (first) firstDerivative(degree, Stride{}, u, d, first);
        round<r>(std::make_index_sequence<degree - r + 1>{}, u, t, d);
        if constexpr (r < degree) rounds<r + 1>(u, t, d, first, second);
    }
    static void run(const AgSpan& span, double t, double* value, double* first, double* second) {
        double d[(degree + 1) * stride];
        std::copy_n(span.points, (degree + 1) * stride, d);
        if (second && degree < 2) std::fill_n(second, stride, 0.0);
        rounds<1>(span.knots, t, d, first, second);
        std::copy_n(d + degree * stride, stride, value);
    }
};

using Form = void (*)(const AgSpan&, double, double*, double*, double*);
template <std::size_t m>
constexpr Form formsOf[agUnrolledStride] = {Unrolled<m, 1>::run, Unrolled<m, 2>::run,
                                            Unrolled<m, 3>::run, Unrolled<m, 4>::run};
constexpr const Form* unrolledForms[agUnrolledDegree] = {formsOf<1>, formsOf<2>, formsOf<3>};

}  // namespace

void agDeBoorPlain(const AgSpan& span, double t, double* work, double* value, double* first,
                   double* second) {
    std::copy_n(span.points, agDeBoorWork(span.degree, span.stride), work);
    const std::size_t m = span.degree;
    if (second && m < 2) std::fill_n(second, span.stride, 0.0);
    for (std::size_t r = 1; r <= m; ++r) {
        if (second && r + 1 == m) secondDerivative(m, span.stride, span.knots, work, second);
        if (first && r == m) firstDerivative(m, span.stride, span.knots, work, first);
        for (std::size_t k = m; k >= r; --k) movePoint(m, span.stride, r, k, span.knots, t, work);
    }
    std::copy_n(work + m * span.stride, span.stride, value);
}

void agDeBoor(const AgSpan& span, double t, double* work, double* value, double* first,
              double* second) {
    if (span.degree <= agUnrolledDegree && span.stride <= agUnrolledStride)
        unrolledForms[span.degree - 1][span.stride - 1](span, t, value, first, second);
    else
        agDeBoorPlain(span, t, work, value, first, second);
}

void agProject(std::size_t dim, double* value, double* first, double* second) {
    const double weight = value[dim];
    for (std::size_t c = 0; c < dim; ++c) {
        value[c] /= weight;
        if (!first) continue;
        first[c] = (first[c] - first[dim] * value[c]) / weight;
        if (second)
            second[c] = (second[c] - 2.0 * first[dim] * first[c] - second[dim] * value[c]) / weight;
    }
}

}  // namespace brushwork
