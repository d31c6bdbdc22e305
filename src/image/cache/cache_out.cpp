#include "image/cache/cache_out.h"

#include <limits>
#include <utility>

#include "image/cache/page_tests.h"

namespace brushwork::pagecache {
namespace {

void leaveAll(CacheState& state, SmartPage& page) {
    state.leaveScan(page);
    state.leave(page);
}

bool writePage(CacheState& state, SmartPage& page) {
    if (page.swapRecord) return true;  // unchanged since it was read
    if (state.writing) return false;
    state.writing = true;
    page.swapRecord = state.swapOf(page).write(page.data);
    state.writing = false;
    if (!page.swapRecord) return false;
    ++state.swapWrites;
    return true;
}

}  // namespace

void turnSolid(CacheState& state, SmartPage& page, std::uint32_t value) {
    leaveAll(state, page);
    page.solid = value;
    page.state = PageState::Solid;
    dropSwapRecord(state, page);
}

bool pageOut(CacheState& state, SmartPage& page) {
    if (!page.inMemory()) return false;
    const PagePin pin(page);
    std::uint32_t value = 0;
    if (isUniformPage(page, value)) {
        turnSolid(state, page, value);
        return true;
    }
    if (!writePage(state, page)) return false;
    leaveAll(state, page);
    page.state = PageState::Swapped;
    state.enter(page);
    return true;
}

std::uint8_t* detachBuffer(CacheState& state, SmartPage& page) {
    if (!page.data) return nullptr;
    state.usedBytes -= page.bytes();
    return std::exchange(page.data, nullptr);
}

void freeBuffer(CacheState& state, SmartPage& page) {
    state.freeBuffer(page.channels, detachBuffer(state, page));
}

std::uint8_t* evictTail(CacheState& state, const PageList& list) {
    SmartPage* page = list.tail();
    while (page && (page->pins > 0 || !page->data)) page = PageList::previous(*page);
    return page && pageOut(state, *page) ? detachBuffer(state, *page) : nullptr;
}

void releasePage(CacheState& state, SmartPage& page, void** handback) {
    if (handback) *handback = nullptr;
    if (!page.inMemory() && page.state != PageState::Swapped) {
        page.data = nullptr;
        return;
    }
    leaveAll(state, page);
    page.state = PageState::Freed;
    dropSwapRecord(state, page);
    if (handback)
        *handback = detachBuffer(state, page);
    else
        freeBuffer(state, page);
}

void dropSwapRecord(CacheState& state, SmartPage& page) {
    if (page.swapRecord) state.swapOf(page).free(std::exchange(page.swapRecord, nullptr));
}

void hardLock(CacheState& state, SmartPage& page) {
    if (page.cacheLocks == std::numeric_limits<std::uint16_t>::max()) return noteImageFailure();
    if (page.cacheLocks == 0 && page.inMemory()) leaveAll(state, page);
    page.locked = 255;
    ++page.cacheLocks;
    if (page.inMemory()) state.enter(page);
}

void hardUnlock(CacheState& state, SmartPage& page) {
    if (page.cacheLocks == 0) return;
    const bool last = page.cacheLocks == 1;
    if (last && page.inMemory()) state.leave(page);
    --page.cacheLocks;
    if (!last) return;
    page.locked = 0;
    if (page.inMemory()) state.enter(page);
}

}  // namespace brushwork::pagecache
