// Rows of targets of one channel. A formula has `blend(s, d, m)` on Word<L>, with bytes for source,
// target and mask; without a mask m is 255. The vector forms are made in modes/byte_forms_sse2.cpp
// and modes/byte_forms_avx2.cpp.
#pragma once

#include "blending/core/gray_rows_walk.h"
#include "blending/core/kernel_table.h"
#include "blending/core/lanes_plain.h"
#include "foundation/services/vector_level.h"

namespace brushwork::npc {

// The definition.
template <class Formula>
void blendGrayRowPlain(const Formula& formula, const KernelRow& row) {
    GrayRowWalk<PlainLanes, Formula>(formula, row).run();
}

template <class Formula>
void blendGrayRowSse2(const Formula& formula, const KernelRow& row);
template <class Formula>
void blendGrayRowAvx2(const Formula& formula, const KernelRow& row);

// The widest form that the processor has.
template <class Formula>
void blendGrayRow(const Formula& formula, const KernelRow& row) {
    switch (vectorLevel()) {
        case VectorLevel::Avx2: return blendGrayRowAvx2(formula, row);
        case VectorLevel::Sse2: return blendGrayRowSse2(formula, row);
        case VectorLevel::Scalar: return blendGrayRowPlain(formula, row);
    }
}

}  // namespace brushwork::npc
