// PageHold: keeps a page's memory where it is while memory for other things is asked for.
#pragma once

#include "image/smart/smart_page_ref.h"

namespace brushwork {

// Hard-locks a page in memory for a scope; any other page needs no holding and is left alone. A
// page that waited for its scan waits again afterwards.
class PageHold {
  public:
    explicit PageHold(SmartPage& page);
    PageHold(const PageHold&) = delete;
    PageHold& operator=(const PageHold&) = delete;
    ~PageHold();

  private:
    SmartPage* page_;  // null: nothing to hold
    bool scanned_ = false;
};

}  // namespace brushwork
