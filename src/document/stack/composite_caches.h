// CompositeCaches: the layers below and above the active one, flattened.
#pragma once

#include "brushwork/ref.h"
#include "document/stack/group_cache.h"
#include "image/chain/il_page_tile_manager.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

// Images in document coordinates; null: nothing to draw there, or stale (see the flags).
struct CompositeCaches {
    Ref<ilSmartImage> below;  // with the background
    Ref<ilSmartImage> above;  // only while aboveIsSimple
    bool belowStale = true, aboveStale = true;
    // Where alone one that isn't stale has to be drawn anew, document coordinates.
    ilPageTileManager belowTiles, aboveTiles;
    bool aboveIsSimple = true;  // every layer above the active one has blend mode 0
    Ref<ilImage> whole;         // the flat canvas; dropped by every change
    GroupCache groups;
    bool compositeEnabled = true, autoComposite = true;
};

}  // namespace brushwork
