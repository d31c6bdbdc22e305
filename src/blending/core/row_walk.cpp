#include "blending/core/row_walk.h"

#include <algorithm>

#include "blending/core/alpha_keeper.h"

namespace brushwork::npc {
namespace {

// Pixels whose alpha is kept at a time.
constexpr std::size_t keptPixels = 1024;

template <class Byte>
void move(Byte*& place, std::ptrdiff_t bytes) {
    if (place) place += bytes;
}

void move(KernelRow& row, const RowWalk::Steps& by) {
    move(row.hi, by.hi);
    move(row.lo, by.lo);
    move(row.source, by.source);
    move(row.source2, by.source2);
    move(row.mask, by.mask);
}

// Bytes that a count of pixels takes in each input.
RowWalk::Steps bytesOf(std::size_t pixels, const RowWalk& walk) {
    const auto target = static_cast<std::ptrdiff_t>(pixels * walk.pixelBytes);
    const auto source = target * static_cast<std::ptrdiff_t>(walk.first.sourceStride);
    const auto mask =
        static_cast<std::ptrdiff_t>(pixels) * static_cast<std::ptrdiff_t>(walk.first.maskStride);
    return {target, target, source, source, mask};
}

bool isGapless(const RowWalk& walk) {
    if (walk.rows == 1) return true;
    const RowWalk::Steps row = bytesOf(walk.first.count, walk);
    const KernelRow& first = walk.first;
    return walk.steps.hi == row.hi && (!first.lo || walk.steps.lo == row.lo) &&
           (!first.source || walk.steps.source == row.source) &&
           (!first.source2 || walk.steps.source2 == row.source2) &&
           (!first.mask || walk.steps.mask == row.mask);
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
        move(row, bytesOf(row.count, walk));
    }
}

}  // namespace

void walkRows(const GenericBlender& blender, const RowWalk& walk) {
    KernelRow row = walk.first;
    std::int32_t rows = walk.rows;
    if (isGapless(walk)) {
        row.count *= static_cast<std::size_t>(rows);
        rows = 1;
    }
    for (; rows > 0; --rows) {
        if (walk.lockAlpha)
            blendKeepingAlpha(blender, walk, row);
        else
            walk.kernel(blender, row);
        if (rows > 1) move(row, walk.steps);
    }
}

}  // namespace brushwork::npc
