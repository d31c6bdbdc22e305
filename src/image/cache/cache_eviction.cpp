#include "image/cache/cache_eviction.h"

#include "image/cache/cache_out.h"
#include "image/cache/cache_scan.h"

namespace brushwork::pagecache {
namespace {

// Collapsing comes first: it needs no disk.
void* evict(CacheState& state, std::uint8_t channels) {
    if (imageFailure() != 0 || state.writing) return nullptr;
    if (void* const buffer = collapseAny(state, channels)) return buffer;
    return evictTail(state, state.listOf(channels));
}

}  // namespace

void* evictForBig(CacheState& state) {
    return evict(state, 4);
}

void* evictForSmall(CacheState& state) {
    if (void* const buffer = evict(state, 1)) return buffer;
    return evict(state, 4);
}

}  // namespace brushwork::pagecache
