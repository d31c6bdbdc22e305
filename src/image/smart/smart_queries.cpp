// Single pixels of ilSmartImage, and questions about boxes of them.
#include <cstring>

#include "image/cache/page_tests.h"
#include "image/cache/smart_image_cache.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_rows.h"
#include "image/smart/page_walk.h"

namespace brushwork {
namespace {

std::uint32_t loadPixel(const PagePlace& place, std::int32_t x, std::int32_t y) {
    const std::uint8_t* const at = place.at(x, y);
    if (place.page.shift == 0) return *at;
    std::uint32_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

void storePixel(const PagePlace& place, std::int32_t x, std::int32_t y, std::uint32_t value) {
    std::uint8_t* const at = place.at(x, y);
    if (place.page.shift == 0)
        *at = static_cast<std::uint8_t>(value);
    else
        std::memcpy(at, &value, sizeof value);
}

bool isWithinLimit(std::int32_t place) {
    return place >= -coordinateLimit && place < coordinateLimit;
}

// Realizing it for a writer would change nothing.
bool isWritersOwn(const SmartPage& page) {
    return page.inMemory() && page.refCount == 1 && page.clean == 0 && page.unscanned == 0 &&
           !page.swapRecord;
}

}  // namespace

const SmartPage* ilSmartImage::readPage(std::int32_t x, std::int32_t y) {
    SmartPageRef* const slot = pages_.pageRef(x, y, false);
    if (!slot || !realizePage(*slot, RealizeMode::Read)) return nullptr;
    return slot->get();
}

std::uint32_t ilSmartImage::getPixel(std::int32_t x, std::int32_t y) {
    const ImageLockScope lock;
    SmartPageRef* const slot = pages_.pageRef(x & pageMask, y & pageMask, false);
    if (!slot) return pages_.solidValue();
    SmartPage* page = slot->get();
    if (!page->inMemory() || page != touched_) {
        if (!realizePage(*slot, RealizeMode::Read)) return pages_.solidValue();
        page = slot->get();
        touched_ = page;
        if (page->isSolid()) return page->solid;
    }
    return loadPixel({*page, x & pageMask, y & pageMask}, x, y);
}

void ilSmartImage::setPixel(std::int32_t x, std::int32_t y, std::uint32_t value) {
    const ImageLockScope lock;
    if (!isWithinLimit(x) || !isWithinLimit(y)) return;
    SmartPageRef* const slot = pages_.pageRef(x & pageMask, y & pageMask, true);
    if (!slot) return;
    if (!isWritersOwn(**slot) && !realizePage(*slot, RealizeMode::Write)) return;
    SmartPage& page = **slot;
    storePixel({page, x & pageMask, y & pageMask}, x, y, value);
    notePageWritten(page);
    noteAlpha(page);
    const ilTile place = flatTile(x, y, 1, 1);
    if (!boxes_.modified.contains(place)) noteModified(place);
    if (!boxes_.content.contains(place)) grow(place);
    if (childCount() != 0) setAltered(NotifyOnly);
}

Ref<ilSmartImage> ilSmartImage::clone() {
    const ImageLockScope lock;
    if (beginOperation() != ImageOk) return {};
    const Ref<ilSmartImage> copy(new ilSmartImage(fill_));
    copy->colorModel_ = colorModel_;
    PageWalk walk(pages_, boxes_.content, PageWalk::Create::No);
    if (!walk.isComplete()) return {};
    copy->grow(boxes_.content);
    copy->noteModified(boxes_.content);
    while (walk.next()) {
        const SmartPageRef page = walk.slot();
        if (page.get() == pages_.defaultPage().get()) continue;
        SmartPageRef* const slot = copy->pages_.pageRef(walk.x(), walk.y(), true);
        if (!slot) return {};
        slot->assign(page.get(), ReleaseReason::SlotReplaced);
        // Who holds the page locked may write to it in place.
        if (page->locked != 0 && !realizePage(*slot, RealizeMode::Write)) return {};
    }
    return copy;
}

bool ilSmartImage::isSolid(const ilTile& box, std::uint32_t& value, bool realize) {
    const ImageLockScope lock;
    const ilTile inside = SmartBounds::clipped(box);
    if (beginOperation() != ImageOk || inside.isEmpty()) return false;
    bool first = true;
    PageWalk walk(pages_, inside, PageWalk::Create::No,
                  realize ? PageWalk::Order::Swap : PageWalk::Order::Rows);
    if (!walk.isComplete()) return false;
    while (walk.next()) {
        if (realize && !walk.realize(RealizeMode::Read)) return false;
        const SmartPage& page = *walk.slot();
        std::uint32_t found = page.solid;
        if (!page.isSolid()) {
            if (!realize || !page.inMemory()) return false;
            const ilTile part = intersection(walk.tile(), inside);
            if (!isUniformPart(page, part.x - walk.x(), part.y - walk.y(), part.nx, part.ny, found))
                return false;
        }
        if (!first && found != value) return false;
        value = found;
        first = false;
    }
    return !first;
}

SmartPageRef* ilSmartImage::slotToLookAt(std::int32_t x, std::int32_t y) {
    if (channels_ != 4 || beginOperation() != ImageOk) return nullptr;
    return pages_.pageRef(x & pageMask, y & pageMask, false);
}

// What was kept about a page holds for it in the swap file, too.
ilSmartImage::PageLook ilSmartImage::lookOf(SmartPageRef& slot) {
    PageLook look;
    const bool isKnown = slot->filledCells != 0 && !slot->isSolid();
    if (!isKnown && !realizePage(slot, RealizeMode::Read)) return look;
    SmartPage& page = *slot;
    if (page.isSolid()) {
        look.isSolid = true;
        look.solid = page.solid;
        look.filledCells = page.solid != 0 ? look.filledCells : 0;
    } else if (page.alphaClass == AlphaClass::Clear) {
        look.filledCells = 0;
    } else if (isKnown) {
        look.filledCells = page.filledCells;
    } else if (page.cacheLocks == 0) {
        look.filledCells = page.filledCells = filledCellsOf(page);
        if (look.filledCells == 0) page.alphaClass = AlphaClass::Clear;
    }
    return look;
}

ilSmartImage::PageLook ilSmartImage::lookAtPage(std::int32_t x, std::int32_t y) {
    const ImageLockScope lock;
    SmartPageRef* const slot = slotToLookAt(x, y);
    return slot ? lookOf(*slot) : PageLook();
}

ilSmartImage::PageSight ilSmartImage::keepPage(std::int32_t x, std::int32_t y, bool wantsCells,
                                               KeptPages& kept) {
    const ImageLockScope lock;
    PageSight sight;
    SmartPageRef* const slot = slotToLookAt(x, y);
    if (!slot) return sight;
    if (wantsCells) {
        static_cast<PageLook&>(sight) = lookOf(*slot);
        if (sight.isSolid || sight.filledCells == 0) return sight;
    }
    if (!realizePage(*slot, RealizeMode::Read)) return sight;
    SmartPage& page = **slot;
    if (page.isSolid()) {
        sight.isSolid = true;
        sight.solid = page.solid;
        return sight;
    }
    kept.keep(page);
    sight.data = page.data;
    return sight;
}

void ilSmartImage::prefetch(const ilTile& box) {
    const ImageLockScope lock;
    if (beginOperation() == ImageOk) prefetchPages(pages_, SmartBounds::clipped(box));
}

}  // namespace brushwork
