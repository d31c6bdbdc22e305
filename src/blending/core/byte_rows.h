// Rows of 4-channel pixels under a formula of pixel_math.h. Loops, odd ends, masks, constant
// sources and runs of empty or opaque pixels are here and in byte_rows_walk.h, once for all modes.
//
// A row with a mask takes the formula's masked form. The vector forms are made in
// modes/byte_forms_sse2.cpp and modes/byte_forms_avx2.cpp, a line for each formula.
#pragma once

#include "blending/core/byte_rows_walk.h"
#include "blending/core/kernel_table.h"
#include "blending/core/lanes_plain.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

// The definition.
template <class Formula>
void blendByteRowPlain(const Formula& formula, const KernelRow& row) {
    ByteRowWalk<PlainLanes, Formula>::run(formula, KernelBlock{row, {}, 1});
}

template <class Formula>
void blendByteBlockSse2(const Formula& formula, const KernelBlock& block);
template <class Formula>
void blendByteBlockAvx2(const Formula& formula, const KernelBlock& block);

// The widest form that the processor has.
template <class Formula>
void blendByteBlock(const Formula& formula, const KernelBlock& block) {
    switch (vectorLevel()) {
        case VectorLevel::Avx2: return blendByteBlockAvx2(formula, block);
        case VectorLevel::Sse2: return blendByteBlockSse2(formula, block);
        case VectorLevel::Scalar: return ByteRowWalk<PlainLanes, Formula>::run(formula, block);
    }
}

template <class Formula>
void blendByteRow(const Formula& formula, const KernelRow& row) {
    blendByteBlock(formula, KernelBlock{row, {}, 1});
}

}  // namespace brushwork::npc
