#include "image/filter/color_convert.h"

#include <atomic>

#include "image/filter/adjust_frame.h"
#include "image/filter/color_formulas.h"

namespace brushwork {
namespace {

std::atomic<float> lastHue{0.0f};

ColorOf<PlainFloats> lanesOf(const RgbColor& c) {
    return {c.red, c.green, c.blue};
}

RgbColor colorOf(const ColorOf<PlainFloats>& c) {
    return {c.red.v, c.green.v, c.blue.v};
}

HueColorOf<PlainFloats> boundedOf(const HueColor& c) {
    return clampedHueColor<PlainFloats>({c.hue, c.saturation, c.level});
}

}  // namespace

HueColor rgbToHsv(const RgbColor& color) {
    const HueColorOf<PlainFloats> c = hsvOf(lanesOf(color));
    if (c.saturation.v != 0.0f) rememberHue(c.hue.v);  // else a grey
    return {c.hue.v, c.saturation.v, c.level.v};
}

HueColor rgbToHsl(const RgbColor& color) {
    PlainMask hasHue{};
    const HueColorOf<PlainFloats> c = hslOf(lanesOf(color), hasHue);
    if (hasHue.bit) rememberHue(c.hue.v);
    return {hasHue.bit ? c.hue.v : rememberedHue(), c.saturation.v, c.level.v};
}

RgbColor hsvToRgb(const HueColor& color) {
    return colorOf(colorOfHsv(boundedOf(color)));
}

RgbColor hslToRgb(const HueColor& color) {
    return colorOf(colorOfHsl(boundedOf(color)));
}

float rememberedHue() noexcept {
    return lastHue.load(std::memory_order_relaxed);
}

void rememberHue(float hue) noexcept {
    lastHue.store(hue, std::memory_order_relaxed);
}

bool rememberLastHue(const std::uint32_t* pixels, std::size_t count) noexcept {
    while (count != 0) {
        const std::uint32_t word = pixels[--count];
        const bool grey = (word & 0xFFFFFFU) == (word & 0xFFU) * 0x010101U;
        if (grey || word >> 24 == 0) continue;
        rememberHue(
            HueParts<PlainFloats>(StraightPixels<PlainFloats>(PlainWords{word}).color).hue.v);
        return true;
    }
    return false;
}

}  // namespace brushwork
