#include "image/smart/page_realize.h"

#include <algorithm>
#include <cstring>

#include "foundation/services/log.h"
#include "image/cache/smart_image_cache.h"
#include "image/smart/page_hold.h"
#include "image/smart/pending_pages.h"

namespace brushwork {
namespace {

// Fills a page in memory. White and clear have four equal bytes: those are set without reading in
// the memory that they replace.
void fillPage(SmartPage& page, std::uint32_t value) {
    const auto byte = static_cast<std::uint8_t>(value);
    if (page.channels == 1 || value == byte * 0x01010101U)
        std::memset(page.data, byte, page.bytes());
    else
        std::fill_n(reinterpret_cast<std::uint32_t*>(page.data), pagePixels, value);
}

bool refuse(const SmartPage& page) {
    switch (page.state) {
        case PageState::Invalid: log("\nSID: Error: Invalid page\n"); break;
        case PageState::Freed: log("\nSID: Error: Freed page\n"); break;
        case PageState::Unrealized: log("\nSID: Error: Unrealized page\n"); break;
        case PageState::ZeroReference:
            log("\nSID: Error: Attempting to realize a zero refcount page!\n");
            break;
        default: break;
    }
    noteImageFailure();
    return false;
}

// The source may itself be made of pages, or read from images that are: what it needs may come out
// of this page's table and cache, but not out of this page.
bool readPending(SmartImageCache& cache, SmartPageRef& slot) {
    SmartPage& page = *slot;
    if (!page.pending || page.pending->magic != liveSignature || !page.pending->source)
        return refuse(page);
    const SmartPageRef held(&page);  // whatever becomes of the slot meanwhile
    if (!cache.allocatePage(page)) return false;
    const PageHold hold(page);
    const PendingRead& read = *page.pending;
    ilImageConfig config(TypeUChar, OrderInterleaved, page.channels);
    config.coordSpace = SpaceLowerLeft;
    const ilTile box = flatTile(read.x, read.y, pageSide, pageSide);
    read.source->readRegion(box, page.data, box, &config);
    endPromise(page);
    return true;
}

// The same record: with memory, or solid with value 0. Without memory a swapped page stays so.
bool resetOwnPage(SmartImageCache& cache, SmartPage& page, RealizeMode mode) {
    if (mode == RealizeMode::Overwrite) return cache.allocatePage(page);
    cache.releasePage(page);
    page.state = PageState::Solid;
    page.solid = 0;
    return true;
}

bool renewPage(SmartImageCache& cache, SmartPageRef& slot, RealizeMode mode) {
    SmartPage& page = *slot;
    if (page.refCount == 1) {
        if (mode == RealizeMode::Overwrite && page.inMemory())
            cache.touch(page);
        else if (!resetOwnPage(cache, page, mode))
            return false;
    } else {
        const SmartPageRef fresh(makeSmartPage(page.channels, 0));
        if (!fresh || (mode == RealizeMode::Overwrite && !cache.allocatePage(*fresh))) return false;
        slot.assign(fresh.get(), ReleaseReason::Overwritten);
    }
    cache.countHit();
    return true;
}

bool expand(SmartImageCache& cache, SmartPage& page) {
    if (!cache.allocatePage(page)) return false;
    fillPage(page, page.solid);
    return true;
}

bool clonePage(SmartImageCache& cache, SmartPageRef& slot) {
    SmartPage& page = *slot;
    cache.touch(page);
    const SmartPageRef clone(makeSmartPage(page.channels, page.solid));
    if (!clone) return false;
    clone->cloned = 1;
    clone->sourcePage = &page;
    if (page.isSolid()) {
        if (!expand(cache, *clone)) return false;
    } else {
        const PageHold hold(page);
        if (!cache.allocatePage(*clone)) return false;
        std::memcpy(clone->data, page.data, page.bytes());
    }
    cache.countClone();
    slot.assign(clone.get(), ReleaseReason::ClonedByWriter);
    return true;
}

// Steps common to readers and to writers that need the old content.
bool bringIn(SmartImageCache& cache, SmartPage& page, bool writing) {
    switch (page.state) {
        case PageState::InMemory:
            cache.countHit();
            cache.touch(page);
            return true;
        case PageState::Swapped: return cache.pageIn(page);
        case PageState::Solid: return !writing || page.refCount != 1 || expand(cache, page);
        default: return refuse(page);
    }
}

}  // namespace

bool realizePage(SmartPageRef& slot, RealizeMode mode) {
    if (!slot || !checkSmartPage(*slot) || !slot->isLive()) return false;
    SmartImageCache& cache = SmartImageCache::instance();
    const bool writing = mode != RealizeMode::Read;
    while (slot->state == PageState::Pending)
        if (!readPending(cache, slot)) return false;
    const bool renews = mode == RealizeMode::Overwrite || mode == RealizeMode::MakeSolid;
    if (renews && slot->locked == 0) {
        if (!renewPage(cache, slot, mode)) return false;
    } else {
        if (!bringIn(cache, *slot, writing)) return false;
        if (writing && slot->refCount > 1 && !clonePage(cache, slot)) return false;
    }
    if (!writing) return true;
    SmartPage& page = *slot;
    notePageWritten(page);
    cache.addScan(page);
    if (page.swapRecord) cache.dropSwapRecord(page);
    if (cache.checking()) static_cast<void>(cache.isConsistent());
    return true;
}

bool readPromised(const ilImage& source, std::int32_t x, std::int32_t y) {
    bool done = true;
    // Reading one may end others.
    for (SmartPage* page = nextPromised(source, x, y); page;
         page = nextPromised(source, x, y, page)) {
        SmartPageRef held(page);
        done = realizePage(held, RealizeMode::Read) && done;
    }
    return done;
}

bool expandPage(SmartPage& page) {
    if (page.inMemory()) return true;
    return page.isSolid() && expand(SmartImageCache::instance(), page);
}

bool makePageSolid(SmartPageRef& slot, std::uint32_t value) {
    if (!realizePage(slot, RealizeMode::MakeSolid)) return false;
    if (slot->isSolid())
        slot->solid = slot->channels == 1 ? value & 0xFF : value;
    else
        fillPage(*slot, value);
    return true;
}

void notePageWritten(SmartPage& page) {
    page.alphaClass = AlphaClass::Mixed;
    page.filledCells = 0;
    page.clean = 0;
    page.cloned = 0;
}

}  // namespace brushwork
