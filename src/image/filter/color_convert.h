// Colours one at a time, and the hue that greys inherit.
//
// A grey has no hue of its own. In HSV it is 0; in HSL a grey takes the hue of the last colour that
// had one, whichever pair converted it: where it is to become colourful it joins its surroundings.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

// 0..255 each.
struct RgbColor {
    float red = 0.0f, green = 0.0f, blue = 0.0f;
};

// Hue 0..360, 360 meaning 0 on the way back; saturation 0..1; value or lightness 0..255.
struct HueColor {
    float hue = 0.0f, saturation = 0.0f, level = 0.0f;
};

// Both remember the hue of a colour that has one. Of several largest channels the first counts.
[[nodiscard]] HueColor rgbToHsv(const RgbColor& color);
[[nodiscard]] HueColor rgbToHsl(const RgbColor& color);
// What lies out of bounds is bounded first.
[[nodiscard]] RgbColor hsvToRgb(const HueColor& color);
[[nodiscard]] RgbColor hslToRgb(const HueColor& color);

// 0 at the start. One for the process and shared by all threads; the last to write wins.
[[nodiscard]] float rememberedHue() noexcept;
void rememberHue(float hue) noexcept;
// Remembers the hue of the last of these premultiplied pixels that has one: what a conversion of
// them all, in order, leaves behind. False, with nothing remembered, if none has.
bool rememberLastHue(const std::uint32_t* pixels, std::size_t count) noexcept;

}  // namespace brushwork
