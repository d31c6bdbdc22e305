// CurveLength: how long a plane curve is, and its places by length walked.
//
//     const CurveLength arc(*spline);
//     for (double s = 0.0; s <= arc.length(); s += 5.0) place(arc.parameterAt(s));
//
// Built once for a spline, then only read, by any number of threads; the spline must outlive it and
// stay as it is.
#pragma once

#include <vector>

#include "geometry/ag_compact_spline.h"

namespace brushwork::znAG {

class CurveLength {
  public:
    // In the first two coordinates. Length 0 where there is no curve (see bezierPieces) or where it
    // runs to infinity.
    explicit CurveLength(const agCompactSpline& spline);

    // Right to about a billionth; at corners with no tangent, to a millionth.
    [[nodiscard]] double length() const { return marks_.empty() ? 0.0 : marks_.back().s; }
    // The length from the start of the domain to t, clamped to it.
    [[nodiscard]] double lengthTo(double t) const;
    // The parameter where the length s, clamped to 0..length(), has been walked.
    [[nodiscard]] double parameterAt(double s) const;

  private:
    struct Mark {
        double t;
        double s;  // the length up to t
    };
    void measure(double start, double end, double whole, int depth);
    [[nodiscard]] double stretch(double start, double end) const;

    AgCompactView view_;
    double tolerance_ = 0.0;   // for a stretch between two marks
    std::vector<Mark> marks_;  // ascending in both
};

}  // namespace brushwork::znAG
