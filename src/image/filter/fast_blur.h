// The fast bell-shaped blur: along each row and then along each column, four nested box windows
// around a pixel are added up and divided by the number of pixels in them. Its cost doesn't depend
// on the radius.
//
// A line's pixel at c becomes sum / count, in whole numbers, over the four windows c - r .. c + r
// clipped to the line, with r = h * 65 / 256, h * 122 / 256, h * 176 / 256 (each rounded) and h,
// where h is half of `size`. Pixels outside take no part, so edges neither darken nor need padding.
// The rows' results are bytes, and the columns work on those.
#pragma once

#include <cstdint>

namespace brushwork {

// Blurs `height` rows of `width` pixels without row padding, of one byte and of four bytes a pixel;
// each byte of a pixel is blurred on its own. The whole of `target` is written. `source` may be
// `target`, but must not overlap it otherwise. `size` below 2 copies; an empty picture is fine.
// False without memory for the working rows; then nothing is written.
[[nodiscard]] bool fastBlur1(const std::uint8_t* source, std::uint8_t* target, int width,
                             int height, int size) noexcept;
[[nodiscard]] bool fastBlur4(const std::uint8_t* source, std::uint8_t* target, int width,
                             int height, int size) noexcept;

}  // namespace brushwork
