#include "brushwork/brush_parameters.h"

#include "brushwork/brush_texture_parameters.h"
#include "strokes/tip/image_paint_obj.h"

namespace brushwork {
namespace {

constexpr float soft = 0.28f;
constexpr float medium = 0.75f;
constexpr float firm = 0.88f;

}  // namespace

BrushParameters::BrushParameters() = default;
BrushParameters::BrushParameters(const BrushParameters&) = default;
BrushParameters::BrushParameters(BrushParameters&&) noexcept = default;
BrushParameters& BrushParameters::operator=(const BrushParameters&) = default;
BrushParameters& BrushParameters::operator=(BrushParameters&&) noexcept = default;
BrushParameters::~BrushParameters() = default;

BrushParameters BrushParameters::defaults() {
    BrushParameters brush;
    brush.tipPreset = hardPreset;
    brush.color = {1.0f, 1.0f, 1.0f, 1.0f};
    brush.radiusHigh = 10.0f;
    brush.opacityHigh = 1.0f;
    return brush;
}

float BrushParameters::solidShare() const {
    return tipPreset == ownHardness ? hardness : presetHardness(tipPreset);
}

float presetHardness(std::int32_t preset) {
    switch (preset) {
        case 0:
        case 1: return soft;
        case 2:
        case 3: return medium;
        case 4: return firm;
        case 8: return 1.0f;
        default: return 0.0f;
    }
}

std::int32_t hardnessPreset(float hardness) {
    if (hardness <= soft) return 0;
    if (hardness <= medium) return 2;
    if (hardness <= firm) return 4;
    return 8;
}

}  // namespace brushwork
