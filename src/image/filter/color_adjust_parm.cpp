#include "brushwork/color_adjust_parm.h"

#include <cstddef>

namespace brushwork {
namespace {

constexpr std::int32_t allTones = 3;

// Calls each(index) for the tones that the number names; false if it names none.
template <class Each>
bool forTones(std::int32_t tone, Each each) {
    if (tone < 0 || tone > allTones) return false;
    for (std::size_t i = 0; i < 3; ++i)
        if (tone == allTones || static_cast<std::size_t>(tone) == i) each(i);
    return true;
}

}  // namespace

ColorAdjustParm::~ColorAdjustParm() = default;

void ColorAdjustParm::reset(std::int32_t newKind) {
    constexpr ColorAdjustTones neutral = {1.0f, 1.0f, 1.0f};
    constexpr ColorAdjustRange middle = {0.4f, 0.45f, 0.55f, 0.6f};
    kind = newKind;
    hslMode = 2;
    colorizeAmount = 0.0f;
    hue = {180.0f, 180.0f};
    saturation = {0.0f, 0.0f};
    lightness = {0.0f, 0.0f};
    toneBrightness = toneSaturation = toneSatGain = toneValueGain = neutral;
    toneTint = {};
    toneTintBoost = 0;
    hueRange = hueTarget = satRange = satTarget = lightRange = lightTarget = middle;
    useHue = useSaturation = useLightness = 1;
    rgbPath = 0;
}

void ColorAdjustParm::addToneBalance(std::int32_t tone, float brightness, float saturationChange) {
    const bool known = forTones(tone, [&](std::size_t i) {
        toneBrightness[i] += brightness;
        toneSaturation[i] += saturationChange;
    });
    if (known) kind = AdjustToneBalance;
}

void ColorAdjustParm::addToneGain(std::int32_t tone, float saturationChange, float value) {
    const bool known = forTones(tone, [&](std::size_t i) {
        toneSatGain[i] += saturationChange;
        toneValueGain[i] += value;
    });
    if (known) kind = AdjustToneGain;
}

void ColorAdjustParm::mixToneTint(std::int32_t tone, std::int32_t primary, float amount) {
    if (primary < 0 || primary > 5) return;
    const bool known = forTones(tone, [&](std::size_t i) {
        for (float& weight : toneTint[i]) weight *= 1.0f - amount;
        toneTint[i][static_cast<std::size_t>(primary)] += amount;
    });
    if (known) kind = AdjustTint;
}

void ColorAdjustParm::setHueRanges(bool show, const ColorAdjustRange& hueFrom,
                                   const ColorAdjustRange& hueTo, const ColorAdjustRange& satFrom,
                                   const ColorAdjustRange& satTo, const ColorAdjustRange& lightFrom,
                                   const ColorAdjustRange& lightTo) {
    kind = show ? AdjustShowRanges : AdjustRanges;
    hueRange = hueFrom;
    hueTarget = hueTo;
    satRange = satFrom;
    satTarget = satTo;
    lightRange = lightFrom;
    lightTarget = lightTo;
}

void ColorAdjustParm::setHsl(std::int32_t mode, ColorAdjustPair newHue,
                             ColorAdjustPair newSaturation, ColorAdjustPair newLightness) {
    kind = AdjustHsl;
    hslMode = mode;
    hue = newHue;
    saturation = newSaturation;
    lightness = newLightness;
}

}  // namespace brushwork
