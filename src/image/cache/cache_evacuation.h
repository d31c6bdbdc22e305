// Emptying an address range, so that an allocator's block can be used for something else.
#pragma once

#include <cstdint>

#include "image/cache/cache_state.h"

namespace brushwork::pagecache {

void evacuate(CacheState& state, const void* low, const void* high, std::int32_t count,
              std::uint32_t lists);
[[nodiscard]] bool canEvacuate(const CacheState& state, const void* low, const void* high,
                               std::int32_t count, std::uint32_t& listsOut);

}  // namespace brushwork::pagecache
