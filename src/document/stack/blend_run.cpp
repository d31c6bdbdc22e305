#include "document/stack/blend_run.h"

#include <vector>

#include "blending/modes/blender_registry.h"
#include "document/layer/prepared_blend.h"

namespace brushwork {
namespace {

constexpr std::int32_t pixelsOfAPage = 128;

bool hasClearFill(ilSmartImage& source) {
    const ilPixel fill = source.fill();
    return fill.channel(fill.channels() - 1) == 0.0;
}

// Pages that nobody has touched show the fill.
bool isKnownClear(ilSmartImage& source, const ilTile& box) {
    const AlphaClass known = source.alphaClassOf(box, false);
    return known == AlphaClass::Clear || (known == AlphaClass::NoPage && hasClearFill(source));
}

std::int32_t floorToPage(std::int32_t place) {
    return place & ~(pixelsOfAPage - 1);
}

// The parts of a box that lie on pages of the source with something on them, joined along rows.
void addFilledParts(ilSmartImage& source, const BlendRun& run, const ilTile& box,
                    npc::TileSet& parts) {
    ilTile inside = box;
    inside.x -= run.sourceX;
    inside.y -= run.sourceY;
    for (std::int32_t y = floorToPage(inside.y); y < inside.endY(); y += pixelsOfAPage) {
        ilTile row = flatTile(0, 0, 0, 0);
        for (std::int32_t x = floorToPage(inside.x); x < inside.endX(); x += pixelsOfAPage) {
            const ilTile part = intersection(flatTile(x, y, pixelsOfAPage, pixelsOfAPage), inside);
            if (isKnownClear(source, part)) continue;
            const ilTile placed =
                flatTile(part.x + run.sourceX, part.y + run.sourceY, part.nx, part.ny);
            if (!row.isEmpty() && row.endX() == placed.x) {
                row.nx += placed.nx;
                continue;
            }
            if (!row.isEmpty()) parts.insert(row);
            row = placed;
        }
        if (!row.isEmpty()) parts.insert(row);
    }
}

std::uint64_t runCount = 0;

// Its images bound; null for a mode that is none.
std::shared_ptr<npc::GenericBlender> blenderOf(const BlendRun& run) {
    auto blender = npc::createBlender(run.mode);
    if (!blender) return nullptr;
    blender->setDestination(run.target, run.targetX, run.targetY);
    blender->setSource(run.source, run.sourceX, run.sourceY, false);
    blender->setOpacity(run.opacity);
    blender->setThreaded(true);
    return blender;
}

}  // namespace

void noteBlendRun() {
    ++runCount;
}

std::uint64_t blendRunCount() {
    return runCount;
}

bool blend(const BlendRun& run, const ilTile& box) {
    npc::TileSet boxes;
    if (!box.isEmpty()) boxes.insert(box);
    return blend(run, boxes);
}

bool blend(const BlendRun& run, const npc::TileSet& boxes) {
    if (!run.target || !run.source || boxes.empty()) return false;
    npc::TileSet parts;
    ilSmartImage* const smart = ilSmartImage::from(run.source);
    const bool sparse = smart && smart->channels() == 4 && npc::keepsUnderNothing(run.mode);
    if (sparse)
        for (const ilTile& box : boxes) addFilledParts(*smart, run, box, parts);
    if (sparse && parts.empty()) return false;
    const auto blender = blenderOf(run);
    if (!blender) return false;
    blender->run(sparse ? parts : boxes);
    noteBlendRun();
    return true;
}

npc::TileSet tilesOf(const ilPageTileManager& record, const ilTile& area) {
    const std::vector<ilTile> tiles = record.tilesIn(area);
    return npc::TileSet(tiles.begin(), tiles.end());
}

}  // namespace brushwork
