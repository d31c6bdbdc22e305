// Numbers of many pixels at once: what the formulas of the 4-channel modes are written in.
//
// A formula is a template over a lane set L: PlainLanes has one pixel (and is the definition),
// Sse2Lanes four, Avx2Lanes eight. Its values look like integers and floats, and their types say
// how large they may grow, which decides how a product is made:
//
//     Byte<L>   0 to 32767: channels, alphas, sums of them
//     Small<L>  -32768 to 32767: differences of channels
//     Wide<L>   32 bits, signed, wrapping: products
//     Real<L>   float, one rounding an operation
//     Word<L>   0 to 65535, wrapping: formulas that are the same for all four channels
//     Test<L>   the answer of a comparison, lane by lane
//
//     ((256 - a) * d + (256 - b) * s + d * s) >> 8
//
// is such a formula. Nothing checks the ranges: whoever writes a formula sees to them. Shifts to
// the right keep the sign, but for Word.
#pragma once

#include <cstdint>

namespace brushwork::npc {

template <class L>
struct Test {
    typename L::Ints v;
    friend Test operator&(Test x, Test y) { return {L::both(x.v, y.v)}; }
    friend Test operator|(Test x, Test y) { return {L::either(x.v, y.v)}; }
};

template <class L>
struct Small;
template <class L>
struct Wide;

template <class L>
struct Byte {
    using Ints = typename L::Ints;
    Ints v;

    explicit Byte(Ints lanes) : v(lanes) {}
    Byte(int x) : v(L::all(x)) {}

    friend Byte operator+(Byte x, Byte y) { return Byte(L::add(x.v, y.v)); }
    friend Small<L> operator-(Byte x, Byte y) { return Small<L>(L::subtract(x.v, y.v)); }
    friend Wide<L> operator*(Byte x, Byte y) { return Wide<L>(L::product16(x.v, y.v)); }
    friend Wide<L> operator<<(Byte x, int bits) { return Wide<L>(L::up(x.v, bits)); }
};

template <class L>
struct Small {
    using Ints = typename L::Ints;
    Ints v;

    explicit Small(Ints lanes) : v(lanes) {}
    Small(int x) : v(L::all(x)) {}
    Small(Byte<L> x) : v(x.v) {}

    friend Small operator+(Small x, Small y) { return Small(L::add(x.v, y.v)); }
    friend Small operator-(Small x, Small y) { return Small(L::subtract(x.v, y.v)); }
    friend Wide<L> operator*(Small x, Byte<L> y) { return Wide<L>(L::product16(x.v, y.v)); }
    friend Wide<L> operator*(Byte<L> x, Small y) { return y * x; }
    friend Wide<L> operator*(Small x, Small y) { return Wide<L>(L::product(x.v, y.v)); }
    // max(x, 0)
    friend Byte<L> notBelow0(Small x) { return Byte<L>(L::larger(x.v, L::all(0))); }
    friend Test<L> isPositive(Small x) { return {L::isGreater(x.v, L::all(0))}; }
};

template <class L>
struct Wide {
    using Ints = typename L::Ints;
    Ints v;

    explicit Wide(Ints lanes) : v(lanes) {}
    Wide(int x) : v(L::all(x)) {}
    Wide(Byte<L> x) : v(x.v) {}
    Wide(Small<L> x) : v(x.v) {}

    friend Wide operator+(Wide x, Wide y) { return Wide(L::add(x.v, y.v)); }
    friend Wide operator-(Wide x, Wide y) { return Wide(L::subtract(x.v, y.v)); }
    friend Wide operator*(Wide x, Wide y) { return Wide(L::product(x.v, y.v)); }
    friend Wide operator<<(Wide x, int bits) { return Wide(L::up(x.v, bits)); }
    friend Wide operator>>(Wide x, int bits) { return Wide(L::down(x.v, bits)); }
    friend Wide operator&(Wide x, int bits) { return Wide(L::both(x.v, L::all(bits))); }
    friend Wide min(Wide x, Wide y) { return Wide(L::smaller(x.v, y.v)); }
    friend Wide max(Wide x, Wide y) { return Wide(L::larger(x.v, y.v)); }
    friend Test<L> isZero(Wide x) { return {L::isSame(x.v, L::all(0))}; }
    friend Test<L> isGreater(Wide x, Wide y) { return {L::isGreater(x.v, y.v)}; }
    friend Wide choose(Test<L> test, Wide yes, Wide no) {
        return Wide(L::choose(test.v, yes.v, no.v));
    }
};

// x / y of integers with 0 <= x < 2^24 and 0 < y < 2^24.
template <class L>
[[nodiscard]] inline Wide<L> quotient(Wide<L> x, Wide<L> y) {
    return Wide<L>(L::quotient(x.v, y.v));
}

template <class L>
struct Real {
    using Floats = typename L::Floats;
    Floats v;

    explicit Real(Floats lanes) : v(lanes) {}
    Real(float x) : v(L::allReal(x)) {}
    // Rounded where 24 bits don't hold it.
    explicit Real(Wide<L> x) : v(L::toReal(x.v)) {}

    friend Real operator+(Real x, Real y) { return Real(L::add(x.v, y.v)); }
    friend Real operator-(Real x, Real y) { return Real(L::subtract(x.v, y.v)); }
    friend Real operator*(Real x, Real y) { return Real(L::multiply(x.v, y.v)); }
    friend Real operator/(Real x, Real y) { return Real(L::divide(x.v, y.v)); }
    // Of numbers.
    friend Real min(Real x, Real y) { return Real(L::smaller(x.v, y.v)); }
    friend Real max(Real x, Real y) { return Real(L::larger(x.v, y.v)); }
    friend Test<L> isZero(Real x) { return {L::isSame(x.v, L::allReal(0.0F))}; }
    friend Real choose(Test<L> test, Real yes, Real no) {
        return Real(L::choose(test.v, yes.v, no.v));
    }
    // The fraction cut off, out of range to the nearest bound, not-a-number to 0.
    friend Wide<L> truncated(Real x) { return Wide<L>(L::truncated(x.v)); }
    // The same of a number within 32 bits.
    friend Wide<L> truncatedNumber(Real x) { return Wide<L>(L::truncatedNumber(x.v)); }
};

template <class L>
struct Word {
    using Words = typename L::Words;
    Words v;

    explicit Word(Words lanes) : v(lanes) {}
    Word(int x) : v(L::allWords(x)) {}

    friend Word operator+(Word x, Word y) { return Word(L::addWords(x.v, y.v)); }
    friend Word operator-(Word x, Word y) { return Word(L::subtractWords(x.v, y.v)); }
    friend Word operator*(Word x, Word y) { return Word(L::lowProduct(x.v, y.v)); }
    friend Word operator>>(Word x, int bits) { return Word(L::downWords(x.v, bits)); }
    friend Word operator<<(Word x, int bits) { return Word(L::upWords(x.v, bits)); }
    // (x * y) >> 16, of all 32 bits of the product.
    friend Word upperProduct(Word x, Word y) { return Word(L::upperProduct(x.v, y.v)); }
    // Of values below 32768.
    friend Word min(Word x, Word y) { return Word(L::smallerWords(x.v, y.v)); }
    // The alpha of each pixel, for all of its channels.
    friend Word alphaOf(Word x) { return Word(L::alphaOf(x.v)); }
    // z of 0 takes `yes`.
    friend Word ifZero(Word z, Word yes, Word no) { return Word(L::ifZero(z.v, yes.v, no.v)); }
};

}  // namespace brushwork::npc
