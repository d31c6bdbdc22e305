// ilRegionLock: the locked pages of a box.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork {

// Made by ilImage::lockRegion. Holds the image and unlocks the pages when it goes. A lock that
// fails for one page is given back whole at once: it has no pages then, only its result and the
// status of each request.
class ilRegionLock {
  public:
    ilRegionLock(ilImage& image, std::vector<PageLockRequest> requests, std::uint32_t mode);
    ilRegionLock(const ilRegionLock&) = delete;
    ilRegionLock& operator=(const ilRegionLock&) = delete;
    ~ilRegionLock();

    [[nodiscard]] std::int32_t result() const { return result_; }
    [[nodiscard]] ilImage& image() const { return *image_; }
    [[nodiscard]] std::span<const PageLockRequest> pages() const { return requests_; }

  private:
    Ref<ilImage> image_;
    std::vector<PageLockRequest> requests_;
    std::int32_t result_;
};

}  // namespace brushwork
