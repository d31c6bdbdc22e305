#include "blending/core/kernel_table.h"

namespace brushwork::npc {
namespace {

void nothing(const GenericBlender&, const KernelRow&) {}

template <Kernel KernelTable::*kernel>
void call(const GenericBlender& blender, const KernelRow& row) {
    (kernelsOf(blender).*kernel)(blender, row);
}

template <Kernel KernelTable::*kernel>
void callOnHighBytes(const GenericBlender& blender, const KernelRow& row) {
    KernelRow high = row;
    high.lo = nullptr;
    high.source2 = nullptr;
    call<kernel>(blender, high);
}

// A mode without kernels for two planes still gets its 4-channel vector form.
template <Kernel KernelTable::*plain, Kernel KernelTable::*fourChannel,
          Kernel KernelTable::*fourChannelVector>
void callTwoPlanes(const GenericBlender& blender, const KernelRow& row) {
    if (kernelsOf(blender).*plain == Kernel{callOnHighBytes<fourChannel>})
        callOnHighBytes<fourChannelVector>(blender, row);
    else
        call<plain>(blender, row);
}

}  // namespace

KernelTable defaultKernels() {
    using Table = KernelTable;
    KernelTable table;
    table.rgba = table.rgbaMasked = nothing;
    table.dualPlane = callOnHighBytes<&Table::rgba>;
    table.dualPlaneMasked = callOnHighBytes<&Table::rgbaMasked>;
    table.rgbaVector = call<&Table::rgba>;
    table.rgbaMaskedVector = call<&Table::rgbaMasked>;
    table.dualPlaneVector = callTwoPlanes<&Table::dualPlane, &Table::rgba, &Table::rgbaVector>;
    table.dualPlaneMaskedVector =
        callTwoPlanes<&Table::dualPlaneMasked, &Table::rgbaMasked, &Table::rgbaMaskedVector>;
    table.gray = table.grayMasked = nothing;
    table.grayVector = call<&Table::gray>;
    table.grayMaskedVector = call<&Table::grayMasked>;
    return table;
}

}  // namespace brushwork::npc
