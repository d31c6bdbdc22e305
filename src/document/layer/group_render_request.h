// GroupRenderRequest: what travels down while a group is drawn.
#pragma once

#include <cstdint>

#include "blending/paint/masking_paint_ops.h"
#include "blending/paint/paint_ops.h"
#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/chain/il_image.h"
#include "image/chain/il_page_tile_manager.h"

namespace brushwork {

class Layer;

struct GroupRenderRequest {
    std::int32_t tag = -1;
    ilTile tileBox{0, 0, 0, 0, 0, 1};  // document coordinates
    bool hasTiles = false;
    Ref<ilImage> target;                       // null: the group's own cache
    PaintOps* ops = nullptr;                   // painter on the target
    const ilPageTileManager* tiles = nullptr;  // null: all of tileBox
    bool originIsSet = false;
    std::int32_t originX = 0, originY = 0;  // the canvas origin
    float opacity = 1.0f;
    // A masked stroke in progress on `activeLayer`, drawn at its depth.
    MaskingPaintOps* selectionMask = nullptr;
    PaintOps* selectionOps = nullptr;  // scratch painter
    Layer* activeLayer = nullptr;
    bool showSelection = false;                  // the stroke goes into the stencil
    std::uint32_t flagMask = ~std::uint32_t{0};  // a child's flags must meet it
};

}  // namespace brushwork
