#include "blending/modes/formula_blender.h"

#include <cstring>

namespace brushwork::npc {

void copyKernel(const GenericBlender&, const KernelRow& row) {
    if (row.sourceStride != 0) {
        std::memmove(row.hi, row.source, 4 * row.count);
        return;
    }
    std::uint32_t pixel;
    std::memcpy(&pixel, row.source, sizeof pixel);
    for (std::size_t i = 0; i < row.count; ++i) std::memcpy(row.hi + 4 * i, &pixel, sizeof pixel);
}

void copyGrayKernel(const GenericBlender&, const KernelRow& row) {
    if (row.sourceStride == 0)
        std::memset(row.hi, *row.source, row.count);
    else
        std::memmove(row.hi, row.source, row.count);
}

}  // namespace brushwork::npc
