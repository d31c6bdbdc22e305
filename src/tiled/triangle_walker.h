// Triangles of a target image, each cell by cell and row by row.
//
//     const TriangleSetup setup(a, b, c);
//     for (const CellPlace& cell : cells) resampleCell4(setup, cell, filter);
//
// A pixel belongs to the triangle if its centre, at (x + 0.5, y + 0.5), lies inside or on the left
// or lower edge, so that neighbours neither overlap nor leave a gap. The source place of a row's
// first pixel in a cell is computed from the left edge, that of each further pixel is one step
// more; so a cell's bytes don't depend on who walks it, nor on what other cells there are.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "tiled/resample_filter.h"
#include "tiled/tile_cells.h"

namespace brushwork {

// A corner: where it lies in the target, and in the source. `w` is carried along and not used.
struct TriangleVertex {
    double x = 0, y = 0;
    double u = 0, v = 0;
    double w = 0;
};

// Triangles by threes: of the vertices, or, if there are indexes, of those. What is left over, and
// triangles with an index that is no vertex, are left out.
struct TriangleList {
    std::span<const TriangleVertex> vertices;
    std::span<const std::uint32_t> indexes;

    using Corners = std::array<TriangleVertex, 3>;
    [[nodiscard]] std::size_t count() const {
        return (indexes.empty() ? vertices.size() : indexes.size()) / 3;
    }
    [[nodiscard]] std::optional<Corners> triangle(std::size_t number) const;
};

// The first row, or pixel of a row, whose centre lies at or behind a place; within 2^30 of
// zero, and 0 for not-a-number.
[[nodiscard]] std::int32_t firstCentre(double place);

// What of a triangle doesn't change from row to row. One without an area, or with a coordinate that
// is no finite number, has no rows.
class TriangleSetup {
  public:
    TriangleSetup(const TriangleVertex& a, const TriangleVertex& b, const TriangleVertex& c);

    [[nodiscard]] std::int32_t firstRow() const { return firstRow_; }
    [[nodiscard]] std::int32_t endRow() const { return endRow_; }
    // Pixels that the triangle can reach; empty if it has no rows.
    [[nodiscard]] znTiledImage::PixelRect bounds() const;

    // The pixels of a row from `x` up to `endX` that belong to the triangle.
    struct Row {
        std::int32_t x = 0;
        SampleRow samples{};  // count 0: none
    };
    [[nodiscard]] Row row(std::int32_t y, std::int32_t x, std::int32_t endX) const;

  private:
    struct Edge {
        double x, y, u, v;  // its lower end
        double sx, su, sv;  // a row further up
        [[nodiscard]] double at(double y_) const { return x + (y_ - y) * sx; }
    };
    [[nodiscard]] static Edge edge(const TriangleVertex& from, const TriangleVertex& to);

    Edge long_{}, lower_{}, upper_{};
    double middleY_ = 0;
    bool longIsLeft_ = false;
    double du_ = 0, dv_ = 0;
    double minX_ = 0, maxX_ = 0;
    std::int32_t firstRow_ = 0, endRow_ = 0;
};

// A cell to be done: its place in cells, and its pixels, of rows of 128.
struct CellPlace {
    std::int32_t x = 0, y = 0;
    std::uint8_t* pixels = nullptr;
};

// The part of the triangle that lies in the cell, sampled with one byte or four a pixel.
void resampleCell1(const TriangleSetup& setup, const CellPlace& cell, ResampleFilter& filter);
void resampleCell4(const TriangleSetup& setup, const CellPlace& cell, ResampleFilter& filter);

}  // namespace brushwork
