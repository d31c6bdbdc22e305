#include "image/work/il_memory_img.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "image/chain/box_difference.h"
#include "image/work/pixel_block.h"

namespace brushwork {
namespace {

constexpr std::size_t bufferAlignment = 64;

constexpr std::uint32_t clientAttributes = AlteredCoordSpace | AlteredColorModel | AlteredMinValue |
                                           AlteredMaxValue | AlteredScale | AlteredFill |
                                           AlteredStorageMode;

ilTile shifted(ilTile box, std::int32_t dx, std::int32_t dy, std::int32_t dz) {
    box.x += dx;
    box.y += dy;
    box.z += dz;
    return box;
}

}  // namespace

// The page over the buffer; it stays the same object while buffers change.
class ilMemoryImg::WholePage : public ilPage {
  public:
    using ilPage::ilPage;
    using ilPage::setData;
};

// A caller's config with all wildcards resolved, and what follows from it.
struct ilMemoryImg::Request {
    ilImageConfig config;
    PixelBlock image;  // as the config's coordinate space sees it

    Request(ilMemoryImg& owner, const ilImageConfig* wanted) {
        if (wanted) config = *wanted;
        if (config.dataType == TypeAny) config.dataType = owner.dataType_;
        if (config.order == OrderAny) config.order = owner.order_;
        if (config.coordSpace == 0) config.coordSpace = owner.coordSpace_;
        if (config.channels < 1) config.channels = owner.channels_;
        const ilTile all{0, 0, 0, owner.sizeX_, owner.sizeY_, owner.sizeZ_};
        image = PixelBlock::packed(owner.data_, all, owner.dataType_, owner.order_, owner.channels_)
                    .seenIn(config.coordSpace, owner.coordSpace_);
        if (config.channelOffset != 0 || config.channelList) pairChannels();
    }
    [[nodiscard]] PixelBlock buffer(void* data, const ilTile& frame) const {
        return PixelBlock::packed(data, frame, config.dataType, config.order, config.channels);
    }
    // Channels of the image for those of the buffer, and the other way.
    [[nodiscard]] ChannelMap toBuffer() const { return mapOf(imageChannel_); }
    [[nodiscard]] ChannelMap toImage() const { return mapOf(bufferChannel_); }

  private:
    void pairChannels() {
        bufferChannel_.assign(static_cast<std::size_t>(image.channels), -1);
        for (std::int32_t n = 0; n < config.channels; ++n) {
            const std::int32_t place = config.channelAt(n);
            const bool exists = place >= 0 && place < image.channels;
            imageChannel_.push_back(exists ? place : -1);
            if (exists) bufferChannel_[static_cast<std::size_t>(place)] = n;
        }
    }
    [[nodiscard]] ChannelMap mapOf(const std::vector<std::int32_t>& channels) const {
        if (channels.empty()) return {nullptr, std::min(config.channels, image.channels)};
        return {channels.data(), static_cast<std::int32_t>(channels.size())};
    }

    // Empty where channel n is channel n.
    std::vector<std::int32_t> imageChannel_, bufferChannel_;
};

const ClassDescriptor ilMemoryImg::descriptor = {"Memory", &ilSIDImage::descriptor};

ilMemoryImg::ilMemoryImg() {
    initialize(0);
    sizeX_ = sizeY_ = sizeZ_ = channels_ = 0;
    dataType_ = TypeAny;
    order_ = OrderAny;
}

ilMemoryImg::ilMemoryImg(std::int32_t sizeX, std::int32_t sizeY, std::int32_t sizeZ,
                         std::int32_t channels, std::int32_t dataType, std::int32_t order) {
    initialize(channels);
    sizeX_ = sizeX;
    sizeY_ = sizeY;
    sizeZ_ = sizeZ;
    channels_ = channels;
    dataType_ = dataType;
    order_ = order;
    allocateBuffer();
}

ilMemoryImg::ilMemoryImg(ilImage* source, Read read) : ilMemoryImg() {
    linked_ = true;
    if (!source) {
        setStatus(ImageUnusable);
        return;
    }
    readsParent_ = read == Read::Now;
    setParent(source, 0);
    setSource(source);
    reset();
}

ilMemoryImg::ilMemoryImg(void* buffer, std::int32_t sizeX, std::int32_t sizeY, std::int32_t sizeZ,
                         std::int32_t channels, std::int32_t dataType, std::int32_t order) {
    initialize(channels);
    sizeX_ = sizeX;
    sizeY_ = sizeY;
    sizeZ_ = sizeZ;
    channels_ = channels;
    dataType_ = dataType;
    order_ = order;
    data_ = static_cast<std::uint8_t*>(buffer);
    if (!hasPixels()) setStatus(ImageUnusable);
}

ilMemoryImg::~ilMemoryImg() {
    releaseBuffer();
}

void ilMemoryImg::initialize(std::int32_t channels) {
    imageKind_ = KindMemory;
    maxParents_ = 1;
    coordSpace_ = SpaceLowerLeft;
    colorModel_ = defaultColorModel(channels);
    allowedFlags_ |= clientAttributes;
    altered_ |= AlteredPixels;  // limits, fill and page size wait for the first update
}

const char* ilMemoryImg::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilMemoryImg::classDescriptor() const {
    return descriptor;
}

void ilMemoryImg::update() {
    if (ilImage* parent = parentImage(0)) follow(*parent);
    if (hasPixels()) {
        setDefaultLimits(false);
        setDefaultPageSize(sizeX_, sizeY_, sizeZ_, 0);
    }
    ilSIDImage::update();
    if (readsParent_ && data_) {
        if (ilImage* parent = parentImage(0)) {
            const ilTile all{0, 0, 0, sizeX_, sizeY_, sizeZ_};
            const ilImageConfig own(dataType_, order_, channels_);
            if (const auto result = parent->readRegion(all, data_, all, &own)) setStatus(result);
        }
    }
}

// Sizes and attributes of the parent. A buffer of other sizes, or one that isn't ours, is replaced.
void ilMemoryImg::follow(ilImage& parent) {
    const std::size_t before = bytesNeeded();
    sizeX_ = parent.sizeX();
    sizeY_ = parent.sizeY();
    sizeZ_ = parent.sizeZ();
    channels_ = parent.channels();
    dataType_ = parent.dataType();
    order_ = parent.order();
    if (!isSetByClient(AlteredCoordSpace)) coordSpace_ = parent.coordSpace();
    if (!isSetByClient(AlteredColorModel)) colorModel_ = parent.colorModel();
    if (ownedBytes_ == 0 || bytesNeeded() != before)
        allocateBuffer();
    else
        setBuffer(data_, ownedBytes_);
}

std::int32_t ilMemoryImg::beginOperation() {
    if (data_) clearStatus();
    if (const auto result = reset()) return result;
    return hasPixels() ? ImageOk : finish(ImageUnusable);
}

std::int32_t ilMemoryImg::finish(std::int32_t result) {
    setStatus(result);
    return result;
}

std::int32_t ilMemoryImg::readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                                     const ilImageConfig* config) {
    if (const auto result = beginOperation()) return result;
    if (!buffer) return finish(ImageUnusable);
    const Request request(*this, config);
    const PixelBlock target = request.buffer(buffer, frame);
    const ilTile wanted = intersection(box, frame);
    convertBlock(request.image, target, wanted, request.toBuffer());
    ilTile piece;
    for (BoxDifference outside(wanted, request.image.frame); outside.next(piece);)
        convertBlock(PixelBlock::ofConstant(fill_, piece), target, piece, request.toBuffer());
    return ImageOk;
}

std::int32_t ilMemoryImg::writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                                      const ilImageConfig* config) {
    if (const auto result = beginOperation()) return result;
    if (!buffer) return finish(ImageUnusable);
    const Request request(*this, config);
    // Only read from, as the converter's source.
    const PixelBlock source = request.buffer(const_cast<void*>(buffer), frame);
    convertBlock(source, request.image, box, request.toImage());
    setAltered(NotifyOnly);
    return ImageOk;
}

std::int32_t ilMemoryImg::fillRegion(const ilTile& box, const ilPixel& pixel,
                                     const ilImageConfig* config, const ilTile* keepOut) {
    if (const auto result = beginOperation()) return result;
    const Request request(*this, config);
    const ilTile inside = intersection(box, request.image.frame);
    ilTile piece;
    for (BoxDifference around(inside, keepOut ? *keepOut : ilTile{}); around.next(piece);)
        convertBlock(PixelBlock::ofConstant(pixel, piece), request.image, piece, request.toImage());
    setAltered(NotifyOnly);
    return ImageOk;
}

std::int32_t ilMemoryImg::copyRegion(const ilTile& box, ilImage& other, std::int32_t ox,
                                     std::int32_t oy, std::int32_t oz, const ilImageConfig* config,
                                     CopyDirection direction) {
    if (const auto result = beginOperation()) return result;
    // The pixels lie in this image's own layout; a config that asks for another number of channels
    // or another space needs a buffer in between, and so does an image that stands otherwise.
    const bool fits = !config || ((config->channels < 1 || config->channels == channels_) &&
                                  (config->coordSpace == 0 || config->coordSpace == coordSpace_));
    const bool sameSpace = other.coordSpace() == coordSpace_;
    if (!fits || !sameSpace || &other == this || needsConversion(other, config))
        return ilSIDImage::copyRegion(box, other, ox, oy, oz, config, direction);
    ilImageConfig merged(dataType_, order_, channels_);
    merged.coordSpace = coordSpace_;
    if (config) {
        merged.channelOffset = config->channelOffset;
        merged.channelList = config->channelList;
    }
    ilTile inside = box;
    clip(inside);
    const ilTile all{0, 0, 0, sizeX_, sizeY_, sizeZ_};
    const std::int32_t dx = ox - box.x;
    const std::int32_t dy = oy - box.y;
    const std::int32_t dz = oz - box.z;
    const ilTile there = shifted(inside, dx, dy, dz);
    const ilTile frame = shifted(all, dx, dy, dz);
    std::int32_t result = ImageOk;
    if (direction == CopyDirection::FromOther) {
        if (!inside.isEmpty()) result = other.readRegion(there, data_, frame, &merged);
    } else {
        if (!inside.isEmpty()) result = other.writeRegion(there, data_, frame, &merged);
        if (result == ImageOk && fill_.channels() == channels_ && !all.contains(box))
            result = other.fillRegion(shifted(box, dx, dy, dz), fill_, &merged, &there);
    }
    setAltered(NotifyOnly);
    return result;
}

std::int32_t ilMemoryImg::lockPages(std::span<PageLockRequest> requests, std::uint32_t) {
    if (const auto result = beginOperation()) return result;
    const ilTile reach{-borderX_,         -borderY_,         -borderZ_,
                       sizeX_ + borderX_, sizeY_ + borderY_, sizeZ_ + borderZ_};
    for (PageLockRequest& request : requests) {
        request.status = ImageOk;
        request.page = nullptr;
        const bool inside = reach.contains({request.x, request.y, request.z, 1, 1, 1}) &&
                            request.c >= 0 && request.c < channels_;
        if (!inside) continue;
        if (!page_) page_ = std::make_unique<WholePage>(sizeX_, sizeY_, sizeZ_, channels_, data_);
        request.page = page_.get();
    }
    return ImageOk;
}

void ilMemoryImg::unlockPages(std::span<PageLockRequest>) {}

std::int32_t ilMemoryImg::pushToSource() {
    ilSIDImage* const target = source();
    if (!target) return ImageNotOneParent;
    if (const std::int32_t status = beginOperation(); status != ImageOk) return status;
    return copyRegion({0, 0, 0, sizeX_, sizeY_, sizeZ_}, *target, 0, 0, 0, nullptr,
                      CopyDirection::ToOther);
}

std::size_t ilMemoryImg::bytesNeeded() const {
    // Distances within the buffer must fit their type.
    constexpr auto most = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
    const std::size_t bytes = blockBytes(dataType_, sizeX_, sizeY_, sizeZ_, channels_);
    return bytes > most - bufferAlignment ? 0 : bytes;
}

std::size_t ilMemoryImg::byteSize() {
    reset();
    return bytesNeeded();
}

bool ilMemoryImg::allocateBuffer() {
    releaseBuffer();
    const std::size_t bytes = bytesNeeded();
    std::uint8_t* const buffer = bytes ? imageAllocate(bytes) : nullptr;
    setBuffer(buffer, buffer ? bytes : 0);
    if (!buffer)
        setStatus(ImageUnusable);
    else if (status() == ImageUnusable)
        clearStatus();
    return buffer != nullptr;
}

void ilMemoryImg::adoptBuffer(std::uint8_t* buffer, std::size_t bytes) {
    releaseBuffer();
    setBuffer(buffer, bytes);
}

void ilMemoryImg::releaseBuffer() {
    if (ownedBytes_ != 0) imageFree(data_, ownedBytes_);
    setBuffer(nullptr, 0);
}

void ilMemoryImg::exchangeSizes() {
    std::swap(sizeX_, sizeY_);
    setDefaultPageSize(sizeX_, sizeY_, sizeZ_, 0);
    setBuffer(data_, ownedBytes_);
}

void ilMemoryImg::setBuffer(std::uint8_t* buffer, std::size_t ownedBytes) {
    data_ = buffer;
    ownedBytes_ = ownedBytes;
    if (!page_) return;
    page_->setData(buffer);
    page_->x = sizeX_;
    page_->y = sizeY_;
    page_->z = sizeZ_;
    page_->c = channels_;
}

}  // namespace brushwork
