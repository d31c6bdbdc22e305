#include "blending/rows/image_blend_cache.h"

#include <algorithm>

#include "blending/rows/image_blend_brush.h"
#include "blending/rows/image_blend_modes.h"
#include "blending/rows/image_blend_normal.h"

namespace brushwork::blender {

Ref<Base<>> makeImageBlend(ImageBlendKind kind) {
    switch (kind) {
#define BRUSHWORK_ROW_MODE(name) \
    case ImageBlendKind::name: return makeRef<name<>>();
        BRUSHWORK_ROW_MODES(BRUSHWORK_ROW_MODE)
#undef BRUSHWORK_ROW_MODE
        case ImageBlendKind::BrushNormal: return makeRef<BrushNormal<>>();
        case ImageBlendKind::BrushEraser: return makeRef<BrushEraser<>>();
        case ImageBlendKind::BrushSmudge: return makeRef<BrushSmudge<>>();
        case ImageBlendKind::Normal: break;
    }
    return makeRef<Normal<>>();
}

Ref<Base<>> ImageBlendCache::get(ImageBlendKind kind) {
    const auto first = entries_.begin();
    auto found = std::find_if(first, first + static_cast<std::ptrdiff_t>(used_),
                              [&](const Entry& entry) { return entry.kind == kind; });
    if (found == first + static_cast<std::ptrdiff_t>(used_)) {
        if (used_ < capacity)
            ++used_;
        else
            --found;
        *found = {kind, makeImageBlend(kind)};
    }
    std::rotate(first, found, found + 1);
    return entries_.front().object;
}

}  // namespace brushwork::blender
