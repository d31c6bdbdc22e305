// Overlay, HardLight, SoftLight. How a formula is read: core/pixel_math.h.
#pragma once

#include "blending/core/pixel_math.h"

namespace brushwork::npc {

// Light where the target is light, dark where it is dark.
struct OverlayFormula : Separable<OverlayFormula> {
    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        return ((d - b + 256) * s - notBelow0(d + d - b) * (s + s - a) + (s - a + 256) * d) >> 8;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        return ((d - b + 256) * s - notBelow0(d + d - b) * (s + s - a) + (s - a + 65535) * d) >> 16;
    }
};

// The same with the roles of source and target exchanged in the choice.
struct HardLightFormula : Separable<HardLightFormula> {
    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        return ((d - b + 256) * s - notBelow0(s + s - a) * (d + d - b) + (s - a + 256) * d) >> 8;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        return ((d - b + 256) * s - max(s + s - a, Wide<L>(0)) * (d + d - b) +
                (s - a + 65535) * d) >>
               16;
    }
};

// The bend is a quotient in float. Where the target has a colour but no alpha it is beyond all
// bounds without a mask, and 0 through one; valid pixels have no such.
struct SoftLightFormula : Separable<SoftLightFormula> {
    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        const Wide<L> q = truncated(bend(s + s - a, d, b));
        return ((d - b + 256) * s - q + (s - a + 256) * d) >> 8;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        const Real<L> real = choose(isZero(Wide<L>(b)), Real<L>(0.0F), bend(s + s - a, d, b));
        const Wide<L> q = truncated(real);
        return ((d - b + 256) * s + (s - a + 65535) * d - q) >> 16;
    }

  private:
    template <class L>
    static Real<L> bend(Wide<L> twice, Byte<L> d, Byte<L> b) {
        return Real<L>(twice) * Real<L>(d * d) / Real<L>(Wide<L>(b));
    }
    template <class L>
    static Real<L> bend(Small<L> twice, Byte<L> d, Byte<L> b) {
        return bend(Wide<L>(twice), d, b);
    }
};

}  // namespace brushwork::npc
