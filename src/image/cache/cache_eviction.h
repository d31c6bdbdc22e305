// A page buffer for an allocator that has none left.
#pragma once

#include "image/cache/cache_state.h"

namespace brushwork::pagecache {

[[nodiscard]] void* evictForBig(CacheState& state);
// One of 65536 bytes if no page of one channel can leave.
[[nodiscard]] void* evictForSmall(CacheState& state);

}  // namespace brushwork::pagecache
