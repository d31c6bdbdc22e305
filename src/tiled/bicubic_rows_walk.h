// The loops of bicubic rows, for either of the lane types.
#pragma once

#include "tiled/bicubic_rows.h"

namespace brushwork {

template <class L>
class BicubicWalk {
    using Ints = typename L::Ints;
    using Floats = typename L::Floats;

    // The weight 1 as a whole number; what rounding leaves can add 1 to it.
    static constexpr float unit = 32766.0f;
    // What single precision can add to a sum: 0.0008, and some more.
    static constexpr float noise = 0.0015f;

    // Of all places of a chunk.
    struct Weights {
        alignas(32) float x[4][chunkPlaces];
        alignas(32) std::int32_t lower[chunkPlaces];  // of the two lower rows, a word each
        alignas(32) std::int32_t upper[chunkPlaces];
        alignas(32) float close[chunkPlaces];  // off a whole number by more: not settled
    };

    // The kernel at -1 - f, -f, 1 - f and 2 - f.
    struct Taps {
        Floats w[4];
        Floats fg;

        [[gnu::always_inline]] explicit Taps(Floats f) {
            const Floats g = L::sub(L::every(1.0f), f);
            fg = L::mul(f, g);
            const Floats outer = L::mul(fg, L::every(-0.75f));
            w[0] = L::mul(outer, g);
            w[1] = inner(f);
            w[2] = inner(g);
            w[3] = L::mul(outer, f);
        }
        [[gnu::always_inline]] static Floats inner(Floats t) {
            const Floats slope = L::sub(L::mul(L::every(1.25f), t), L::every(2.25f));
            return L::add(L::mul(slope, L::mul(t, t)), L::every(1.0f));
        }
    };

    [[gnu::always_inline]] static Ints wordPair(Ints low, Ints high) {
        return L::either(L::both(low, L::every(0xFFFF)), L::template up<16>(high));
    }

    // Rounded weights still add up to the unit: so a grey isn't shifted, and as pixels lie within
    // 127.5 of the middle one, a weight that is off by d shifts a column by at most 127.5 d.
    // Columns weigh 1 + 1.5 fg.
    [[gnu::always_inline]] static void weigh(const BicubicChunk& chunk, int n, Weights& weights) {
        const Taps x(L::load(chunk.fx + n));
        for (int i = 0; i < 4; ++i)
            L::store(weights.x[i] + n, L::mul(x.w[i], L::every(1.0f / unit)));
        const Taps y(L::load(chunk.fy + n));
        Ints rest = L::every(static_cast<std::int32_t>(unit));
        Floats off = L::every(0.0f);
        const auto rounded = [&](int i) {
            const Ints whole = L::rounded(L::mul(y.w[i], L::every(unit)));
            rest = L::sub(rest, whole);
            return whole;
        };
        const auto note = [&](int i, Ints whole) {
            const Floats scaled = L::mul(y.w[i], L::every(unit));
            off = L::add(off, L::size(L::sub(scaled, L::toFloats(whole))));
            return whole;
        };
        const Ints row0 = note(0, rounded(0));
        const Ints row2 = note(2, rounded(2));
        const Ints row3 = note(3, rounded(3));
        const Ints row1 = note(1, rest);
        L::store(weights.lower + n, wordPair(row0, row1));
        L::store(weights.upper + n, wordPair(row2, row3));
        const Floats columns = L::add(L::every(1.0f), L::mul(x.fg, L::every(1.5f)));
        const Floats reach = L::mul(L::mul(off, L::every(127.5f / unit)), columns);
        L::store(weights.close + n, L::sub(L::every(0.5f - noise), reach));
    }

    // The sums of a column's four channels; `low` and `high` are rows 0 and 1, and 2 and 3.
    [[gnu::always_inline]] static Floats column(Ints low, Ints high, Ints lower, Ints upper) {
        return L::toFloats(L::add(L::madd(low, lower), L::madd(high, upper)));
    }

    struct Sampled {
        Ints whole;
        std::uint32_t unsettled;  // a bit a lane
    };

    // Of L::pixels places from number n on.
    [[gnu::always_inline]] static Sampled sumOf(const BicubicChunk& chunk, const Weights& weights,
                                                int n) {
        const Ints zero = L::every(0);
        const Ints lower = L::spread(weights.lower + n);
        const Ints upper = L::spread(weights.upper + n);
        const std::uint8_t* const* const first = chunk.first + n;
        const Ints row0 = L::rows16(first, 0);
        const Ints row1 = L::rows16(first, blockStride);
        const Ints row2 = L::rows16(first, 2 * blockStride);
        const Ints row3 = L::rows16(first, 3 * blockStride);
        const Ints lowLeft = L::low8(row0, row1);
        const Ints lowRight = L::high8(row0, row1);
        const Ints highLeft = L::low8(row2, row3);
        const Ints highRight = L::high8(row2, row3);
        const Floats left =
            L::add(L::mul(column(L::low8(lowLeft, zero), L::low8(highLeft, zero), lower, upper),
                          L::spread(weights.x[0] + n)),
                   L::mul(column(L::high8(lowLeft, zero), L::high8(highLeft, zero), lower, upper),
                          L::spread(weights.x[1] + n)));
        const Floats right =
            L::add(L::mul(column(L::low8(lowRight, zero), L::low8(highRight, zero), lower, upper),
                          L::spread(weights.x[2] + n)),
                   L::mul(column(L::high8(lowRight, zero), L::high8(highRight, zero), lower, upper),
                          L::spread(weights.x[3] + n)));
        const Floats value = L::add(left, right);
        const Ints whole = L::rounded(value);
        const Floats off = L::size(L::sub(value, L::toFloats(whole)));
        return {whole, L::lanesAbove(off, L::spread(weights.close + n))};
    }

    static void locateAll(const double* places, int count, std::int32_t* whole, float* rest) {
        const auto half = L::everyPlace(0.5);
        for (int n = 0; n < count; n += L::doubles) {
            const auto place = L::loadPlaces(places + n);
            const auto base = L::floorOf(L::sub(place, half));
            L::storeInts(whole + n, base);
            L::storeFloats(rest + n, L::sub(L::sub(place, base), half));
        }
    }

  public:
    static void locate(BicubicChunk& chunk, int count) {
        locateAll(chunk.x, count, chunk.ix, chunk.fx);
        locateAll(chunk.y, count, chunk.iy, chunk.fy);
    }

    static Unsettled sum(const BicubicChunk& chunk, int count, std::uint8_t* out) {
        noteKernelForm(L::level);
        Weights weights;
        for (int n = 0; n < count; n += L::count) weigh(chunk, n, weights);
        // Four bits a place.
        alignas(32) std::uint8_t lanes[chunkPlaces / 2] = {};
        std::uint8_t* bits = lanes;
        for (int n = 0; n < count; n += 2 * L::pixels, out += 8 * L::pixels) {
            const Sampled a = sumOf(chunk, weights, n);
            const Sampled b = sumOf(chunk, weights, n + L::pixels);
            L::storePixels(out, a.whole, b.whole);
            bits = L::storeBits(bits, a.unsettled, b.unsettled);
        }
        return {L::bytesWith(lanes, 0x0F), L::bytesWith(lanes, 0xF0)};
    }
};

}  // namespace brushwork
