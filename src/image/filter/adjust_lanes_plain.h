// What the formulas of the colour adjustments are written in: numbers, yes-or-no answers and pixel
// words, `count` pixels at a time. Here one pixel at a time, which defines the bytes; the types of
// adjust_lanes_sse2.h and adjust_lanes_avx2.h offer the same and give the same bits, since each
// operation is rounded once in all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/services/vector_level.h"

namespace brushwork {

struct PlainMask {
    bool bit;

    friend PlainMask operator&(PlainMask a, PlainMask b) { return {a.bit && b.bit}; }
    friend PlainMask operator|(PlainMask a, PlainMask b) { return {a.bit || b.bit}; }
    friend PlainMask operator!(PlainMask a) { return {!a.bit}; }
    friend bool anyOf(PlainMask a) { return a.bit; }
    friend bool allOf(PlainMask a) { return a.bit; }
    // Lane n in bit n.
    friend unsigned bitsOf(PlainMask a) { return a.bit ? 1 : 0; }
};

struct PlainWords;

struct PlainFloats {
    using Mask = PlainMask;
    using Words = PlainWords;
    static constexpr std::size_t count = 1;
    static constexpr VectorLevel level = VectorLevel::Scalar;

    float v;

    PlainFloats() : v(0.0f) {}
    PlainFloats(float value) : v(value) {}

    static PlainFloats load(const float* p) { return *p; }
    void store(float* p) const { *p = v; }
    // The first three of the four floats that each lane has at `records`, one lane behind the
    // other. Storing writes 0 to the fourth.
    static void loadRecords(const float* records, PlainFloats& a, PlainFloats& b, PlainFloats& c) {
        a.v = records[0];
        b.v = records[1];
        c.v = records[2];
    }
    static void storeRecords(float* records, PlainFloats a, PlainFloats b, PlainFloats c) {
        records[0] = a.v;
        records[1] = b.v;
        records[2] = c.v;
        records[3] = 0.0f;
    }

    friend PlainFloats operator+(PlainFloats a, PlainFloats b) { return a.v + b.v; }
    friend PlainFloats operator-(PlainFloats a, PlainFloats b) { return a.v - b.v; }
    friend PlainFloats operator*(PlainFloats a, PlainFloats b) { return a.v * b.v; }
    // Division by zero follows IEEE 754.
    friend PlainFloats operator/(PlainFloats a, PlainFloats b) { return a.v / b.v; }
    // False where an operand isn't a number, but for unequal.
    friend PlainMask operator<(PlainFloats a, PlainFloats b) { return {a.v < b.v}; }
    friend PlainMask operator<=(PlainFloats a, PlainFloats b) { return {a.v <= b.v}; }
    friend PlainMask operator==(PlainFloats a, PlainFloats b) { return {a.v == b.v}; }
    friend PlainMask operator!=(PlainFloats a, PlainFloats b) { return {a.v != b.v}; }
    // The second where one isn't a number.
    friend PlainFloats largerOf(PlainFloats a, PlainFloats b) { return a.v > b.v ? a.v : b.v; }
    friend PlainFloats smallerOf(PlainFloats a, PlainFloats b) { return a.v < b.v ? a.v : b.v; }
    friend PlainFloats select(PlainMask mask, PlainFloats yes, PlainFloats no) {
        return mask.bit ? yes : no;
    }
    // The value, and 0 elsewhere.
    friend PlainFloats onlyWhere(PlainMask mask, PlainFloats value) {
        return mask.bit ? value.v : 0.0f;
    }
    friend PlainFloats absoluteOf(PlainFloats a) { return a.v < 0.0f ? -a.v : a.v; }
};

struct PlainWords {
    std::uint32_t v;

    static PlainWords all(std::uint32_t word) { return {word}; }
    static PlainWords load(const std::uint32_t* p) { return {*p}; }
    void store(std::uint32_t* p) const { *p = v; }

    // Byte n of each word, 0 the lowest.
    template <int N>
    [[nodiscard]] PlainFloats byte() const {
        return static_cast<float>((v >> (8 * N)) & 0xFF);
    }
    // Bytes 0 to 2 from numbers from 0 up to below 256, their fractions cut off; byte 3 of `top`.
    static PlainWords packed(PlainFloats a, PlainFloats b, PlainFloats c, PlainWords top) {
        return {static_cast<std::uint32_t>(a.v) | static_cast<std::uint32_t>(b.v) << 8 |
                static_cast<std::uint32_t>(c.v) << 16 | (top.v & 0xFF000000U)};
    }
    friend PlainWords select(PlainMask mask, PlainWords yes, PlainWords no) {
        return mask.bit ? yes : no;
    }
};

}  // namespace brushwork
