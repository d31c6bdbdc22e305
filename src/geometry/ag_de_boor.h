// The recurrence under every evaluation: one span of a spline, at one parameter.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

// One span as it lies in memory. For degree m between knots a and b: the m knots up to a and the m
// knots from b on, ascending, and the m + 1 control points that bear on the span.
struct AgSpan {
    std::size_t degree = 1;  // at least 1
    std::size_t stride = 1;  // doubles of a point
    const double* knots = nullptr;
    const double* points = nullptr;
};

// Doubles that agDeBoor needs as work space.
[[nodiscard]] constexpr std::size_t agDeBoorWork(std::size_t degree, std::size_t stride) {
    return (degree + 1) * stride;
}

// Up to here spans run unrolled.
inline constexpr std::size_t agUnrolledDegree = 3;
inline constexpr std::size_t agUnrolledStride = 4;

// Writes `stride` doubles each: the value, and the first and second derivative where these aren't
// null. `work` holds agDeBoorWork doubles and overlaps no other argument; an unrolled span doesn't
// touch it. Unrolled or not, the results are the same to the last bit. Outside the span its
// polynomial goes on.
void agDeBoor(const AgSpan& span, double t, double* work, double* value, double* first,
              double* second);
// The same without unrolling.
void agDeBoorPlain(const AgSpan& span, double t, double* work, double* value, double* first,
                   double* second);

// From homogeneous coordinates to points, in place: `dim` coordinates, the weight behind them. The
// derivatives may be null, the second is only read with the first. Not finite where the weight is
// 0.
void agProject(std::size_t dim, double* value, double* first, double* second);

}  // namespace brushwork
