// One image blended over another, place by place, without what is known to change nothing.
//
//     BlendRun run;
//     run.target = plane; run.targetX = -originX; run.targetY = -originY;
//     run.source = layer; run.sourceX = x; run.sourceY = y;
//     run.mode = layerMode; run.opacity = 0.5f;
//     blend(run, tiles);
#pragma once

#include <cstdint>
#include <memory>

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

// Whether a source of nothing leaves the target as it is under a mode: what layers are meant to
// have.
[[nodiscard]] bool keepsUnderNothing(std::int32_t mode);

// False, with nothing drawn, for a mode that is none, and if nothing is left to draw.
bool blend(const BlendRun& run, const ilTile& box);
bool blend(const BlendRun& run, const npc::TileSet& boxes);

// The blender of such a run, its images bound; null for a mode that is none.
[[nodiscard]] std::shared_ptr<npc::GenericBlender> blenderOf(const BlendRun& run);
// Whether pages that nobody has touched, or that are known to be empty, are all that is there.
[[nodiscard]] bool isKnownClear(ilSmartImage& source, const ilTile& box);
// Counts a run that was made by such a blender.
void noteBlendRun();

// Runs that drew something, since the process began. For cost models and tests.
[[nodiscard]] std::uint64_t blendRunCount();

// The boxes of a record, cut to an area, without the empty ones.
[[nodiscard]] npc::TileSet tilesOf(const ilPageTileManager& record, const ilTile& area);

}  // namespace brushwork
