// The formulas of a painter's rows, over lane sets (core/lanes.h). One rule holds for every factor
// f: 0 and 255 are exact, any other gives (x * f) >> 8.
#pragma once

#include "blending/core/lanes.h"
#include "blending/core/pixel_math.h"

namespace brushwork::paint {

using npc::Empty;
using npc::Word;

// x times f of 255.
template <class L>
[[nodiscard]] inline Word<L> part(Word<L> x, Word<L> f) {
    return ifZero(255 - f, x, (x * f) >> 8);
}

// Halfway between d and s by m, to the nearest. Equal values stay as they are whatever m is, 0 is d
// and 255 is s, and a colour never comes above its alpha.
template <class L>
[[nodiscard]] inline Word<L> mixed(Word<L> s, Word<L> d, Word<L> m) {
    const Word<L> sum = s * m + d * (255 - m) + 128;
    return (sum + (sum >> 8)) >> 8;
}

// Four channels. Drawing over has its formula in modes/normal_formula.h.
struct UnderFormula : npc::Uniform {
    static constexpr Empty emptySource = Empty::Neutral;
    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        return d + part(s, 255 - alphaOf(d));
    }
};

struct KeepInsideFormula : npc::Uniform {
    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        return part(d, alphaOf(s));
    }
};

struct KeepOutsideFormula : npc::Uniform {
    static constexpr Empty emptySource = Empty::Neutral;
    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        return part(d, 255 - alphaOf(s));
    }
};

struct ReplaceInsideFormula : npc::Uniform {
    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        return part(s, alphaOf(d));
    }
};

struct AddFormula : npc::Uniform {
    static constexpr Empty emptySource = Empty::Neutral;
    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        return s + d;
    }
};

// A source of 255 is exact, too.
struct InvertFormula : npc::Uniform {
    template <class L>
    static Word<L> plain(Word<L> s, Word<L> d) {
        const Word<L> rest = 255 - alphaOf(d);
        return ifZero(255 - s, rest, part(s, rest));
    }
};

// Four channels under a coverage of one, k.
struct Covered : npc::Uniform {
    static constexpr Empty emptySourceMasked = Empty::Blend;
    static constexpr Empty emptyMask = Empty::Blend;
    template <class L>
    [[nodiscard]] Word<L> factor(Word<L> m) const {
        return m;
    }
};

struct CoverInsideFormula : Covered {
    template <class L>
    static Word<L> masked(Word<L>, Word<L> d, Word<L> k) {
        return part(d, k);
    }
};

struct CoverOutsideFormula : Covered {
    static constexpr Empty emptyMask = Empty::Neutral;
    template <class L>
    static Word<L> masked(Word<L>, Word<L> d, Word<L> k) {
        return part(d, 255 - k);
    }
};

struct CoverOverFormula : Covered {
    static constexpr Empty emptySourceMasked = Empty::Neutral;
    static constexpr Empty emptyMask = Empty::Neutral;
    template <class L>
    static Word<L> masked(Word<L> s, Word<L> d, Word<L> k) {
        const Word<L> laid = part(s, k);
        const Word<L> alpha = alphaOf(laid);
        return ifZero(alpha, d, laid + (((255 - alpha) * d) >> 8));
    }
};

struct CoverMixFormula : Covered {
    static constexpr Empty emptyMask = Empty::Neutral;
    template <class L>
    static Word<L> masked(Word<L> s, Word<L> d, Word<L> k) {
        return mixed(s, d, k);
    }
};

// One channel, which is its own alpha.
struct GrayOverFormula {
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L>) const {
        return s + part(d, 255 - s);
    }
};
struct GrayUnderFormula {
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L>) const {
        return d + part(s, 255 - d);
    }
};
struct GrayInsideFormula {
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L>) const {
        return part(d, s);
    }
};
struct GrayOutsideFormula {
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L>) const {
        return part(d, 255 - s);
    }
};
struct GrayReplaceInsideFormula {
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L>) const {
        return part(s, d);
    }
};
struct GrayAddFormula {
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L>) const {
        return s + d;
    }
};
struct GrayInvertFormula {
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L>) const {
        return ifZero(255 - s, 255 - d, part(s, 255 - d));
    }
};
struct GrayMixFormula {
    template <class L>
    [[nodiscard]] Word<L> blend(Word<L> s, Word<L> d, Word<L> m) const {
        return mixed(s, d, m);
    }
};

}  // namespace brushwork::paint

// Expands X(formula) once for each formula on 4 channels: what row_formulas_sse2.cpp and
// row_formulas_avx2.cpp make.
#define BRUSHWORK_PAINT_FORMULAS(X) \
    X(paint::KeepInsideFormula)     \
    X(paint::KeepOutsideFormula)    \
    X(paint::AddFormula)            \
    X(paint::UnderFormula)          \
    X(paint::ReplaceInsideFormula)  \
    X(paint::InvertFormula)         \
    X(paint::CoverInsideFormula)    \
    X(paint::CoverOutsideFormula)   \
    X(paint::CoverOverFormula)      \
    X(paint::CoverMixFormula)

// And for each on one channel.
#define BRUSHWORK_PAINT_GRAY_FORMULAS(X) \
    X(paint::GrayOverFormula)            \
    X(paint::GrayUnderFormula)           \
    X(paint::GrayInsideFormula)          \
    X(paint::GrayOutsideFormula)         \
    X(paint::GrayReplaceInsideFormula)   \
    X(paint::GrayAddFormula)             \
    X(paint::GrayInvertFormula)          \
    X(paint::GrayMixFormula)
