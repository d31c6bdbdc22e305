// The formula of the ranges and its loop, for each of the lane types.
#pragma once

#include "image/filter/adjust_frame.h"
#include "image/filter/adjust_ranges.h"

namespace brushwork {

template <class F>
class RangeWalk {
  public:
    static void run(const RangeNumbers& numbers, std::uint32_t* pixels, std::size_t count,
                    float& lastHue) {
        noteKernelForm(F::level);
        RangeWalk step(numbers, lastHue);
        walkPixels<F>(pixels, count, step);
        lastHue = step.lastHue_;
    }

    using Words = typename F::Words;

    [[gnu::always_inline]] Words operator()(Words words) {
        const StraightPixels<F> straight(words);
        Mask hasHue;
        HueColorOf<F> c = hslOf(straight.color, hasHue);
        c.hue = inherited(c.hue, hasHue & straight.visible);

        const F ahead = c.hue + F(360.0f);
        const auto near = isIn(c.hue, numbers_.hue), far = isIn(ahead, numbers_.hue);
        Mask taken = straight.visible;
        if (numbers_.hue.counts) taken = taken & (near | far);
        if (numbers_.saturation.counts) taken = taken & isIn(c.saturation, numbers_.saturation);
        if (numbers_.lightness.counts) taken = taken & isIn(c.level, numbers_.lightness);
        if (!anyOf(taken)) return numbers_.show ? shown(straight, taken, F(0.0f)) : words;

        F hueWeight, weight(0.0f);
        if (numbers_.hue.counts) {
            c.hue = mapped(select(near, c.hue, ahead), numbers_.hue, hueWeight);
            c.hue = select(F(360.0f) < c.hue, c.hue - F(360.0f), c.hue);
        }
        if (numbers_.saturation.counts)
            c.saturation = mapped(c.saturation, numbers_.saturation, weight);
        if (numbers_.lightness.counts) {
            F lightWeight;
            c.level = mapped(c.level, numbers_.lightness, lightWeight);
            weight = numbers_.saturation.counts ? (weight + lightWeight) * F(0.5f) : lightWeight;
        }
        if (numbers_.hue.counts) weight = hueWeight;
        if (numbers_.show) return shown(straight, taken, weight);

        const ColorOf<F> now = clampedColor(colorOfHsl(clampedHueColor(c)));
        const ColorOf<F>& old = straight.color;
        return select(taken,
                      straight.with({old.red + (now.red - old.red) * weight,
                                     old.green + (now.green - old.green) * weight,
                                     old.blue + (now.blue - old.blue) * weight}),
                      words);
    }

  private:
    using Mask = typename F::Mask;

    RangeWalk(const RangeNumbers& numbers, float lastHue) : numbers_(numbers), lastHue_(lastHue) {}

    // Each lane without a hue takes that of the nearest lane before it that has one.
    [[gnu::always_inline]] F inherited(F hue, Mask hasHue) {
        float hues[F::count];
        hue.store(hues);
        if (allOf(hasHue)) {
            lastHue_ = hues[F::count - 1];
            return hue;
        }
        const unsigned bits = bitsOf(hasHue);
        if (bits == 0) return F(lastHue_);
        for (std::size_t i = 0; i < F::count; ++i) {
            if (bits >> i & 1)
                lastHue_ = hues[i];
            else
                hues[i] = lastHue_;
        }
        return F::load(hues);
    }

    [[gnu::always_inline]] static Mask isIn(F value, const RangeMap& map) {
        return (F(map.from[0]) <= value) & (value <= F(map.from[3]));
    }

    [[gnu::always_inline]] static F mapped(F value, const RangeMap& map, F& weight) {
        const auto rising = value < F(map.from[1]), level = value <= F(map.from[2]);
        const F first = (value - F(map.from[0])) * F(map.slopes[0]);
        const F second = (value - F(map.from[1])) * F(map.slopes[1]);
        const F third = (value - F(map.from[2])) * F(map.slopes[2]);
        weight = select(rising, first, select(level, F(1.0f), third));
        return select(rising, first * F(map.length[0]) + F(map.start[0]),
                      select(level, second * F(map.length[1]) + F(map.start[1]),
                             third * F(map.length[2]) + F(map.start[2])));
    }

    [[gnu::always_inline]] static Words shown(const StraightPixels<F>& straight, Mask taken,
                                              F weight) {
        const F tone = StraightPixels<F>::byteOf(weight * F(130.0f) + F(125.0f));
        const Words white = Words::packed(F(255.0f), tone, tone, Words::all(0xFF000000U));
        const Words word = select(taken, white, Words::all(0xFF7D7DFFU));
        return select(straight.visible, word, Words::all(0));
    }

    const RangeNumbers& numbers_;
    float lastHue_;
};

}  // namespace brushwork
