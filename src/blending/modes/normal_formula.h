// Normal. How a formula is read: core/pixel_math.h, core/dual_rows.h.
#pragma once

#include <cstdint>

#include "blending/core/dual_lanes.h"
#include "blending/core/dual_rows.h"
#include "blending/core/pixel_math.h"

namespace brushwork::npc {

// 256 stands for an alpha of 255, so that an opaque source replaces exactly.
struct NormalFormula : Uniform {
    static constexpr bool copiesOpaque = true;
    static constexpr bool bareTargetIsEmpty = true;
    static constexpr Empty emptySource = Empty::Neutral;
    static constexpr Empty emptySourceMasked = Empty::Neutral;
    static constexpr Empty emptyMask = Empty::Neutral;

    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        return s - (((alphaOf(s) + 1) * d) >> 8) + d;
    }
    // What is taken from the target is no more than there is, so that bytes can hold it.
    template <class L>
    static typename L::Ints packed(typename L::Ints s, typename L::Ints d) {
        typename L::Words alpha[2], taken[2];
        L::toAlphaWords(s, alpha);
        L::toUpperWords(d, taken);
        for (int i = 0; i < 2; ++i)
            taken[i] = L::upperProduct(L::addWords(alpha[i], L::allWords(1)), taken[i]);
        return L::addBytes(L::subtractBytes(d, L::fromWords(taken)), s);
    }

    template <class L>
    [[nodiscard]] Word<L> factor(Word<L> m) const {
        return upperProduct(m + 1, opacityWord<L>()) + 1;
    }
    template <class L>
    static Word<L> masked(Word<L> s, Word<L> d, Word<L> k) {
        return plain((s * k) >> 8, d);
    }
};

// The older form, that of whole rows (rows/image_blend_normal.h): what is below an alpha of a is
// weighed with 255 - a, so that it darkens a little under any source that isn't empty. In a picture
// a pixel without alpha is empty whatever its colour; a constant colour is laid as it is.
template <bool isConstant>
struct RowNormalFormula : Uniform {
    static constexpr Empty emptySource = Empty::Neutral;
    static constexpr bool copiesOpaque = true;

    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        const Word<L> a = alphaOf(s);
        const Word<L> laid = s + (((255 - a) * d) >> 8);
        return isConstant ? laid : ifZero(a, d, laid);
    }
};

// On a target of two planes. The source has bytes.
struct NormalDualFormula {
    static constexpr bool dual = true;
    static constexpr bool carries = false;
    static constexpr bool rests = true;

    std::uint32_t opacity = 65535;

    [[nodiscard]] bool fitsLanes() const { return true; }

    void plain(DualPixel& p) const {
        const bool isEmpty = (p.source[0] | p.source[1] | p.source[2] | p.source[3]) == 0;
        if (p.mask == 0 || isEmpty) return;
        const std::uint32_t k = (p.mask * opacity) >> 8;
        const std::uint32_t kept = 65535 - ((p.source[3] * k) >> 8);
        const bool isBare = p.target[3] == 0;
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t scaled = (p.source[c] * k) >> 8;
            p.target[c] = isBare ? scaled : scaled + ((kept * p.target[c]) >> 16);
        }
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const NormalDualFormula& f) : opacity_(L::all(f.opacity)) {}

        void blend(Words& target, Words source, Words mask) const {
            const Words scaled = L::high(source, L::high(mask, opacity_));
            const Words kept = rest<L>(L::alphaOf(scaled));
            const Words isBare = isZero<L>(L::alphaOf(target));
            const Words below = L::choose(isBare, L::all(0), L::high(kept, target));
            const Words idle = L::either(isZero<L>(mask), L::isEmptyPixel(source));
            target = L::choose(idle, target, L::add(scaled, below));
        }

      private:
        Words opacity_;
    };
};

}  // namespace brushwork::npc
