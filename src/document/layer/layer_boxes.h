// Boxes and numbers that the layer's rooms share.
#pragma once

#include <cstdint>
#include <limits>

#include "brushwork/host_call_table.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

// Where an image has pixels; empty, and all zero, for null.
[[nodiscard]] inline ilTile boundsOf(ilImage* image) {
    ilTile box;
    if (ilSmartImage* const smart = ilSmartImage::from(image))
        smart->bounds(box);
    else if (image)
        box = image->box();
    return box;
}

// The part of a box in which a clip image attenuates; empty for null.
[[nodiscard]] inline ilTile clippedPart(ilImage* clip, const ilTile& box) {
    if (clip && clip->fill().data()[0] != 255) return box;
    return intersection(boundsOf(clip), box);
}

[[nodiscard]] inline ilTile moved(ilTile box, std::int32_t dx, std::int32_t dy) {
    box.x += dx;
    box.y += dy;
    return box;
}

// As it crosses to the host.
[[nodiscard]] constexpr HostBox hostBox(const ilTile& box) {
    return {box.x, box.y, box.z, box.nx, box.ny, box.nz};
}

// Toward zero; what doesn't fit becomes the nearest bound, and no number becomes 0.
[[nodiscard]] inline std::int32_t truncated(float value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (!(value > -2147483648.0f)) return value <= 0.0f ? Limits::min() : 0;
    return value < 2147483648.0f ? static_cast<std::int32_t>(value) : Limits::max();
}

}  // namespace brushwork
