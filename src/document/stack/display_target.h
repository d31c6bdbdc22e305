// DisplayTarget: what the host is shown when it wants the view's transform applied for it.
#pragma once

#include <cstdint>
#include <memory>

#include "blending/modes/blender_registry.h"
#include "blending/paint/paint_ops.h"
#include "brushwork/ref.h"
#include "image/chain/il_page_tile_manager.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

struct DisplayTarget {
    Ref<ilSPMemoryImg> image;
    Ref<PaintOps> ops;
    std::shared_ptr<npc::GenericBlender> blender;
    bool offscreen = false;  // of its own size; else on the shared screen block
    std::int32_t width = 0, height = 0;
    std::int32_t offsetX = 0, offsetY = 0, extra = 0;
    ilPageTileManager tiles;    // composed, and not yet brought to the display
    bool checkerboard = false;  // show transparency through the host's pattern
};

}  // namespace brushwork
