// Damage: what has to be composed again, and what has been painted on.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "image/chain/il_page_tile_manager.h"

namespace brushwork {

struct Damage {
    std::int32_t lockCount = 0;       // above 0 nothing is composed
    ilPageTileManager tiles;          // dirty display tiles, canvas coordinates
    ilTile dirty{0, 0, 0, 0, 0, 1};   // for the next present
    ilTile paint{0, 0, 0, 0, 0, 1};   // changed area, for undo and the host
    ilTile layers{0, 0, 0, 0, 0, 1};  // damage of layers
    bool pendingDisplay = false;      // a deferred display update is due
    bool deferComposite = false;      // present only asks the host to repaint
    bool clearOnPresent = true;
    std::int32_t generation = 0;  // counts changes, for the host
    bool thumbnailsWanted = false;
};

}  // namespace brushwork
