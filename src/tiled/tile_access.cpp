#include "tiled/tile_access.h"

#include <cstring>
#include <utility>

namespace brushwork::znTiledImage {
namespace {

// Every pixel of a filled tile becomes that one.
void flood(Tile& tile, const void* pixel) {
    auto* const bytes = static_cast<std::uint8_t*>(tile.data());
    const std::size_t size = tile.bytesPerPixel();
    const std::size_t all = size * tile.memoryBytes();
    std::memcpy(bytes, pixel, size);
    for (std::size_t done = size; done < all; done *= 2) std::memcpy(bytes + done, bytes, done);
}

}  // namespace

bool prepareWrite(TileNode& node) {
    if (!node.tile || node.tile->refCount() < 2) return true;
    Ref<Tile> own = node.makeTile(node.kind());
    if (!own) return false;
    std::memcpy(own->data(), node.tile->constData(), own->memoryBytes() * own->bytesPerPixel());
    node.tile = std::move(own);
    return true;
}

bool setKind(TileNode& node, TileKind kind, const Image& image, Contents contents) {
    if (node.kind() == kind) return true;
    Ref<Tile> tile = node.makeTile(kind);
    if (!tile && kind != TileKind::None) return false;
    if (tile && contents == Contents::Keep) {
        const bool fromSolid = node.kind() == TileKind::Solid;
        const void* const value = fromSolid ? node.tile->constData() : image.constFillValue();
        if (kind == TileKind::Filled)
            flood(*tile, value);
        else
            std::memcpy(tile->data(), image.constFillValue(), tile->bytesPerPixel());
    }
    node.tile = std::move(tile);
    return true;
}

bool makeSolid(TileNode& node, const void* pixel) {
    Ref<Tile> tile = node.makeTile(TileKind::Solid);
    if (!tile) return false;
    std::memcpy(tile->data(), pixel, tile->bytesPerPixel());
    node.tile = std::move(tile);
    return true;
}

const void* constPixel(const TileNode& node, const Image& image, std::int32_t x, std::int32_t y) {
    if (!node.tile) return image.constFillValue();
    if (!node.tile->isFilled()) return node.tile->constData();
    const std::size_t index = static_cast<std::size_t>(y) * tileSide + static_cast<std::size_t>(x);
    return static_cast<const std::uint8_t*>(node.tile->constData()) +
           index * node.tile->bytesPerPixel();
}

TileNodeReader::TileNodeReader(const TileNode& node) : node_(node) {
    if (node_.tile) node_.tile->lock(false);
}

TileNodeReader::~TileNodeReader() {
    if (node_.tile) node_.tile->unlock(false);
}

TileNodeWriter::TileNodeWriter(TileNode& node) : node_(node), ready_(prepareWrite(node)) {
    if (ready_ && node_.tile) node_.tile->lock(true);
}

TileNodeWriter::~TileNodeWriter() {
    if (ready_ && node_.tile) node_.tile->unlock(true);
}

}  // namespace brushwork::znTiledImage
