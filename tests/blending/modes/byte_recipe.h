// What the tests of the 4-channel modes share.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "blending/core/generic_blender.h"
#include "blending/modes/blender_registry.h"
#include "brushwork/blend_mode_table.h"
#include "image/filter/kernel_recipe.h"

namespace brushwork {

inline void PrintTo(BlendModeId mode, std::ostream* out) {
    *out << blendModeName(mode);
}

}  // namespace brushwork

namespace brushwork::test {

// The modes with one formula a colour channel.
inline constexpr BlendModeId separableModes[] = {
    BlendModeId::Multiply,   BlendModeId::Screen,      BlendModeId::Add,
    BlendModeId::SoftGlow,   BlendModeId::Lighten,     BlendModeId::Darken,
    BlendModeId::Overlay,    BlendModeId::HardLight,   BlendModeId::SoftLight,
    BlendModeId::ColorDodge, BlendModeId::ColorBurn,   BlendModeId::LinearBurn,
    BlendModeId::Glow,       BlendModeId::Normal,      BlendModeId::Replace,
    BlendModeId::Clear,      BlendModeId::MaskMultiply};

inline constexpr BlendModeId wholeModes[] = {BlendModeId::Hue, BlendModeId::Saturation,
                                             BlendModeId::Color, BlendModeId::Luminosity};

inline std::vector<BlendModeId> byteModes() {
    std::vector<BlendModeId> modes(std::begin(separableModes), std::end(separableModes));
    modes.insert(modes.end(), std::begin(wholeModes), std::end(wholeModes));
    return modes;
}

// A blender of which both opacities are read as this: 0 to 65535.
inline std::shared_ptr<npc::GenericBlender> blenderWith(BlendModeId mode, int opacity) {
    auto blender = npc::createBlender(mode);
    const float value = opacity == 65535 ? 1.0F : (static_cast<float>(opacity) + 0.5F) / 65535.0F;
    blender->setOpacity(value);
    blender->setOpacity2(value);
    return blender;
}

inline std::string nameOfMode(const ::testing::TestParamInfo<BlendModeId>& parameter) {
    return std::string(blendModeName(parameter.param));
}

// All forms that this processor has, the definition among them.
inline std::vector<VectorLevel> allLevels() {
    std::vector<VectorLevel> levels = vectorLevels();
    levels.insert(levels.begin(), VectorLevel::Scalar);
    return levels;
}

}  // namespace brushwork::test
