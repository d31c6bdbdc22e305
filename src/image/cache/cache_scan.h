// Written pages are looked at once each: one that has become uniform turns solid.
#pragma once

#include "image/cache/cache_state.h"

namespace brushwork::pagecache {

// Looks at the latest page on the scan list that isn't hard-locked; it leaves the list. Turned
// solid it frees its buffer, kept it has its alpha class noted. False: there is no such page, or
// the failure flag is set. Pins don't hold a page back here.
bool scanStep(CacheState& state);

// Looks at pages of so many channels, none of them locked or pinned, until one turns solid, and
// hands over its buffer. Null: none did.
[[nodiscard]] std::uint8_t* collapseAny(CacheState& state, std::uint8_t channels);

}  // namespace brushwork::pagecache
