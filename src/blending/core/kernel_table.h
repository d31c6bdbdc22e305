// The seam between the walk over rows and the modes: a kernel blends a run of pixels of one row.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork::npc {

class GenericBlender;

// One call. Pixels are red, green, blue, alpha, premultiplied, or one byte each for the gray
// kernels; a mask has a byte a pixel. A stride of 0 means that one value stands for every pixel:
// behind such a pointer lie 8 equal pixels, or 8 equal mask bytes, so that a vector load finds
// what it expects. Nothing is aligned. In place (source equal to a target) is allowed; inputs that
// overlap in another way are not.
struct KernelRow {
    std::uint8_t* hi = nullptr;          // target, or its high bytes
    std::uint8_t* lo = nullptr;          // low bytes of the target; only for the dual-plane kernels
    std::uint8_t* source = nullptr;      // written only by modes that carry paint along
    std::uint8_t* source2 = nullptr;     // its low bytes, for those modes; else null
    const std::uint8_t* mask = nullptr;  // null for the kernels without a mask
    std::uint32_t sourceStride = 0;      // pixels: 0 or 1; of source and source2
    std::uint32_t maskStride = 0;        // bytes: 0 or 1
    std::size_t count = 0;               // pixels; of none nothing is written
};

// Reads opacities and the mode's own parameters from the blender, changes nothing in it.
using Kernel = void (*)(const GenericBlender& blender, const KernelRow& row);

// The kernels of a mode, in their order. The vector forms give the same bytes as the plain ones for
// every count and alignment; they take a whole row, its odd end included.
struct KernelTable {
    Kernel rgba = nullptr;
    Kernel rgbaMasked = nullptr;
    Kernel dualPlane = nullptr;
    Kernel dualPlaneMasked = nullptr;
    Kernel rgbaVector = nullptr;
    Kernel rgbaMaskedVector = nullptr;
    Kernel dualPlaneVector = nullptr;
    Kernel dualPlaneMaskedVector = nullptr;
    Kernel gray = nullptr;
    Kernel grayMasked = nullptr;
    Kernel grayVector = nullptr;
    Kernel grayMaskedVector = nullptr;
};

// Where a mode has no kernel: gray and 4-channel ones do nothing, the dual-plane ones call the
// 4-channel ones on `hi` and leave `lo`, the vector ones call the plain ones.
[[nodiscard]] KernelTable defaultKernels();

// The table that a blender uses now.
[[nodiscard]] const KernelTable& kernelsOf(const GenericBlender& blender);

}  // namespace brushwork::npc
