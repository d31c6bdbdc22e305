// Copies between ilZNTiledImage and other images.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "image/memory/image_buffer.h"
#include "image/memory/image_lock.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/page_accessor.h"
#include "tiled/il_zn_tiled_image.h"
#include "tiled/tile_access.h"
#include "tiled/tile_iterator.h"
#include "tiled/tile_regions.h"

namespace brushwork {

using namespace znTiledImage;

namespace {

// Corners in the other image further away than this are nobody's pixels.
constexpr std::int64_t mostPlace = std::int64_t{1} << 30;
constexpr std::int32_t chunkSide = 512;

ilTile boxOf(const PixelRect& rect) {
    return flatTile(rect.x, rect.y, rect.w, rect.h);
}

PixelRect rectOf(const ilTile& box) {
    return {box.x, box.y, box.nx, box.ny};
}

ilTile shifted(ilTile box, std::int32_t dx, std::int32_t dy) {
    box.x += dx;
    box.y += dy;
    return box;
}

// What reaches beyond the source was read as its fill; that is no failure.
bool isFailure(std::int32_t result) {
    return result != ImageOk && result != ImageClipped;
}

}  // namespace

bool ilZNTiledImage::copiesPlainly(const ilTile& box, ilImage& other, std::int32_t oz,
                                   const ilImageConfig* config) {
    const bool allChannels = !config || (!config->remapsChannels() &&
                                         (config->channels < 1 || config->channels >= channels_));
    return box.z == 0 && box.nz == 1 && oz == 0 && allChannels && other.channels() == channels_ &&
           other.coordSpace() == coordSpace_;
}

std::int32_t ilZNTiledImage::copyRegion(const ilTile& box, ilImage& other, std::int32_t ox,
                                        std::int32_t oy, std::int32_t oz,
                                        const ilImageConfig* config, CopyDirection direction) {
    const Ref<ilImage> held(&other);
    if (const auto result = beginOperation()) return result;
    if (box.isEmpty()) return ImageOk;
    const bool fromOther = direction == CopyDirection::FromOther;
    const bool isTiled = other.isKindOf(descriptor) != 0;
    if (isTiled && static_cast<ilZNTiledImage&>(other).image_ == image_) {
        // Overlapping boxes: from a picture of what was there.
        const Ref<Image> before = image_->share();
        if (!before) return ImageUnusable;
        const Ref<ilZNTiledImage> picture(
            new ilZNTiledImage(image_->rect(), tileFill_, before.get()));
        const ilTile there{ox, oy, oz, box.nx, box.ny, box.nz};
        return fromOther ? copyRegion(box, *picture, ox, oy, oz, config, direction)
                         : copyRegion(there, *picture, box.x, box.y, box.z, config,
                                      CopyDirection::FromOther);
    }
    if (!copiesPlainly(box, other, oz, config))
        return ilSIDImage::copyRegion(box, other, ox, oy, oz, config, direction);
    const std::int64_t dx = std::int64_t{ox} - box.x;
    const std::int64_t dy = std::int64_t{oy} - box.y;
    if (std::max(std::abs(dx), std::abs(dy)) > mostPlace) return ImageUnusable;
    const Shift shift{static_cast<std::int32_t>(dx), static_cast<std::int32_t>(dy)};
    if (!fromOther) return copyOut(box, other, shift);
    const PixelRect inside = common(rectOf(box), pixelsOfCells(image_->container().cells()));
    if (isEmpty(inside)) return ImageOk;
    return copyIn(boxOf(inside), other, shift);
}

std::int32_t ilZNTiledImage::copyIn(const ilTile& box, ilImage& other, Shift shift) {
    const bool inPlace = shift.dx == 0 && shift.dy == 0;
    const bool aligned = ((shift.dx | shift.dy) & tileMask) == 0;
    std::int32_t result = ImageOk;
    if (inPlace && ilSmartImage::isSmartImage(&other))
        result = copyFromSmart(box, other);
    else if (aligned && other.isKindOf(descriptor) != 0)
        result = copyFromTiled(box, static_cast<ilZNTiledImage&>(other), shift);
    else
        result = copyChunks(box, other, shift);
    setAltered(NotifyOnly);
    return result;
}

// Page by page, since pages and cells have the same places.
std::int32_t ilZNTiledImage::copyFromSmart(const ilTile& box, ilImage& other) {
    const ImageLockScope lock;
    ilSmartImage& smart = *ilSmartImage::from(&other);
    std::int32_t result = ImageOk;
    const ImageBuffer page(static_cast<std::size_t>(tilePixels) * image_->bytesPerPixel());
    if (!page.data()) return ImageUnusable;
    for (TypedTileIteratorRect<Image> cell(*image_, rectOf(box)); cell.valid(); cell.next()) {
        const ilTile part = boxOf(cell.part());
        std::uint32_t value = 0;
        bool written = false;
        if (smart.isSolid(part, value, false)) {
            written =
                fillRect(*image_, cell.part(), pixelOfWord(channels_, value).data(), blocks());
        } else {
            const std::int32_t read = smart.readRegion(part, page.data(), part);
            if (isFailure(read)) {
                result = read;
                continue;
            }
            const std::size_t stride = static_cast<std::size_t>(part.nx) * image_->bytesPerPixel();
            written = writeRect(*image_, cell.part(), page.data(), stride);
        }
        if (!written) result = ImageUnusable;
    }
    if (locks_ == 0 && !compressRect(*image_, rectOf(box))) result = ImageUnusable;
    return result;
}

// Whole cells by sharing, unless somebody may write to the other image's tiles in place.
std::int32_t ilZNTiledImage::copyFromTiled(const ilTile& box, ilZNTiledImage& other, Shift shift) {
    if (const auto status = other.beginOperation()) return status;
    const Image& source = *other.image_;
    const bool maySend = other.locks_ == 0 && locks_ == 0;
    std::int32_t result = ImageOk;
    for (TypedTileIteratorRect<Image> cell(*image_, rectOf(box)); cell.valid(); cell.next()) {
        const TileNode* const node = source.constContainer().constNodeOfCell(
            cell.cellX() + (shift.dx >> tileShift), cell.cellY() + (shift.dy >> tileShift));
        if (cell.isWhole() && node && node->tile && maySend) {
            cell.node().tile = node->tile;
            continue;
        }
        const PixelRect part = cell.part();
        if (!node || node->kind() != TileKind::Filled) {
            const void* const value =
                node ? constPixel(*node, source, 0, 0) : source.constFillValue();
            if (!fillRect(*image_, part, value, blocks())) result = ImageUnusable;
            continue;
        }
        if (const auto copied = copyChunks(boxOf(part), other, shift)) result = copied;
    }
    return result;
}

// Through a buffer, in chunks from the lower left: a source that computes its pixels is asked for
// pieces that are worth computing.
std::int32_t ilZNTiledImage::copyChunks(const ilTile& box, ilImage& other, Shift shift) {
    const std::size_t pixel = image_->bytesPerPixel();
    const ilImageConfig own(TypeUChar, OrderInterleaved, channels_);
    const ImageBuffer buffer(static_cast<std::size_t>(std::min(box.nx, chunkSide)) *
                             static_cast<std::size_t>(std::min(box.ny, chunkSide)) * pixel);
    if (!buffer.data()) return ImageUnusable;
    std::int32_t result = ImageOk;
    for (std::int32_t y = 0; y < box.ny; y += chunkSide) {
        for (std::int32_t x = 0; x < box.nx; x += chunkSide) {
            const ilTile chunk = flatTile(box.x + x, box.y + y, std::min(box.nx - x, chunkSide),
                                          std::min(box.ny - y, chunkSide));
            const ilTile there = shifted(chunk, shift.dx, shift.dy);
            // A class that answers a read without pixels must not hand on what lay in memory.
            std::memset(buffer.data(), 0, buffer.bytes());
            const std::int32_t read = other.readRegion(there, buffer.data(), there, &own);
            if (isFailure(read)) {
                result = read;
                continue;
            }
            const std::size_t stride = static_cast<std::size_t>(chunk.nx) * pixel;
            if (!writeRect(*image_, rectOf(chunk), buffer.data(), stride)) result = ImageUnusable;
        }
    }
    return result;
}

// The fill first; then what cells hold, straight out of their tiles.
std::int32_t ilZNTiledImage::copyOut(const ilTile& box, ilImage& other, Shift shift) {
    if (other.fillRegion(shifted(box, shift.dx, shift.dy), tileFill_) != ImageOk)
        return copyOutRows(box, other, shift);
    const ilImageConfig own(TypeUChar, OrderInterleaved, channels_);
    std::int32_t result = ImageOk;
    for (TypedTileIteratorRect<const Image> cell(*image_, rectOf(box)); cell.valid(); cell.next()) {
        const Ref<Tile> tile = cell.node().tile;
        if (!tile) continue;
        const ilTile part = shifted(boxOf(cell.part()), shift.dx, shift.dy);
        const std::int32_t given =
            tile->isFilled()
                ? other.writeRegion(part, tile->constData(),
                                    shifted(boxOf(cell.cell()), shift.dx, shift.dy), &own)
                : other.fillRegion(part, ilPixel(TypeUChar, channels_, tile->constData()));
        if (given != ImageOk) result = given;
    }
    return result;
}

// For images that can't be filled.
std::int32_t ilZNTiledImage::copyOutRows(const ilTile& box, ilImage& other, Shift shift) {
    const ilImageConfig own(TypeUChar, OrderInterleaved, channels_);
    const std::int32_t rows = std::min(box.ny, chunkSide);
    const ImageBuffer buffer(blockBytes(TypeUChar, box.nx, rows, 1, channels_));
    if (!buffer.data()) return ImageUnusable;
    std::int32_t result = ImageOk;
    for (std::int32_t y = 0; y < box.ny; y += rows) {
        const ilTile band = flatTile(box.x, box.y + y, box.nx, std::min(rows, box.ny - y));
        readRect(*image_, rectOf(band), buffer.data(),
                 static_cast<std::size_t>(band.nx) * image_->bytesPerPixel());
        const ilTile there = shifted(band, shift.dx, shift.dy);
        const std::int32_t given = other.writeRegion(there, buffer.data(), there, &own);
        if (given != ImageOk) result = given;
    }
    return result;
}

}  // namespace brushwork
