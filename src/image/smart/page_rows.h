// Rows of plain pixels between a page and a buffer: bytes or words as they are, nothing converted.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "image/cache/smart_page.h"

namespace brushwork {

// A page in memory or solid, whose origin is (x, y) in the image's coordinates. Boxes are in those
// too and lie on the page, in plane 0; `buffer` holds the packed pixels of `frame`, which holds
// the box.
struct PagePlace {
    SmartPage& page;
    std::int32_t x, y;

    // The pixel at that place of a page in memory.
    [[nodiscard]] std::uint8_t* at(std::int32_t px, std::int32_t py) const {
        const auto index =
            static_cast<std::size_t>(py - y) * pageSide + static_cast<std::size_t>(px - x);
        return page.data + (index << page.shift);
    }
};

void readPageRows(const PagePlace& place, const ilTile& box, void* buffer, const ilTile& frame);
// Only into a page in memory.
void writePageRows(const PagePlace& place, const ilTile& box, const void* buffer,
                   const ilTile& frame);
void fillPageRows(const PagePlace& place, const ilTile& box, std::uint32_t value);

// The part of a buffer, filled with one value.
void fillBufferRows(std::uint8_t shift, std::uint32_t value, const ilTile& box, void* buffer,
                    const ilTile& frame);

}  // namespace brushwork
