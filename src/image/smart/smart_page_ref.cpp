#include "image/smart/smart_page_ref.h"

#include "image/cache/smart_image_cache.h"
#include "image/smart/pending_pages.h"

namespace brushwork {
namespace {

// Nobody holds, locks or pins the page any more. The reason stands in its stamp.
void finish(SmartPage& page) {
    if (page.refCount > 0 || page.cacheLocks > 0 || page.pins > 0) return;
    SmartImageCache& cache = SmartImageCache::instance();
    const std::uint32_t reason = page.stamp;
    endPromise(page);
    cache.releasePage(page);
    page.state = PageState::ZeroReference;
    page.stamp = reason;
    destroySmartPage(&page);
}

}  // namespace

void SmartPageRef::lastHolderGone(SmartPage& page, ReleaseReason reason) {
    if (!checkSmartPage(page) || !page.isLive()) return;
    page.stamp = static_cast<std::uint32_t>(reason);
    if (page.locked != 0) return;
    if (page.unscanned == 0) SmartImageCache::instance().removeScan(page);
    finish(page);
}

void unpinPage(SmartPage& page) {
    if (--page.pins < 1 && page.refCount < 1) finish(page);
}

void unlockPage(SmartPage& page) {
    SmartImageCache& cache = SmartImageCache::instance();
    cache.hardUnlock(page);
    if (page.refCount > 0 || page.cacheLocks > 0) return;
    if (page.unscanned == 0) cache.removeScan(page);
    finish(page);
}

}  // namespace brushwork
