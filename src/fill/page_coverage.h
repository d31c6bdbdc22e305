// What a flood needs to know of a page's pixels, and what it writes into the page's coverage.
#pragma once

#include <cstdint>
#include <memory>

#include "brushwork/il_tile.h"
#include "fill/page_reach.h"
#include "fill/wave_loop.h"

namespace brushwork {

// The open pixels of a page: those below the stop that the flood would cover more than they are.
// `page.coverage` may be null: all 0. Null without memory.
[[nodiscard]] std::unique_ptr<PageReach> openPixels(const FloodedPage& page);

// Raises the coverage of what was tried, and with soft edges of what lies beside it, to what waves
// would have left there. Pixels of the page aren't looked at if the reach is plain.
void coverReached(const PageReach& reach, const FloodedPage& page);

}  // namespace brushwork
