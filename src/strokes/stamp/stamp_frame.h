// StampFrame: the box of pixels that a stamp covers, and the way from its pixels back into the
// brush's own plane.
#pragma once

#include <cstdint>

#include "brushwork/il_tile.h"
#include "brushwork/stamp_point.h"

namespace brushwork::npc {

// From pixel (i, j) of a mask to (u, v) = (xx * i + xy * j + x0, yx * i + yy * j + y0), in float. A
// walk along row j starts at (xy * j + x0, yy * j + y0) and adds (xx, yx) a pixel, so no row hangs
// on another and rows can be made in any order.
struct StampMap {
    float xx = 1.0f, xy = 0.0f, x0 = 0.0f;
    float yx = 0.0f, yy = 1.0f, y0 = 0.0f;
};

struct StampFrame {
    // Pixels of the layer; empty if the stamp is too large to be made.
    ilTile box;
    // To brush space: the stamp's middle is (0, 0), a round tip's rim lies at `radius`.
    StampMap toBrush;
    float radius = 0.0f;

    // To an image of the tip that fills the stamp, in coordinates of its PaddedTable: half a pixel
    // further than the image's own, whose pixel k lies from k to k + 1.
    [[nodiscard]] StampMap toTable(std::int32_t imageWidth, std::int32_t imageHeight) const;

    // What the maps are made of: the middle of pixel (0, 0) as seen from the stamp's middle, the
    // stamp's turn, its scales.
    float startX = 0.0f, startY = 0.0f;
    float cosine = 1.0f, sine = 0.0f;
    float scaleX = 1.0f, scaleY = 1.0f;
};

// Of a quantised point. A scale of 0 counts as the smallest one.
[[nodiscard]] StampFrame stampFrame(const StampPoint& point);

// The smallest scale, and the step in which scales are held.
inline constexpr float stampScaleStep = 0.03125f;

}  // namespace brushwork::npc
