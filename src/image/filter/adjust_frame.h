// What all colour adjustments do around their formula: premultiplied pixels come in, straight
// colours are worked on, premultiplied pixels go out. For one of the lane types of
// adjust_lanes_plain.h and its siblings.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/filter/color_formulas.h"

namespace brushwork {

// Pixels as they came, and their colours without the alpha. Where alpha is 0 the colours are
// nothing to rely on.
template <class F>
struct StraightPixels {
    using Words = typename F::Words;

    [[gnu::always_inline]] explicit StraightPixels(Words pixels)
        : words(pixels), alpha(pixels.template byte<3>()), visible(F(0.0f) < alpha) {
        const F full(255.0f);
        color = {words.template byte<0>(), words.template byte<1>(), words.template byte<2>()};
        if (allOf(alpha == full)) return;
        // In this order whole numbers come out whole: what is as strong as its alpha is 255.
        color = {color.red * full / alpha, color.green * full / alpha, color.blue * full / alpha};
    }

    // The pixels with these colours instead. Where the colour is still what it was, and where alpha
    // is 0, the pixel stays as it came.
    [[nodiscard, gnu::always_inline]] Words with(const ColorOf<F>& now) const {
        const F factor = alpha * F(0.003921569f);
        const auto changed =
            (now.red != color.red) | (now.green != color.green) | (now.blue != color.blue);
        return select(visible & changed,
                      Words::packed(byteOf(now.red * factor), byteOf(now.green * factor),
                                    byteOf(now.blue * factor), words),
                      words);
    }

    // Bounded to what a byte holds; the fraction is for packed() to cut off. A 1024th covers what
    // the float steps lose, so that a whole number doesn't become the one below it; the fractions
    // of n / 255 are further from the next whole number than that.
    [[nodiscard, gnu::always_inline]] static F byteOf(F value) {
        return clampedTo(value, 0.0f, 255.0f) + F(0.0009765625f);
    }

    Words words;
    F alpha;
    typename F::Mask visible;
    ColorOf<F> color;
};

// Calls step(words) for `count` pixels, F::count at a time, and stores what it answers. Behind the
// last pixel stand transparent ones.
template <class F, class Step>
void walkPixels(std::uint32_t* pixels, std::size_t count, Step& step) {
    using Words = typename F::Words;
    std::size_t n = 0;
    for (; n + F::count <= count; n += F::count) step(Words::load(pixels + n)).store(pixels + n);
    if (n == count) return;
    std::uint32_t last[F::count] = {};
    for (std::size_t i = 0; n + i < count; ++i) last[i] = pixels[n + i];
    step(Words::load(last)).store(last);
    for (std::size_t i = 0; n + i < count; ++i) pixels[n + i] = last[i];
}

}  // namespace brushwork
