// One loop for the modes that work on 16-bit channels: paint and the wet brushes.
//
// Such a mode is a formula, a struct with
//
//     dual      the target has two planes; else its pixels count as high bytes over 0
//     carries   the source is paint that the brush carries along: two planes, written as well
//     rests     where the mask is 0 nothing changes, so that such pixels may be passed over
//     plain(p)  the definition, for one pixel
//     fitsLanes()      whether the parameters stay in 16 bits, as the lane form needs
//     Lanes<L>  the same for the pixels of a register (dual_lanes.h): constructed from the formula
//               once a row, then blend(target, source, mask) on words. Mask bytes, and source bytes
//               of a formula that doesn't carry, stand in the upper half of each word.
//
// The kernels of a mode gather its parameters in a formula and call blendDualRow for a row or
// blendDualBlock for many. The lane forms
// are made in modes/dual_forms_sse2.cpp and modes/dual_forms_avx2.cpp, from the list in
// modes/dual_forms.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "blending/core/kernel_table.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

// Red, green, blue, alpha.
struct DualPixel {
    std::uint32_t target[4];  // 0 to 65535 on entry; 16 bits are written back
    std::uint32_t source[4];  // 0 to 65535 for carried paint, else 0 to 255
    std::uint32_t mask;       // 0 to 255
};

// Whether there is paint that is carried along: two planes of images. A constant colour is none.
[[nodiscard]] inline bool hasCarriedPaint(const KernelRow& row) {
    return row.sourceStride != 0 && row.source != nullptr && row.source2 != nullptr;
}

// All of a pixel is read first; then its target is written, then the carried paint, so that where
// they share a plane the paint stays. The vector forms keep this order.
template <class Formula>
void blendDualRowPlain(const Formula& formula, const KernelRow& row) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t i = 0; i < row.count; ++i) {
        const std::size_t s = i * row.sourceStride;
        std::uint8_t* const hi = row.hi + 4 * i;
        std::uint8_t* const lo = Formula::dual ? row.lo + 4 * i : nullptr;
        std::uint8_t* const source = row.source + 4 * s;
        std::uint8_t* const source2 = Formula::carries ? row.source2 + 4 * s : nullptr;
        DualPixel pixel{};
        pixel.mask = row.mask != nullptr ? row.mask[i * row.maskStride] : 255U;
        for (std::size_t c = 0; c < 4; ++c) {
            pixel.target[c] = hi[c] * 256U + (Formula::dual ? lo[c] : 0U);
            pixel.source[c] = Formula::carries ? source[c] * 256U + source2[c] : source[c];
        }
        formula.plain(pixel);
        for (std::size_t c = 0; c < 4; ++c) {
            hi[c] = static_cast<std::uint8_t>(pixel.target[c] >> 8);
            if constexpr (Formula::dual) lo[c] = static_cast<std::uint8_t>(pixel.target[c]);
        }
        if constexpr (Formula::carries) {
            for (std::size_t c = 0; c < 4; ++c) {
                source[c] = static_cast<std::uint8_t>(pixel.source[c] >> 8);
                source2[c] = static_cast<std::uint8_t>(pixel.source[c]);
            }
        }
    }
}

template <class Formula>
void blendDualBlockPlain(const Formula& formula, const KernelBlock& block) {
    KernelRow row = block.first;
    for (std::int32_t rows = block.rows; rows > 0; --rows) {
        blendDualRowPlain(formula, row);
        if (rows > 1) moveRow(row, block.steps);
    }
}

template <class Formula>
void blendDualBlockSse2(const Formula& formula, const KernelBlock& block);
template <class Formula>
void blendDualBlockAvx2(const Formula& formula, const KernelBlock& block);

// The widest form that the processor and the parameters allow.
template <class Formula>
void blendDualBlock(const Formula& formula, const KernelBlock& block) {
    switch (formula.fitsLanes() ? vectorLevel() : VectorLevel::Scalar) {
        case VectorLevel::Avx2: return blendDualBlockAvx2(formula, block);
        case VectorLevel::Sse2: return blendDualBlockSse2(formula, block);
        case VectorLevel::Scalar: return blendDualBlockPlain(formula, block);
    }
}

template <class Formula>
void blendDualRow(const Formula& formula, const KernelRow& row) {
    blendDualBlock(formula, KernelBlock{row, {}, 1});
}

}  // namespace brushwork::npc
