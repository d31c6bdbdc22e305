// PageBorderBitMask: where floods pass the four edges of a page.
#pragma once

#include "fill/bit_row.h"

namespace brushwork {

// What waits to enter a page from each side, or what leaves it through each. Bit i stands for row
// or column i of the page's edge. Above is where y is smaller.
struct PageBorderBitMask {
    BitRow left, right, above, below;

    PageBorderBitMask& operator|=(const PageBorderBitMask& other) {
        left |= other.left;
        right |= other.right;
        above |= other.above;
        below |= other.below;
        return *this;
    }
};

}  // namespace brushwork
