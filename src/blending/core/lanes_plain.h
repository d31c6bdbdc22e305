// One pixel at a time: the lane set of the definitions. See lanes.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "blending/core/lanes.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

struct PlainLanes {
    // Types of their own, so that a value isn't mistaken for a constant.
    struct Ints {
        std::int32_t x;
    };
    struct Floats {
        float x;
    };
    // A channel of a pixel of four.
    struct Words {
        std::uint32_t x[4];
    };
    static constexpr std::size_t pixels = 1;
    static constexpr VectorLevel level = VectorLevel::Scalar;

    // Whole pixels, and masks widened to lanes.
    static Ints load(const std::uint8_t* p) {
        return wrapped(p[0] | static_cast<std::uint32_t>(p[1]) << 8 |
                       static_cast<std::uint32_t>(p[2]) << 16 |
                       static_cast<std::uint32_t>(p[3]) << 24);
    }
    static void store(std::uint8_t* p, Ints v) {
        for (int c = 0; c < 4; ++c)
            p[c] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(v.x) >> 8 * c);
    }
    static Ints loadMask(const std::uint8_t* p) { return {*p}; }
    static bool isMaskEmpty(const std::uint8_t* p) { return *p == 0; }
    static bool isAllZero(Ints v) { return v.x == 0; }
    static Ints channel(Ints v, int index) { return wrapped((bits(v) >> 8 * index) & 0xFF); }
    static bool isOpaque(Ints v) { return static_cast<std::uint32_t>(v.x) >> 24 == 255; }

    static Ints all(int x) { return {x}; }
    static Ints add(Ints a, Ints b) { return wrapped(bits(a) + bits(b)); }
    static Ints subtract(Ints a, Ints b) { return wrapped(bits(a) - bits(b)); }
    static Ints product(Ints a, Ints b) { return wrapped(bits(a) * bits(b)); }
    static Ints product16(Ints a, Ints b) { return {a.x * b.x}; }
    static Ints up(Ints a, int count) { return wrapped(bits(a) << count); }
    static Ints down(Ints a, int count) { return {a.x >> count}; }
    static Ints smaller(Ints a, Ints b) { return b.x < a.x ? b : a; }
    static Ints larger(Ints a, Ints b) { return a.x < b.x ? b : a; }
    static Ints both(Ints a, Ints b) { return {a.x & b.x}; }
    static Ints without(Ints a, Ints b) { return {a.x & ~b.x}; }
    static Ints either(Ints a, Ints b) { return {a.x | b.x}; }
    static Ints isSame(Ints a, Ints b) { return {a.x == b.x ? -1 : 0}; }
    static Ints isGreater(Ints a, Ints b) { return {a.x > b.x ? -1 : 0}; }
    static Ints choose(Ints test, Ints yes, Ints no) { return test.x != 0 ? yes : no; }
    static Ints quotient(Ints a, Ints b) { return {a.x / b.x}; }

    static Floats allReal(float x) { return {x}; }
    static Floats toReal(Ints a) { return {static_cast<float>(a.x)}; }
    static Floats add(Floats a, Floats b) { return {a.x + b.x}; }
    static Floats subtract(Floats a, Floats b) { return {a.x - b.x}; }
    static Floats multiply(Floats a, Floats b) { return {a.x * b.x}; }
    static Floats divide(Floats a, Floats b) { return {a.x / b.x}; }
    static Floats smaller(Floats a, Floats b) { return b.x < a.x ? b : a; }
    static Floats larger(Floats a, Floats b) { return a.x < b.x ? b : a; }
    static Ints isSame(Floats a, Floats b) { return {a.x == b.x ? -1 : 0}; }
    static Floats choose(Ints test, Floats yes, Floats no) { return test.x != 0 ? yes : no; }
    static Ints truncated(Floats a) {
        if (!(a.x > -2147483648.0F)) return {a.x == a.x ? INT32_MIN : 0};
        return {a.x >= 2147483648.0F ? INT32_MAX : static_cast<std::int32_t>(a.x)};
    }
    static Ints truncatedNumber(Floats a) { return truncated(a); }

    // The four channels of a pixel, and back; results above 255 become 255.
    static void toWords(Ints pixel, Words (&words)[1]) {
        for (int c = 0; c < 4; ++c) words[0].x[c] = (bits(pixel) >> 8 * c) & 0xFF;
    }
    static Ints fromWords(const Words (&words)[1]) {
        std::uint32_t pixel = 0;
        for (int c = 0; c < 4; ++c) pixel |= (words[0].x[c] < 255 ? words[0].x[c] : 255) << 8 * c;
        return wrapped(pixel);
    }
    static Words alphaOf(Words w) { return {{w.x[3], w.x[3], w.x[3], w.x[3]}}; }
    // A mask, widened to lanes, and a number a pixel for all of its channels.
    static Words maskWords(Ints mask) {
        return each([&](int) { return bits(mask); });
    }
    static void spread(Words perPixel, Words (&words)[1]) { words[0] = perPixel; }

    static Words allWords(int x) {
        return each([&](int) { return static_cast<std::uint32_t>(x); });
    }
    static Words addWords(Words a, Words b) {
        return each([&](int c) { return a.x[c] + b.x[c]; });
    }
    static Words subtractWords(Words a, Words b) {
        return each([&](int c) { return a.x[c] - b.x[c]; });
    }
    static Words lowProduct(Words a, Words b) {
        return each([&](int c) { return a.x[c] * b.x[c]; });
    }
    static Words upperProduct(Words a, Words b) {
        return each([&](int c) { return (a.x[c] * b.x[c]) >> 16; });
    }
    static Words upWords(Words a, int count) {
        return each([&](int c) { return a.x[c] << count; });
    }
    static Words downWords(Words a, int count) {
        return each([&](int c) { return a.x[c] >> count; });
    }
    static Words smallerWords(Words a, Words b) {
        return each([&](int c) { return a.x[c] < b.x[c] ? a.x[c] : b.x[c]; });
    }
    static Words ifZero(Words z, Words yes, Words no) {
        return each([&](int c) { return z.x[c] == 0 ? yes.x[c] : no.x[c]; });
    }

  private:
    static std::uint32_t bits(Ints a) { return static_cast<std::uint32_t>(a.x); }
    static Ints wrapped(std::uint32_t x) { return {static_cast<std::int32_t>(x)}; }
    template <class Channel>
    static Words each(Channel channel) {
        return {
            {channel(0) & 0xFFFF, channel(1) & 0xFFFF, channel(2) & 0xFFFF, channel(3) & 0xFFFF}};
    }
};

}  // namespace brushwork::npc
