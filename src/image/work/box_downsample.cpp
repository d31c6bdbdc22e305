#include "image/work/box_downsample.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "foundation/services/log.h"

namespace brushwork {
namespace {

template <int Block, int Channels>
void meanOfBlocks(const BlockJob& job) {
    noteKernelForm(VectorLevel::Scalar);
    constexpr int shift = 2 * std::countr_zero(static_cast<unsigned>(Block));
    for (std::int32_t row = 0; row < job.rows; ++row) {
        const std::uint8_t* from = job.source + std::ptrdiff_t{row} * Block * job.sourceRowBytes;
        std::uint8_t* to = job.target + row * job.targetRowBytes;
        for (std::int32_t column = 0; column < job.columns; ++column) {
            std::uint32_t sums[Channels] = {};
            for (int y = 0; y < Block; ++y)
                for (int n = 0; n < Block * Channels; ++n)
                    sums[n % Channels] += from[y * job.sourceRowBytes + n];
            for (const std::uint32_t sum : sums) *to++ = static_cast<std::uint8_t>(sum >> shift);
            from += Block * Channels;
        }
    }
}

BlockKernels filledUp(BlockKernels kernels, const BlockKernels& narrower) {
    for (int k = 0; k < 4; ++k)
        if (!kernels.four[k]) kernels.four[k] = narrower.four[k];
    if (!kernels.one4) kernels.one4 = narrower.one4;
    return kernels;
}

void clearUncovered(std::uint8_t* target, Extent<std::int32_t> size, Extent<std::int32_t> covered) {
    const std::size_t rowBytes = static_cast<std::size_t>(size.x) * 4;
    const std::size_t head = static_cast<std::size_t>(covered.x) * 4;
    for (std::int32_t y = 0; y < size.y; ++y) {
        const std::size_t keep = y < covered.y ? head : 0;
        std::uint8_t* row = target + static_cast<std::size_t>(y) * rowBytes;
        std::memset(row + keep, 0, rowBytes - keep);
    }
}

}  // namespace

BlockReduction blockReduction(float scale) {
    if (!(scale > 0.00001f && scale < 1.0f)) return {};
    for (const std::int32_t block : {16, 8, 4, 2}) {
        const float factor = 1.0f / static_cast<float>(block);
        if (scale <= factor) return {block, factor};
    }
    return {1, 1.0f};
}

Extent<std::int32_t> reducedSize(Extent<std::int32_t> size, const BlockReduction& reduction) {
    const auto reduced = [&](std::int32_t extent) {
        return static_cast<std::int32_t>(
            std::floor(extent * static_cast<double>(reduction.factor) + 0.5));
    };
    return {reduced(size.x), reduced(size.y)};
}

const BlockKernels blockKernelsScalar = {
    {meanOfBlocks<2, 4>, meanOfBlocks<4, 4>, meanOfBlocks<8, 4>, meanOfBlocks<16, 4>},
    meanOfBlocks<4, 1>};

const BlockKernels& blockKernels(VectorLevel level) {
    static const BlockKernels sse2 = filledUp(blockKernelsSse2, blockKernelsScalar);
    static const BlockKernels avx2 = filledUp(blockKernelsAvx2, sse2);
    switch (level) {
        case VectorLevel::Avx2: return avx2;
        case VectorLevel::Sse2: return sse2;
        default: return blockKernelsScalar;
    }
}

bool boxDownsample(const std::uint8_t* source, Extent<std::int32_t> sourceSize, std::int32_t block,
                   std::uint8_t* target, Extent<std::int32_t> targetSize) {
    if (block != 2 && block != 4 && block != 8 && block != 16) return false;
    const int shift = std::countr_zero(static_cast<std::uint32_t>(block));
    const Extent<std::int32_t> covered = {std::min(sourceSize.x >> shift, targetSize.x),
                                          std::min(sourceSize.y >> shift, targetSize.y)};
    const std::ptrdiff_t targetRowBytes = std::ptrdiff_t{4} * targetSize.x;
    if (block == 16)
        log("Using ASM BoxFilter16 %d, %d, %d\n", sourceSize.x, sourceSize.y,
            static_cast<int>(targetRowBytes));
    blockKernels().four[shift - 1](
        {source, std::ptrdiff_t{4} * sourceSize.x, target, targetRowBytes, covered.x, covered.y});
    clearUncovered(target, targetSize, covered);
    return true;
}

void boxDownsample4One(const std::uint8_t* source, Extent<std::int32_t> sourceSize,
                       std::uint8_t* target) {
    blockKernels().one4(
        {source, sourceSize.x, target, sourceSize.x >> 2, sourceSize.x >> 2, sourceSize.y >> 2});
}

}  // namespace brushwork
