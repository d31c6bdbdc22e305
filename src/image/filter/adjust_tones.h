// The adjustments that treat highlights, midtones and shadows apart.
//
// How much a pixel is of each follows from its luminance L in 0..1: highlight 2 L - 1 from a half
// on, shadow 1 - 2 L up to a half, midtone the rest. Hue, saturation and value come from the tone
// analysis, not from the pixel.
#pragma once

#include <optional>

#include "brushwork/color_adjust_parm.h"
#include "image/filter/tone_records.h"

namespace brushwork {

// Each takes what it needs from the parameters, or nothing if they change no pixel. Numbers stand
// in the order highlights, midtones, shadows.

// Saturation by tone, the value through a straight line, then a shift of the colours by tone.
struct ToneBalance {
    [[nodiscard]] static std::optional<ToneBalance> from(const ColorAdjustParm& parm);
    float shift[3];
    float saturation[3];
    float slope, base;  // value = value / 255 * slope + base
};

// Saturation and value by tone.
struct ToneGain {
    [[nodiscard]] static std::optional<ToneGain> from(const ColorAdjustParm& parm);
    float saturation[3];
    float value[3];
};

// Every hue becomes a mix of three hues. Remembers the hues of the three colours.
struct ToneTint {
    [[nodiscard]] static std::optional<ToneTint> from(const ColorAdjustParm& parm);
    float hue[3];
    bool boost;  // a saturation below 0.5 becomes 0.5, and a value below 75 then 75
};

struct ToneKernels {
    void (*balance)(const ToneBalance&, const ToneBlock&);
    void (*gain)(const ToneGain&, const ToneBlock&);
    void (*tint)(const ToneTint&, const ToneBlock&);
};

// Those of the current level.
[[nodiscard]] const ToneKernels& toneKernels();
extern const ToneKernels toneKernelsScalar;
extern const ToneKernels toneKernelsSse2;
extern const ToneKernels toneKernelsAvx2;

}  // namespace brushwork
