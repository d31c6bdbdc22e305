// The loops of bilinear rows, for either of the lane types.
#pragma once

#include "tiled/bilinear_rows.h"
#include "tiled/sample_walk.h"

namespace brushwork {

template <class L>
class BilinearWalk {
    using Ints = typename L::Ints;

    static void locateAll(const SampleSteps& steps, double* places, int count, std::int32_t* whole,
                          std::int32_t* shares) {
        walkPlaces<L>(steps, places, count, [&](int n, auto place) {
            const auto base = L::floorOf(L::add(place, L::everyPlace(0.5)));
            L::storeInts(whole + n, base);
            L::storeInts(shares + n, L::mul(L::sub(place, base), L::everyPlace(255)));
        });
        for (int n = 0; n < count; n += L::count) {
            const Ints f = L::both(L::load(shares + n), L::every(255));
            L::store(shares + n, L::add(L::sub(L::template up<16>(f), f), L::every(256)));
        }
    }

    // The row's two pixels, mixed: up to 65280.
    [[gnu::always_inline]] static Ints across(Ints row, Ints weights) {
        const Ints pairs = L::low8(row, L::template downLong<32>(row));
        return L::madd(L::low8(pairs, L::every(0)), weights);
    }

    // Of L::pixels places. Less 32768, so that the mixed rows fit into words with a sign.
    [[gnu::always_inline]] static Ints mixed(const BilinearChunk& chunk, int n) {
        const Ints weightsX = L::spread(chunk.sharesX + n);
        const Ints low = across(L::rows8(chunk.first + n, 0), weightsX);
        const Ints high = across(L::rows8(chunk.first + n, blockStride), weightsX);
        const Ints words = L::differing(L::either(low, L::template up<16>(high)),
                                        L::every(static_cast<std::int32_t>(0x80008000u)));
        const Ints sum = L::madd(words, L::spread(chunk.sharesY + n));
        return L::template down<16>(L::add(sum, L::every(1 << 23)));
    }

  public:
    static void locate(BilinearChunk& chunk, int count) {
        locateAll(chunk.alongX, chunk.x, count, chunk.ix, chunk.sharesX);
        locateAll(chunk.alongY, chunk.y, count, chunk.iy, chunk.sharesY);
    }

    static void mix(const BilinearChunk& chunk, int count, std::uint8_t* out) {
        noteKernelForm(L::level);
        for (int n = 0; n < count; n += 2 * L::pixels, out += 8 * L::pixels) {
            __builtin_prefetch(chunk.first[n] + chunk.ahead[n / (2 * L::pixels) % 4]);
            const Ints a = mixed(chunk, n);
            const Ints b = mixed(chunk, n + L::pixels);
            L::storePixels(out, a, b);
        }
    }
};

}  // namespace brushwork
