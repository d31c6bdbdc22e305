#include "fill/page_grid.h"

#include "image/smart/smart_page_table.h"

namespace brushwork {

PageGrid::PageGrid(const ilTile& box) {
    const ilTile inside = clippedToLimit(box);
    if (inside.isEmpty()) return;
    originX_ = inside.x & pageMask;
    originY_ = inside.y & pageMask;
    pagesAcross_ = (inside.endX() - originX_ + pageSide - 1) / pageSide;
    pagesUp_ = (inside.endY() - originY_ + pageSide - 1) / pageSide;
    pageCount_ = pagesAcross_ * pagesUp_;
}

std::int32_t PageGrid::indexOf(std::int32_t x, std::int32_t y) const {
    if (pageCount_ == 0 || x < originX_ || y < originY_) return -1;
    const std::uint32_t column =
        (static_cast<std::uint32_t>(x) - static_cast<std::uint32_t>(originX_)) / pageSide;
    const std::uint32_t row =
        (static_cast<std::uint32_t>(y) - static_cast<std::uint32_t>(originY_)) / pageSide;
    const auto across = static_cast<std::uint32_t>(pagesAcross_);
    if (column >= across || row >= static_cast<std::uint32_t>(pagesUp_)) return -1;
    return static_cast<std::int32_t>(row * across + column);
}

}  // namespace brushwork
