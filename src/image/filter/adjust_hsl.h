// The adjustment of hue, saturation and lightness as a whole: shifted, or colourised with one hue.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "brushwork/color_adjust_parm.h"

namespace brushwork {

struct HslNumbers {
    // Nothing if no pixel would change.
    [[nodiscard]] static std::optional<HslNumbers> from(const ColorAdjustParm& parm);

    // In this order, each only if told.
    bool rebuild;  // hue plus `shift`, saturation times `gain`
    float shift;   // -360..360
    float gain;
    bool colorize;          // a share of the way to the colour of hue `target`
    float target;           // 0..360
    float leastSaturation;  // of that colour
    float share;
    bool lighten;  // toward white (above 0) or black
    float lightness;
};

// `count` premultiplied pixels. Leaves the remembered hue alone.
void adjustHsl(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count);
void adjustHslScalar(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count);
void adjustHslSse2(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count);
void adjustHslAvx2(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count);

}  // namespace brushwork
