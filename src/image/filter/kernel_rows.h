// One row of a square kernel in its vector forms. Every lane of a row, a byte of some pixel, is
// filtered alike, so these loops don't care how many bytes make a pixel.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

template <class Weight>
struct KernelRow {
    // The byte that the first weight meets for the first lane. For lane n, weight [j * size + i]
    // meets source[n + j * stride + i * channels].
    const std::uint8_t* source = nullptr;
    std::uint8_t* target = nullptr;
    std::size_t lanes = 0;
    std::size_t stride = 0;
    std::size_t channels = 0;
    const Weight* weights = nullptr;
    std::size_t size = 0;  // side of the kernel
};

// The loops take rows of at least this many lanes; they write no others.
inline constexpr std::size_t kernelRowLanes = 32;

// In float, tap by tap in the order of the weights.
void kernelRowFloatSse2(const KernelRow<float>& row);
void kernelRowFloatAvx2(const KernelRow<float>& row);
// In 16-bit lanes, added with saturation in the order of the weights.
void kernelRowFixedSse2(const KernelRow<std::int16_t>& row);
void kernelRowFixedAvx2(const KernelRow<std::int16_t>& row);

}  // namespace brushwork
