// What the formulas of the 4-channel modes share: pixels taken apart, the rules of alpha, and two
// families of formulas. Written over lane sets (lanes.h), so each is one text for every width.
//
// A formula of the first family, Separable, says what becomes of one colour channel:
//
//     struct DarkenFormula : Separable<DarkenFormula> {
//         // s and a: channel and alpha of the source; d and b: of the target. 0 to 255.
//         template <class L>
//         static Wide<L> color(Byte<L> s, Byte<L> a, Byte<L> d, Byte<L> b);
//         // Through a mask: s and a as 16-bit numbers that mask and opacity have scaled.
//         template <class L>
//         static Wide<L> colorMasked(Wide<L> s, Wide<L> a, Byte<L> d, Byte<L> b);
//     };
//
// One that sees the whole colour has `plain` and `masked` of its own, as Separable has them.
//
// A formula of the second family, Uniform, treats alpha as it treats a colour, in 16 bits:
//
//     plain(s, d) and masked(s, d, k), on Word<L> with alphaOf; results below 32768
//     factor(m), k from the mask byte
//     packed(s, d), if it has that: the bytes of plain(s, d), from pixels to pixels. No source is
//         empty or opaque to such a formula: plain(s, d) is right for those, too.
//
// The rows (byte_rows.h) do the rest: results above 255 become 255, and the lowest 8 bits of
// others are kept. Of valid pixels (no colour above its alpha) no formula gives less than 0.
#pragma once

#include <cstdint>

#include "blending/core/lanes.h"

namespace brushwork::npc {

// Channels of pixels, a register each.
template <class L>
struct Pixels {
    Byte<L> red, green, blue, alpha;
};

// What a formula gives: not yet cut to a byte.
template <class L>
struct Blended {
    Wide<L> red, green, blue, alpha;
};

template <class L>
[[nodiscard]] inline Pixels<L> takenApart(typename L::Ints pixels) {
    return {Byte<L>(L::channel(pixels, 0)), Byte<L>(L::channel(pixels, 1)),
            Byte<L>(L::channel(pixels, 2)), Byte<L>(L::channel(pixels, 3))};
}

// Above 255 becomes 255; of what is below 0 the lowest 8 bits stay.
template <bool mayBeNegative, class L>
[[nodiscard]] inline typename L::Ints putTogether(const Blended<L>& p) {
    const auto cut = [](Wide<L> channel) {
        const Wide<L> bounded = min(channel, Wide<L>(255));
        return mayBeNegative ? bounded & 255 : bounded;
    };
    const Wide<L> red = cut(p.red), green = cut(p.green) << 8, blue = cut(p.blue) << 16;
    const Wide<L> alpha = min(p.alpha, Wide<L>(255)) << 24;
    return L::either(L::either(red.v, green.v), L::either(blue.v, alpha.v));
}

// The share of a source that mask and opacity let through: 256 to 65535.
template <class L>
[[nodiscard]] inline Wide<L> maskShare(Wide<L> mask, std::uint32_t opacity16) {
    return ((mask * Wide<L>(static_cast<int>(opacity16))) >> 8) + 256;
}

// What empty pixels do beside a formula.
enum class Empty {
    Blend,    // nothing: the formula holds for them
    Neutral,  // the formula changes nothing by them, so runs of them can be passed over
    Rest,     // they change nothing, whatever the formula says
};

// The rule of alpha of nearly all modes, and the walk over the three colours. Without a mask an
// empty source leaves the target and an empty target takes the source: most formulas say so by
// themselves, for any bytes. Through a mask none does.
template <class Formula>
struct Separable {
    static constexpr bool uniform = false;
    static constexpr bool bySecondOpacity = false;
    static constexpr bool copiesOpaque = false;
    static constexpr bool mayBeNegative = true;  // of invalid pixels
    static constexpr Empty emptySource = Empty::Neutral;
    static constexpr Empty emptySourceMasked = Empty::Rest;
    static constexpr Empty emptyMask = Empty::Rest;
    static constexpr bool emptyTargetTakesSource = false;  // without a mask, by rule
    static constexpr bool bareTargetIsEmpty = false;

    std::uint32_t opacity = 65535;

    template <class L>
    [[nodiscard]] Wide<L> factor(Wide<L> mask) const {
        return maskShare(mask, opacity);
    }

    template <class L>
    static Wide<L> alpha(Byte<L> a, Byte<L> b) {
        return ((256 - a) * b + (a << 8)) >> 8;
    }
    template <class L>
    static Wide<L> alphaMasked(Wide<L> a, Byte<L> b) {
        return ((65535 - a) * b + (a << 8)) >> 16;
    }

    template <class L>
    static Blended<L> plain(const Pixels<L>& s, const Pixels<L>& d) {
        return {Formula::color(s.red, s.alpha, d.red, d.alpha),
                Formula::color(s.green, s.alpha, d.green, d.alpha),
                Formula::color(s.blue, s.alpha, d.blue, d.alpha), Formula::alpha(s.alpha, d.alpha)};
    }
    template <class L>
    static Blended<L> masked(const Pixels<L>& s, const Pixels<L>& d, Wide<L> k) {
        const Wide<L> a = scaled(s.alpha, k);
        return {Formula::colorMasked(scaled(s.red, k), a, d.red, d.alpha),
                Formula::colorMasked(scaled(s.green, k), a, d.green, d.alpha),
                Formula::colorMasked(scaled(s.blue, k), a, d.blue, d.alpha),
                Formula::alphaMasked(a, d.alpha)};
    }

  private:
    // 256 to 65535.
    template <class L>
    static Wide<L> scaled(Byte<L> channel, Wide<L> k) {
        return ((channel * k) >> 8) + 256;
    }
};

// What Uniform formulas have in common.
struct Uniform {
    static constexpr bool uniform = true;
    static constexpr bool bySecondOpacity = false;
    static constexpr bool copiesOpaque = false;
    static constexpr Empty emptySource = Empty::Blend;
    static constexpr Empty emptySourceMasked = Empty::Rest;
    static constexpr Empty emptyMask = Empty::Rest;
    static constexpr bool emptyTargetTakesSource = false;
    // Through a mask a target without alpha counts as empty, whatever colour it has.
    static constexpr bool bareTargetIsEmpty = false;

    std::uint32_t opacity = 65535;

  protected:
    template <class L>
    [[nodiscard]] Word<L> opacityWord() const {
        return Word<L>(static_cast<int>(opacity));
    }
};

}  // namespace brushwork::npc
