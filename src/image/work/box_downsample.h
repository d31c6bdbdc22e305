// Reducing a picture by whole factors: each pixel becomes the mean of a block, cut off.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"
#include "image/chain/coord_space.h"

namespace brushwork {

// How a picture is made smaller by blocks.
struct BlockReduction {
    std::int32_t block = 0;  // 16, 8, 4, 2; 1: the picture stays as it is; 0: no picture is made
    float factor = 0.0f;     // 1 / block
};
// The reduction for a scale. The scale must lie strictly between 0.00001 and 1; the block is the
// largest whose factor is at least the scale, so above 0.5 there is none to reduce by.
[[nodiscard]] BlockReduction blockReduction(float scale);
// Sizes of the reduced picture: round(size * factor), halves upward.
[[nodiscard]] Extent<std::int32_t> reducedSize(Extent<std::int32_t> size,
                                               const BlockReduction& reduction);

// Whole blocks only: pixels of the source beyond the last one are left out.
struct BlockJob {
    const std::uint8_t* source = nullptr;
    std::ptrdiff_t sourceRowBytes = 0;
    std::uint8_t* target = nullptr;
    std::ptrdiff_t targetRowBytes = 0;
    std::int32_t columns = 0, rows = 0;  // of blocks
};
using BlockKernel = void (*)(const BlockJob& job);
struct BlockKernels {
    BlockKernel four[4];  // 4 channels: 2 by 2, 4 by 4, 8 by 8, 16 by 16
    BlockKernel one4;     // 1 channel: 4 by 4
};
[[nodiscard]] const BlockKernels& blockKernels(VectorLevel level = vectorLevel());
extern const BlockKernels blockKernelsScalar;
extern const BlockKernels blockKernelsSse2;
extern const BlockKernels blockKernelsAvx2;  // null where the narrower form is as good

// Reduces `source`, 4 channels and rows without padding, by blocks of 2, 4, 8 or 16 into a target
// of the given size. What no block covers of the target becomes 0. False for any other block.
// Blocks of 16 say so in the log.
bool boxDownsample(const std::uint8_t* source, Extent<std::int32_t> sourceSize, std::int32_t block,
                   std::uint8_t* target, Extent<std::int32_t> targetSize);

// The same for 1 channel, by blocks of 4; the target holds (width >> 2) by (height >> 2) bytes.
void boxDownsample4One(const std::uint8_t* source, Extent<std::int32_t> sourceSize,
                       std::uint8_t* target);

}  // namespace brushwork
