// Hue, Saturation, Color, Luminosity: the whole colour at once, in float. How a formula is read:
// core/pixel_math.h.
//
// Source and target are each multiplied by the other's alpha, which puts them on one scale: S and D
// below, up to `top`, the product of the alphas. A formula takes a base colour, moves it along the
// gray axis to a luminosity, and pulls it toward that gray by a factor that keeps it between 0 and
// top. Differences of a colour with any saturation from its luminosity are never 0: no weight below
// is near 1.
#pragma once

#include "blending/core/pixel_math.h"

namespace brushwork::npc {

template <class L>
struct RealColor {
    Real<L> red, green, blue;

    [[nodiscard]] Real<L> luminosity() const {
        return Real<L>(0.587F) * green + Real<L>(0.299F) * red + Real<L>(0.114F) * blue;
    }
    [[nodiscard]] Real<L> most() const { return max(max(red, green), blue); }
    [[nodiscard]] Real<L> least() const { return min(min(red, green), blue); }

    // (channel - from) * factor + to
    [[nodiscard]] RealColor moved(Real<L> from, Real<L> factor, Real<L> to) const {
        return {(red - from) * factor + to, (green - from) * factor + to,
                (blue - from) * factor + to};
    }
};

// A factor where the range isn't 0; else 0: a gray has no colour to pull.
template <class L>
[[nodiscard]] inline Real<L> onlyWith(Real<L> range, Real<L> factor) {
    return choose(isZero(range), Real<L>(0.0F), factor);
}

// What the four have in common. A formula says `mixed(S, D, top)`.
template <class Formula>
struct Nonseparable : Separable<Formula> {
    template <class L>
    static Blended<L> plain(const Pixels<L>& s, const Pixels<L>& d) {
        const Byte<L> a = s.alpha;
        const Byte<L> b = d.alpha;
        const Wide<L> top = a * b;
        const RealColor<L> value = Formula::mixed(colorOf(s, b), colorOf(d, a), Real<L>(top));
        const auto channel = [&](Byte<L> sc, Byte<L> dc, Real<L> v) {
            return ((256 - a) * dc + (256 - b) * sc + truncatedNumber(v)) >> 8;
        };
        return {channel(s.red, d.red, value.red), channel(s.green, d.green, value.green),
                channel(s.blue, d.blue, value.blue), a + b - (top >> 8)};
    }
    // The plain form of a scaled source; 1 on top makes a source that is let through fully whole.
    template <class L>
    static Blended<L> masked(const Pixels<L>& s, const Pixels<L>& d, Wide<L> k) {
        const auto scaled = [&](Byte<L> channel) { return Byte<L>((((channel * k) >> 16) + 1).v); };
        return plain(Pixels<L>{scaled(s.red), scaled(s.green), scaled(s.blue), scaled(s.alpha)}, d);
    }

  private:
    template <class L>
    static RealColor<L> colorOf(const Pixels<L>& p, Byte<L> otherAlpha) {
        return {Real<L>(p.red * otherAlpha), Real<L>(p.green * otherAlpha),
                Real<L>(p.blue * otherAlpha)};
    }
};

// The hue of the source, saturation and luminosity of the target.
struct HueFormula : Nonseparable<HueFormula> {
    template <class L>
    static RealColor<L> mixed(const RealColor<L>& S, const RealColor<L>& D, Real<L> top) {
        const Real<L> most = S.most(), least = S.least(), lumS = S.luminosity();
        const Real<L> rangeS = most - least, rangeD = D.most() - D.least();
        const Real<L> lumD = D.luminosity();
        const Real<L> f =
            min(min(rangeD / rangeS, lumD / (lumS - least)), (top - lumD) / (most - lumS));
        return S.moved(lumS, onlyWith(rangeS, onlyWith(rangeD, f)), lumD);
    }
};

// The saturation of the source, hue and luminosity of the target.
struct SaturationFormula : Nonseparable<SaturationFormula> {
    template <class L>
    static RealColor<L> mixed(const RealColor<L>& S, const RealColor<L>& D, Real<L> top) {
        const Real<L> most = D.most(), least = D.least(), lumD = D.luminosity();
        const Real<L> rangeD = most - least;
        const Real<L> f = min(min((S.most() - S.least()) / rangeD, (top - lumD) / (most - lumD)),
                              lumD / (lumD - least));
        return D.moved(lumD, onlyWith(rangeD, f), lumD);
    }
};

// Hue and saturation of the source, the luminosity of the target.
struct ColorFormula : Nonseparable<ColorFormula> {
    template <class L>
    static RealColor<L> mixed(const RealColor<L>& S, const RealColor<L>& D, Real<L> top) {
        const Real<L> most = S.most(), least = S.least(), lumS = S.luminosity();
        const Real<L> lumD = D.luminosity();
        const Real<L> f =
            min(min(Real<L>(1.0F), (top - lumD) / (most - lumS)), lumD / (lumS - least));
        return S.moved(lumS, onlyWith(most - least, f), lumD);
    }
};

// The luminosity of the source, hue and saturation of the target.
struct LuminosityFormula : Nonseparable<LuminosityFormula> {
    template <class L>
    static RealColor<L> mixed(const RealColor<L>& S, const RealColor<L>& D, Real<L> top) {
        const Real<L> most = D.most(), least = D.least(), lumD = D.luminosity();
        const Real<L> lumS = S.luminosity();
        const Real<L> f =
            min(min(Real<L>(1.0F), (top - lumS) / (most - lumD)), lumS / (lumD - least));
        return D.moved(lumD, onlyWith(most - least, f), lumS);
    }
};

}  // namespace brushwork::npc
