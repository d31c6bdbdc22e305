#include "tiled/il_zn_tiled_image.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "image/chain/box_difference.h"
#include "image/memory/image_buffer.h"
#include "image/work/pixel_block.h"
#include "tiled/tile_access.h"
#include "tiled/tile_regions.h"

namespace brushwork {

using namespace znTiledImage;

namespace {

PixelRect rectOf(const ilTile& box) {
    return {box.x, box.y, box.nx, box.ny};
}

// All pixels lie in plane 0.
bool isOnPlane(const ilTile& box, const ilTile& frame) {
    return box.z == 0 && box.nz == 1 && frame.nz == 1;
}

// Sizes run from 0 up to the rectangle's end.
std::int32_t sizeUpTo(std::int32_t start, std::int32_t extent) {
    const std::int64_t end = std::int64_t{start} + extent;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(end, 0, 0x7FFFFFFF));
}

PixelRect boundsOf(ilImage& image) {
    if (image.isKindOf(ilZNTiledImage::descriptor) != 0) {
        const Image* const tiled = static_cast<ilZNTiledImage&>(image).tiledImage();
        if (tiled) return tiled->rect();
    }
    // As a viewer sees it: the copy stands upright.
    if (image.coordSpace() != SpaceLowerLeft) return {0, 0, image.width(), image.height()};
    ilTile bounds = image.box();
    if (image.isKindOf(ilSIDImage::descriptor) != 0) static_cast<ilSIDImage&>(image).bounds(bounds);
    return rectOf(bounds);
}

}  // namespace

// The page over a filled cell. It counts as a holder of the tile only if there is another one, from
// which a writer would part anyway.
class ilZNTiledImage::LockedCell final : public ilPage {
  public:
    LockedCell(const PageLockRequest& request, TileNode& node, bool write)
        : ilPage(request.x, request.y, 1, static_cast<std::int32_t>(node.tile->bytesPerPixel()),
                 static_cast<std::uint8_t*>(node.tile->data())) {
        if (write)
            writer_ = makeRef<TileNodeWriter>(node);
        else
            reader_ = makeRef<TileNodeReader>(node);
        if (node.tile->refCount() > 1) shared_ = node.tile;
    }

  private:
    Ref<TileNodeReader> reader_;  // one of these two
    Ref<TileNodeWriter> writer_;
    Ref<Tile> shared_;
};

const ClassDescriptor ilZNTiledImage::descriptor = {"ilZNTiledImage", &ilSIDImage::descriptor};

ilZNTiledImage::ilZNTiledImage(const PixelRect& rect, const ilPixel& fill) {
    begin(rect, fill, makeImage(fill.channels()));
}

ilZNTiledImage::ilZNTiledImage(const PixelRect& rect, const ilPixel& fill, Image* image) {
    const bool fits =
        image && static_cast<std::size_t>(std::max(fill.channels(), 0)) == image->bytesPerPixel();
    begin(rect, fill, Ref<Image>(fits ? image : nullptr));
}

ilZNTiledImage::ilZNTiledImage(ilImage* other) {
    if (!other) {
        begin({}, ilPixel::untyped(), nullptr);
        return;
    }
    const Ref<ilImage> held(other);
    const ilPixel fill = other->fill().converted(TypeUChar, other->channels());
    const PixelRect rect = boundsOf(*other);
    begin(rect, fill, makeImage(fill.channels()));
    if (!image_) return;
    // An object under construction has no holder, and must not be handed on: another one copies
    // into the image that both have.
    const Ref<ilZNTiledImage> writer(new ilZNTiledImage(rect, fill, image_.get()));
    setStatus(writer->copyRegion(flatTile(rect.x, rect.y, rect.w, rect.h), *other, rect.x, rect.y,
                                 0, nullptr, CopyDirection::FromOther));
}

ilZNTiledImage::~ilZNTiledImage() = default;

void ilZNTiledImage::begin(const PixelRect& rect, const ilPixel& fill, const Ref<Image>& image) {
    tileFill_ = fill.converted(TypeUChar);
    fill_ = tileFill_;
    sizeX_ = sizeUpTo(rect.x, rect.w);
    sizeY_ = sizeUpTo(rect.y, rect.h);
    sizeZ_ = 1;
    channels_ = fill.channels();
    dataType_ = TypeUChar;
    order_ = OrderInterleaved;
    coordSpace_ = SpaceLowerLeft;
    colorModel_ = defaultColorModel(channels_);
    allowedFlags_ |= AlteredFill | AlteredColorModel;
    altered_ |= AlteredPixels;  // limits and page size wait for the first update
    if (!image || !image->setRect(rect)) return;
    image->setFillValue(tileFill_.data());
    image_ = image;
}

const char* ilZNTiledImage::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilZNTiledImage::classDescriptor() const {
    return descriptor;
}

void ilZNTiledImage::update() {
    setDefaultLimits(false);
    setDefaultPageSize(tileSide, tileSide, 1, channels_);
    ilSIDImage::update();
}

std::int32_t ilZNTiledImage::beginOperation() {
    clearStatus();
    if (const auto result = reset()) return result;
    return image_ ? ImageOk : ImageUnusable;
}

std::int32_t ilZNTiledImage::changed(bool complete) {
    setAltered(NotifyOnly);
    return complete ? ImageOk : ImageUnusable;
}

std::int32_t ilZNTiledImage::setFill(const ilPixel& pixel) {
    tileFill_ = pixel.converted(TypeUChar, channels_);
    if (image_) image_->setFillValue(tileFill_.data());
    return ilSIDImage::setFill(tileFill_);
}

bool ilZNTiledImage::isPlain(const ilImageConfig* config) const {
    return !config ||
           (!config->remapsChannels() && (config->channels < 1 || config->channels == channels_) &&
            (config->dataType == TypeAny || config->dataType == dataType_) &&
            (config->order == OrderAny || config->order == order_ || channels_ == 1) &&
            (config->coordSpace == 0 || config->coordSpace == coordSpace_));
}

std::int32_t ilZNTiledImage::readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                                        const ilImageConfig* config) {
    if (const auto result = beginOperation()) return result;
    if (!buffer) return ImageUnusable;
    const ilTile wanted = intersection(box, frame);
    if (wanted.isEmpty()) return ImageOk;
    if (!isOnPlane(wanted, frame)) return ImageUnusable;
    if (!isPlain(config)) return readConverted(wanted, buffer, frame, *config);
    const std::size_t pixel = image_->bytesPerPixel();
    const std::size_t stride = static_cast<std::size_t>(frame.nx) * pixel;
    auto* const first = static_cast<std::uint8_t*>(buffer) +
                        static_cast<std::size_t>(wanted.y - frame.y) * stride +
                        static_cast<std::size_t>(wanted.x - frame.x) * pixel;
    readRect(*image_, rectOf(wanted), first, stride);
    return ImageOk;
}

std::int32_t ilZNTiledImage::writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                                         const ilImageConfig* config) {
    if (const auto result = beginOperation()) return result;
    if (!buffer) return ImageUnusable;
    const ilTile wanted = intersection(box, frame);
    if (wanted.isEmpty()) return ImageOk;
    if (!isOnPlane(wanted, frame)) return ImageUnusable;
    if (!isPlain(config)) return writeConverted(wanted, buffer, frame, *config);
    const std::size_t pixel = image_->bytesPerPixel();
    const std::size_t stride = static_cast<std::size_t>(frame.nx) * pixel;
    const auto* const first = static_cast<const std::uint8_t*>(buffer) +
                              static_cast<std::size_t>(wanted.y - frame.y) * stride +
                              static_cast<std::size_t>(wanted.x - frame.x) * pixel;
    return changed(writeRect(*image_, rectOf(wanted), first, stride));
}

std::int32_t ilZNTiledImage::fillRegion(const ilTile& box, const ilPixel& pixel,
                                        const ilImageConfig* config, const ilTile* keepOut) {
    if (const auto result = beginOperation()) return result;
    if (box.isEmpty()) return ImageOk;
    const bool allChannels = !config || (!config->remapsChannels() &&
                                         (config->channels < 1 || config->channels >= channels_));
    const bool upright = !config || config->coordSpace == 0 || config->coordSpace == coordSpace_;
    const ilPixel value = pixel.converted(TypeUChar, channels_);
    bool complete = true;
    ilTile piece;
    for (BoxDifference around(box, keepOut ? *keepOut : ilTile{}); around.next(piece);) {
        if (piece.z > 0 || piece.endZ() < 1) continue;
        piece.z = 0;
        piece.nz = 1;
        if (!allChannels || !upright) {
            if (const auto result = fillConverted(piece, pixel, *config)) return result;
        } else if (!fillRect(*image_, rectOf(piece), value.data(), blocks())) {
            complete = false;
        }
    }
    return changed(complete);
}

std::int32_t ilZNTiledImage::lockPages(std::span<PageLockRequest> requests, std::uint32_t mode) {
    for (PageLockRequest& request : requests) {
        request.status = ImageOk;
        request.page = nullptr;
    }
    if (const auto result = beginOperation()) return result;
    const bool write = (mode & LockWrite) != 0;
    std::int32_t result = ImageOk;
    for (PageLockRequest& request : requests) {
        request.status = lockCell(request, write);
        if (request.status != ImageOk) result = request.status;
    }
    if (write && !requests.empty()) setAltered(NotifyOnly);
    return result;
}

std::int32_t ilZNTiledImage::lockCell(PageLockRequest& request, bool write) {
    TileNode* const node = image_->container().nodeOfCell(cellOf(request.x), cellOf(request.y));
    if (!node || request.z != 0) return ImageOk;
    if (!setKind(*node, TileKind::Filled, *image_, Contents::Keep)) return ImageUnusable;
    if (write && !prepareWrite(*node)) return ImageUnusable;
    request.page = new (std::nothrow) LockedCell(request, *node, write);
    if (!request.page) return ImageUnusable;
    ++locks_;
    return ImageOk;
}

void ilZNTiledImage::unlockPages(std::span<PageLockRequest> requests) {
    for (PageLockRequest& request : requests) {
        const std::unique_ptr<ilPage> page(std::exchange(request.page, nullptr));
        if (page) --locks_;
    }
}

std::int32_t ilZNTiledImage::pushToSource() {
    return ImageOk;
}

}  // namespace brushwork
