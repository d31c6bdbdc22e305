#include "tiled/tile_seams.h"

#include <cstring>
#include <new>

namespace brushwork {

using namespace znTiledImage;

void TileSeams::forget() {
    upright_.fill({});
    level_.fill({});
}

TileSeams::Use TileSeams::use(Place& place, Key key) {
    if (place.held == key) {
        place.asked = none;
        return Use::Held;
    }
    if (place.asked != key) {
        place.asked = key;
        return Use::Skip;
    }
    if (!copies_) copies_.reset(new (std::nothrow) Copies);
    return copies_ ? Use::Make : Use::Skip;
}

const std::uint8_t* TileSeams::upright(const Reader& reader, std::int32_t cellX,
                                       std::int32_t cellY) {
    const std::size_t number = numberOf(cellX, cellY);
    Place& place = upright_[number];
    const Use use = this->use(place, keyOf(cellX, cellY));
    if (use == Use::Skip) return nullptr;
    constexpr std::size_t half = before * sizeof(znImage::Byte4);
    std::uint8_t* const copy = copies_->upright + number * 2 * half;
    if (use == Use::Held) return copy;
    const std::int32_t border = (cellX + 1) * tileSide;
    const std::int32_t y = cellY * tileSide;
    const znImage::Byte4* const left = reader.blockAt(border - before, y, before, tileSide);
    const znImage::Byte4* const right = reader.blockAt(border, y, before, tileSide);
    if (!left || !right) return nullptr;
    place = {keyOf(cellX, cellY), none};
    for (std::size_t j = 0; j < tileSide; ++j) {
        std::uint8_t* const to = copy + j * blockStride;
        std::memcpy(to, left + j * tileSide, half);
        std::memcpy(to + half, right + j * tileSide, half);
    }
    return copy;
}

const std::uint8_t* TileSeams::level(const Reader& reader, std::int32_t cellX, std::int32_t cellY) {
    const std::size_t number = numberOf(cellX, cellY);
    Place& place = level_[number];
    const Use use = this->use(place, keyOf(cellX, cellY));
    if (use == Use::Skip) return nullptr;
    std::uint8_t* const copy = copies_->level[number];
    if (use == Use::Held) return copy;
    const std::int32_t x = cellX * tileSide;
    const std::int32_t border = (cellY + 1) * tileSide;
    const znImage::Byte4* const below = reader.blockAt(x, border - reach, tileSide, reach);
    const znImage::Byte4* const above = reader.blockAt(x, border, tileSide, reach);
    if (!below || !above) return nullptr;
    place = {keyOf(cellX, cellY), none};
    std::memcpy(copy, below, reach * blockStride);
    std::memcpy(copy + reach * blockStride, above, reach * blockStride);
    return copy;
}

}  // namespace brushwork
