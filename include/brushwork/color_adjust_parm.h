// ColorAdjustParm: what a colour adjustment does.
//
//     ColorAdjustParm parm;
//     parm.setHsl(2, {0.0f, 30.0f}, {0.0f, 0.25f}, {0.0f, 0.0f});  // hues turn, colours deepen
//
// Any number may stand in any field: what comes out is bounded.
#pragma once

#include <array>
#include <cstdint>
#include <utility>

#include "brushwork/export.h"

namespace brushwork {

enum ColorAdjustKind : std::int32_t {
    AdjustToneBalance = 0,  // brightness and saturation by highlights, midtones and shadows
    AdjustToneGain = 1,     // saturation and value by tone
    AdjustTint = 2,         // hues by tone
    AdjustRanges = 3,       // ranges of hue, saturation and lightness go to other ranges
    AdjustShowRanges = 4,   // shows what AdjustRanges would reach
    AdjustHsl = 5,          // hue, saturation, lightness
    AdjustInvert = 6,
    AdjustNone = 7,
};

// Numbers for highlights, midtones and shadows, in this order.
using ColorAdjustTones = std::array<float, 3>;
// A weight for each of red, yellow, green, cyan, blue and magenta.
using ColorAdjustTint = std::array<float, 6>;
// A trapezoid over 0..1: rising from [0] to [1], level up to [2], ending at [3].
using ColorAdjustRange = std::array<float, 4>;
using ColorAdjustPair = std::pair<float, float>;

class BRUSHWORK_API ColorAdjustParm {
  public:
    ColorAdjustParm() { reset(AdjustNone); }
    ColorAdjustParm(const ColorAdjustParm&) = default;
    ColorAdjustParm& operator=(const ColorAdjustParm&) = default;
    virtual ~ColorAdjustParm();

    // The kind, and every other field at its default.
    void reset(std::int32_t newKind);

    // Each makes its kind the current one. A tone is 0 highlights, 1 midtones, 2 shadows or 3 all
    // of them; any other number changes nothing, and so does a primary outside 0..5.

    // Adds to toneBrightness and toneSaturation, in this order.
    void addToneBalance(std::int32_t tone, float brightness, float saturation);
    // Adds to toneSatGain and toneValueGain, in this order.
    void addToneGain(std::int32_t tone, float saturation, float value);
    // Scales the tone's weights by 1 - amount and adds the amount to that of the primary.
    void mixToneTint(std::int32_t tone, std::int32_t primary, float amount);
    void setHueRanges(bool show, const ColorAdjustRange& hueFrom, const ColorAdjustRange& hueTo,
                      const ColorAdjustRange& satFrom, const ColorAdjustRange& satTo,
                      const ColorAdjustRange& lightFrom, const ColorAdjustRange& lightTo);
    // `mode` becomes hslMode. colorizeAmount stays; whoever colourises sets it.
    void setHsl(std::int32_t mode, ColorAdjustPair newHue, ColorAdjustPair newSaturation,
                ColorAdjustPair newLightness);

    std::int32_t kind;  // a ColorAdjustKind; any other number does nothing

    // AdjustHsl. Of each pair modes 0 and 1 take the first, mode 2 the second.
    std::int32_t hslMode;        // 0 colourise, 1 the same with a least saturation, 2 shift
    float colorizeAmount;        // 0 keeps the colour, 1 gives the colourised one
    ColorAdjustPair hue;         // degrees: the hue to colourise with, and a shift
    ColorAdjustPair saturation;  // relative change: -1 takes it all away
    ColorAdjustPair lightness;   // -1 black to 1 white

    ColorAdjustTones toneBrightness, toneSaturation;  // AdjustToneBalance; 1 changes nothing
    ColorAdjustTones toneSatGain, toneValueGain;      // AdjustToneGain; 1 changes nothing
    std::array<ColorAdjustTint, 3> toneTint;          // AdjustTint, a row for each tone
    std::uint8_t toneTintBoost;                       // AdjustTint: lifts dull and dark pixels

    // AdjustRanges, AdjustShowRanges. What lies in a range goes to its target.
    ColorAdjustRange hueRange, hueTarget;
    ColorAdjustRange satRange, satTarget;
    ColorAdjustRange lightRange, lightTarget;
    std::uint8_t useHue, useSaturation, useLightness;  // which of the ranges count

    std::uint8_t rgbPath;  // only carried
};

}  // namespace brushwork
