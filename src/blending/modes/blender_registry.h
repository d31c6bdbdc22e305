// From the number of a blend mode to its blender.
#pragma once

#include <cstdint>
#include <memory>

#include "blending/core/generic_blender.h"
#include "brushwork/blend_mode_table.h"

namespace brushwork::npc {

// Empty for a number that is no mode: the numbering has holes.
[[nodiscard]] std::shared_ptr<GenericBlender> createBlender(std::int32_t mode);
[[nodiscard]] std::shared_ptr<GenericBlender> createBlender(BlendModeId mode);

// Whether a source of nothing leaves the target as it is under a mode: what layers are meant to
// have.
[[nodiscard]] constexpr bool keepsUnderNothing(std::int32_t mode) {
    return mode < static_cast<std::int32_t>(BlendModeId::Replace);
}

}  // namespace brushwork::npc
