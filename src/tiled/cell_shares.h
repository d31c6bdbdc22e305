// Who does which cells of a list, when several threads share it.
#pragma once

#include <cstddef>
#include <vector>

namespace brushwork {

struct CellShare {
    std::size_t first = 0;
    std::size_t count = 0;
    friend bool operator==(const CellShare&, const CellShare&) = default;
};

// Fewest cells that a worker is started for. A filter that costs more a pixel is worth a thread
// sooner.
inline constexpr std::size_t leastCells = 5;
inline constexpr std::size_t leastLanczosCells = 2;

// The calling thread's share first, from the front of the list, then those of the workers to be
// started, in order; together they are all `cells`. With N = the lesser of `cells` and
// 2 * processors - 1 workers the caller takes cells / (N + 1), at least one; each worker what is
// left by the workers left, at least `least`. Empty without cells.
[[nodiscard]] std::vector<CellShare> cellShares(std::size_t cells, int processors,
                                                std::size_t least);

}  // namespace brushwork
