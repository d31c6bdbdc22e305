// MaskMultiply. How a formula is read: core/pixel_math.h.
#pragma once

#include "blending/core/pixel_math.h"

namespace brushwork::npc {

// The source times the mask, written over whatever the target has. The second opacity says how far
// the mask counts; at 0 it lets all through.
struct MaskMultiplyFormula : Uniform {
    static constexpr bool bySecondOpacity = true;
    static constexpr Empty emptySourceMasked = Empty::Blend;
    static constexpr Empty emptyMask = Empty::Blend;

    template <class L>
    [[nodiscard]] Word<L> factor(Word<L> m) const {
        return 65535 - opacityWord<L>() + upperProduct(m << 8, opacityWord<L>());
    }
    template <class L>
    static Word<L> masked(Word<L> s, Word<L>, Word<L> k) {
        return upperProduct(s, k);
    }
};

}  // namespace brushwork::npc
