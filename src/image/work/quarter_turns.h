// Turning a picture by quarters and mirroring it. Row 0 is the bottom row, so that the turns are
// those that a person sees.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

// Rows without padding, 1 or 4 bytes a pixel.
//
// The turns write `height` by `width` pixels; source and target must not overlap. False, with
// nothing written, for other byte counts or sizes below 1.

// A quarter turn against the clock: pixel (x, y) goes to (height - 1 - y, x).
bool rotate90(const std::uint8_t* source, std::uint8_t* target, std::int32_t width,
              std::int32_t height, std::int32_t pixelBytes);
// With the clock: pixel (x, y) goes to (y, width - 1 - x).
bool rotateMinus90(const std::uint8_t* source, std::uint8_t* target, std::int32_t width,
                   std::int32_t height, std::int32_t pixelBytes);

// In place. mirrorX exchanges left and right, flipY top and bottom.
bool mirrorX(std::uint8_t* pixels, std::int32_t width, std::int32_t height,
             std::int32_t pixelBytes);
bool flipY(std::uint8_t* pixels, std::int32_t width, std::int32_t height, std::int32_t pixelBytes);

// A square block of a turn: pixel (x, y) of the source block goes to (y, x) of the target, counted
// in strides of either sign.
struct TurnBlock {
    const std::uint8_t* source = nullptr;
    std::ptrdiff_t sourceRowBytes = 0;
    std::uint8_t* target = nullptr;
    std::ptrdiff_t targetRowBytes = 0;
};
// Turns a block of `side` by `side` pixels.
using TurnKernel = void (*)(const TurnBlock& block);
inline constexpr std::int32_t turnSideFour = 4;
inline constexpr std::int32_t turnSideOne = 8;
void turnFourSse2(const TurnBlock& block);  // 4 by 4 pixels of 4 bytes
void turnOneSse2(const TurnBlock& block);   // 8 by 8 bytes

}  // namespace brushwork
