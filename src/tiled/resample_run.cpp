#include "tiled/resample_run.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>

#include "foundation/tasks/processor_count.h"
#include "tiled/resample_4_thread.h"
#include "tiled/tile_access.h"
#include "tiled/tile_iterator.h"

namespace brushwork {

using namespace znTiledImage;

namespace {

// The cells of the triangle's bounding box that the target has, ready to be written: workers change
// no node.
bool collectCells(Image& target, const TriangleSetup& setup, std::vector<CellPlace>& cells) {
    TypedTileIteratorRect<Image> cell(target, setup.bounds());
    for (; cell.valid(); cell.next()) {
        TileNode& node = cell.node();
        if (!setKind(node, TileKind::Filled, target, Contents::Keep) || !prepareWrite(node))
            return false;
        cells.push_back(
            {cell.cellX(), cell.cellY(), static_cast<std::uint8_t*>(node.tile->data())});
    }
    return true;
}

void runOnThreads(const TriangleList::Corners& corners, const std::vector<CellPlace>& cells,
                  ResampleFilter& filter, int processors) {
    const bool costly = filter.type() == FilterLanczos;
    const auto shares = cellShares(cells.size(), processors > 0 ? processors : processorCount(),
                                   costly ? leastLanczosCells : leastCells);
    if (shares.empty()) return;
    std::deque<Resample4Thread> workers;
    for (std::size_t i = 1; i < shares.size(); ++i) {
        Resample4Thread& worker = workers.emplace_back(filter, corners[0], corners[1], corners[2],
                                                       cells, shares[i], nullptr, std::string());
        // A thread that can't be had is made up for here.
        if (!worker.launch()) worker.run();
    }
    Resample4Thread own(filter, corners[0], corners[1], corners[2], cells, shares.front(), nullptr,
                        std::string());
    own.run();
    for (; !workers.empty(); workers.pop_front()) workers.front().wait();
}

class Outline {
  public:
    Outline(Image& target, const znImage::Byte4& color) : target_(target), color_(color) {}

    // The nearest pixels of the way, both ends among them. False: no memory.
    [[nodiscard]] bool line(const TriangleVertex& from, const TriangleVertex& to) {
        std::int64_t x = corner(from.x);
        std::int64_t y = corner(from.y);
        const std::int64_t endX = corner(to.x);
        const std::int64_t endY = corner(to.y);
        const std::int64_t dx = std::abs(endX - x);
        const std::int64_t dy = -std::abs(endY - y);
        const std::int64_t stepX = x < endX ? 1 : -1;
        const std::int64_t stepY = y < endY ? 1 : -1;
        std::int64_t error = dx + dy;
        while (dot(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y))) {
            if (x == endX && y == endY) return true;
            const std::int64_t twice = 2 * error;
            if (twice >= dy) {
                error += dy;
                x += stepX;
            }
            if (twice <= dx) {
                error += dx;
                y += stepY;
            }
        }
        return false;
    }

  private:
    // Corners far away are brought nearer, so that a line ends.
    static std::int64_t corner(double place) {
        constexpr std::int32_t furthest = 1 << 20;
        return std::clamp(firstCentre(place), -furthest, furthest);
    }
    bool dot(std::int32_t x, std::int32_t y) {
        TileNode* const node = target_.container().nodeOfCell(cellOf(x), cellOf(y));
        if (!node) return true;
        if (!setKind(*node, TileKind::Filled, target_, Contents::Keep) || !prepareWrite(*node))
            return false;
        const std::size_t size = target_.bytesPerPixel();
        const auto index = static_cast<std::size_t>((y & tileMask) * tileSide + (x & tileMask));
        std::memcpy(static_cast<std::uint8_t*>(node->tile->data()) + index * size,
                    color_.bytes.data(), size);
        return true;
    }

    Image& target_;
    znImage::Byte4 color_;
};

bool drawOutline(Image& target, const TriangleList::Corners& corners, const znImage::Byte4& color) {
    Outline outline(target, color);
    return outline.line(corners[0], corners[1]) && outline.line(corners[1], corners[2]) &&
           outline.line(corners[2], corners[0]);
}

}  // namespace

bool resampleTriangles(Image& target, const TriangleList& list, ResampleFilter& filter,
                       const ResampleOptions& options) {
    if (!filter.isStarted()) return false;
    const bool four = target.pixelKind() == PixelKind::Byte4;
    std::vector<CellPlace> cells;
    for (std::size_t n = 0; n < list.count(); ++n) {
        const auto corners = list.triangle(n);
        if (!corners) continue;
        const TriangleSetup setup((*corners)[0], (*corners)[1], (*corners)[2]);
        cells.clear();
        if (!collectCells(target, setup, cells)) return false;
        if (!four) {
            for (const CellPlace& cell : cells) resampleCell1(setup, cell, filter);
        } else if (options.singleThread) {
            for (const CellPlace& cell : cells) resampleCell4(setup, cell, filter);
        } else {
            runOnThreads(*corners, cells, filter, options.processors);
        }
    }
    if (!options.outline) return true;
    for (std::size_t n = 0; n < list.count(); ++n) {
        const auto corners = list.triangle(n);
        if (corners && !drawOutline(target, *corners, options.outlineColor)) return false;
    }
    return true;
}

}  // namespace brushwork
