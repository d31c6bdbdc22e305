#include "image/chain/il_page_tile_manager.h"

namespace brushwork {
namespace {

constexpr int cellShift = 7;
constexpr std::int32_t cellSize = 1 << cellShift;

}  // namespace

bool ilPageTileManager::addTile(const ilTile& tile) {
    if (tile.isEmpty()) return false;
    bool changed = false;
    for (std::int32_t cx = tile.x >> cellShift; cx <= tile.endX() >> cellShift; ++cx) {
        for (std::int32_t cy = tile.y >> cellShift; cy <= tile.endY() >> cellShift; ++cy) {
            const ilTile cell{cx * cellSize, cy * cellSize, tile.z, cellSize, cellSize, tile.nz};
            const ilTile part = intersection(tile, cell);
            const auto [entry, isNew] = cells_.try_emplace({cx, cy}, part);
            const ilTile joined = isNew ? part : unionOf(entry->second, part);
            changed = changed || isNew || joined != entry->second;
            entry->second = joined;
        }
    }
    bounds_ = unionOf(bounds_, tile);
    return changed;
}

bool ilPageTileManager::addTiles(std::span<const ilTile> tiles) {
    bool changed = false;
    for (const ilTile& tile : tiles) changed = addTile(tile) || changed;
    return changed;
}

std::vector<ilTile> ilPageTileManager::tilesIn(const ilTile& area) const {
    std::vector<ilTile> tiles;
    const ilTile inside = intersection(area, bounds_);
    if (inside.isEmpty()) return tiles;
    const std::int32_t left = inside.x >> cellShift, right = (inside.endX() - 1) >> cellShift;
    const std::int32_t low = inside.y >> cellShift, high = (inside.endY() - 1) >> cellShift;
    for (auto at = cells_.lower_bound({left, low});
         at != cells_.end() && at->first.first <= right;) {
        const auto [x, y] = at->first;
        if (y < low || y > high) {
            at = cells_.lower_bound({y < low ? x : x + 1, low});
            continue;
        }
        const ilTile part = intersection(at->second, inside);
        if (!part.isEmpty()) tiles.push_back(part);
        ++at;
    }
    return tiles;
}

void ilPageTileManager::clear() {
    cells_.clear();
    bounds_ = {};
}

ilPageTileManager ilPageTileManager::scaledUp(int shift) const {
    ilPageTileManager result;
    for (const auto& [cell, tile] : cells_) {
        const ilTile scaled =
            flatTile(tile.x << shift, tile.y << shift, tile.nx << shift, tile.ny << shift);
        result.addTile(scaled);
    }
    return result;
}

ilPageTileManager ilPageTileManager::scaledDown(int shift) const {
    ilPageTileManager result;
    for (const auto& [cell, tile] : cells_) {
        if (tile.isEmpty()) continue;
        const std::int32_t x = tile.x >> shift;
        const std::int32_t y = tile.y >> shift;
        const std::int32_t lastX = (tile.endX() - 1) >> shift;
        const std::int32_t lastY = (tile.endY() - 1) >> shift;
        result.addTile(flatTile(x, y, lastX - x + 1, lastY - y + 1));
    }
    return result;
}

}  // namespace brushwork
