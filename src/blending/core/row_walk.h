// The walk over the rows of a rectangle, each a call of one kernel.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "blending/core/kernel_table.h"

namespace brushwork::npc {

struct RowWalk {
    // Bytes from one row to the next; 0 for what is constant.
    struct Steps {
        std::ptrdiff_t hi = 0, lo = 0, source = 0, source2 = 0, mask = 0;
    };

    Kernel kernel = nullptr;
    KernelRow first;  // the lowest row; its count is the width
    Steps steps;
    std::int32_t rows = 0;
    std::size_t pixelBytes = 4;  // of all but the mask
    bool lockAlpha = false;      // for pixels of 4 bytes
};

// Rows that follow each other in memory without a gap in any input are one long row. A row goes
// whole to the kernel, whatever its alignment: a kernel deals with its odd ends itself, and where
// it cuts them can't be seen in the bytes.
void walkRows(const GenericBlender& blender, const RowWalk& walk);

}  // namespace brushwork::npc
