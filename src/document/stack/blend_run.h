// One image blended over another, place by place, without what is known to change nothing.
//
//     BlendRun run;
//     run.target = plane; run.targetX = -originX; run.targetY = -originY;
//     run.source = layer; run.sourceX = x; run.sourceY = y;
//     run.mode = layerMode; run.opacity = 0.5f;
//     blend(run, tiles);
#pragma once

#include <cstdint>

#include "blending/core/generic_blender.h"
#include "brushwork/il_tile.h"
#include "image/chain/il_image.h"
#include "image/chain/il_page_tile_manager.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

// Places are where an image's pixel (0, 0) lies, in the coordinates of the boxes.
struct BlendRun {
    ilImage* target = nullptr;
    std::int32_t targetX = 0, targetY = 0;
    ilImage* source = nullptr;
    std::int32_t sourceX = 0, sourceY = 0;
    std::int32_t mode = 0;
    float opacity = 1.0f;
};

// False, with nothing drawn, for a mode that is none, and if nothing is left to draw.
bool blend(const BlendRun& run, const ilTile& box);
bool blend(const BlendRun& run, const npc::TileSet& boxes);

// Counts a run that was made otherwise.
void noteBlendRun();

// Runs that drew something, since the process began. For cost models and tests.
[[nodiscard]] std::uint64_t blendRunCount();

// The boxes of a record, cut to an area, without the empty ones.
[[nodiscard]] npc::TileSet tilesOf(const ilPageTileManager& record, const ilTile& area);

}  // namespace brushwork
