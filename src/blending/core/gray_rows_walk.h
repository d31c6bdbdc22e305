// The loop of gray_rows.h for any lane set. A file that includes it for a wide one has to be
// compiled for that.
#pragma once

#include <cstddef>
#include <cstdint>

#include "blending/core/kernel_table.h"
#include "blending/core/lanes.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

template <class L, class Formula>
class GrayRowWalk {
  public:
    GrayRowWalk(const Formula& formula, const KernelRow& row) : formula_(formula), row_(row) {}

    [[gnu::flatten]] void run() const {
        noteKernelForm(L::level);
        std::uint8_t sources[group], masks[group];
        const std::uint8_t* source = row_.source;
        const std::uint8_t* mask = row_.mask;
        // Constants stand in a group of their own, which is read again and again.
        if (row_.sourceStride == 0) source = filled(sources, *source);
        if (mask == nullptr || row_.maskStride == 0)
            mask = filled(masks, mask != nullptr ? *mask : std::uint8_t{255});
        const std::size_t sourceStep = row_.sourceStride;
        const std::size_t maskStep = mask == masks ? 0 : row_.maskStride;
        std::size_t i = 0;
        for (; i + group <= row_.count; i += group) {
            std::uint8_t* target = row_.hi + i;
            blend(source + i * sourceStep, target, mask + i * maskStep, target);
        }
        const std::size_t left = row_.count - i;
        if (left == 0) return;
        std::uint8_t s[group] = {}, d[group] = {}, m[group] = {};
        for (std::size_t n = 0; n < left; ++n) {
            s[n] = source[(i + n) * sourceStep];
            d[n] = row_.hi[i + n];
            m[n] = mask[(i + n) * maskStep];
        }
        blend(s, d, m, d);
        for (std::size_t n = 0; n < left; ++n) row_.hi[i + n] = d[n];
    }

  private:
    using Words = typename L::Words;
    static constexpr std::size_t group = 4 * L::pixels;  // bytes
    static constexpr int halves = L::pixels == 1 ? 1 : 2;

    static const std::uint8_t* filled(std::uint8_t (&bytes)[group], std::uint8_t value) {
        for (std::uint8_t& byte : bytes) byte = value;
        return bytes;
    }

    void blend(const std::uint8_t* s, const std::uint8_t* d, const std::uint8_t* m,
               std::uint8_t* out) const {
        Words source[halves], target[halves], mask[halves];
        L::toWords(L::load(s), source);
        L::toWords(L::load(d), target);
        L::toWords(L::load(m), mask);
        for (int h = 0; h < halves; ++h)
            target[h] = formula_.blend(Word<L>(source[h]), Word<L>(target[h]), Word<L>(mask[h])).v;
        L::store(out, L::fromWords(target));
    }

    const Formula formula_;
    const KernelRow row_;
};

}  // namespace brushwork::npc
