// Pages on their way out of memory, and the locks that keep them there.
#pragma once

#include "image/cache/cache_state.h"

namespace brushwork::pagecache {

// Uniform: solid, without disk access. Otherwise the page gets a swap record, unless it has one,
// and is swapped. False, and nothing changes, if the disk would not take it or another page is
// being written. The buffer is still there: detachBuffer or freeBuffer follows.
[[nodiscard]] bool pageOut(CacheState& state, SmartPage& page);
// Turns a page in memory, whose pixels all equal `value`, solid; the buffer stays as above.
void turnSolid(CacheState& state, SmartPage& page, std::uint32_t value);

// The buffer of a page that was paged out; the caller's from now on, and not in usedBytes.
[[nodiscard]] std::uint8_t* detachBuffer(CacheState& state, SmartPage& page);
// The same, and gives it back to its allocator.
void freeBuffer(CacheState& state, SmartPage& page);

// Pages out the page of `list` used longest ago of those without pins, and hands over its buffer.
// Null: there is none, or the disk would not take it.
[[nodiscard]] std::uint8_t* evictTail(CacheState& state, const PageList& list);

void releasePage(CacheState& state, SmartPage& page, void** handback);
void dropSwapRecord(CacheState& state, SmartPage& page);

void hardLock(CacheState& state, SmartPage& page);
void hardUnlock(CacheState& state, SmartPage& page);

}  // namespace brushwork::pagecache
