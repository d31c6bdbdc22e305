// How large the cache may be: what is asked for, what the machine has left, what the host allows.
#pragma once

#include <cstdint>

#include "image/cache/cache_state.h"

namespace brushwork::pagecache {

// All do nothing while the failure flag is set, but that a ceiling is noted.
void setMaxBytes(CacheState& state, std::uint64_t bytes);
void adjustToMemory(CacheState& state, bool mayShrink, bool growALittle);
void setCeiling(CacheState& state, std::uint64_t bytes);

// Evicts until a page of so many channels fits under the ceiling, or nothing can leave any more.
// Answers the last buffer of that size that became free, which is the caller's; often null.
[[nodiscard]] std::uint8_t* makeRoom(CacheState& state, std::uint8_t channels);

}  // namespace brushwork::pagecache
