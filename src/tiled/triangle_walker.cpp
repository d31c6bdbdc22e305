#include "tiled/triangle_walker.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace brushwork {

using namespace znTiledImage;

namespace {

constexpr double furthest = 1 << 30;

bool isFinite(const TriangleVertex& vertex) {
    return std::isfinite(vertex.x) && std::isfinite(vertex.y) && std::isfinite(vertex.u) &&
           std::isfinite(vertex.v);
}

template <class Sample>
void walkCell(const TriangleSetup& setup, const CellPlace& cell, std::size_t pixelBytes,
              const Sample& sample) {
    const std::int32_t x = cell.x * tileSide;
    const std::int32_t y = cell.y * tileSide;
    const std::int32_t from = std::max(setup.firstRow(), y);
    const std::int32_t to = std::min(setup.endRow(), y + tileSide);
    for (std::int32_t at = from; at < to; ++at) {
        const TriangleSetup::Row row = setup.row(at, x, x + tileSide);
        if (row.samples.count < 1) continue;
        const auto index = static_cast<std::size_t>((at - y) * tileSide + (row.x - x));
        sample(cell.pixels + index * pixelBytes, row.samples);
    }
}

}  // namespace

std::optional<TriangleList::Corners> TriangleList::triangle(std::size_t number) const {
    Corners corners;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t place = number * 3 + i;
        const std::size_t index = indexes.empty() ? place : indexes[place];
        if (index >= vertices.size()) return std::nullopt;
        corners[i] = vertices[index];
    }
    return corners;
}

std::int32_t firstCentre(double place) {
    if (std::isnan(place)) return 0;
    return static_cast<std::int32_t>(std::ceil(std::clamp(place, -furthest, furthest) - 0.5));
}

TriangleSetup::Edge TriangleSetup::edge(const TriangleVertex& from, const TriangleVertex& to) {
    const double height = to.y - from.y;
    if (height <= 0) return {from.x, from.y, from.u, from.v, 0, 0, 0};
    return {from.x,
            from.y,
            from.u,
            from.v,
            (to.x - from.x) / height,
            (to.u - from.u) / height,
            (to.v - from.v) / height};
}

TriangleSetup::TriangleSetup(const TriangleVertex& a, const TriangleVertex& b,
                             const TriangleVertex& c) {
    std::array<const TriangleVertex*, 3> order{&a, &b, &c};
    if (!isFinite(a) || !isFinite(b) || !isFinite(c)) return;
    std::stable_sort(order.begin(), order.end(),
                     [](const auto* p, const auto* q) { return p->y < q->y; });
    const TriangleVertex& low = *order[0];
    const TriangleVertex& middle = *order[1];
    const TriangleVertex& high = *order[2];
    const double ax = middle.x - low.x;
    const double ay = middle.y - low.y;
    const double bx = high.x - low.x;
    const double by = high.y - low.y;
    const double area = ax * by - bx * ay;
    if (area == 0 || !std::isfinite(area)) return;
    long_ = edge(low, high);
    lower_ = edge(low, middle);
    upper_ = edge(middle, high);
    middleY_ = middle.y;
    longIsLeft_ = area > 0;
    du_ = ((middle.u - low.u) * by - (high.u - low.u) * ay) / area;
    dv_ = ((middle.v - low.v) * by - (high.v - low.v) * ay) / area;
    minX_ = std::min({a.x, b.x, c.x});
    maxX_ = std::max({a.x, b.x, c.x});
    firstRow_ = firstCentre(low.y);
    endRow_ = firstCentre(high.y);
}

PixelRect TriangleSetup::bounds() const {
    if (firstRow_ >= endRow_) return {};
    const std::int32_t left = firstCentre(minX_);
    return {left, firstRow_, firstCentre(maxX_) - left, endRow_ - firstRow_};
}

TriangleSetup::Row TriangleSetup::row(std::int32_t y, std::int32_t x, std::int32_t endX) const {
    const double centre = y + 0.5;
    const Edge& other = centre < middleY_ ? lower_ : upper_;
    const Edge& left = longIsLeft_ ? long_ : other;
    const Edge& right = longIsLeft_ ? other : long_;
    const double leftX = left.at(centre);
    Row row;
    row.x = std::max(x, firstCentre(leftX));
    row.samples.count = std::min(endX, firstCentre(right.at(centre))) - row.x;
    if (row.samples.count < 1) return row;
    const double above = centre - left.y;
    const double inside = row.x + 0.5 - leftX;
    row.samples.x = left.u + above * left.su + inside * du_;
    row.samples.y = left.v + above * left.sv + inside * dv_;
    row.samples.dx = du_;
    row.samples.dy = dv_;
    return row;
}

void resampleCell1(const TriangleSetup& setup, const CellPlace& cell, ResampleFilter& filter) {
    walkCell(setup, cell, 1,
             [&](std::uint8_t* out, const SampleRow& row) { filter.sampleRow1(out, row); });
}

void resampleCell4(const TriangleSetup& setup, const CellPlace& cell, ResampleFilter& filter) {
    walkCell(setup, cell, 4,
             [&](std::uint8_t* out, const SampleRow& row) { filter.sampleRow4(out, row); });
}

}  // namespace brushwork
