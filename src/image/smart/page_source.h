// Where an empty slot of a page table finds its page.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "image/smart/smart_page_ref.h"

namespace brushwork {

class PageSource {
  public:
    virtual ~PageSource() = default;

    // Whether there is a parent image to ask at all.
    [[nodiscard]] virtual bool hasParent() = 0;
    // Pages outside this box are never looked up in the parent.
    [[nodiscard]] virtual const ilTile& initialBounds() const = 0;
    // The parent's page at a page origin: shared with a smart parent, a pending read from any
    // other. Null without memory.
    [[nodiscard]] virtual SmartPageRef parentPage(std::int32_t x, std::int32_t y) = 0;
};

}  // namespace brushwork
