// Page locks of ilSmartImage.
#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "image/cache/page_tests.h"
#include "image/cache/smart_image_cache.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/page_realize.h"

namespace brushwork {

// The page of one request. It is no holder: a writer through the image doesn't take it for one.
class ilSmartImage::LockedPage : public ilPage {
  public:
    LockedPage(std::int32_t originX, std::int32_t originY, SmartPage& page, bool write)
        : ilPage(originX, originY, 0, 0, page.data), page_(page), write_(write) {}

    [[nodiscard]] SmartPage& page() const { return page_; }
    [[nodiscard]] bool isForWriting() const { return write_; }

  private:
    SmartPage& page_;
    bool write_;
};

std::int32_t ilSmartImage::lockPages(std::span<PageLockRequest> requests, std::uint32_t mode) {
    const ImageLockScope lock;
    for (PageLockRequest& request : requests) {
        request.status = ImageOk;
        request.page = nullptr;
    }
    if (const auto result = beginOperation()) return result;
    const bool write = (mode & LockWrite) != 0;
    std::int32_t result = ImageOk;
    for (PageLockRequest& request : requests) {
        request.status = lockPage(request, write);
        if (request.status != ImageOk) result = request.status;
    }
    if (write && !requests.empty()) setAltered(NotifyOnly);
    return result;
}

std::int32_t ilSmartImage::lockPage(PageLockRequest& request, bool write) {
    SmartImageCache& cache = SmartImageCache::instance();
    const std::int32_t x = request.x & pageMask;
    const std::int32_t y = request.y & pageMask;
    SmartPageRef* const slot = pages_.pageRef(x, y, true);
    if (!slot || !realizePage(*slot, write ? RealizeMode::Write : RealizeMode::Read))
        return ImageUnusable;
    SmartPageRef former;
    const bool expands = (*slot)->isSolid();
    if (expands) {
        // A reader wants an address. Other holders keep the page that costs nothing.
        const AlphaClass known = (*slot)->alphaClass;
        SmartPageRef own = *slot;
        if ((*slot)->refCount > 2) {
            own = SmartPageRef(makeSmartPage(pages_.channels(), (*slot)->solid));
            if (!own) return ImageUnusable;
        }
        try {
            lent_.reserve(lent_.size() + 1);
        } catch (const std::bad_alloc&) {
            return ImageUnusable;
        }
        const PagePin pin(*own);
        if (!expandPage(*own)) return ImageUnusable;
        own->alphaClass = known;
        if (own.get() != slot->get()) {
            former = *slot;
            slot->assign(own.get(), ReleaseReason::SlotReplaced);
        }
    }
    SmartPage& page = **slot;
    std::unique_ptr<LockedPage> locked;
    {
        const PagePin pin(page);
        cache.hardLock(page);
        locked.reset(new (std::nothrow) LockedPage(x, y, page, write));
        if (!locked) {
            brushwork::unlockPage(page);
            return ImageUnusable;
        }
    }
    if (former) lent_.push_back({&page, former});
    ++page.userLocks;
    if (expands) page.unscanned = SmartPage::mustStaySolid;
    request.page = locked.release();
    const ilTile tile = SmartBounds::clipped(flatTile(x, y, pageSide, pageSide));
    if (write && !tile.isEmpty()) noteModified(tile);
    grow(tile);
    return ImageOk;
}

// What is locked is given back by a damaged image, too.
void ilSmartImage::unlockPages(std::span<PageLockRequest> requests) {
    const ImageLockScope lock;
    static_cast<void>(isSound());
    for (PageLockRequest& request : requests) {
        const std::unique_ptr<ilPage> page(std::exchange(request.page, nullptr));
        if (page && page->isValid()) unlockPage(static_cast<LockedPage&>(*page));
    }
    boxes_.applyFixed();
}

void ilSmartImage::unlockPage(LockedPage& locked) {
    SmartPage& page = locked.page();
    if (!checkSmartPage(page)) return;
    if (page.userLocks > 0) --page.userLocks;
    if (locked.isForWriting()) {
        // What was written meanwhile came after the realizing.
        notePageWritten(page);
        if (trackAlpha_) {
            page.alphaClass = alphaClassOfPage(page);
            noteAlpha(page);
        }
    }
    const bool stayedSolid = page.unscanned == SmartPage::mustStaySolid && page.userLocks == 0;
    if (stayedSolid) page.unscanned = 1;
    {
        const SmartPageRef held(&page);
        brushwork::unlockPage(page);
        if (page.inMemory() && page.cacheLocks == 0 && (locked.isForWriting() || stayedSolid))
            SmartImageCache::instance().addScan(page);
        if (page.userLocks == 0 && isSound()) takeBack(page, locked.x, locked.y);
    }
}

// Nobody wrote to a reader's own page: the one that all share takes its place again.
void ilSmartImage::takeBack(const SmartPage& page, std::int32_t x, std::int32_t y) {
    const auto found = std::find_if(lent_.begin(), lent_.end(),
                                    [&](const Lent& each) { return each.page == &page; });
    if (found == lent_.end()) return;
    const SmartPageRef former = std::move(found->former);
    lent_.erase(found);
    SmartPageRef* const slot = pages_.findSlot(x, y);
    if (slot && slot->get() == &page && page.clean != 0)
        slot->assign(former.get(), ReleaseReason::SlotReplaced);
}

}  // namespace brushwork
