// KeptPages: pages that stay in memory, where they are, for somebody who reads them for a while.
//
// Nobody writes to them meanwhile. All are given back at once, by the destructor at the latest. It
// belongs to one thread; reading is any thread's.
#pragma once

#include <cstddef>
#include <deque>
#include <vector>

#include "image/smart/page_hold.h"

namespace brushwork {

class KeptPages {
  public:
    KeptPages() = default;
    KeptPages(const KeptPages&) = delete;
    KeptPages& operator=(const KeptPages&) = delete;
    ~KeptPages() { giveBack(); }

    // A page in memory; under the image lock.
    void keep(SmartPage& page);
    // Takes the lock itself.
    void giveBack();
    [[nodiscard]] std::size_t count() const { return pinned_.size() + held_.size(); }

  private:
    // A pin leaves a page on its list, but doesn't keep a scan from turning it solid: what waits
    // for its scan is held.
    std::vector<SmartPage*> pinned_;
    std::deque<PageHold> held_;
};

}  // namespace brushwork
