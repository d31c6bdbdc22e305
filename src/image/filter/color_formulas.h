// The two pairs of colour conversions, for as many pixels at a time as `F`, one of the lane types
// of adjust_lanes_plain.h and its siblings, holds.
//
// Red, green and blue run from 0 to 255, hue from 0 to 360, saturation from 0 to 1, value and
// lightness from 0 to 255. Both pairs lay the hues on a hexagon: red 0, yellow 60, green 120, cyan
// 180, blue 240, magenta 300, straight in between.
#pragma once

#include "image/filter/adjust_lanes_plain.h"

namespace brushwork {

template <class F>
struct ColorOf {
    F red, green, blue;
};

template <class F>
struct HueColorOf {
    F hue, saturation, level;  // the level is HSV's value or HSL's lightness
};

// What isn't a number becomes `least`.
template <class F>
[[gnu::always_inline]] inline F clampedTo(F value, float least, float most) {
    return smallerOf(largerOf(value, F(least)), F(most));
}

template <class F>
[[gnu::always_inline]] inline ColorOf<F> clampedColor(const ColorOf<F>& c) {
    return {clampedTo(c.red, 0.0f, 255.0f), clampedTo(c.green, 0.0f, 255.0f),
            clampedTo(c.blue, 0.0f, 255.0f)};
}

template <class F>
[[gnu::always_inline]] inline HueColorOf<F> clampedHueColor(const HueColorOf<F>& c) {
    return {clampedTo(c.hue, 0.0f, 360.0f), clampedTo(c.saturation, 0.0f, 1.0f),
            clampedTo(c.level, 0.0f, 255.0f)};
}

// Stands for 0 below a fraction line: smaller than any difference of colours.
inline constexpr float leastSpan = 1e-30f;

// The largest and smallest channel of a colour and its hue, 0 for a grey.
template <class F>
struct HueParts {
    [[gnu::always_inline]] explicit HueParts(const ColorOf<F>& c)
        : most(largerOf(largerOf(c.red, c.green), c.blue)),
          least(smallerOf(smallerOf(c.red, c.green), c.blue)),
          span(most - least) {
        // Of several largest channels the first one counts.
        const auto ofRed = c.red == most, ofGreen = c.green == most;
        const F difference =
            select(ofRed, c.green - c.blue, select(ofGreen, c.blue - c.red, c.red - c.green));
        const F corner = onlyWhere(!ofRed, select(ofGreen, F(120.0f), F(240.0f)));
        const F around = F(60.0f) * (difference / largerOf(span, F(leastSpan))) + corner;
        hue = around + onlyWhere(around < F(0.0f), F(360.0f));
    }
    [[nodiscard]] typename F::Mask hasHue() const { return span != F(0.0f); }

    F most, least, span, hue;
};

// A black has saturation 0.
template <class F>
[[gnu::always_inline]] inline HueColorOf<F> hsvOf(const ColorOf<F>& c) {
    const HueParts<F> parts(c);
    return {parts.hue, parts.span / largerOf(parts.most, F(leastSpan)), parts.most};
}

// For a grey, where `hasHue` is false, hue and saturation are 0.
template <class F>
[[gnu::always_inline]] inline HueColorOf<F> hslOf(const ColorOf<F>& c, typename F::Mask& hasHue) {
    const HueParts<F> parts(c);
    const F sum = parts.most + parts.least;
    // Written so that a colour with a channel at either end has a saturation of exactly 1.
    const F left = (F(255.0f) - parts.most) + (F(255.0f) - parts.least);
    const F room = largerOf(smallerOf(sum, left), F(leastSpan));
    hasHue = parts.hasHue();
    return {parts.hue, smallerOf(parts.span / room, F(1.0f)), sum * F(0.5f)};
}

// The colour of a hue, from 0 to 360, whose smallest and largest channels are given. Around the
// hexagon each channel is at its largest for two sides, falls along one, is at its smallest for two
// and rises along one.
template <class F>
[[gnu::always_inline]] inline ColorOf<F> hexagonColor(F hue, F least, F most) {
    const F place = hue * F(0.016666667f), span = most - least;
    const F red = absoluteOf(place - F(3.0f)) - F(1.0f);
    const F green = F(2.0f) - absoluteOf(place - F(2.0f));
    const F blue = F(2.0f) - absoluteOf(place - F(4.0f));
    return {least + span * clampedTo(red, 0.0f, 1.0f), least + span * clampedTo(green, 0.0f, 1.0f),
            least + span * clampedTo(blue, 0.0f, 1.0f)};
}

// A saturation of 0 gives the level in all channels, in both.
template <class F>
[[gnu::always_inline]] inline ColorOf<F> colorOfHsv(const HueColorOf<F>& c) {
    return hexagonColor(c.hue, c.level * (F(1.0f) - c.saturation), c.level);
}

template <class F>
[[gnu::always_inline]] inline ColorOf<F> colorOfHsl(const HueColorOf<F>& c) {
    const F reach = c.saturation * smallerOf(c.level, F(255.0f) - c.level);
    return hexagonColor(c.hue, c.level - reach, c.level + reach);
}

}  // namespace brushwork
