// Multiply, Screen, Add, Lighten, Darken. How a formula is read: core/pixel_math.h.
#pragma once

#include "blending/core/pixel_math.h"

namespace brushwork::npc {

struct MultiplyFormula : Separable<MultiplyFormula> {
    static constexpr bool mayBeNegative = false;

    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        return ((256 - a) * d + (256 - b) * s + d * s) >> 8;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        return ((65535 - a) * d + (256 - b) * s + d * s) >> 16;
    }
};

struct ScreenFormula : Separable<ScreenFormula> {
    static constexpr bool mayBeNegative = false;

    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L>, Byte<L> d, Byte<L>) {
        return s - ((d * s) >> 8) + d;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L>, Byte<L> d, Byte<L>) {
        return ((((d << 8) + s) << 8) - d * s) >> 16;
    }
};

struct AddFormula : Separable<AddFormula> {
    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        const Wide<L> t = max((d * s - (a - s) * (b - d)) >> 8, Wide<L>(0));
        return d + s - t;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        const Wide<L> t = max((d * s - (b - d) * (a - s)) >> 8, Wide<L>(0));
        return ((d << 8) - t + s) >> 8;
    }
};

struct LightenFormula : Separable<LightenFormula> {
    static constexpr bool mayBeNegative = false;

    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        return max((256 - a) * d + (s << 8), (d << 8) + (256 - b) * s) >> 8;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        return max((s << 8) + (65535 - a) * d, (d << 16) + (256 - b) * s) >> 16;
    }
};

struct DarkenFormula : Separable<DarkenFormula> {
    static constexpr bool mayBeNegative = false;

    template <class L>
    static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b) {
        return min((256 - a) * d + (s << 8), (d << 8) + (256 - b) * s) >> 8;
    }
    template <class L>
    static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b) {
        return min((s << 8) + (65535 - a) * d, (d << 16) + (256 - b) * s) >> 16;
    }
};

}  // namespace brushwork::npc
