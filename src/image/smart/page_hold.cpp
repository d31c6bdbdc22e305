#include "image/smart/page_hold.h"

#include "image/cache/smart_image_cache.h"

namespace brushwork {

PageHold::PageHold(SmartPage& page) : page_(page.inMemory() ? &page : nullptr) {
    if (!page_) return;
    scanned_ = page_->unscanned == 0;
    SmartImageCache::instance().hardLock(*page_);
}

PageHold::~PageHold() {
    if (!page_) return;
    SmartImageCache& cache = SmartImageCache::instance();
    if (scanned_ && page_->cacheLocks == 1 && page_->refCount > 0) {
        cache.hardUnlock(*page_);
        cache.addScan(*page_);
    } else {
        unlockPage(*page_);
    }
}

}  // namespace brushwork
