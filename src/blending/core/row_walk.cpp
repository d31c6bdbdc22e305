#include "blending/core/row_walk.h"

#include <algorithm>
#include <array>

#include "blending/core/alpha_keeper.h"

namespace brushwork::npc {
namespace {

// Pixels whose alpha is kept at a time.
constexpr std::size_t keptPixels = 1024;

// Bytes that a count of pixels takes in each input.
KernelBlock::Steps bytesOf(std::size_t pixels, const RowWalk& walk) {
    const auto target = static_cast<std::ptrdiff_t>(pixels * walk.pixelBytes);
    const auto source = target * static_cast<std::ptrdiff_t>(walk.block.first.sourceStride);
    const auto mask = static_cast<std::ptrdiff_t>(pixels) *
                      static_cast<std::ptrdiff_t>(walk.block.first.maskStride);
    return {target, target, source, source, mask};
}

bool isGapless(const RowWalk& walk) {
    if (walk.block.rows == 1) return true;
    const auto targetRow = static_cast<std::ptrdiff_t>(walk.block.first.count * walk.pixelBytes);
    if (walk.block.steps.hi != targetRow) return false;
    const KernelBlock::Steps row = bytesOf(walk.block.first.count, walk);
    const KernelRow& first = walk.block.first;
    return (!first.lo || walk.block.steps.lo == row.lo) &&
           (!first.source || walk.block.steps.source == row.source) &&
           (!first.source2 || walk.block.steps.source2 == row.source2) &&
           (!first.mask || walk.block.steps.mask == row.mask);
}

void blendKeepingAlpha(const GenericBlender& blender, const RowWalk& walk, KernelRow row) {
    std::array<std::uint8_t, keptPixels> hi;
    std::array<std::uint8_t, keptPixels> lo;
    for (std::size_t left = row.count; left > 0; left -= row.count) {
        row.count = std::min(left, keptPixels);
        keepAlpha(row.hi, row.count, hi.data());
        if (row.lo) keepAlpha(row.lo, row.count, lo.data());
        walk.kernel(blender, row);
        if (row.lo)
            restoreAlpha16(row.hi, row.lo, hi.data(), lo.data(), row.count);
        else
            restoreAlpha(row.hi, hi.data(), row.count);
        moveRow(row, bytesOf(row.count, walk));
    }
}

// Rows of a target that lie far apart are asked for before their turn.
void fetchTarget(const RowWalk& walk, const KernelRow& row) {
    constexpr std::ptrdiff_t rowsAhead = 4;
    constexpr std::size_t lineBytes = 64, most = 1024;
    const auto place = reinterpret_cast<std::uintptr_t>(row.hi) +
                       static_cast<std::uintptr_t>(rowsAhead * walk.block.steps.hi);
    for (std::size_t at = 0; at < std::min(row.count * walk.pixelBytes, most); at += lineBytes)
        __builtin_prefetch(reinterpret_cast<const void*>(place + at), 1);
}

}  // namespace

void walkRows(const GenericBlender& blender, const RowWalk& walk) {
    KernelRow row = walk.block.first;
    std::int32_t rows = walk.block.rows;
    if (isGapless(walk)) {
        row.count *= static_cast<std::size_t>(rows);
        rows = 1;
    } else if (walk.blockKernel && !walk.lockAlpha) {
        walk.blockKernel(blender, walk.block);
        return;
    }
    for (; rows > 0; --rows) {
        if (rows > 1) fetchTarget(walk, row);
        if (walk.lockAlpha)
            blendKeepingAlpha(blender, walk, row);
        else
            walk.kernel(blender, row);
        if (rows > 1) moveRow(row, walk.block.steps);
    }
}

}  // namespace brushwork::npc
