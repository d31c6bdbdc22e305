#include "image/cache/cache_sizes.h"

#include <algorithm>

#include "image/cache/cache_out.h"
#include "image/cache/cache_scan.h"
#include "image/cache/memory_budget.h"
#include "image/memory/memory_manager.h"
#include "image/memory/page_allocator.h"

namespace brushwork::pagecache {
namespace {

constexpr std::uint64_t step = 16 * mebibyte;
constexpr std::uint64_t leastWhenShrinking = 64 * mebibyte;
constexpr std::uint64_t scarceMegabytes = 64, plentyMegabytes = 96;

// One page less. False: none can leave.
bool evictOne(CacheState& state, std::uint8_t channels) {
    std::uint8_t* const buffer = evictTail(state, state.listOf(channels));
    state.freeBuffer(channels, buffer);
    return buffer != nullptr;
}

// What the ceiling leaves to pixels. Records are memory too, and a large document has many: a
// sixteenth of a ceiling that is worth cutting is theirs from the start, since memory that pixels
// once had doesn't go back to the system; what they take beyond it is cut off too, at most half.
std::uint64_t ceilingForPixels(const CacheState& state) {
    const std::uint64_t swapRecords =
        std::uint64_t{state.bigSwap.recordCount()} + state.smallSwap.recordCount();
    const std::uint64_t records =
        std::uint64_t{smartPageCount()} * sizeof(SmartPage) + swapRecords * sizeof(SwapRecord);
    const std::uint64_t spared = state.ceiling / 16;
    const std::uint64_t most = state.ceiling - (state.ceiling < leastCacheBytes ? 0 : spared);
    return most - std::min(records > spared ? records - spared : 0, state.ceiling / 2);
}

void applyLimits(CacheState& state) {
    state.maxBytes = state.ceiling == 0 ? state.limit : std::min(state.limit, state.ceiling);
}

}  // namespace

void setMaxBytes(CacheState& state, std::uint64_t bytes) {
    if (imageFailure() != 0) return;
    state.limit = boundedCacheBytes(bytes, state.budget);
    applyLimits(state);
    while (state.usedBytes > state.maxBytes && scanStep(state)) {
    }
    while (state.usedBytes >= state.maxBytes && evictOne(state, 4)) {
    }
    if (state.usedBytes >= state.maxBytes) evictOne(state, 1);
}

void adjustToMemory(CacheState& state, bool mayShrink, bool growALittle) {
    if (BworkMemory::instance().isEnabled() || imageFailure() != 0) return;
    const std::uint64_t available = availableMegabytes();
    std::uint64_t wanted = state.limit;
    if (mayShrink && available < scarceMegabytes) {
        const std::uint64_t less = wanted > step ? wanted - step : 0;
        wanted = std::max(std::min(less, state.usedBytes), leastWhenShrinking);
    } else if (available > plentyMegabytes) {
        wanted += growALittle ? std::min((available - scarceMegabytes) * mebibyte, step)
                              : (available - plentyMegabytes) * mebibyte;
    }
    setMaxBytes(state, wanted);
}

void setCeiling(CacheState& state, std::uint64_t bytes) {
    state.ceiling = bytes;
    applyLimits(state);
    if (imageFailure() != 0 || bytes == 0) return;
    const std::uint64_t most = ceilingForPixels(state);
    while (state.usedBytes > most && scanStep(state)) {
    }
    while (state.usedBytes > most && evictOne(state, 4)) {
    }
    while (state.usedBytes > most && evictOne(state, 1)) {
    }
}

std::uint8_t* makeRoom(CacheState& state, std::uint8_t channels) {
    const std::uint64_t bytes = channels == 1 ? PageAllocator::smallBytes : PageAllocator::bigBytes;
    const std::uint8_t others = channels == 1 ? 4 : 1;
    std::uint8_t* room = nullptr;
    if (state.ceiling == 0) return room;
    const std::uint64_t most = ceilingForPixels(state);
    while (state.usedBytes + bytes > most) {
        if (imageFailure() != 0 || state.writing) break;
        std::uint8_t* buffer = collapseAny(state, channels);
        if (!buffer) buffer = evictTail(state, state.listOf(channels));
        if (buffer) {
            state.freeBuffer(channels, room);
            room = buffer;
            continue;
        }
        buffer = collapseAny(state, others);
        if (!buffer) buffer = evictTail(state, state.listOf(others));
        if (!buffer) break;
        state.freeBuffer(others, buffer);
    }
    return room;
}

}  // namespace brushwork::pagecache
