// Curves of straight pieces behind the curve roles of the host table: for hosts without curves of
// their own, and for trying out what follows curves.
//
//     servePolylineCurves(hostCallTable());
//     parameters.guide = makeRef<GuideCurve>(
//         toHostCurve(std::make_unique<PolylineCurve>(places, PolylineCurve::Ends::Open)));
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "brushwork/host_call_table.h"

namespace brushwork {

class PolylineCurve {
  public:
    struct Place {
        double x = 0.0;
        double y = 0.0;
    };
    struct Box {
        Place low;
        Place high;
    };
    enum class Ends { Open, Joined };  // Joined: a last piece leads back to the first place

    // Finite places. Without any, all answers are empty.
    PolylineCurve(std::vector<Place> places, Ends ends);

    [[nodiscard]] bool isEmpty() const { return corners_.empty(); }
    [[nodiscard]] bool isClosed() const { return closed_; }
    [[nodiscard]] double length() const { return isEmpty() ? 0.0 : arcs_.back(); }
    // The smallest arc parameter among the nearest places.
    [[nodiscard]] double nearest(Place place) const;
    // Of a curve that isn't empty; arcs outside it stand for its ends.
    [[nodiscard]] Place at(double arc) const;
    // Of length 1; at a corner that of the piece that begins there. 0 if the curve has no length.
    [[nodiscard]] Place direction(double arc) const;
    // By two rows of three factors, as HostCallTable::mapCurve tells.
    void map(const double* m);
    // Of a curve that isn't empty.
    [[nodiscard]] Box bounds() const;
    // One after the other, the joining one included.
    [[nodiscard]] std::vector<HostSegment> segments() const;

  private:
    void measure();
    [[nodiscard]] std::size_t pieceAt(double arc) const;

    std::vector<Place> corners_;  // with the first one again at the end if closed
    std::vector<double> arcs_;    // of each corner
    bool closed_;
};

// What the engine and its host hand to each other; releaseCurve destroys the curve.
[[nodiscard]] HostCurve toHostCurve(std::unique_ptr<PolylineCurve> curve);

// Fills the curve roles of the table. All its curves must then come from toHostCurve.
void servePolylineCurves(HostCallTable& table);

}  // namespace brushwork
