// PageGrid: the pages that an image's box touches, by number.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "image/cache/smart_page.h"

namespace brushwork {

// Page 0 holds the box's corner; numbers rise along x, then along y. An empty box has no pages.
class PageGrid {
  public:
    PageGrid() = default;
    explicit PageGrid(const ilTile& box);

    [[nodiscard]] std::int32_t originX() const { return originX_; }
    [[nodiscard]] std::int32_t originY() const { return originY_; }
    [[nodiscard]] std::int32_t pagesAcross() const { return pagesAcross_; }
    [[nodiscard]] std::int32_t pageCount() const { return pageCount_; }
    // Of the page that holds a pixel; -1 outside.
    [[nodiscard]] std::int32_t indexOf(std::int32_t x, std::int32_t y) const;
    // Where the page of an index begins.
    [[nodiscard]] std::int32_t pageX(std::int32_t index) const {
        return originX_ + index % pagesAcross_ * pageSide;
    }
    [[nodiscard]] std::int32_t pageY(std::int32_t index) const {
        return originY_ + index / pagesAcross_ * pageSide;
    }

  private:
    std::int32_t originX_ = 0, originY_ = 0;
    std::int32_t pagesAcross_ = 0, pagesUp_ = 0;
    std::int32_t pageCount_ = 0;
};

}  // namespace brushwork
