// ilPageIterator: walks the page grid of a box, x first, then y, z and channel groups.
#pragma once

#include <cstddef>
#include <cstdint>

#include "brushwork/il_tile.h"
#include "image/chain/il_page.h"

namespace brushwork {

enum class PageGrid {
    Aligned,    // pages lie where the image's grid has them
    Unaligned,  // the first page starts where the box starts
};

struct PageWalk {
    ilTile box;
    ilXYZCstruct<std::int32_t> pageSize;                 // c: channels a page holds
    std::int32_t borderX = 0, borderY = 0, borderZ = 0;  // what neighbouring pages share
    std::int32_t channels = 1;
    const std::int32_t* channelList = nullptr;  // borrowed; only groups that hold one are visited
    std::int32_t channelListCount = 0;
    PageGrid grid = PageGrid::Aligned;
};

//     for (ilPageIterator page(walk); page.next();) ... page.x(), page.y(), page.z(), page.c()
//
// Pages step by their size less twice the border; where that leaves no pixel there are no pages.
// Aligned, page k of an axis starts at k * step - border, and the walk visits every page that holds
// a pixel of the box, be it in its border (a border wider than a step reaches further pages still,
// and those are left out). Unaligned, pages cover the box less the border at its end; a box with
// pixels has one page at least.
class ilPageIterator {
  public:
    explicit ilPageIterator(const PageWalk& walk);
    // The next page; false at the end. A box without extent has no pages.
    [[nodiscard]] bool next();

    [[nodiscard]] std::int32_t x() const { return static_cast<std::int32_t>(x_.current); }
    [[nodiscard]] std::int32_t y() const { return static_cast<std::int32_t>(y_.current); }
    [[nodiscard]] std::int32_t z() const { return static_cast<std::int32_t>(z_.current); }
    [[nodiscard]] std::int32_t c() const { return static_cast<std::int32_t>(c_.current); }
    // All pages of the walk, those skipped by a channel list included; known after the first next.
    // A count beyond 64 bits reads as the largest there is.
    [[nodiscard]] std::int64_t pageCount() const { return total_; }

  private:
    // One axis, or the channels. In 64 bits, so that steps past the end can't overflow.
    struct Axis {
        std::int64_t first = 0, step = 1, end = 0, current = 0;
        [[nodiscard]] std::int64_t pages() const { return (end - first - 1) / step + 1; }
        // False, and back at the first, behind the last.
        bool advance();
    };

    bool begin();
    bool toListedGroup();
    bool beginAxis(Axis& axis, std::int32_t start, std::int32_t extent, std::int32_t size,
                   std::int32_t border) const;
    bool beginChannels();
    [[nodiscard]] bool groupIsListed() const;

    PageWalk walk_;
    Axis x_, y_, z_, c_;
    bool started_ = false;
    bool ended_ = false;
    std::int64_t total_ = 0;
};

}  // namespace brushwork
