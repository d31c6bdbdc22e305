// SmartPageRef: one holder of a page.
#pragma once

#include <cstdint>
#include <utility>

#include "image/cache/smart_page.h"

namespace brushwork {

// Why a page's last holder let go; kept in the record after its release, and logged if the record
// is used again.
enum class ReleaseReason : std::uint32_t {
    HolderGone = 1234001,
    SlotReplaced = 1234002,
    Overwritten = 1234003,
    OutOfRangeRenewed = 1234004,
    TableCleared = 1234005,
    ClonedByWriter = 1234006,
    FillChanged = 1234007,
    BlockFreed = 1234011,
    Trimmed = 1234012,
};

// Counts in the page's refCount. The last release gives memory, swap record or pending read back
// and returns the record to its pool. While the page is hard-locked or pinned it stays instead,
// off the scan list, until unlockPage or unpinPage takes the last lock or pin away. Copying shares.
// Under the image lock.
class SmartPageRef {
  public:
    SmartPageRef() = default;
    // Adds a holder; null holds nothing.
    explicit SmartPageRef(SmartPage* page) : page_(page) {
        if (page_) ++page_->refCount;
    }
    SmartPageRef(const SmartPageRef& other) : SmartPageRef(other.page_) {}
    SmartPageRef(SmartPageRef&& other) noexcept : page_(std::exchange(other.page_, nullptr)) {}
    SmartPageRef& operator=(const SmartPageRef& other) {
        assign(other.page_, ReleaseReason::SlotReplaced);
        return *this;
    }
    SmartPageRef& operator=(SmartPageRef&& other) noexcept {
        if (this == &other) return *this;
        release(ReleaseReason::SlotReplaced);
        page_ = std::exchange(other.page_, nullptr);
        return *this;
    }
    ~SmartPageRef() { release(ReleaseReason::HolderGone); }

    void release(ReleaseReason reason) {
        SmartPage* const page = std::exchange(page_, nullptr);
        if (page && --page->refCount < 1) lastHolderGone(*page, reason);
    }
    // Holds `page` instead, which may be the same one; what was held before is released with this
    // reason.
    void assign(SmartPage* page, ReleaseReason reason) {
        SmartPageRef former(page);
        std::swap(page_, former.page_);
        former.release(reason);
    }

    [[nodiscard]] SmartPage* get() const { return page_; }
    SmartPage* operator->() const { return page_; }
    SmartPage& operator*() const { return *page_; }
    explicit operator bool() const { return page_ != nullptr; }

  private:
    static void lastHolderGone(SmartPage& page, ReleaseReason reason);

    SmartPage* page_ = nullptr;
};

// Drop a pin, or a hard lock, of a page that may have lost its last holder meanwhile: then it goes
// with the last of them.
void unpinPage(SmartPage& page);
void unlockPage(SmartPage& page);

}  // namespace brushwork
