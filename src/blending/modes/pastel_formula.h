// Chalk: dust that mixes with the paper and with the stick's colour.
#pragma once

#include <array>
#include <cstdint>

#include "blending/core/dual_lanes.h"
#include "blending/core/dual_rows.h"

namespace brushwork::npc {

// Products and sums are unsigned and of 32 bits.
struct PastelFormula {
    static constexpr bool dual = true;
    static constexpr bool carries = true;
    static constexpr bool rests = true;

    // 0 to 65535 each.
    std::uint32_t pickup = 0;     // how fast the dust follows
    std::uint32_t canvasMix = 0;  // what is there against the stick's colour on it
    std::uint32_t colorLoad = 0;  // the stick's colour on bare paper
    std::uint32_t opacity = 0;
    std::uint32_t color = 0;  // of the stick; red lowest

    [[nodiscard]] bool fitsLanes() const { return true; }

    void plain(DualPixel& p) const {
        const std::uint32_t share = (p.mask * opacity) >> 8;
        if (share == 0) return;
        const std::uint32_t covered = p.target[3];
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t stick = stickChannel(c);
            const std::uint32_t onBare = (65535 - covered) * ((colorLoad * stick) >> 16);
            const std::uint32_t onPaint =
                p.target[c] * canvasMix + (65535 - canvasMix) * ((covered * stick) >> 16);
            const std::uint32_t mixed = (onBare + (onPaint & ~0xFFFFU)) >> 16;
            const std::uint32_t dust = (mixed * pickup + p.source[c] * (65535 - pickup)) >> 16;
            // The weights add up to 65536 here: chalk that matches the paper leaves it as it is.
            p.target[c] = ((65536 - share) * p.target[c] + dust * share) >> 16;
            p.source[c] = dust;
        }
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const PastelFormula& f)
            : pickup_(L::all(f.pickup)),
              canvasMix_(L::all(f.canvasMix)),
              opacity_(L::all(f.opacity)) {
            std::uint16_t stick[4];
            std::uint16_t loaded[4];
            for (int c = 0; c < 4; ++c) {
                const std::uint32_t channel = ((f.color >> (8 * c)) & 0xFF) << 8;
                stick[c] = static_cast<std::uint16_t>(channel);
                loaded[c] = static_cast<std::uint16_t>((f.colorLoad * channel) >> 16);
            }
            stick_ = L::channels(stick);
            loaded_ = L::channels(loaded);
        }

        void blend(Words& target, Words& source, Words mask) const {
            const Words share = L::high(mask, opacity_);
            const Words covered = L::alphaOf(target);
            const Words onPaint =
                weighted<L>(target, canvasMix_, L::high(covered, stick_), rest<L>(canvasMix_));
            const Words mixed = L::add(L::high(rest<L>(covered), loaded_), onPaint);
            const Words dust = weighted<L>(mixed, pickup_, source, rest<L>(pickup_));
            // 65536 less the share is a word wherever the share isn't 0.
            const Words kept = L::subtract(L::all(0), share);
            const Words idle = isZero<L>(share);
            target = L::choose(idle, target, weighted<L>(target, kept, dust, share));
            source = L::choose(idle, source, dust);
        }

      private:
        Words pickup_, canvasMix_, opacity_, stick_, loaded_;
    };

  private:
    [[nodiscard]] std::uint32_t stickChannel(int c) const {
        return ((color >> (8 * c)) & 0xFF) << 8;
    }
};

}  // namespace brushwork::npc
