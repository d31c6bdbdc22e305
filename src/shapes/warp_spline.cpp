#include "shapes/warp_spline.h"

namespace brushwork {

WarpSpline::WarpSpline(const WarpGrid& grid, const WarpWires& wires)
    : grid_(grid),
      pullX_(static_cast<std::size_t>(grid.across) * static_cast<std::size_t>(grid.down)),
      pullY_(pullX_.size()) {
    for (std::int32_t j = 0; j < grid.down; ++j) {
        for (std::int32_t i = 0; i < grid.across; ++i) {
            const WarpWires::Place pull =
                wires.pullAt({grid.placeOf(grid.left + i), grid.placeOf(grid.low + j)});
            pullX_[index(i, j)] = static_cast<float>(pull.x);
            pullY_[index(i, j)] = static_cast<float>(pull.y);
        }
    }
}

float WarpSpline::sourceX(std::int32_t i, std::int32_t j) const {
    return static_cast<float>(grid_.placeOf(grid_.left + i)) + pullX_[index(i, j)];
}

float WarpSpline::sourceY(std::int32_t i, std::int32_t j) const {
    return static_cast<float>(grid_.placeOf(grid_.low + j)) + pullY_[index(i, j)];
}

bool WarpSpline::isStill(std::int32_t i, std::int32_t j) const {
    for (std::int32_t b = 0; b < 4; ++b) {
        for (std::int32_t a = 0; a < 4; ++a) {
            const std::size_t node = index(i + a, j + b);
            if (pullX_[node] != 0.0f || pullY_[node] != 0.0f) return false;
        }
    }
    return true;
}

WarpWires::Place WarpSpline::pullAt(double x, double y) const {
    const WarpSpan column(grid_.cell, grid_.left, grid_.across, x);
    const WarpSpan row(grid_.cell, grid_.low, grid_.down, y);
    if (!column.isInside || !row.isInside) return {};
    float pullX = 0.0f, pullY = 0.0f;
    pullsAlong({&column, 1}, row, &pullX, &pullY);
    return {static_cast<double>(pullX), static_cast<double>(pullY)};
}

void WarpSpline::pullsAlong(std::span<const WarpSpan> columns, const WarpSpan& row, float* x,
                            float* y) const {
    pullsAlong(pullX_, columns, row, x);
    pullsAlong(pullY_, columns, row, y);
}

void WarpSpline::pullsAlong(const std::vector<float>& nodes, std::span<const WarpSpan> columns,
                            const WarpSpan& row, float* out) const {
    std::int32_t held = -1;
    float mixed[4] = {};  // the columns of nodes at this row
    for (std::size_t n = 0; n < columns.size(); ++n) {
        const WarpSpan& column = columns[n];
        if (column.first != held) {
            held = column.first;
            for (std::int32_t a = 0; a < 4; ++a) {
                float sum = 0.0f;
                for (std::int32_t b = 0; b < 4; ++b)
                    sum += row.weights[static_cast<std::size_t>(b)] *
                           nodes[index(held + a, row.first + b)];
                mixed[a] = sum;
            }
        }
        out[n] = column.weights[0] * mixed[0] + column.weights[1] * mixed[1] +
                 column.weights[2] * mixed[2] + column.weights[3] * mixed[3];
    }
}

}  // namespace brushwork
