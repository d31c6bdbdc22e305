#include <algorithm>

#include "image/chain/il_image.h"

namespace brushwork {
namespace {

ilPixel limitsOf(double value, std::int32_t channels) {
    ilPixel limits(TypeDouble, std::max(channels, 1));
    for (std::int32_t i = 0; i < limits.channels(); ++i) limits.setChannel(i, value);
    return limits;
}

}  // namespace

void ilImage::update() {
    setDefaultLimits(false);
    adaptFill();
    if (!isSetByClient(AlteredScale)) {
        // Bit 31 is up while this runs, so the getters answer at once.
        scaleMin_ = getMinValue();
        scaleMax_ = getMaxValue();
    }
    ilLink::update();
}

void ilImage::adaptFill() {
    if (isSetByClient(AlteredFill)) return;
    if (fill_.type() == dataType_) {
        for (std::int32_t i = fill_.channels(); i < channels_; ++i) {
            if (!fill_.setChannel(i, fill_.channel(i - 1))) break;
        }
        return;
    }
    const ilPixel& values = fill_.channels() > 0 ? fill_ : minValue_;
    fill_ = channels_ > 0 ? values.converted(dataType_, channels_) : ilPixel(dataType_, 0);
}

// Without channels the maximum, too, takes the type's minimum: an image that can hold nothing has
// an empty range.
void ilImage::setDefaultLimits(bool forgetClient) {
    if (forgetClient) setFlags_ &= ~std::uint32_t{AlteredMinValue | AlteredMaxValue};
    const DataTypeInfo& info = dataTypeInfo(dataType_);
    const double largest = channels_ > 0 ? info.maximum : info.minimum;
    if (!isSetByClient(AlteredMinValue)) minValue_ = limitsOf(info.minimum, channels_);
    if (!isSetByClient(AlteredMaxValue)) maxValue_ = limitsOf(largest, channels_);
}

void ilImage::setDefaultPageSize(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t c) {
    if (!isSetByClient(AlteredPageSize)) {
        pageX_ = x;
        pageY_ = y;
        pageZ_ = z;
        pageC_ = c;
    }
    if (pageC_ < 1) pageC_ = order_ == OrderSeparate ? 1 : channels_;
    refreshPageBytes();
}

void ilImage::setDefaultColorModel(bool fourAreMultiSpectral) {
    if (isSetByClient(AlteredColorModel)) return;
    colorModel_ = defaultColorModel(channels_, fourAreMultiSpectral);
}

void ilImage::reconcileColorModel() {
    const std::int32_t implied = colorModelChannels(colorModel_);
    const bool fits = implied == 0 || implied == channels_;
    if (!fits && isSetByClient(AlteredChannels)) {
        setStatus(ImageColorMismatch);
    } else {
        if (!fits) channels_ = implied;
        if (status() == ImageColorMismatch) clearStatus();
    }
    pageC_ = order_ == OrderSeparate ? 1 : channels_;
    refreshPageBytes();
}

void ilImage::refreshPageBytes() {
    pageBytes_ = blockBytes(dataType_, pageX_, pageY_, pageZ_, pageC_);
}

}  // namespace brushwork
