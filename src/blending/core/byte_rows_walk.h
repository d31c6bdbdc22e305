// The loop of byte_rows.h for any lane set. A file that includes it for a wide one has to be
// compiled for that.
#pragma once

#include <cstddef>
#include <cstdint>

#include "blending/core/kernel_table.h"
#include "blending/core/pixel_math.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

// A group of pixels at a time: all of its inputs are read before any of it is written. What the
// loops need lies in variables of their own: a stored byte could be part of anything else.
template <class L, class Formula>
class ByteRowWalk {
  public:
    static void run(const Formula& formula, const KernelBlock& block) {
        static_assert(hasPlain || hasMasked, "the formula's forms don't take what rows give them");
        noteKernelForm(L::level);
        KernelRow row = block.first;
        for (std::int32_t rows = block.rows;;) {
            runRow(formula, row);
            if (--rows <= 0) break;
            row.hi += block.steps.hi;
            row.source += block.steps.source;
            if (row.mask != nullptr) row.mask += block.steps.mask;
        }
    }

  private:
    // Some are told for one of the two alone.
    static constexpr bool hasPlain = !Formula::uniform || requires(Word<L> w) {
        Formula::plain(w, w);
    };
    static constexpr bool hasMasked = !Formula::uniform || requires(Word<L> w) {
        Formula::masked(w, w, w);
    };

    // Sources that lie in memory come sooner than the processor would ask for them: it looks no
    // further ahead than the end of a small page of memory, of which a row of pages has many.
    static void fetchAhead(const std::uint8_t* source) {
        constexpr std::uintptr_t bytes = 2048;
        if constexpr (L::pixels > 1)
            __builtin_prefetch(
                reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(source) + bytes));
    }

    using Ints = typename L::Ints;
    using Words = typename L::Words;
    // A register of pixels fills this many of words.
    static constexpr int halves = L::pixels == 1 ? 1 : 2;
    static constexpr bool hasPacked = L::pixels > 1 && requires(Ints pixels) {
        Formula::template packed<L>(pixels, pixels);
    };

    [[gnu::always_inline]] static inline void runRow(const Formula& formula, const KernelRow& row) {
        if constexpr (hasMasked)
            if (row.mask != nullptr) return runMasked(formula, row);
        if constexpr (hasPlain) runPlain(row);
    }

    [[gnu::flatten]] static void runPlain(const KernelRow& row) {
        const std::size_t sourceStep = 4 * row.sourceStride;
        const std::uint8_t* source = row.source;
        std::uint8_t* target = row.hi;
        std::size_t left = row.count;
        if constexpr (hasPacked) {
            for (; left >= 2 * L::pixels; left -= 2 * L::pixels) {
                fetchAhead(source);
                const Ints s[] = {L::load(source), L::load(source + sourceStep * L::pixels)};
                if (!L::isAllZero(L::either(s[0], s[1])))
                    for (std::size_t i = 0; i < 2; ++i) layOver(target + 4 * L::pixels * i, s[i]);
                source += 2 * sourceStep * L::pixels;
                target += 8 * L::pixels;
            }
        }
        for (; left >= L::pixels; left -= L::pixels) {
            fetchAhead(source);
            const Ints s = L::load(source);
            if (Formula::emptySource == Empty::Blend || !L::isAllZero(s)) {
                if (Formula::copiesOpaque && L::isOpaque(s))
                    L::store(target, s);
                else
                    L::store(target, plainGroup(s, L::load(target)));
            }
            source += sourceStep * L::pixels;
            target += 4 * L::pixels;
        }
        if constexpr (L::pixels > 1) {
            if (left == 0) return;
            const Ints s = L::loadPart(source, sourceStep != 0 ? left : L::pixels);
            L::storePart(target, plainGroup(s, L::loadPart(target, left)), left);
        }
    }

    [[gnu::flatten]] static void runMasked(Formula formula, const KernelRow& row) {
        const std::size_t sourceStep = 4 * row.sourceStride;
        const std::size_t maskStep = row.maskStride;
        const std::uint8_t* source = row.source;
        const std::uint8_t* mask = row.mask;
        std::uint8_t* target = row.hi;
        std::size_t left = row.count;
        for (; left >= L::pixels; left -= L::pixels) {
            fetchAhead(source);
            if (Formula::emptyMask == Empty::Blend || !L::isMaskEmpty(mask)) {
                const Ints s = L::load(source);
                if (Formula::emptySourceMasked == Empty::Blend || !L::isAllZero(s))
                    L::store(target, maskedGroup(formula, s, L::load(target), L::loadMask(mask)));
            }
            source += sourceStep * L::pixels;
            mask += maskStep * L::pixels;
            target += 4 * L::pixels;
        }
        if constexpr (L::pixels > 1) {
            if (left == 0) return;
            std::uint8_t bytes[L::pixels] = {};
            for (std::size_t i = 0; i < left; ++i) bytes[i] = mask[i * maskStep];
            const Ints s = L::loadPart(source, sourceStep != 0 ? left : L::pixels);
            const Ints d = L::loadPart(target, left);
            L::storePart(target, maskedGroup(formula, s, d, L::loadMask(bytes)), left);
        }
    }

    static void layOver(std::uint8_t* target, Ints s) {
        L::store(target, Formula::template packed<L>(s, L::load(target)));
    }

    static Ints plainGroup(Ints s, Ints d) {
        Ints out;
        if constexpr (Formula::uniform) {
            Words source[halves], target[halves];
            L::toWords(s, source);
            L::toWords(d, target);
            for (int i = 0; i < halves; ++i)
                target[i] = Formula::plain(Word<L>(source[i]), Word<L>(target[i])).v;
            out = L::fromWords(target);
        } else {
            out = putTogether<Formula::mayBeNegative>(
                Formula::plain(takenApart<L>(s), takenApart<L>(d)));
        }
        const Ints none = L::all(0);
        if (Formula::emptyTargetTakesSource) out = L::choose(L::isSame(d, none), s, out);
        if (Formula::emptySource == Empty::Rest) out = L::choose(L::isSame(s, none), d, out);
        return out;
    }

    static Ints maskedGroup(const Formula& formula, Ints s, Ints d, Ints m) {
        const Ints none = L::all(0);
        // Where the rules and not the formula say that nothing changes.
        Ints rests = none;
        if (Formula::emptySourceMasked != Empty::Blend) rests = L::isSame(s, none);
        if (Formula::emptyMask != Empty::Blend) rests = L::either(rests, L::isSame(m, none));
        Ints below = d;
        if constexpr (Formula::bareTargetIsEmpty) {
            const Ints bare = L::isSame(L::channel(d, 3), none);
            below = L::without(d, L::without(bare, rests));
        }
        Ints out;
        if constexpr (Formula::uniform) {
            Words source[halves], target[halves], share[halves];
            L::toWords(s, source);
            L::toWords(below, target);
            L::spread(formula.factor(Word<L>(L::maskWords(m))).v, share);
            for (int i = 0; i < halves; ++i)
                target[i] =
                    Formula::masked(Word<L>(source[i]), Word<L>(target[i]), Word<L>(share[i])).v;
            out = L::fromWords(target);
        } else {
            out = putTogether<Formula::mayBeNegative>(Formula::masked(
                takenApart<L>(s), takenApart<L>(below), formula.factor(Wide<L>(m))));
        }
        constexpr bool ruled =
            Formula::emptySourceMasked == Empty::Rest || Formula::emptyMask == Empty::Rest;
        return ruled ? L::choose(rests, d, out) : out;
    }
};

}  // namespace brushwork::npc
