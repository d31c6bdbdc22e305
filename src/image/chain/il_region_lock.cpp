#include "image/chain/il_region_lock.h"

#include <utility>

namespace brushwork {

ilRegionLock::ilRegionLock(ilImage& image, std::vector<PageLockRequest> requests,
                           std::uint32_t mode)
    : image_(&image), requests_(std::move(requests)), result_(image.lockPages(requests_, mode)) {
    if (result_ == ImageOk) return;
    image.unlockPages(requests_);
    for (PageLockRequest& request : requests_) request.page = nullptr;
}

ilRegionLock::~ilRegionLock() {
    if (result_ == ImageOk) image_->unlockPages(requests_);
}

}  // namespace brushwork
