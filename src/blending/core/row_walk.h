// The walk over the rows of a rectangle, each a call of one kernel.
#pragma once

#include <cstddef>

#include "blending/core/kernel_table.h"

namespace brushwork::npc {

struct RowWalk {
    Kernel kernel = nullptr;
    BlockKernel blockKernel = nullptr;  // does the same to all rows; may be null
    KernelBlock block;
    std::size_t pixelBytes = 4;  // of all but the mask
    bool lockAlpha = false;      // for pixels of 4 bytes
};

// Rows that follow each other in memory without a gap in any input are one long row. A row goes
// whole to the kernel, whatever its alignment: a kernel deals with its odd ends itself, and where
// it cuts them can't be seen in the bytes.
void walkRows(const GenericBlender& blender, const RowWalk& walk);

}  // namespace brushwork::npc
