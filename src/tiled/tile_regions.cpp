#include "tiled/tile_regions.h"

#include <cstring>

#include "tiled/tile_access.h"
#include "tiled/tile_iterator.h"

namespace brushwork::znTiledImage {
namespace {

// Rows of pixels somewhere in memory.
struct Rows {
    std::uint8_t* first;
    std::size_t stride;
    [[nodiscard]] std::uint8_t* at(std::int32_t y) const {
        return first + static_cast<std::size_t>(y) * stride;
    }
};

// The rows of `part` within the buffer of `rect`.
Rows inBuffer(const void* buffer, std::size_t stride, const PixelRect& rect, const PixelRect& part,
              std::size_t pixelBytes) {
    const std::size_t skip = static_cast<std::size_t>(part.y - rect.y) * stride +
                             static_cast<std::size_t>(part.x - rect.x) * pixelBytes;
    return {static_cast<std::uint8_t*>(const_cast<void*>(buffer)) + skip, stride};
}

// The same within the block of a filled tile.
Rows inTile(const Tile& tile, const PixelRect& part) {
    const std::size_t index = static_cast<std::size_t>(part.y & tileMask) * tileSide +
                              static_cast<std::size_t>(part.x & tileMask);
    return {static_cast<std::uint8_t*>(const_cast<void*>(tile.constData())) +
                index * tile.bytesPerPixel(),
            tileSide * tile.bytesPerPixel()};
}

void copyRows(const Rows& from, const Rows& to, const PixelRect& part, std::size_t pixelBytes) {
    const std::size_t rowBytes = static_cast<std::size_t>(part.w) * pixelBytes;
    if (rowBytes == from.stride && rowBytes == to.stride) {
        std::memcpy(to.first, from.first, rowBytes * static_cast<std::size_t>(part.h));
        return;
    }
    for (std::int32_t y = 0; y < part.h; ++y) std::memcpy(to.at(y), from.at(y), rowBytes);
}

void fillRows(const Rows& to, const PixelRect& part, const void* pixel, std::size_t pixelBytes) {
    for (std::int32_t y = 0; y < part.h; ++y) {
        std::uint8_t* at = to.at(y);
        if (pixelBytes == 1) {
            std::memset(at, *static_cast<const std::uint8_t*>(pixel),
                        static_cast<std::size_t>(part.w));
            continue;
        }
        for (std::int32_t x = 0; x < part.w; ++x, at += sizeof(znImage::Byte4))
            std::memcpy(at, pixel, sizeof(znImage::Byte4));
    }
}

// Whether all pixels of the rows are the first one.
bool isUniform(const Rows& rows, const PixelRect& part, std::size_t pixelBytes) {
    for (std::int32_t y = 0; y < part.h; ++y) {
        const std::uint8_t* const row = rows.at(y);
        if (std::memcmp(row, rows.first, pixelBytes) != 0) return false;
        const std::size_t shifted = (static_cast<std::size_t>(part.w) - 1) * pixelBytes;
        if (std::memcmp(row, row + pixelBytes, shifted) != 0) return false;
    }
    return true;
}

// The value of a cell that has one; null for a filled one.
const void* uniformValue(const TileNode& node, const Image& image) {
    return node.kind() == TileKind::Filled ? nullptr : constPixel(node, image, 0, 0);
}

bool isSame(const void* a, const void* b, const Image& image) {
    return a && std::memcmp(a, b, image.bytesPerPixel()) == 0;
}

// A filled tile of the node's own; a whole one needs no contents.
bool openForWrite(TileNode& node, const Image& image, bool whole) {
    const bool replace = whole && node.kind() == TileKind::Filled && node.tile->refCount() > 1;
    if (replace) {
        Ref<Tile> own = node.makeTile(TileKind::Filled);
        if (own) node.tile.swap(own);
        return own.get() != nullptr;
    }
    return setKind(node, TileKind::Filled, image, whole ? Contents::Drop : Contents::Keep) &&
           prepareWrite(node);
}

bool makeUniform(TileNode& node, const Image& image, const void* pixel) {
    if (!isSame(image.constFillValue(), pixel, image)) return makeSolid(node, pixel);
    node.tile.reset();
    return true;
}

}  // namespace

void readRect(const Image& image, const PixelRect& rect, void* buffer, std::size_t stride) {
    if (isEmpty(rect)) return;
    const std::size_t size = image.bytesPerPixel();
    if (common(rect, pixelsOfCells(image.constContainer().cells())) != rect)
        fillRows(inBuffer(buffer, stride, rect, rect, size), rect, image.constFillValue(), size);
    for (TypedTileIteratorRect<const Image> cell(image, rect); cell.valid(); cell.next()) {
        const TileNode& node = cell.node();
        const PixelRect part = cell.part();
        const Rows to = inBuffer(buffer, stride, rect, part, size);
        if (node.kind() == TileKind::Filled)
            copyRows(inTile(*node.tile, part), to, part, size);
        else
            fillRows(to, part, constPixel(node, image, 0, 0), size);
    }
}

bool writeRect(Image& image, const PixelRect& rect, const void* buffer, std::size_t stride) {
    const std::size_t size = image.bytesPerPixel();
    bool done = true;
    for (TypedTileIteratorRect<Image> cell(image, rect); cell.valid(); cell.next()) {
        TileNode& node = cell.node();
        const PixelRect part = cell.part();
        if (openForWrite(node, image, cell.isWhole()))
            copyRows(inBuffer(buffer, stride, rect, part, size), inTile(*node.tile, part), part,
                     size);
        else
            done = false;
    }
    return done;
}

bool makeFilled(Image& image, const PixelRect& rect) {
    bool done = true;
    for (TypedTileIteratorRect<Image> cell(image, rect); cell.valid(); cell.next())
        if (!openForWrite(cell.node(), image, false)) done = false;
    return done;
}

bool fillRect(Image& image, const PixelRect& rect, const void* pixel, Blocks blocks) {
    bool done = true;
    for (TypedTileIteratorRect<Image> cell(image, rect); cell.valid(); cell.next()) {
        TileNode& node = cell.node();
        const PixelRect part = cell.part();
        const bool kept = blocks == Blocks::Keep && node.kind() == TileKind::Filled;
        if (cell.isWhole() && !kept) {
            if (!makeSolid(node, pixel)) done = false;
        } else if (!isSame(uniformValue(node, image), pixel, image)) {
            if (openForWrite(node, image, false))
                fillRows(inTile(*node.tile, part), part, pixel, image.bytesPerPixel());
            else
                done = false;
        }
    }
    return done;
}

bool writeCompressed(Image& image, const void* pixels, const PixelRect& rect, std::size_t stride) {
    const std::size_t size = image.bytesPerPixel();
    bool done = true;
    for (TypedTileIteratorRect<Image> cell(image, rect); cell.valid(); cell.next()) {
        TileNode& node = cell.node();
        const PixelRect part = cell.part();
        const Rows from = inBuffer(pixels, stride, rect, part, size);
        bool written = true;
        if (!isUniform(from, part, size)) {
            written = openForWrite(node, image, cell.isWhole());
            if (written) copyRows(from, inTile(*node.tile, part), part, size);
        } else if (cell.isWhole()) {
            written = makeUniform(node, image, from.first);
        } else if (!isSame(uniformValue(node, image), from.first, image)) {
            written = openForWrite(node, image, false);
            if (written) fillRows(inTile(*node.tile, part), part, from.first, size);
        }
        if (!written) done = false;
    }
    return done;
}

bool compressRect(Image& image, const PixelRect& rect) {
    const std::size_t size = image.bytesPerPixel();
    bool done = true;
    for (TypedTileIteratorRect<Image> cell(image, rect); cell.valid(); cell.next()) {
        TileNode& node = cell.node();
        if (!node.tile) continue;
        const bool uniform =
            !node.tile->isFilled() || isUniform(inTile(*node.tile, cell.cell()), cell.cell(), size);
        if (!uniform) continue;
        // The value outlives the tile that it stands in.
        const Ref<Tile> held = node.tile;
        if (!makeUniform(node, image, held->constData())) done = false;
    }
    return done;
}

}  // namespace brushwork::znTiledImage
