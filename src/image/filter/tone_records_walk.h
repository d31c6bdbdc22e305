// The loop of the tone records, for each of the lane types.
#pragma once

#include "image/filter/adjust_frame.h"
#include "image/filter/tone_records.h"

namespace brushwork {

template <class F>
class ToneRecordWalk {
  public:
    static void run(const std::uint32_t* pixels, std::size_t count, float* records) {
        noteKernelForm(F::level);
        std::size_t n = 0;
        for (; n + F::count <= count; n += F::count)
            step(pixels + n, records + n * toneRecordFloats);
        if (n == count) return;
        std::uint32_t last[F::count] = {};
        float part[F::count * toneRecordFloats];
        for (std::size_t i = 0; n + i < count; ++i) last[i] = pixels[n + i];
        step(last, part);
        for (std::size_t i = 0; i < (count - n) * toneRecordFloats; ++i)
            records[n * toneRecordFloats + i] = part[i];
    }

  private:
    [[gnu::always_inline]] static void step(const std::uint32_t* pixels, float* records) {
        const StraightPixels<F> straight(F::Words::load(pixels));
        const HueColorOf<F> c = clampedHueColor(hsvOf(straight.color));
        const F none(0.0f);
        F::storeRecords(records, select(straight.visible, c.hue, none),
                        select(straight.visible, c.saturation, none),
                        select(straight.visible, c.level, none));
    }
};

}  // namespace brushwork
