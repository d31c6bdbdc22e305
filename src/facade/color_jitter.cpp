#include "facade/color_jitter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/services/random_source.h"
#include "image/filter/color_convert.h"

namespace brushwork {
namespace {

// A whole number in the range, both ends among them.
std::int32_t randomWhole(float low, float high) {
    const auto from = static_cast<std::int32_t>(low);
    const auto to = static_cast<std::int32_t>(high);
    return to <= from ? from : from + randomValue() % (to - from + 1);
}

}  // namespace

void jitterColor(BrushState& brush) {
    if (!brush.colorJitterOn) return;
    brush.jitterBase = brush.color;
    brush.jittered = true;
    const HueColor base =
        rgbToHsl({brush.color[0] * 255.0f, brush.color[1] * 255.0f, brush.color[2] * 255.0f});
    const float hueRange = brush.jitterHue * 180.0f / 100.0f;
    const float saturationRange =
        brush.jitterSaturation * std::max(base.saturation, 1.0f - base.saturation) / 100.0f;
    const float levelRange = brush.jitterValue * std::max(base.level, 255.0f - base.level) / 100.0f;

    std::int32_t hue = randomWhole(base.hue - hueRange, base.hue + hueRange);
    if (hue < 0) hue += 360;
    if (hue >= 360) hue -= 360;
    const float low = std::clamp(base.saturation - saturationRange, 0.0f, 1.0f);
    const float high = std::clamp(base.saturation + saturationRange, 0.0f, 1.0f);
    const std::int32_t saturation = randomWhole(low * 100.0f, high * 100.0f);
    const std::int32_t level = randomWhole(std::clamp(base.level - levelRange, 0.0f, 255.0f),
                                           std::clamp(base.level + levelRange, 0.0f, 255.0f));
    const RgbColor drawn =
        hslToRgb({static_cast<float>(hue), static_cast<float>(saturation) / 100.0f,
                  static_cast<float>(level)});
    brush.color = {drawn.red / 255.0f, drawn.green / 255.0f, drawn.blue / 255.0f, brush.color[3]};
}

void restoreColor(BrushState& brush) {
    if (std::exchange(brush.jittered, false)) brush.color = brush.jitterBase;
}

}  // namespace brushwork
