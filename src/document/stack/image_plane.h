// ImagePlane: the visible pixels of a canvas: a wrapper over the host's surface, or without one a
// buffer of its own.
#pragma once

#include <cstdint>

#include "blending/paint/paint_ops.h"
#include "brushwork/host_call_table.h"
#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

struct ImagePlane {
    HostCanvas canvas = nullptr;
    Ref<ilSPMemoryImg> image;
    Ref<PaintOps> ops;                      // on the image
    ilTile canvasBounds{0, 0, 0, 0, 0, 1};  // the document: the plane's box less the origin
    std::int32_t originX = 0, originY = 0;  // by which the document grew to the lower left
    bool hostFlag = true;
    std::int32_t gridX = 100, gridY = 100;  // kept for the host

    // Wraps the surface of the canvas. False: there is none; then sizes serve if they are positive.
    bool wrapSurface();
    // False, and the present pixels stay: that is no size, or there is no memory for it.
    bool makeOwn(std::int32_t width, std::int32_t height);
    // Also of stacks without a plane: those that undo keeps.
    void refreshBounds();
    [[nodiscard]] HostSurface surface() const;
    [[nodiscard]] bool surfaceIsTransparent() const;
};

}  // namespace brushwork
