// WarpWires: curves that pull a picture along.
//
// Curves come in pairs: where a line of the picture lies, and where it goes. The picture follows on
// both sides of the line, ever less up to its reach, behind which it stays. A last curve without a
// partner holds the picture where it lies.
//
// Places on the two curves of a pair belong together by their share of the length. Reaches are wide
// enough for a straight pair not to fold the picture.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "foundation/host/polyline_curves.h"
#include "shapes/host_outline.h"

namespace brushwork {

class WarpWires {
  public:
    using Place = PolylineCurve::Place;

    // For a grid of such cells, in pixels: the wires are followed as closely as it can show. Curves
    // without pieces are left out, with their partners.
    WarpWires(std::span<const HostCurve> curves, double cell);

    [[nodiscard]] bool isEmpty() const { return wires_.empty(); }
    // Around everything that is moved or seen elsewhere. Nothing if empty.
    [[nodiscard]] std::optional<OutlineExtent> extent() const;
    // From a place to the one whose pixels are seen there after the warp.
    [[nodiscard]] Place pullAt(Place place) const;

  private:
    // A place on the line as it goes, and from there to where it lies.
    struct Knot {
        Place at;
        Place pull;
    };
    struct Wire {
        std::vector<Knot> knots;  // at least two
        double reach = 0.0;
        OutlineExtent box;  // of all that it reaches
    };
    struct Share {
        Place pull;
        double weight = 0.0;
    };

    [[nodiscard]] Share shareOf(const Wire& wire, Place place) const;

    std::vector<Wire> wires_;
    double softness_;  // pixels, squared
};

}  // namespace brushwork
