#include "image/cache/cache_scan.h"

#include "image/cache/cache_out.h"
#include "image/cache/page_tests.h"

namespace brushwork::pagecache {
namespace {

// True: the page is solid now, with its buffer still there.
bool look(CacheState& state, SmartPage& page) {
    std::uint32_t value = 0;
    if (isUniformPage(page, value)) {
        turnSolid(state, page, value);
        return true;
    }
    page.alphaClass = alphaClassOfPage(page);
    state.leaveScan(page);
    return false;
}

}  // namespace

bool scanStep(CacheState& state) {
    if (imageFailure() != 0) return false;
    SmartPage* page = state.scan.head();
    while (page && page->cacheLocks > 0) page = ScanList::next(*page);
    if (!page) return false;
    if (look(state, *page)) freeBuffer(state, *page);
    return true;
}

std::uint8_t* collapseAny(CacheState& state, std::uint8_t channels) {
    for (SmartPage* page = state.scan.head(); page;) {
        SmartPage* const next = ScanList::next(*page);
        const bool free = page->cacheLocks == 0 && page->pins == 0;
        if (page->channels == channels && free && look(state, *page))
            return detachBuffer(state, *page);
        page = next;
    }
    return nullptr;
}

}  // namespace brushwork::pagecache
