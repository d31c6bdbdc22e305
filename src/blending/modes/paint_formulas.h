// Paint and solid paint: colour that builds up to the level that the flow sets, and no higher.
#pragma once

#include <algorithm>
#include <cstdint>

#include "blending/core/dual_lanes.h"
#include "blending/core/dual_rows.h"

namespace brushwork::npc {

// 0 to 65535 each; the flow may lie above.
struct PaintLevels {
    std::uint32_t flow = 65535;
    std::uint32_t opacity = 65535;

    [[nodiscard]] bool fitsLanes() const { return flow <= 65535; }
};

// The alpha that is there counts as full where it reaches the flow: what is laid on is then taken
// off in the same measure, so that a stroke over itself settles at the level of the flow.
struct PaintFormula : PaintLevels {
    static constexpr bool dual = true;
    static constexpr bool carries = false;
    static constexpr bool rests = true;

    void plain(DualPixel& p) const {
        const std::uint32_t share = ((((p.mask + 1) * flow) >> 8) * opacity) >> 16;
        if (p.mask == 0 || share == 0) return;
        const std::uint32_t alpha = p.target[3];
        const std::uint32_t laid = (p.source[3] * share) >> 8;
        const std::uint32_t kept = alpha != 0 ? 65535 - (laid << 16) / std::max(alpha, flow) : 0;
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t colour = (p.source[c] * share) >> 8;
            p.target[c] =
                alpha != 0 ? std::min<std::uint32_t>(((p.target[c] * kept) >> 16) + colour, 65535)
                           : colour;
        }
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const PaintFormula& f)
            : flow_(L::all(f.flow)),
              least_(L::all(f.flow != 0 ? f.flow : 1)),
              opacity_(L::all(f.opacity)) {}

        void blend(Words& target, Words source, Words mask) const {
            const Words raised = weighted<L>(mask, flow_, L::all(256), flow_);
            const Words share = L::high(raised, opacity_);
            const Words colour = L::high(source, share);
            const Words alpha = L::alphaOf(target);
            const Words kept = rest<L>(L::quotient(L::alphaOf(colour), L::larger(alpha, least_)));
            const Words below = L::choose(isZero<L>(alpha), L::all(0), L::high(target, kept));
            const Words idle = L::either(isZero<L>(mask), isZero<L>(share));
            target = L::choose(idle, target, L::addSaturated(below, colour));
        }

      private:
        Words flow_, least_, opacity_;  // `least_` is the flow, never 0: nothing divides by 0
    };
};

// The same on a target of bytes. The share has 8 bits here, the products 16.
struct PaintFormula8 : PaintLevels {
    static constexpr bool dual = false;
    static constexpr bool carries = false;
    static constexpr bool rests = true;

    void plain(DualPixel& p) const {
        const std::uint32_t share = ((((p.mask + 1) * flow) >> 16) * opacity) >> 16;
        if (p.mask == 0 || share == 0) return;
        const std::uint32_t alpha = p.target[3];
        const std::uint32_t laid = p.source[3] * share;
        const std::uint32_t kept = alpha != 0 ? 65535 - (laid << 16) / std::max(alpha, flow) : 0;
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t below = alpha != 0 ? (p.target[c] * kept) >> 16 : 0;
            p.target[c] = std::min<std::uint32_t>(p.source[c] * share + below, 65535);
        }
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const PaintFormula8& f)
            : flow_(L::all(f.flow)),
              least_(L::all(f.flow != 0 ? f.flow : 1)),
              opacity_(L::all(f.opacity)) {}

        void blend(Words& target, Words source, Words mask) const {
            const Words raised = L::high(L::add(L::down8(mask), L::all(1)), flow_);
            const Words share = L::high(raised, opacity_);
            const Words colour = L::low(L::down8(source), share);
            const Words alpha = L::alphaOf(target);
            const Words kept = rest<L>(L::quotient(L::alphaOf(colour), L::larger(alpha, least_)));
            const Words below = L::choose(isZero<L>(alpha), L::all(0), L::high(target, kept));
            const Words idle = L::either(isZero<L>(mask), isZero<L>(share));
            target = L::choose(idle, target, L::addSaturated(below, colour));
        }

      private:
        Words flow_, least_, opacity_;
    };
};

// A channel only rises, and only toward the colour at the level of the flow: a stroke over itself
// stays as it is.
template <bool onTwoPlanes>
struct SolidPaintFormula : PaintLevels {
    static constexpr bool dual = onTwoPlanes;
    static constexpr bool carries = false;
    static constexpr bool rests = true;

    void plain(DualPixel& p) const {
        const std::uint32_t share = (p.mask * (opacity + 1)) >> 8;
        if (share == 0) return;
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t level = (p.source[c] * flow) >> 8;
            const std::uint32_t gap = level > p.target[c] ? level - p.target[c] : 0;
            p.target[c] = std::min<std::uint32_t>(p.target[c] + ((gap * share) >> 16), 65535);
        }
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const SolidPaintFormula& f)
            : flow_(L::all(f.flow)), opacity_(L::all(f.opacity + 1)), full_(f.opacity == 65535) {}

        // A share of 0 raises nothing by itself; the sum never passes the level.
        void blend(Words& target, Words source, Words mask) const {
            const Words share = full_ ? mask : L::high(mask, opacity_);
            const Words gap = L::subtractSaturated(L::high(source, flow_), target);
            target = L::add(target, L::high(gap, share));
        }

      private:
        Words flow_, opacity_;
        bool full_;  // the factor is 65536, one more than a word holds
    };
};

// Without a mask, on a target of bytes: at once to the level.
struct SolidPaintFormulaAtOnce : PaintLevels {
    static constexpr bool dual = false;
    static constexpr bool carries = false;
    static constexpr bool rests = false;

    void plain(DualPixel& p) const {
        for (int c = 0; c < 4; ++c) {
            const std::uint32_t level = (p.source[c] * flow) >> 8;
            p.target[c] = std::min<std::uint32_t>(std::max(level, p.target[c]), 65535);
        }
    }

    template <class L>
    class Lanes {
      public:
        using Words = typename L::Words;
        explicit Lanes(const SolidPaintFormulaAtOnce& f) : flow_(L::all(f.flow)) {}

        void blend(Words& target, Words source, Words) const {
            target = L::larger(target, L::high(source, flow_));
        }

      private:
        Words flow_;
    };
};

}  // namespace brushwork::npc
