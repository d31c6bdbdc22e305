#include "image/smart/kept_pages.h"

#include "image/memory/image_lock.h"

namespace brushwork {

void KeptPages::keep(SmartPage& page) {
    if (page.unscanned == 0) {
        held_.emplace_back(page);
        return;
    }
    pinned_.push_back(&page);
    ++page.pins;
}

void KeptPages::giveBack() {
    if (count() == 0) return;
    const ImageLockScope lock;
    for (SmartPage* page : pinned_) unpinPage(*page);
    pinned_.clear();
    held_.clear();
}

}  // namespace brushwork
