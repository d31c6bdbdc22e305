#include "image/chain/il_image.h"

#include <algorithm>
#include <utility>

namespace brushwork {
namespace {

Extent<std::int32_t> extentIn(std::int32_t wanted, std::int32_t own, std::int32_t x,
                              std::int32_t y) {
    if (isTransposed(wanted) != isTransposed(own)) std::swap(x, y);
    return {x, y};
}

}  // namespace

const ClassDescriptor ilImage::descriptor = {"Image", &ilLink::descriptor};

ilImage::ilImage() {
    allowedFlags_ |= AlteredFill | AlteredMinValue | AlteredMaxValue | AlteredScale;
}

ilImage::~ilImage() = default;

const char* ilImage::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilImage::classDescriptor() const {
    return descriptor;
}

ilImageConfig::ilImageConfig(ilImage& image)
    : dataType(image.dataType()),
      order(image.order()),
      coordSpace(image.coordSpace()),
      channels(image.channels()),
      colorModel(image.colorModel()) {}

ilImageConfig ilImage::completed(const ilImageConfig* config) {
    const ilImageConfig own(*this);
    if (!config) return own;
    ilImageConfig result = *config;
    if (result.dataType == TypeAny) result.dataType = own.dataType;
    if (result.order == OrderAny) result.order = own.order;
    if (result.coordSpace == 0) result.coordSpace = own.coordSpace;
    if (result.channels == 0) result.channels = own.channels;
    if (result.colorModel == 0) result.colorModel = own.colorModel;
    return result;
}

std::int32_t ilImage::sizeX() {
    reset();
    return sizeX_;
}

std::int32_t ilImage::sizeY() {
    reset();
    return sizeY_;
}

std::int32_t ilImage::sizeZ() {
    reset();
    return sizeZ_;
}

std::int32_t ilImage::channels() {
    reset();
    return channels_;
}

std::int32_t ilImage::width() {
    return sizeIn(SpaceLowerLeft).x;
}

std::int32_t ilImage::height() {
    return sizeIn(SpaceLowerLeft).y;
}

Extent<std::int32_t> ilImage::sizeIn(std::int32_t coordSpace) {
    reset();
    return extentIn(coordSpace, coordSpace_, sizeX_, sizeY_);
}

Extent<std::int32_t> ilImage::pageSizeIn(std::int32_t coordSpace) {
    reset();
    return extentIn(coordSpace, coordSpace_, pageX_, pageY_);
}

ilTile ilImage::box() {
    reset();
    return {0, 0, 0, sizeX_, sizeY_, sizeZ_};
}

std::int32_t ilImage::dataType() {
    reset();
    return dataType_;
}

std::int32_t ilImage::order() {
    reset();
    return order_;
}

std::int32_t ilImage::colorModel() {
    reset();
    return colorModel_;
}

std::int32_t ilImage::coordSpace() {
    reset();
    return coordSpace_;
}

std::int32_t ilImage::storageMode() {
    reset();
    return storageMode_;
}

ilXYZCstruct<std::int32_t> ilImage::pageSize() {
    reset();
    return {pageX_, pageY_, pageZ_, pageC_};
}

std::size_t ilImage::pageBytes() {
    reset();
    return pageBytes_;
}

ilXYZCstruct<std::int32_t> ilImage::pageBorder() {
    reset();
    return {borderX_, borderY_, borderZ_, 0};
}

ilPixel ilImage::fill() {
    reset();
    return fill_;
}

double ilImage::getMinValue(std::int32_t channel) {
    reset();
    if (channel >= 0) return minValue_.channel(channel);
    double smallest = minValue_.channel(0);
    for (std::int32_t i = 1; i < minValue_.channels(); ++i) {
        smallest = std::min(smallest, minValue_.channel(i));
    }
    return smallest;
}

double ilImage::getMaxValue(std::int32_t channel) {
    reset();
    if (channel >= 0) return maxValue_.channel(channel);
    double largest = maxValue_.channel(0);
    for (std::int32_t i = 1; i < maxValue_.channels(); ++i) {
        largest = std::max(largest, maxValue_.channel(i));
    }
    return largest;
}

double ilImage::scaleMin() {
    reset();
    return scaleMin_;
}

double ilImage::scaleMax() {
    reset();
    return scaleMax_;
}

std::int32_t ilImage::setParent(ilLink* parent, std::int32_t slot) {
    if (slot < 0 || slot >= maxParents_) return ImageNoSuchParent;
    return ilLink::setParent(parent, slot);
}

ilImage* ilImage::parentImage(std::int32_t slot) {
    ilLink* const link = parent(slot);
    return link && link->isKindOf(descriptor) != 0 ? static_cast<ilImage*>(link) : nullptr;
}

void ilImage::mapToParent(float&, float&) {}

void ilImage::mapFromParent(float&, float&) {}

std::int32_t ilImage::statusQuery() {
    return 0;
}

std::int32_t ilImage::argumentQuery(std::intptr_t) {
    return 0;
}

}  // namespace brushwork
