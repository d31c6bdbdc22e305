// ColorDodge, ColorBurn, LinearBurn. How a formula is read: core/pixel_math.h.
#pragma once

#include "blending/core/pixel_math.h"

namespace brushwork::npc {

// A source colour may lie above its alpha: several modes turn valid pixels into such, by one. Its
// quotient counts as larger than any target.
struct ColorDodgeFormula : Separable<ColorDodgeFormula> {
    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        const Wide<L> t = dodged(d * a, a - s + 1, b);
        return ((t - d) * a + ((d + s) << 8) - b * s) >> 8;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        const Wide<L> t = dodged(d * a, a - s + 1, b);
        return ((t - d) * a + (256 - b) * s + (d << 16)) >> 16;
    }

  private:
    // min(b, product / room)
    template <class L>
    static Wide<L> dodged(Wide<L> product, Wide<L> room, Byte<L> b) {
        const Wide<L> t = quotient(product, max(room, Wide<L>(1)));
        return choose(isGreater(room, Wide<L>(0)), min(Wide<L>(b), t), Wide<L>(b));
    }
    template <class L>
    static Wide<L> dodged(Wide<L> product, Small<L> room, Byte<L> b) {
        return dodged(product, Wide<L>(room), b);
    }
};

// The source is divided by its colour, so a colour that mask and opacity take down to 0 has to be
// told from others: the only masked mode that scales without the common 256 on top.
struct ColorBurnFormula : Separable<ColorBurnFormula> {
    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        const Wide<L> q = burnt((d - b) * a + b * s, Wide<L>(a), Wide<L>(s));
        return d + s - ((d * a + b * s - q) >> 8);
    }

    template <class L>
    static Blended<L> masked(const Pixels<L>& s, const Pixels<L>& d, Wide<L> k) {
        const Wide<L> a = (s.alpha * k) >> 8;
        return {through((s.red * k) >> 8, a, d.red, d.alpha),
                through((s.green * k) >> 8, a, d.green, d.alpha),
                through((s.blue * k) >> 8, a, d.blue, d.alpha),
                ((65535 - a) * d.alpha + ((s.alpha * k) & ~255)) >> 16};
    }

  private:
    template <class L>
    static Wide<L> through(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        const Wide<L> q = burnt((d - b) * a + b * s, a, s);
        return ((d << 8) - ((d * a + b * s - q) >> 8) + s) >> 8;
    }
    // max(sum * (a / s), 0) in float; 0 for an s of 0.
    template <class L>
    static Wide<L> burnt(Wide<L> sum, Wide<L> a, Wide<L> s) {
        const Real<L> grown = Real<L>(sum) * (Real<L>(a) / Real<L>(s));
        const Real<L> none(0.0F);
        return truncated(choose(isZero(s), none, max(grown, none)));
    }
};

struct LinearBurnFormula : Separable<LinearBurnFormula> {
    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        return d + s - (min(b * a, b * s + d * a) >> 8);
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        return ((d << 8) - (min(b * a, b * s + d * a) >> 8) + s) >> 8;
    }
};

}  // namespace brushwork::npc
