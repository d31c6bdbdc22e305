// Ink: its colour stands under what is already laid, so that layers of it darken.
#pragma once

#include <algorithm>
#include <cstdint>

#include "blending/core/dual_lanes.h"
#include "blending/core/dual_rows.h"

namespace brushwork::npc {

// Products are unsigned and of 32 bits.
struct MarkerFormula {
    static constexpr bool dual = true;
    static constexpr bool carries = false;
    static constexpr bool rests = true;

    std::uint32_t deposit = 0;  // what a stamp lays at a mask of 255, of 65535

    [[nodiscard]] bool fitsLanes() const { return deposit <= 65535; }

    // Where the paper is bare, the ink shows as it is; where it is covered, a channel only falls,
    // toward the ink times what is there. An empty ink counts like any other: it wipes.
    void plain(DualPixel& p) const {
        if (p.mask == 0) return;
        const std::uint32_t share = (deposit * p.mask) >> 8;
        const std::uint32_t kept = (65535 - share) & 0xFFFF;
        const std::uint32_t covered = p.target[3];
        const std::uint32_t bare = 65535 - covered;
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t under = std::min(covered * p.source[c], p.target[c] << 8);
            const std::uint32_t ink = (bare * p.source[c] + under) >> 8;
            p.target[c] = (ink * share + p.target[c] * kept) >> 16;
        }
    }

    // The smaller of two sums instead of the sum with the smaller: 65535 * source, which is the
    // whole where the target is lighter than the ink, and bare * source + target * 256.
    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const MarkerFormula& f) : deposit_(L::all(f.deposit)) {}

        void blend(Words& target, Words source, Words mask) const {
            const Words share = L::high(mask, deposit_);
            const Words bare = rest<L>(L::alphaOf(target));
            const Words whole = L::high(source, L::all(65535));
            const Words ink = L::smaller(whole, L::addSaturated(target, L::high(source, bare)));
            const Words mixed = weighted<L>(ink, share, target, rest<L>(share));
            target = L::choose(isZero<L>(mask), target, mixed);
        }

      private:
        Words deposit_;
    };
};

}  // namespace brushwork::npc
