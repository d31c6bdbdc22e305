// The formulas of the tone adjustments and their loop, for each of the lane types.
#pragma once

#include "image/filter/adjust_frame.h"
#include "image/filter/adjust_tones.h"

namespace brushwork {

template <class F>
struct ToneWeights {
    [[gnu::always_inline]] explicit ToneWeights(const ColorOf<F>& c) {
        const F light =
            (F(0.299f) * c.red + F(0.587f) * c.green + F(0.114f) * c.blue) * F(0.003921569f);
        const F twice = F(2.0f) * light;
        high = largerOf(twice - F(1.0f), F(0.0f));
        low = largerOf(F(1.0f) - twice, F(0.0f));
        middle = F(1.0f) - high - low;
    }
    [[nodiscard, gnu::always_inline]] F sumOf(const float (&numbers)[3]) const {
        return F(numbers[0]) * high + F(numbers[1]) * middle + F(numbers[2]) * low;
    }

    F high, middle, low;
};

template <class F>
[[gnu::always_inline]] inline ColorOf<F> toned(const ToneBalance& tones,
                                               const ToneWeights<F>& weights, HueColorOf<F> c) {
    c.saturation = c.saturation * weights.sumOf(tones.saturation);
    c.level = c.level * F(0.003921569f) * F(tones.slope) + F(tones.base);
    const ColorOf<F> color = colorOfHsv(clampedHueColor(c));
    const F shift = weights.sumOf(tones.shift);
    return clampedColor<F>({color.red + shift, color.green + shift, color.blue + shift});
}

template <class F>
[[gnu::always_inline]] inline ColorOf<F> toned(const ToneGain& tones, const ToneWeights<F>& weights,
                                               HueColorOf<F> c) {
    c.saturation = c.saturation * weights.sumOf(tones.saturation);
    c.level = c.level * weights.sumOf(tones.value);
    return colorOfHsv(clampedHueColor(c));
}

template <class F>
[[gnu::always_inline]] inline ColorOf<F> toned(const ToneTint& tones, const ToneWeights<F>& weights,
                                               HueColorOf<F> c) {
    c.hue = weights.sumOf(tones.hue);
    if (tones.boost) {
        const auto dull = c.saturation < F(0.5f);
        c.saturation = select(dull, F(0.5f), c.saturation);
        c.level = select(dull & (c.level < F(75.0f)), F(75.0f), c.level);
    }
    return clampedColor(colorOfHsv(clampedHueColor(c)));
}

template <class F>
class ToneWalk {
  public:
    template <class Tones>
    static void run(const Tones& tones, const ToneBlock& block) {
        noteKernelForm(F::level);
        for (std::size_t y = 0; y < block.rows; ++y)
            row(tones, block.pixels + y * block.pixelStride, block.records + y * block.recordStride,
                block.width);
    }

  private:
    using Words = typename F::Words;

    template <class Tones>
    static void row(const Tones& tones, std::uint32_t* pixels, const float* records,
                    std::size_t count) {
        std::size_t n = 0;
        for (; n + F::count <= count; n += F::count)
            step(tones, pixels + n, records + n * toneRecordFloats);
        if (n == count) return;
        std::uint32_t last[F::count] = {};
        float part[F::count * toneRecordFloats] = {};
        for (std::size_t i = 0; n + i < count; ++i) last[i] = pixels[n + i];
        for (std::size_t i = 0; i < (count - n) * toneRecordFloats; ++i)
            part[i] = records[n * toneRecordFloats + i];
        step(tones, last, part);
        for (std::size_t i = 0; n + i < count; ++i) pixels[n + i] = last[i];
    }

    template <class Tones>
    [[gnu::always_inline]] static void step(const Tones& tones, std::uint32_t* pixels,
                                            const float* records) {
        const StraightPixels<F> straight(Words::load(pixels));
        HueColorOf<F> c;
        F::loadRecords(records, c.hue, c.saturation, c.level);
        straight.with(toned(tones, ToneWeights<F>(straight.color), c)).store(pixels);
    }
};

template <class F>
inline constexpr ToneKernels toneKernelsOf = {ToneWalk<F>::template run<ToneBalance>,
                                              ToneWalk<F>::template run<ToneGain>,
                                              ToneWalk<F>::template run<ToneTint>};

}  // namespace brushwork
