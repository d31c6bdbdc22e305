// The grid of a warp: where its nodes lie, and which of them bend a pixel.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "brushwork/il_tile.h"
#include "shapes/host_outline.h"

namespace brushwork {

// Square cells; node (i, j) lies at ((left + i) * cell, (low + j) * cell).
struct WarpGrid {
    float cell = 0.0f;                  // pixels, at least 1
    std::int32_t left = 0, low = 0;     // in cells
    std::int32_t across = 0, down = 0;  // nodes

    // Snapped to whole cells, with four to spare on each side. Nothing for an extent that takes too
    // many nodes, and for a cell below a pixel.
    [[nodiscard]] static std::optional<WarpGrid> over(const OutlineExtent& extent, float cell);

    // The pixels that lie between four by four nodes.
    [[nodiscard]] ilTile box() const;
    [[nodiscard]] double placeOf(std::int32_t node) const {
        return static_cast<double>(node) * static_cast<double>(cell);
    }
};

// Along one axis, the four nodes around a place and how much of each counts there: Catmull and
// Rom's spline, which runs through its nodes.
struct WarpSpan {
    // `begin` and `count` are the grid's on that axis.
    WarpSpan(float cell, std::int32_t begin, std::int32_t count, double place);

    std::int32_t first = 0;  // node
    bool isInside = false;   // whether all four are nodes of the grid
    std::array<float, 4> weights{};
};

}  // namespace brushwork
