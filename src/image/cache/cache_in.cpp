#include "image/cache/cache_in.h"

#include "image/cache/cache_out.h"
#include "image/cache/cache_scan.h"
#include "image/cache/cache_sizes.h"
#include "image/memory/memory_manager.h"
#include "image/memory/page_reclaimer.h"

namespace brushwork::pagecache {
namespace {

// With the manager on its shortage alone evicts; without it the limit is kept up with here.
void keepUpWithLimit(CacheState& state) {
    if (BworkMemory::instance().isEnabled()) return;
    while (state.usedBytes > state.maxBytes / 4 * 3 && scanStep(state)) {
    }
    if (state.usedBytes >= state.maxBytes) adjustToMemory(state, false, true);
}

std::uint8_t* takeBuffer(CacheState& state, const SmartPage& page) {
    if (std::uint8_t* const room = makeRoom(state, page.channels)) return room;
    keepUpWithLimit(state);
    BworkMemory& memory = BworkMemory::instance();
    const bool isSmall = page.channels == 1;
    void* buffer = isSmall ? memory.allocateSmall(true) : memory.allocateBig(true);
    PageReclaimer* const reclaimer = pageReclaimer();
    if (!buffer && reclaimer && !memory.isEnabled())  // a manager that is on has asked already
        buffer = isSmall ? reclaimer->evictForSmall() : reclaimer->evictForBig();
    if (!buffer) noteImageFailure();
    return static_cast<std::uint8_t*>(buffer);
}

bool giveMemory(CacheState& state, SmartPage& page) {
    std::uint8_t* const buffer = takeBuffer(state, page);
    if (!buffer) return false;
    state.usedBytes += page.bytes();
    ++state.allocated;
    state.leave(page);
    page.data = buffer;
    page.state = PageState::InMemory;
    state.enter(page);
    return true;
}

}  // namespace

bool allocatePage(CacheState& state, SmartPage& page) {
    if (page.inMemory()) return true;
    const bool wasSwapped = page.state == PageState::Swapped;
    if (!giveMemory(state, page)) return false;
    if (wasSwapped) dropSwapRecord(state, page);  // it holds other pixels now
    state.markFresh(page, page.data);
    return true;
}

bool pageIn(CacheState& state, SmartPage& page) {
    if (page.state != PageState::Swapped) return page.inMemory();
    if (!giveMemory(state, page)) return false;
    state.swapOf(page).read(*page.swapRecord, page.data);
    ++state.swapReads;
    ++state.misses;
    return true;
}

}  // namespace brushwork::pagecache
