// Tone operations on plain pixels, in place.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

// `count` premultiplied pixels of 4 bytes, alpha last. Each colour c over alpha a becomes
// (255 - c * 255 / a) * a / 255 in whole numbers, quotients cut off; a colour above its alpha
// counts as equal to it. A pixel of alpha 0 stays.
void invertFour(std::uint8_t* pixels, std::size_t count);
void invertFourScalar(std::uint8_t* pixels, std::size_t count);
void invertFourSse2(std::uint8_t* pixels, std::size_t count);

// `count` bytes; each becomes its complement.
void invertOne(std::uint8_t* pixels, std::size_t count);

// `count` bytes, in float throughout and cut off at the end, results clamped to 0..255:
//   c at most 0:  v * (c + 100) / 100 + b - c * 1.28
//   c above 0:    (v + b - 128) * factor + 128, factor 100 / (100 - c), and 512 from c = 100 on
void brightnessContrast(std::uint8_t* pixels, std::size_t count, float brightness, float contrast);
// One value of it.
[[nodiscard]] std::uint8_t brightnessContrastOf(std::uint8_t value, float brightness,
                                                float contrast);

}  // namespace brushwork
