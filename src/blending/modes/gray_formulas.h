// The formulas of targets of one channel. `blend(s, d, m)` on Word<L>; see core/lanes.h and
// core/gray_rows.h.
#pragma once

#include <cstdint>

#include "blending/core/lanes.h"

namespace brushwork::npc {

// The second opacity as a byte: how far the formula counts.
struct GrayFormula {
    std::uint32_t strength = 255;

    explicit GrayFormula(std::uint32_t opacity2) : strength((opacity2 >> 8) & 0xFFFF) {}

  protected:
    template <class L>
    [[nodiscard]] Word<L> rest() const {
        return 255 - Word<L>(static_cast<int>(strength));
    }
};

struct MultiplyGrayFormula : GrayFormula {
    using GrayFormula::GrayFormula;
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L>) const {
        return (((((255 - s) * rest<L>()) >> 8) + s) * d) >> 8;
    }
};

struct MaskMultiplyGrayFormula : GrayFormula {
    using GrayFormula::GrayFormula;
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L>, Word<L> m) const {
        return ((((m * Word<L>(static_cast<int>(strength))) >> 8) + rest<L>()) * s) >> 8;
    }
};

}  // namespace brushwork::npc
