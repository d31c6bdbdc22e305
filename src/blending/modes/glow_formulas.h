// Glow, SoftGlow. How a formula is read: core/pixel_math.h.
#pragma once

#include "blending/core/pixel_math.h"

namespace brushwork::npc {

// Light that a source adds to a target. Through a mask it is as strong as 16-bit numbers shifted by
// 8 make it: every pixel that the mask lets through ends opaque, and where the target wasn't opaque
// its colour ends at 255. A brush of light is meant to burn out so; it stays exactly this.
struct GlowFormula : Separable<GlowFormula> {
    static constexpr Empty emptySource = Empty::Rest;
    static constexpr bool emptyTargetTakesSource = true;

    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L>, Byte<L> d, Byte<L> b) {
        const Wide<L> t = quotient(d << 8, Wide<L>(256 - s));
        return min(Wide<L>(b), t) + (((256 - b) * s) >> 8);
    }
    template <class L>
    static Wide<L> alpha(Byte<L> a, Byte<L> b) {
        return b + ((a * (256 - b)) >> 8);
    }

    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L>, Byte<L> d, Byte<L> b) {
        const Wide<L> t = quotient(d << 16, 65536 - s);
        return min(t, Wide<L>(b)) + (((256 - b) * s) >> 8);
    }
    template <class L>
    static Wide<L> alphaMasked(Wide<L> a, Byte<L> b) {
        return b + ((a * (256 - b)) >> 8);
    }
};

// Through a mask the source is a 16-bit number and yet taken from 256: what is subtracted is then
// mostly negative, and the light it gives is softer than the plain one's.
struct SoftGlowFormula : Separable<SoftGlowFormula> {
    static constexpr Empty emptySource = Empty::Rest;
    static constexpr bool emptyTargetTakesSource = true;

    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L>, Byte<L> d, Byte<L> b) {
        const Wide<L> t = max((s * d - (b - d) * (256 - s)) >> 8, Wide<L>(0));
        return d + s - t;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L>, Byte<L> d, Byte<L> b) {
        const Wide<L> t = max((d * s - (b - d) * (256 - s)) >> 8, Wide<L>(0));
        return ((d << 8) - t + s) >> 8;
    }
};

}  // namespace brushwork::npc
