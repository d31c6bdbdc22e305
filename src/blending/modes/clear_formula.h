// Clear. How a formula is read: core/pixel_math.h.
#pragma once

#include "blending/core/pixel_math.h"

namespace brushwork::npc {

// Takes away as much as the source's alpha says; an opaque source leaves nothing. Through a mask
// the factor starts from 65279, the largest product of mask and opacity: so what is let through
// fully clears fully, and any other pixel loses at least a little.
struct ClearFormula : Uniform {
    static constexpr Empty emptySource = Empty::Neutral;

    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        return (d * (256 - alphaOf(s))) >> 8;
    }

    template <class L>
    [[nodiscard]] Word<L> factor(Word<L> m) const {
        return upperProduct(m << 8, opacityWord<L>()) + 256;
    }
    template <class L>
    static Word<L> masked(Word<L> s, Word<L> d, Word<L> k) {
        return upperProduct(d, 65279 - upperProduct(k, alphaOf(s) << 8));
    }
};

}  // namespace brushwork::npc
