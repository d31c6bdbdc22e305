// Smearing: each stamp lays the carried paint and takes the canvas on in the same step.
#pragma once

#include <cstdint>

#include "blending/core/dual_lanes.h"
#include "blending/core/dual_rows.h"

namespace brushwork::npc {

// Products are unsigned and of 32 bits.
struct SmudgeFormula {
    static constexpr bool dual = true;
    static constexpr bool carries = true;
    static constexpr bool rests = false;

    std::uint32_t pickup = 0;   // of 65535
    std::uint32_t opacity = 0;  // 0 to 65535

    [[nodiscard]] bool fitsLanes() const { return pickup <= 65535; }

    // Two weights that add up to 65535 lose a 65536th at every step. Where one of them is 0 there
    // is no step: a canvas that the brush doesn't reach and a brush that takes nothing up stay
    // exactly as they are. The carried paint drifts under the whole stamp, beyond the soft edge
    // too, and an empty one is laid like any other, which wipes.
    void plain(DualPixel& p) const {
        const std::uint32_t share = (p.mask * opacity) >> 8;
        const std::uint32_t kept = 65535 - share;
        const std::uint32_t stays = 65535 - pickup;
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t canvas = p.target[c];
            const std::uint32_t paint = p.source[c];
            if (share != 0) p.target[c] = (kept * canvas + share * paint) >> 16;
            if (pickup != 0) p.source[c] = (canvas * pickup + paint * stays) >> 16;
        }
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const SmudgeFormula& f)
            : pickup_(L::all(f.pickup)), opacity_(L::all(f.opacity)), still_(f.pickup == 0) {}

        void blend(Words& target, Words& source, Words mask) const {
            const Words share = L::high(mask, opacity_);
            const Words canvas = target;
            const Words mixed = weighted<L>(canvas, rest<L>(share), source, share);
            target = L::choose(isZero<L>(share), canvas, mixed);
            if (!still_) source = weighted<L>(canvas, pickup_, source, rest<L>(pickup_));
        }

      private:
        Words pickup_, opacity_;
        bool still_;
    };
};

}  // namespace brushwork::npc
