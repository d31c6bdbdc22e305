// Replace. How a formula is read: core/pixel_math.h, core/dual_rows.h.
#pragma once

#include <cstdint>

#include "blending/core/dual_lanes.h"
#include "blending/core/dual_rows.h"
#include "blending/core/pixel_math.h"

namespace brushwork::npc {

// A crossing over from target to source, alpha included: empty sources count like any. Mask and
// opacity never reach the whole 256, so that a trace of the target stays.
struct ReplaceFormula : Uniform {
    static constexpr Empty emptySourceMasked = Empty::Blend;

    template <class L>
    [[nodiscard]] Word<L> factor(Word<L> m) const {
        return upperProduct(m, opacityWord<L>()) + 1;
    }
    template <class L>
    static Word<L> masked(Word<L> s, Word<L> d, Word<L> k) {
        return min(((s * k) >> 2) + ((d * (256 - k)) >> 2), Word<L>(0x3FFF)) >> 6;
    }
};

// On a target of two planes. The source has bytes.
struct ReplaceDualFormula {
    static constexpr bool dual = true;
    static constexpr bool carries = false;
    static constexpr bool rests = true;

    std::uint32_t opacity = 65535;

    [[nodiscard]] bool fitsLanes() const { return true; }

    void plain(DualPixel& p) const {
        if (p.mask == 0) return;
        const std::uint32_t k = (opacity * p.mask) >> 8;
        for (int c = 0; c < 4; ++c)
            p.target[c] = (p.target[c] * (65535 - k) + (p.source[c] << 8) * k) >> 16;
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const ReplaceDualFormula& f) : opacity_(L::all(f.opacity)) {}

        void blend(Words& target, Words source, Words mask) const {
            const Words k = L::high(mask, opacity_);
            const Words mixed = weighted<L>(target, rest<L>(k), source, k);
            target = L::choose(isZero<L>(mask), target, mixed);
        }

      private:
        Words opacity_;
    };
};

}  // namespace brushwork::npc
