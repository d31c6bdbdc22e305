// A gradient as a table, so that a pixel costs one look-up.
#pragma once

#include <cstdint>
#include <span>

#include "fill/gradient_stops.h"

namespace brushwork {

// The colours at t = 0 and t = 1, as pixel words: red in the low byte, alpha in the high one.
struct GradientEnds {
    std::uint32_t first = 0, last = 0;
};

// One entry of 16 bits a channel.
struct DeepColor {
    std::uint16_t alpha = 0, red = 0, green = 0, blue = 0;
    friend bool operator==(const DeepColor&, const DeepColor&) = default;
};

// A pixel word of a colour, each channel 255 times, rounded.
[[nodiscard]] std::uint32_t pixelOfColor(const GradientStops::Color& color);
// Each channel 65535 times, cut off.
[[nodiscard]] DeepColor deepColorOf(const GradientStops::Color& color);

// Entry i of n is the colour at t = i / n.
GradientEnds fillGradientTable(const GradientStops& stops, std::span<std::uint32_t> table);
GradientEnds fillGradientTable(const GradientStops& stops, std::span<DeepColor> table);

}  // namespace brushwork
