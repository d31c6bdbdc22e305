// Pages on their way into memory.
#pragma once

#include "image/cache/cache_state.h"

namespace brushwork::pagecache {

[[nodiscard]] bool allocatePage(CacheState& state, SmartPage& page);
[[nodiscard]] bool pageIn(CacheState& state, SmartPage& page);

}  // namespace brushwork::pagecache
