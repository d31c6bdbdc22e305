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

// Rows of the same length, one above the other.
struct KernelBlock {
    // Bytes from one row to the next; 0 for what is constant.
    struct Steps {
        std::ptrdiff_t hi = 0, lo = 0, source = 0, source2 = 0, mask = 0;
    };

    KernelRow first;  // the lowest
    Steps steps;
    std::int32_t rows = 1;
};

// Places move by a count of bytes; those that are null stay.
inline void moveRow(KernelRow& row, const KernelBlock::Steps& by) {
    const auto move = [](auto*& place, std::ptrdiff_t bytes) {
        if (place) place += bytes;
    };
    move(row.hi, by.hi);
    move(row.lo, by.lo);
    move(row.source, by.source);
    move(row.source2, by.source2);
    move(row.mask, by.mask);
}

// Reads opacities and the mode's own parameters from the blender, changes nothing in it.
using Kernel = void (*)(const GenericBlender& blender, const KernelRow& row);
using BlockKernel = void (*)(const GenericBlender& blender, const KernelBlock& block);

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

    // What the vector forms of these three do row by row, in one call for all rows: rows of small
    // stamps are shorter than a call. Null: row by row.
    BlockKernel rgbaBlock = nullptr;
    BlockKernel rgbaMaskedBlock = nullptr;
    BlockKernel dualPlaneMaskedBlock = nullptr;
};

// Where a mode has no kernel: gray and 4-channel ones do nothing, the dual-plane ones call the
// 4-channel ones on `hi` and leave `lo`, the vector ones call the plain ones.
[[nodiscard]] KernelTable defaultKernels();

// The table that a blender uses now.
[[nodiscard]] const KernelTable& kernelsOf(const GenericBlender& blender);

}  // namespace brushwork::npc
