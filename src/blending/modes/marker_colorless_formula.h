// A marker without ink: it drags the wet paint that it has touched.
#pragma once

#include <algorithm>
#include <cstdint>

#include "blending/core/dual_lanes.h"
#include "blending/core/dual_rows.h"

namespace brushwork::npc {

// Products are unsigned and of 32 bits.
struct MarkerColorlessFormula {
    static constexpr bool dual = true;
    static constexpr bool carries = true;
    static constexpr bool rests = false;

    std::uint32_t deposit = 0;  // what a stamp lays at a mask of 255, of 65535
    std::uint32_t uptake = 0;   // how fast the carried paint takes the target's on, of 4096

    [[nodiscard]] bool fitsLanes() const { return deposit <= 65535 && uptake < 4096; }

    // The carried paint takes the target's on even where the mask is 0, so that it's current as
    // soon as the brush bears on it; but there only its high byte is written, before the pixel is
    // given up. The low byte then belongs to an older value.
    void plain(DualPixel& p) const {
        const std::uint32_t left = p.source[3] >> 8;  // alpha carried before this pixel's uptake
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t drawn = std::min<std::uint32_t>(
                (p.target[c] * uptake + p.source[c] * (4096 - uptake)) >> 12, 65535);
            p.source[c] = p.mask != 0 ? drawn : (drawn & 0xFF00) | (p.source[c] & 0xFF);
        }
        if (p.mask != 0) lay(p, left);
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const MarkerColorlessFormula& f)
            : deposit_(L::all(f.deposit)),
              uptake_(L::all(f.uptake << 4)),
              stay_(L::all(65536 - (f.uptake << 4))),
              still_(f.uptake == 0) {}

        void blend(Words& target, Words& source, Words mask) const {
            const Words high = L::all(0xFF00);
            const Words idle = isZero<L>(mask);
            const Words drawn = still_ ? source : weighted<L>(target, uptake_, source, stay_);
            const Words left = L::both(L::alphaOf(source), high);

            const Words thinned = L::high(target, L::all(thin));
            const Words paint = L::both(drawn, high);
            const Words bare = rest<L>(L::alphaOf(thinned));
            // (65535 * p + 127) >> 8, and (bare * p + 127) >> 8: the upper bits of the product and
            // a carry where its lowest byte is 129 or more.
            const Words whole = L::subtract(paint, L::topBit(paint));
            const Words carry = L::topBit(L::subtractSaturated(L::low(bare, paint), L::all(0x100)));
            const Words part = L::add(L::high(bare, paint), carry);
            const Words trace = L::smaller(whole, L::addSaturated(thinned, part));

            const Words faded = weighted<L>(trace, left, thinned, L::subtract(high, left));
            const Words holds =
                isZero<L>(L::subtractSaturated(L::alphaOf(thinned), L::alphaOf(trace)));
            const Words laid = L::choose(holds, trace, faded);
            const Words share = L::high(mask, deposit_);
            const Words mixed = weighted<L>(thinned, rest<L>(share), laid, share);
            target = L::choose(idle, target, mixed);
            const Words coarse = L::either(L::both(drawn, high), L::both(source, L::all(0xFF)));
            source = L::choose(idle, coarse, drawn);
        }

      private:
        Words deposit_, uptake_, stay_;
        bool still_;  // nothing is taken on; the other weight, 65536, is more than a word holds
    };

  private:
    // The target counts 1/4096 thinner than it is. Even a full one has some paper that shows, and
    // paint that is gone over again and again wears off instead of gathering rounding errors.
    static constexpr std::uint32_t thin = 65520;

    // Steps of 256 with 127 below them, half a step, so that sums round to the nearest.
    static std::uint32_t thinned(std::uint32_t word) {
        return (((word * thin) & ~0x8000U) | 0x7F00) >> 8;
    }

    void lay(DualPixel& p, std::uint32_t left) const {
        const std::uint32_t share = (deposit * p.mask) >> 8;
        const std::uint32_t kept = (65535 - share) & 0xFFFF;
        const std::uint32_t covered = (p.target[3] * thin) >> 16;
        std::uint32_t below[4];
        std::uint32_t trace[4];
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t paint = p.source[c] >> 8;
            below[c] = thinned(p.target[c]);
            trace[c] = ((65535 - covered) * paint + std::min(covered * paint + 127, below[c])) >> 8;
        }
        // A trace thinner than what is there fades by how little paint is left to carry.
        const bool fades = (below[3] >> 8) > trace[3];
        for (int c = 0; c < 4; ++c) {
            if (fades) trace[c] = (trace[c] * left + (below[c] >> 8) * (255 - left)) >> 8;
            p.target[c] = ((below[c] >> 8) * kept + trace[c] * share) >> 16;
        }
    }
};

}  // namespace brushwork::npc
