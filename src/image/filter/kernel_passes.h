// Filtering with a square kernel of float or fixed-point weights.
//
// Half the kernel's side is h = size >> 1. Pixels from h to width - h - 1 and from h to
// height - h - 1 are computed; their window begins at (x - h, y - h), and its pixel (i, j), row j,
// meets weight [j * size + i]. The band of h pixels around takes the source's pixels, and so does a
// whole picture that is smaller than the kernel.
#pragma once

#include <cstdint>

namespace brushwork {

// `height` rows of `width` pixels without row padding, one byte or four bytes a pixel; each byte of
// a pixel is filtered on its own. `target` must not overlap `source`. A size below 1 copies.

// Pixel times weight added up in float in the order of the weights, the fraction cut off, the
// result bounded to 0..255; not-a-number becomes 0.
void convolveFloat1(const std::uint8_t* source, std::uint8_t* target, int width, int height,
                    const float* weights, int size) noexcept;
void convolveFloat4(const std::uint8_t* source, std::uint8_t* target, int width, int height,
                    const float* weights, int size) noexcept;

// Weights in units of 1/2048. Each tap is pixel * 128 * weight / 65536, rounded down; the total is
// divided by 4, rounded down, and bounded to 0..255. With one channel the total has 32 bits; with
// four it is kept within 16 bits after every tap.
void convolveFixed1(const std::uint8_t* source, std::uint8_t* target, int width, int height,
                    const std::int16_t* weights, int size) noexcept;
void convolveFixed4(const std::uint8_t* source, std::uint8_t* target, int width, int height,
                    const std::int16_t* weights, int size) noexcept;

}  // namespace brushwork
