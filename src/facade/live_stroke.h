// LiveStroke: a stroke between pen-down and pen-up.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "document/stack/layer_stack.h"
#include "image/chain/il_page_tile_manager.h"
#include "strokes/stroke/stroke_renderer.h"
#include "undo/pnt_undo_stroke.h"

namespace brushwork {

// A stroke on an image of one channel.
struct GrayStroke {
    Ref<ilSmartImage> coverage;        // what the brush paints into; null: another kind of stroke
    Ref<ilSmartImage> target, ground;  // the image, and as it was
    std::uint8_t value = 255;          // what full coverage leaves
    std::uint32_t opacity = 255;
    Ref<ilImage> mask;  // in document pixels; 255 is free to paint
    std::int32_t maskX = 0, maskY = 0;
};

struct LiveStroke {
    static constexpr std::int32_t pointsBetweenUpdates = 5;

    bool open = false;
    bool onStencil = false;
    bool resting = false;  // what is laid now comes without a point of the pen
    Ref<LayerStack> stack;
    Ref<Layer> layer;
    bool wet = false;  // paints into the layer's wet image
    bool symmetric = false;
    std::shared_ptr<npc::StampRenderer> stamps;     // kept from stroke to stroke, with its cache
    std::shared_ptr<npc::StrokeRenderer> renderer;  // of this stroke
    // Kept, too: a stroke may go on along the path of the one before.
    std::shared_ptr<npc::StrokeInterpolator> path;
    Ref<ilSmartImage> low;  // lower bytes of the target's channels
    GrayStroke gray;
    Ref<ilSmartImage> before;         // the target as it was, while there is no record
    Ref<PntUndoStroke> record;        // filed at the end
    ilPageTileManager tiles;          // dirty, in layer pixels
    ilTile dirty{0, 0, 0, 0, 0, 1};   // since the last update
    ilTile bounds{0, 0, 0, 0, 0, 1};  // of the whole stroke
    std::int32_t pointBudget = pointsBetweenUpdates;
    struct Mark {
        std::int32_t x, y;
    };
    std::vector<Mark> marks;  // document pixels; empty unless the host asks for paint marks
};

}  // namespace brushwork
