// What a painter draws: an image or pixels in memory, and how their channels are meant.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "image/chain/il_image.h"

namespace brushwork {

// Where the pixels come from. One of the two is set; both are borrowed for the call.
//
// (x, y) is the pixel that falls on the rectangle's corner: of the image in its coordinates, of the
// memory counted from its first byte.
struct PaintSource {
    ilImage* image = nullptr;
    const void* pixels = nullptr;
    std::int32_t x = 0, y = 0;

    [[nodiscard]] static PaintSource of(ilImage* image, std::int32_t x = 0, std::int32_t y = 0) {
        return {image, nullptr, x, y};
    }
    [[nodiscard]] static PaintSource of(const void* pixels) { return {nullptr, pixels, 0, 0}; }
};

// How pixels in memory are laid out, and which of their channels is which.
struct PaintFormat {
    std::int32_t type = TypeUChar;
    std::int32_t channels = 0;  // of memory; 0: as many as the target has. An image has its own.
    // Channel i of what is drawn is channel map[i] of the source. All zero: each as it is. An entry
    // beyond the source's channels reads as 0.
    std::array<std::int32_t, 4> map{};

    [[nodiscard]] bool isIdentity() const {
        return map == std::array<std::int32_t, 4>{} ||
               map == std::array<std::int32_t, 4>{0, 1, 2, 3};
    }
};

}  // namespace brushwork
