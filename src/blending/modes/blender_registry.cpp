#include "blending/modes/blender_registry.h"

#include "blending/modes/clear_mode.h"
#include "blending/modes/contrast_modes.h"
#include "blending/modes/dodge_burn_modes.h"
#include "blending/modes/glow_brush_mode.h"
#include "blending/modes/glow_modes.h"
#include "blending/modes/hsl_modes.h"
#include "blending/modes/light_modes.h"
#include "blending/modes/marker_colorless_mode.h"
#include "blending/modes/marker_mode.h"
#include "blending/modes/mask_multiply_mode.h"
#include "blending/modes/normal_mode.h"
#include "blending/modes/paint_modes.h"
#include "blending/modes/pastel_mode.h"
#include "blending/modes/replace_mode.h"
#include "blending/modes/smudge_mode.h"

namespace brushwork::npc {

std::shared_ptr<GenericBlender> createBlender(BlendModeId mode) {
    switch (mode) {
#define BRUSHWORK_BLEND_MODE_CASE(name, id, type) \
    case BlendModeId::name: return std::make_shared<type>();
        BRUSHWORK_BLEND_MODES(BRUSHWORK_BLEND_MODE_CASE)
#undef BRUSHWORK_BLEND_MODE_CASE
    }
    return nullptr;
}

std::shared_ptr<GenericBlender> createBlender(std::int32_t mode) {
    return createBlender(static_cast<BlendModeId>(mode));
}

}  // namespace brushwork::npc
