// WarpSpline: a grid of points that deforms a picture.
//
//     const WarpWires wires(curves, cell);
//     const WarpSpline spline(*WarpGrid::over(*wires.extent(), cell), wires);
//     renderWarp(spline, {picture, x, y}, SampleMode::Bilinear, layer, box);    // warp_render.h
//
// Each node of the grid holds the place in the picture that is seen there. Between nodes a smooth
// spline runs through the four by four around; where all sixteen rest on themselves the picture
// stays as it is, to the bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "shapes/warp_grid.h"
#include "shapes/warp_wires.h"

namespace brushwork {

class WarpSpline {
  public:
    // A point for each node, from what the curves pull there.
    WarpSpline(const WarpGrid& grid, const WarpWires& wires);

    [[nodiscard]] const WarpGrid& grid() const { return grid_; }

    // What is seen at a node of the grid.
    [[nodiscard]] float sourceX(std::int32_t i, std::int32_t j) const;
    [[nodiscard]] float sourceY(std::int32_t i, std::int32_t j) const;

    // Whether all four by four nodes from this one on rest on themselves. They must be the grid's.
    [[nodiscard]] bool isStill(std::int32_t i, std::int32_t j) const;

    // From a place to what is seen there; zero outside the grid.
    [[nodiscard]] WarpWires::Place pullAt(double x, double y) const;
    // The same for a row of places, whose spans lie inside and ascend, into as many x and y.
    void pullsAlong(std::span<const WarpSpan> columns, const WarpSpan& row, float* x,
                    float* y) const;

  private:
    [[nodiscard]] std::size_t index(std::int32_t i, std::int32_t j) const {
        return static_cast<std::size_t>(j) * static_cast<std::size_t>(grid_.across) +
               static_cast<std::size_t>(i);
    }
    void pullsAlong(const std::vector<float>& nodes, std::span<const WarpSpan> columns,
                    const WarpSpan& row, float* out) const;

    WarpGrid grid_;
    std::vector<float> pullX_, pullY_;  // one a node: how far off its source lies
};

}  // namespace brushwork
