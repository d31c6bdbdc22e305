// The formula of hue, saturation and lightness and its loop, for each of the lane types.
#pragma once

#include "image/filter/adjust_frame.h"
#include "image/filter/adjust_hsl.h"

namespace brushwork {

template <class F>
class HslWalk {
  public:
    using Words = typename F::Words;

    static void run(const HslNumbers& numbers, std::uint32_t* pixels, std::size_t count) {
        noteKernelForm(F::level);
        HslWalk step(numbers);
        walkPixels<F>(pixels, count, step);
    }

    [[gnu::always_inline]] Words operator()(Words words) const {
        const StraightPixels<F> straight(words);
        ColorOf<F> color = straight.color;
        if (numbers_.rebuild || numbers_.colorize) {
            // A grey's hue has no say here: its saturation stays 0.
            typename F::Mask hasHue;
            HueColorOf<F> c = clampedHueColor(hslOf(straight.color, hasHue));
            if (numbers_.rebuild) {
                c.hue = turned(c.hue);
                c.saturation = clampedTo(F(numbers_.gain) * c.saturation, 0.0f, 1.0f);
                color = clampedColor(colorOfHsl(c));
            }
            if (numbers_.colorize) color = colorized(clampedColor(color), c);
        }
        if (numbers_.lighten) {
            color.red = lightened(color.red);
            color.green = lightened(color.green);
            color.blue = lightened(color.blue);
        }
        return straight.with(color);
    }

  private:
    explicit HslWalk(const HslNumbers& numbers) : numbers_(numbers) {}

    [[nodiscard, gnu::always_inline]] F turned(F hue) const {
        const F sum = hue + F(numbers_.shift);
        const F above = select(F(360.0f) < sum, sum - F(360.0f), sum);
        return select(above < F(0.0f), above + F(360.0f), above);
    }

    [[nodiscard, gnu::always_inline]] ColorOf<F> colorized(const ColorOf<F>& color,
                                                           HueColorOf<F> c) const {
        c.hue = F(numbers_.target);
        c.saturation = largerOf(c.saturation, F(numbers_.leastSaturation));
        const ColorOf<F> target = colorOfHsl(c);
        const F share(numbers_.share);
        return {color.red + (target.red - color.red) * share,
                color.green + (target.green - color.green) * share,
                color.blue + (target.blue - color.blue) * share};
    }

    [[nodiscard, gnu::always_inline]] F lightened(F channel) const {
        const F lightness(numbers_.lightness);
        if (numbers_.lightness > 0.0f) return channel + (F(255.0f) - channel) * lightness;
        return channel * (lightness + F(1.0f));
    }

    const HslNumbers& numbers_;
};

}  // namespace brushwork
