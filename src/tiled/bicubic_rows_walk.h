// The loops of bicubic rows, for either of the lane types.
#pragma once

#include "tiled/bicubic_rows.h"
#include "tiled/sample_walk.h"

namespace brushwork {

// Of all places of a chunk.
struct BicubicWeights {
    // Along one axis as whole numbers: the first and the last, and the two between, a word each.
    alignas(32) std::int32_t outer[chunkPlaces];
    alignas(32) std::int32_t inner[chunkPlaces];
    alignas(32) float other[4][chunkPlaces];  // along the other, over the unit
    alignas(32) float start[chunkPlaces];     // what sums begin with
    alignas(32) float close[chunkPlaces];     // off a whole number by more: not settled
};

// Sums has `wholeAcross`, whether the whole weights are those of columns; `finer`, how many times
// finer the outer ones are than the inner; `starts`, how much of a value its start makes; and
// valueOf(chunk, weights, n): the four channels of L::pixels places from number n on.
template <class L, class Sums>
class BicubicWalk {
    using Ints = typename L::Ints;
    using Floats = typename L::Floats;

    // The weight 1 as a whole number. Outer weights are less than a ninth.
    static constexpr float unit = 32767.0f;
    static constexpr float outerUnit = unit * Sums::finer;
    static_assert(Sums::finer <= 9);
    // What single precision can add to a sum: less than 0.0009.
    static constexpr float noise = 0.001f;

    // The kernel at -1 - f, -f, 1 - f and 2 - f, times a factor each.
    struct Taps {
        Floats w[4];
        Floats fg;

        [[gnu::always_inline]] Taps(Floats f, float outerFactor, float factor) {
            const Floats ff = L::mul(f, f);
            fg = L::sub(f, ff);
            const Floats outer = L::mul(fg, L::every(-0.75f * outerFactor));
            w[3] = L::mul(outer, f);
            w[0] = L::sub(outer, w[3]);
            const Floats slope = L::mulAdd(L::every(1.25f * factor), f, L::every(-2.25f * factor));
            w[1] = L::mulAdd(slope, ff, L::every(factor));
            // All four come to the factor.
            w[2] = L::sub(L::mulAdd(fg, L::every(0.75f * factor), L::every(factor)), w[1]);
        }
    };

    // Two rounded weights, what rounding took from both, and the sizes of that.
    struct Pair {
        Ints words;
        Floats left, off;

        [[gnu::always_inline]] Pair(Floats a, Floats b) {
            const Ints wholeA = L::rounded(a);
            const Ints wholeB = L::rounded(b);
            const Floats leftA = L::sub(a, L::toFloats(wholeA));
            const Floats leftB = L::sub(b, L::toFloats(wholeB));
            words = L::wordPair(wholeA, wholeB);
            left = L::add(leftA, leftB);
            off = L::add(L::size(leftA), L::size(leftB));
        }
    };

    // Pixels lie within 128 of 128. So that is what a column, or a row, is given of the weight that
    // rounding took, and then one that is off by d shifts it by at most 128 d. The weights along
    // the other axis come to 1 + 1.5 fg.
    [[gnu::always_inline]] static void weigh(const BicubicChunk& chunk, int n,
                                             BicubicWeights& weights) {
        const Taps other(L::load((Sums::wholeAcross ? chunk.fy : chunk.fx) + n), 1.0f / unit,
                         1.0f / unit);
        for (int i = 0; i < 4; ++i) L::store(weights.other[i] + n, other.w[i]);
        const Taps taps(L::load((Sums::wholeAcross ? chunk.fx : chunk.fy) + n), outerUnit, unit);
        const Pair outer(taps.w[0], taps.w[3]);
        const Pair inner(taps.w[1], taps.w[2]);
        L::store(weights.outer + n, outer.words);
        L::store(weights.inner + n, inner.words);
        const auto both = [](Floats ofOuter, Floats ofInner) {
            return L::mulAdd(ofOuter, L::every(1.0f / Sums::finer), ofInner);
        };
        L::store(weights.start + n,
                 L::mul(both(outer.left, inner.left), L::every(128.0f / unit / Sums::starts)));
        const Floats all =
            L::mulAdd(other.fg, L::every(1.5f * -128.0f / unit), L::every(-128.0f / unit));
        L::store(weights.close + n,
                 L::mulAdd(both(outer.off, inner.off), all, L::every(0.5f - noise)));
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

    // Just between two pixels a place may count to the lower one, at the distance 1 from it: the
    // same pixel then has the weight 1. So a sum can do the rounding, down by the half that a place
    // is moved by and another one.
    static void locateAll(const SampleSteps& steps, double* places, int count, std::int32_t* whole,
                          float* rest) {
        constexpr double rounding = 0x1.8p52;
        const auto down = L::everyPlace(rounding - 1);
        const auto back = L::everyPlace(rounding);
        const auto half = L::everyPlace(0.5);
        walkPlaces<L>(steps, places, count, [&](int n, auto place) {
            const auto sum = L::add(place, down);
            L::storeLowInts(whole + n, sum);
            L::storeFloats(rest + n, L::sub(L::sub(place, L::sub(sum, back)), half));
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
