// ilPageTileManager: which parts of which 128 x 128 pages an operation touched.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "brushwork/il_tile.h"

namespace brushwork {

class ilPageTileManager {
  public:
    // Grid cell of a pixel: (x >> 7, y >> 7), ordered by x, then by y.
    using Cell = std::pair<std::int32_t, std::int32_t>;

    ilPageTileManager() = default;
    virtual ~ilPageTileManager() = default;

    // True if the record changed. An empty tile changes nothing. A tile that ends exactly on a cell
    // boundary also enters the next cell, with an empty tile.
    bool addTile(const ilTile& tile);
    bool addTiles(std::span<const ilTile> tiles);
    void clear();
    [[nodiscard]] bool isEmpty() const { return cells_.empty(); }
    [[nodiscard]] const ilTile& bounds() const { return bounds_; }
    [[nodiscard]] std::size_t estimatedBytes() const { return cells_.size() << 14; }
    [[nodiscard]] const std::map<Cell, ilTile>& cells() const { return cells_; }
    // What of the tiles lies in the area, cell by cell, without a look at the cells around it.
    [[nodiscard]] std::vector<ilTile> tilesIn(const ilTile& area) const;

    // The same record at 2^shift times the size, or at a 2^shift-th of it (every pixel that is
    // touched in part counts).
    [[nodiscard]] ilPageTileManager scaledUp(int shift) const;
    [[nodiscard]] ilPageTileManager scaledDown(int shift) const;

  private:
    std::map<Cell, ilTile> cells_;
    ilTile bounds_;
};

}  // namespace brushwork
