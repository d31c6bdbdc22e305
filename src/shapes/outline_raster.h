// Fills a closed outline into a mask of one byte a pixel, by the even-odd rule.
//
//     const OutlineSegments outline(closedOutline(curves));
//     std::vector<std::uint8_t> mask(width * height);            // zero
//     if (rasterizeOutline(outline, box, mask)) applyOpacity(mask, 0.5f);
//
// Coverage is sampled on horizontal lines a quarter of a pixel apart, five to a row with the lines
// on its edges. Lines see little of an edge that runs along them, so a second pass samples columns
// in the same way, and its result stands where the mask has its contrast between rows.
//
// A line that runs right through a corner meets both of its pieces. Where the count of crossings
// comes out odd, lines close by are tried; two such corners on one line, as a diamond has them,
// leave it empty. closedOutline sees to that; who makes corners himself: sample_lines.h.
#pragma once

#include <cstdint>
#include <span>

#include "brushwork/il_tile.h"
#include "shapes/host_outline.h"
#include "shapes/outline_segments.h"

namespace brushwork {

// The pixels that a filled outline may touch, with a margin. Empty for one that lies beyond what
// pixels can be counted in.
[[nodiscard]] ilTile filledBox(const OutlineExtent& extent);

// The mask has a byte for each pixel of the box, rows from its low edge up, and is zero at first.
// Pieces that lie outside the box count with the box's edge. False, with nothing drawn, if the mask
// hasn't the box's size.
[[nodiscard]] bool rasterizeOutline(const OutlineSegments& outline, const ilTile& box,
                                    std::span<std::uint8_t> mask);

// Each byte times the opacity, to 1/256. From 0.997 on nothing changes.
void applyOpacity(std::span<std::uint8_t> mask, float opacity);

}  // namespace brushwork
