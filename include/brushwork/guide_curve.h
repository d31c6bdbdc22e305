// GuideCurve: a curve of the host's that strokes follow.
//
//     StrokeParameters parameters;
//     parameters.interpolationKind = 2;
//     parameters.guide = makeRef<GuideCurve>(curve);
//
// What is asked of the curve goes through the curve roles of the host table. A role that the host
// doesn't serve answers 0 or nothing; without nearest places and points nothing is painted.
#pragma once

#include <array>
#include <optional>

#include "brushwork/export.h"
#include "brushwork/host_call_table.h"
#include "brushwork/reference_count.h"

namespace brushwork {

class BRUSHWORK_API GuideCurve final : public zn::ReferenceCount {
  public:
    struct Place {
        double x = 0.0;
        double y = 0.0;
    };
    // x' = m[0] x + m[1] y + m[2], y' = m[3] x + m[4] y + m[5].
    using Mapping = std::array<double, 6>;

    // The object owns the curve and gives it back by the host's `releaseCurve`.
    explicit GuideCurve(HostCurve curve);

    [[nodiscard]] HostCurve curve() const { return curve_; }

    // How the curve's coordinates become those of the layer that is painted on. Kept until the
    // next stroke along this guide begins.
    void setMapping(const Mapping& mapping) { mapping_ = mapping; }
    // Moves the curve's control points by the kept mapping, in place. The mapping is used up by
    // that: of several strokes that begin with one guide only the first moves it.
    void mapToLayer();

    [[nodiscard]] bool isClosed() const;
    // In layer pixels; at least 0.
    [[nodiscard]] double length() const;
    // Arc parameters run from 0 to length().
    [[nodiscard]] double nearest(double x, double y) const;
    [[nodiscard]] std::optional<Place> at(double arc) const;
    // The way the curve goes on, of any length.
    [[nodiscard]] std::optional<Place> direction(double arc) const;

  protected:
    ~GuideCurve() override;

  private:
    HostCurve curve_;
    std::optional<Mapping> mapping_;
};

}  // namespace brushwork
