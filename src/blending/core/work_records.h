// What one run of a blender works on: its inputs, and where they lie in memory, rectangle by
// rectangle.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork::npc {

// The inputs of a blender, by the slot in which they are bound.
enum BlendInput : std::size_t {
    InputDestination,        // high bytes of a target of two planes, or the whole target
    InputSecondDestination,  // low bytes
    InputSource,
    InputSecondSource,
    InputMask,
    blendInputCount,
};

// An image as an input: the pixel at position p of the blend is the image's pixel p - (x, y).
struct BlendSlot {
    Ref<ilImage> image;
    bool writable = false;  // its pages are locked for writing
    std::int32_t x = 0, y = 0;
};
using BlendSlots = std::array<BlendSlot, blendInputCount>;

// A box between two corners, the upper ones outside. In 64 bits: places of the blend and of an
// image differ by an offset, and neither sums nor extents may overflow.
struct WideBox {
    std::int64_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    [[nodiscard]] constexpr bool isEmpty() const { return x1 <= x0 || y1 <= y0; }
    [[nodiscard]] constexpr std::int64_t width() const { return x1 - x0; }
    [[nodiscard]] constexpr std::int64_t height() const { return y1 - y0; }
    friend constexpr bool operator==(const WideBox&, const WideBox&) = default;
};

[[nodiscard]] constexpr WideBox wideBox(const ilTile& tile) {
    return {tile.x, tile.y, std::int64_t{tile.x} + tile.nx, std::int64_t{tile.y} + tile.ny};
}

[[nodiscard]] constexpr bool holds(const WideBox& area, const WideBox& box) {
    return box.x0 >= area.x0 && box.y0 >= area.y0 && box.x1 <= area.x1 && box.y1 <= area.y1;
}

[[nodiscard]] constexpr WideBox intersection(const WideBox& a, const WideBox& b) {
    return {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
}

// One input within a rectangle. Without an image `base` is null.
struct WorkPlane {
    std::uint8_t* base = nullptr;  // the rectangle's first pixel, of its lowest row
    std::int32_t stride = 0;       // pixels from one row to the next
    std::int32_t bytesPerPixel = 0;
    std::int32_t channels = 0;

    [[nodiscard]] std::ptrdiff_t rowBytes() const {
        return static_cast<std::ptrdiff_t>(stride) * bytesPerPixel;
    }
    [[nodiscard]] std::uint8_t* row(std::int32_t y) const { return base + y * rowBytes(); }
};

// One rectangle that lies in a single page of each input. Rectangles of a run don't meet.
struct WorkRecord {
    std::int32_t width = 0, height = 0;  // pixels
    std::int64_t x = 0, y = 0;           // of its corner, in the blend's coordinates
    std::array<WorkPlane, blendInputCount> planes{};
    // The source's base leads to one pixel, eight times, that stands for all.
    bool constantSource = false;

    [[nodiscard]] std::int64_t pixels() const { return std::int64_t{width} * height; }
};

}  // namespace brushwork::npc
