#include "image/smart/il_smart_image.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "foundation/services/log.h"
#include "foundation/services/settings.h"
#include "image/cache/smart_image_cache.h"

namespace brushwork {
namespace {

std::atomic<std::uint32_t> lastImageSerial{0};

constexpr std::uint32_t clientAttributes = AlteredColorModel | AlteredStorageMode;

std::uint8_t channelsFor(std::int32_t count) {
    return count > 1 ? 4 : 1;
}

bool isReadable(ilImage* parent) {
    return parent && parent->dataType() != TypeBit;
}

}  // namespace

ilSmartImage::Registration::Registration() {
    lock.emplace();
    SmartImageCache::instance().imageMade();
}

ilSmartImage::Registration::~Registration() {
    SmartImageCache::instance().imageGone();
}

const ClassDescriptor ilSmartImage::descriptor = {"ilSmartImage", &ilSIDImage::descriptor};

ilSmartImage::ilSmartImage() : ilSmartImage(ilPixel(TypeUChar, 1)) {}

ilSmartImage::ilSmartImage(const ilPixel& fill) : pages_(*this, channelsFor(fill.channels())) {
    begin(fill);
    registration_.lock.reset();
}

ilSmartImage::ilSmartImage(ilImage* parent) : ilSmartImage(parent, Options()) {}

ilSmartImage::ilSmartImage(ilImage* parent, const Options& options)
    : pages_(*this, channelsFor(isReadable(parent) ? parent->channels() : 1)) {
    const bool readable = isReadable(parent);
    begin(readable ? parent->fill() : ilPixel(TypeUChar, 1));
    trackAlpha_ = options.trackAlpha;
    if (readable) {
        beginOn(*parent);
    } else if (parent) {
        unusable_ = true;
        setStatus(ImageUnusable);
    }
    registration_.lock.reset();
}

ilSmartImage::~ilSmartImage() {
    registration_.lock.emplace();
    releaseChildren();
    leaveParent();
    pages_.clear();
    // Through volatile: written for those who look at the image after its end.
    *static_cast<volatile std::uint32_t*>(&guard_) = brushwork::deadSignature;
}

void ilSmartImage::begin(const ilPixel& fill) {
    imageSerial_ = ++lastImageSerial;
    imageKind_ = KindSmart;
    maxParents_ = 0;
    allowedFlags_ |= clientAttributes;
    channels_ = pages_.channels();
    setDefaultColorModel();
    setDefaultPageSize(pageSide, pageSide, 1, 0);
    fill_ = fill.converted(TypeUChar, channels_);
    pages_.setSolidValue(wordOf(fill_));
    refreshSizes();
    altered_ |= AlteredPixels;  // limits wait for the first update
}

void ilSmartImage::beginOn(ilImage& parent) {
    takeParent(parent);
    if (smartParent_) {
        ilTile box;
        smartParent_->bounds(box);
        boxes_.hasFixed = smartParent_->boxes_.hasFixed;
        boxes_.fixed = smartParent_->boxes_.fixed;
        boxes_.content = box;
    } else {
        boxes_.content = SmartBounds::clipped(flatTile(0, 0, parent.sizeX(), parent.sizeY()));
    }
    boxes_.initial = boxes_.previous = boxes_.content;
    applyBounds(boxes_.content);
}

const char* ilSmartImage::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilSmartImage::classDescriptor() const {
    return descriptor;
}

ilSmartImage* ilSmartImage::from(ilImage* image) {
    return isSmartImage(image) ? static_cast<ilSmartImage*>(image) : nullptr;
}

bool ilSmartImage::isSmartImage(ilImage* image) {
    if (!image) return false;
    if (!cacheSettings().oldImageId) return image->imageKind() == KindSmart;
    return std::strcmp(image->className(), descriptor.name) == 0;
}

bool ilSmartImage::isSound() const {
    if (guard_ == brushwork::liveSignature && pages_.isSound()) return true;
    if (imageFailure() == 0) log("SID: ERROR: Invalid ilSmartImage\n");
    noteImageFailure();
    return false;
}

std::int32_t ilSmartImage::beginOperation() {
    return isSound() ? reset() : ImageUnusable;
}

std::uint32_t ilSmartImage::wordOf(const ilPixel& pixel) const {
    const ilPixel own = pixel.converted(TypeUChar, pages_.channels());
    std::uint32_t word = 0;
    for (unsigned n = 0; n < pages_.channels(); ++n) word |= std::uint32_t{own.data()[n]} << 8 * n;
    return word;
}

void ilSmartImage::update() {
    const ImageLockScope lock;
    if (!isSound()) return;
    ilSIDImage::update();
    static_cast<void>(pages_.setSolidValue(wordOf(fill_)));
    if (needsShrink_) shrinkNow();
    boxes_.previous = boxes_.content;
    boxes_.applyFixed();
    applyBounds(boxes_.content);
    setStatus(unusable_ ? ImageUnusable : ImageOk);
}

// Pixels keep what they are; the old fill beyond the bounds becomes the new one, also on pages that
// stick out.
std::int32_t ilSmartImage::setFill(const ilPixel& pixel) {
    const ImageLockScope lock;
    if (const auto result = beginOperation()) return result;
    const std::uint32_t word = wordOf(pixel);
    if (!pages_.setSolidValue(word)) return ImageUnusable;
    const std::int32_t result = ilSIDImage::setFill(pixel.converted(TypeUChar, channels_));
    const ilTile content = boxes_.content;
    if (result != ImageOk || content.isEmpty()) return result;
    const ilTile whole = SmartBounds::toPages(content);
    if (whole == content) return result;
    const std::int32_t filled = fillRegion(whole, fill_, nullptr, &content);
    applyBounds(content);
    return filled;
}

void ilSmartImage::bounds(ilTile& tile) {
    const ImageLockScope lock;
    static_cast<void>(beginOperation());
    boxes_.applyFixed();
    tile = boxes_.content;
}

void ilSmartImage::refreshSizes() {
    sizeX_ = std::max(1, boxes_.content.endX());
    sizeY_ = std::max(1, boxes_.content.endY());
    sizeZ_ = 1;
}

bool ilSmartImage::applyBounds(const ilTile& box, bool forceTrim) {
    const bool set = pages_.setBounds(box.isEmpty() ? emptyTile : box, forceTrim);
    boxes_.content = pages_.bounds();
    refreshSizes();
    return set;
}

void ilSmartImage::grow(const ilTile& box) {
    if (box.isEmpty() || (!boxes_.hasFixed && boxes_.content.contains(box))) return;
    boxes_.grow(box);
    if (!boxes_.hasFixed) pages_.extendBounds(box);
    refreshSizes();
}

void ilSmartImage::setBounds(const ilTile& box, bool forceTrim) {
    const ImageLockScope lock;
    if (beginOperation() != ImageOk) return;
    applyBounds(boxes_.hasFixed ? boxes_.fixed : SmartBounds::clipped(box), forceTrim);
    setAltered(NotifyOnly);
}

void ilSmartImage::setFixedBounds(const ilTile& box) {
    const ImageLockScope lock;
    if (beginOperation() != ImageOk) return;
    const ilTile inside = SmartBounds::clipped(box);
    boxes_.fixed = inside.isEmpty() ? emptyTile : inside;
    boxes_.hasFixed = true;
    applyBounds(boxes_.fixed);
    setAltered(NotifyOnly);
}

void ilSmartImage::clearFixedBounds() {
    const ImageLockScope lock;
    boxes_.hasFixed = false;
}

void ilSmartImage::growToPages(std::int32_t margin) {
    const ImageLockScope lock;
    if (beginOperation() != ImageOk || boxes_.content.isEmpty()) return;
    // Wider than the limit on each side is as wide as can be.
    margin = std::clamp(margin, 0, 2 * coordinateLimit);
    const ilTile wide = flatTile(boxes_.content.x - margin, boxes_.content.y - margin,
                                 boxes_.content.nx + 2 * margin, boxes_.content.ny + 2 * margin);
    grow(SmartBounds::clipped(SmartBounds::toPages(wide)));
    setAltered(NotifyOnly);
}

void ilSmartImage::setTrackAlpha(bool on) {
    const ImageLockScope lock;
    trackAlpha_ = on;
    allOpaqueClass_ = true;
}

}  // namespace brushwork
