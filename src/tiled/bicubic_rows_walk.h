// The loops of bicubic rows, for either of the lane types.
#pragma once

#include "tiled/bicubic_rows.h"
#include "tiled/sample_walk.h"

namespace brushwork {

// Of all places of a chunk.
struct BicubicWeights {
    // Along one axis as whole numbers: the first two, and the others, a word each.
    alignas(32) std::int32_t lower[chunkPlaces];
    alignas(32) std::int32_t upper[chunkPlaces];
    alignas(32) float other[4][chunkPlaces];  // along the other, over the unit
    alignas(32) float close[chunkPlaces];     // off a whole number by more: not settled
};

// Sums has `wholeAcross`, whether the whole weights are those of columns, and valueOf(chunk,
// weights, n): the four channels of L::pixels places from number n on.
template <class L, class Sums>
class BicubicWalk {
    using Ints = typename L::Ints;
    using Floats = typename L::Floats;

    // The weight 1 as a whole number; what rounding leaves can add 1 to it.
    static constexpr float unit = 32766.0f;
    // What single precision can add to a sum: 0.0008, and some more.
    static constexpr float noise = 0.0015f;

    // The kernel at -1 - f, -f, 1 - f and 2 - f, times a factor.
    struct Taps {
        Floats w[4];
        Floats fg;

        [[gnu::always_inline]] Taps(Floats f, float factor) {
            const Floats g = L::sub(L::every(1.0f), f);
            fg = L::mul(f, g);
            const Floats outer = L::mul(fg, L::every(-0.75f * factor));
            w[0] = L::mul(outer, g);
            w[1] = inner(f, factor);
            w[2] = inner(g, factor);
            w[3] = L::mul(outer, f);
        }
        [[gnu::always_inline]] static Floats inner(Floats t, float factor) {
            const Floats slope = L::mulAdd(L::every(1.25f * factor), t, L::every(-2.25f * factor));
            return L::mulAdd(slope, L::mul(t, t), L::every(factor));
        }
    };

    [[gnu::always_inline]] static Ints wordPair(Ints low, Ints high) {
        return L::either(L::both(low, L::every(0xFFFF)), L::template up<16>(high));
    }

    // Rounded weights still add up to the unit: so a grey isn't shifted, and as pixels lie within
    // 127.5 of the middle one, a weight that is off by d shifts a column, or a row, by at most
    // 127.5 d. The weights along the other axis come to 1 + 1.5 fg.
    [[gnu::always_inline]] static void weigh(const BicubicChunk& chunk, int n,
                                             BicubicWeights& weights) {
        const Taps other(L::load((Sums::wholeAcross ? chunk.fy : chunk.fx) + n), 1.0f / unit);
        for (int i = 0; i < 4; ++i) L::store(weights.other[i] + n, other.w[i]);
        const Taps taps(L::load((Sums::wholeAcross ? chunk.fx : chunk.fy) + n), unit);
        Ints rest = L::every(static_cast<std::int32_t>(unit));
        Floats off = L::every(0.0f);
        const auto note = [&](int i, Ints whole) {
            off = L::add(off, L::size(L::sub(taps.w[i], L::toFloats(whole))));
            return whole;
        };
        const auto rounded = [&](int i) {
            const Ints whole = L::rounded(taps.w[i]);
            rest = L::sub(rest, whole);
            return note(i, whole);
        };
        const Ints whole0 = rounded(0);
        const Ints whole2 = rounded(2);
        const Ints whole3 = rounded(3);
        const Ints whole1 = note(1, rest);
        L::store(weights.lower + n, wordPair(whole0, whole1));
        L::store(weights.upper + n, wordPair(whole2, whole3));
        const Floats all =
            L::mulAdd(other.fg, L::every(1.5f * -127.5f / unit), L::every(-127.5f / unit));
        L::store(weights.close + n, L::mulAdd(off, all, L::every(0.5f - noise)));
    }

    struct Sampled {
        Ints whole;
        std::uint32_t unsettled;  // a bit a lane
    };

    // Of L::pixels places from number n on.
    [[gnu::always_inline]] static Sampled sumOf(const BicubicChunk& chunk,
                                                const BicubicWeights& weights, int n) {
        const Floats value = Sums::valueOf(chunk, weights, n);
        const Ints whole = L::rounded(value);
        const Floats off = L::size(L::sub(value, L::toFloats(whole)));
        return {whole, L::lanesAbove(off, L::spread(weights.close + n))};
    }

    static void locateAll(const SampleSteps& steps, double* places, int count, std::int32_t* whole,
                          float* rest) {
        const auto half = L::everyPlace(0.5);
        walkPlaces<L>(steps, places, count, [&](int n, auto place) {
            const auto base = L::floorOf(L::sub(place, half));
            L::storeInts(whole + n, base);
            L::storeFloats(rest + n, L::sub(L::sub(place, base), half));
        });
    }

  public:
    static void locate(BicubicChunk& chunk, int count) {
        locateAll(chunk.alongX, chunk.x, count, chunk.ix, chunk.fx);
        locateAll(chunk.alongY, chunk.y, count, chunk.iy, chunk.fy);
    }

    static Unsettled sum(const BicubicChunk& chunk, int count, std::uint8_t* out) {
        noteKernelForm(L::level);
        BicubicWeights weights;
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
        const auto placesWith = [&](int some) {
            return L::bytesWith(lanes, some) | std::uint64_t{L::bytesWith(lanes + 32, some)} << 32;
        };
        return {placesWith(0x0F), placesWith(0xF0)};
    }
};

}  // namespace brushwork
