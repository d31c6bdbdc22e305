#include "tiled/cell_shares.h"

#include <algorithm>

namespace brushwork {

std::vector<CellShare> cellShares(std::size_t cells, int processors, std::size_t least) {
    std::vector<CellShare> shares;
    if (cells == 0) return shares;
    const auto most = 2 * static_cast<std::size_t>(std::max(processors, 1)) - 1;
    std::size_t workers = std::min(cells, most);
    shares.push_back({0, std::max<std::size_t>(cells / (workers + 1), 1)});
    for (std::size_t next = shares.front().count; next < cells && workers > 0; --workers) {
        const std::size_t left = cells - next;
        const std::size_t count = std::min(left, std::max(left / workers, least));
        shares.push_back({next, count});
        next += count;
    }
    return shares;
}

}  // namespace brushwork
