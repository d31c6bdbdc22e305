// A texture tile at another scale, without a seam where it meets its own repetition.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

// How many pixels a tile has on an axis at a scale: to the nearest, 0 if nothing is left.
[[nodiscard]] std::int32_t scaledTileSize(std::int32_t size, float scale);

// The corner of `tile` at width by height pixels, as much of it as `shownX` by `shownY` pixels
// (at most all). What lies beyond the tile's edges is its other side. The tile is drawn to exactly
// these sizes, so its scale may differ from what was wished by the part of a pixel that sizes are
// rounded by. It is reduced by halves, so that fine grain fades instead of flickering, and enlarged
// smoothly. Tiles have 1 channel of bytes. Null if a size is below 1 or memory is short.
[[nodiscard]] Ref<ilSPMemoryImg> scaledTile(ilSPMemoryImg& tile, std::int32_t width,
                                            std::int32_t height, std::int32_t shownX,
                                            std::int32_t shownY);

// Repeats the tile over all of `target`, from (0, 0) on.
void repeatOver(ilImage& target, ilSPMemoryImg& tile);

}  // namespace brushwork
