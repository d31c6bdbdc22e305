// The vector form of the loop of dual_rows.h. Only for files that are compiled for the lane set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "blending/core/kernel_table.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

// A register of pixels at a time, and the odd end through loads and stores of a part.
template <class L, class Formula>
class DualRowWalk {
  public:
    // What the loops need lies in variables whose address nobody has, and so stays in registers:
    // a byte that is stored could otherwise be a part of it. Odd ends have their own.
    static void run(const Formula& formula, const KernelBlock& block) {
        noteKernelForm(L::level);
        const std::size_t odd = block.first.count % L::pixels;
        const std::size_t whole = block.first.count - odd;
        if (whole != 0) {
            if (!Formula::carries && block.first.sourceStride == 0)
                runWhole<true>(formula, block, whole);
            else
                runWhole<false>(formula, block, whole);
        }
        if (odd != 0) {
            const Lanes lanes(formula);
            KernelRow row = block.first;
            for (std::int32_t rows = block.rows;;) {
                step<true>(lanes, row, whole, odd, sourceOf<true>(row, whole, odd));
                if (--rows <= 0) break;
                moveOn(row, block.steps);
            }
        }
    }

  private:
    using Bytes = typename L::Bytes;
    using Lanes = typename Formula::template Lanes<L>;
    struct Pair {
        typename L::Words first, second;
    };

    // A constant source is read once.
    template <bool constant>
    static void runWhole(const Formula& formula, const KernelBlock& block, std::size_t whole) {
        const Lanes lanes(formula);
        KernelRow row = block.first;
        const Pair source = sourceOf<false>(row, 0, L::pixels);
        for (std::int32_t rows = block.rows;;) {
            for (std::size_t i = 0; i < whole; i += L::pixels)
                step<false>(lanes, row, i, L::pixels,
                            constant ? source : sourceOf<false>(row, i, L::pixels));
            if (--rows <= 0) break;
            moveOn(row, block.steps);
        }
    }

    [[gnu::always_inline]] static inline void moveOn(KernelRow& row, const KernelBlock::Steps& by) {
        row.hi += by.hi;
        if constexpr (Formula::dual) row.lo += by.lo;
        row.source += by.source;
        if constexpr (Formula::carries) row.source2 += by.source2;
        if (row.mask != nullptr) row.mask += by.mask;
    }

    template <bool part>
    static Bytes load(const std::uint8_t* p, std::size_t count) {
        if constexpr (part) return L::loadPart(p, count);
        return L::load(p);
    }
    template <bool part>
    static void store(std::uint8_t* p, Bytes bytes, std::size_t count) {
        if constexpr (part) return L::storePart(p, bytes, count);
        L::store(p, bytes);
    }

    template <bool part>
    static std::uint64_t maskOf(const KernelRow& row, std::size_t i, std::size_t count) {
        if (row.mask == nullptr) return ~std::uint64_t{0};
        const std::uint8_t* p = row.mask + i * row.maskStride;
        if constexpr (part) return fewBytes(p, count);
        std::uint64_t mask = 0;
        std::memcpy(&mask, p, L::pixels);
        return mask;
    }

    // One to seven bytes, without a call: small stamps are made of odd ends.
    static std::uint64_t fewBytes(const std::uint8_t* p, std::size_t count) {
        if (count >= 4) {
            std::uint32_t first = 0, last = 0;
            std::memcpy(&first, p, sizeof first);
            std::memcpy(&last, p + count - sizeof last, sizeof last);
            return first | std::uint64_t{last} << (8 * (count - sizeof last));
        }
        std::uint64_t bytes = p[0];
        if (count > 1) bytes |= std::uint64_t{p[1]} << 8;
        if (count > 2) bytes |= std::uint64_t{p[2]} << 16;
        return bytes;
    }

    template <bool part, bool two>
    static Pair joined(const std::uint8_t* hi, const std::uint8_t* lo, std::size_t count) {
        Pair pair;
        Bytes lows = L::all(0);
        if constexpr (two) lows = load<part>(lo, count);
        L::join(load<part>(hi, count), lows, pair.first, pair.second);
        return pair;
    }

    template <bool part, bool two>
    static void split(const Pair& pair, std::uint8_t* hi, std::uint8_t* lo, std::size_t count) {
        store<part>(hi, L::highsOf(pair.first, pair.second), count);
        if constexpr (two) store<part>(lo, L::lowsOf(pair.first, pair.second), count);
    }

    template <bool part>
    [[gnu::always_inline]] static inline Pair sourceOf(const KernelRow& row, std::size_t i,
                                                       std::size_t count) {
        const std::size_t at = 4 * i * row.sourceStride;
        const std::uint8_t* const low = Formula::carries ? row.source2 + at : nullptr;
        return joined<part, Formula::carries>(row.source + at, low, count);
    }

    template <bool part>
    [[gnu::always_inline]] static inline void step(const Lanes& lanes, const KernelRow& row,
                                                   std::size_t i, std::size_t count, Pair source) {
        const std::uint64_t bytes = maskOf<part>(row, i, count);
        if (Formula::rests && bytes == 0) return;
        const std::size_t at = 4 * i;
        std::uint8_t* const lo = Formula::dual ? row.lo + at : nullptr;
        Pair mask;
        L::spread(bytes, mask.first, mask.second);
        Pair target = joined<part, Formula::dual>(row.hi + at, lo, count);
        lanes.blend(target.first, source.first, mask.first);
        lanes.blend(target.second, source.second, mask.second);
        split<part, Formula::dual>(target, row.hi + at, lo, count);
        if constexpr (Formula::carries) {
            const std::size_t sourceAt = at * row.sourceStride;
            split<part, true>(source, row.source + sourceAt, row.source2 + sourceAt, count);
        }
    }
};

}  // namespace brushwork::npc
