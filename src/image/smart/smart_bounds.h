// SmartBounds: the boxes of a smart image.
#pragma once

#include "brushwork/il_tile.h"

namespace brushwork {

inline constexpr ilTile emptyTile{0, 0, 0, 0, 0, 1};

struct SmartBounds {
    ilTile content = emptyTile;   // holds everything that is not fill; may be larger
    ilTile previous = emptyTile;  // as of the last update
    ilTile initial = emptyTile;   // inherited from the parent at creation
    ilTile fixed = emptyTile;     // counts only with hasFixed
    bool hasFixed = false;        // the image keeps `fixed` whatever is written
    ilTile limit{-32000, -32000, 0, 32000, 32000, 1};
    ilTile modified = emptyTile;  // union of the boxes written since creation

    // The box cut to the coordinate limit; a negative size becomes 0.
    [[nodiscard]] static ilTile clipped(const ilTile& box);
    // The smallest box of whole pages that holds the box.
    [[nodiscard]] static ilTile toPages(const ilTile& box);
    // Grows the content by a box and forces the fixed one.
    void grow(const ilTile& box);
    void applyFixed() {
        if (hasFixed) content = fixed;
    }
};

}  // namespace brushwork
