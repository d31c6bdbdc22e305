// Painters: which painter the tools get.
#pragma once

#include "blending/paint/masking_paint_ops.h"
#include "blending/paint/soft_paint_ops.h"
#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

struct Painters {
    Ref<PaintOps> current;           // plain or masked
    Ref<SoftPaintOps> plain;         // on the active layer's colour or stencil
    Ref<MaskingPaintOps> masked;     // around plain, while a paint mask restricts it
    Ref<ilSmartImage> guard;         // the paint mask turned over: 255 is protected
    bool onStencil = false;          // strokes go into the active layer's stencil
    Ref<ilSmartImage> scratchImage;  // 4 channels
    Ref<SoftPaintOps> scratch;       // on it; for fills and merges
};

}  // namespace brushwork
