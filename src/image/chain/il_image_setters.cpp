#include "image/chain/il_image.h"

namespace brushwork {

// Every setter's way: refused, or the same as before, which still counts as set, or stored.
template <class T>
std::int32_t ilImage::setAttribute(T& attribute, const T& value, std::uint32_t flag,
                                   std::uint32_t modifiers) {
    if ((allowedFlags_ & flag) != flag) return ImageNotAllowed;
    if (attribute == value) {
        setFlags_ |= flag;
        return ImageOk;
    }
    attribute = value;
    return setAltered(flag | modifiers);
}

std::int32_t ilImage::setSize(std::int32_t x, std::int32_t y, std::int32_t z,
                              std::int32_t channels) {
    using Sizes = ilXYZCstruct<std::int32_t>;
    Sizes sizes{sizeX_, sizeY_, sizeZ_, channels_};
    const std::int32_t result = setAttribute(sizes, {x, y, z, channels}, AlteredSize);
    sizeX_ = sizes.x;
    sizeY_ = sizes.y;
    sizeZ_ = sizes.z;
    channels_ = sizes.c;
    return result;
}

std::int32_t ilImage::setSizeX(std::int32_t x) {
    return setAttribute(sizeX_, x, AlteredSizeX);
}

std::int32_t ilImage::setSizeY(std::int32_t y) {
    return setAttribute(sizeY_, y, AlteredSizeY);
}

std::int32_t ilImage::setSizeZ(std::int32_t z) {
    return setAttribute(sizeZ_, z, AlteredSizeZ);
}

std::int32_t ilImage::setChannels(std::int32_t channels) {
    return setAttribute(channels_, channels, AlteredChannels);
}

std::int32_t ilImage::setDataType(std::int32_t type) {
    return setAttribute(dataType_, type, AlteredDataType);
}

std::int32_t ilImage::setOrder(std::int32_t order) {
    return setAttribute(order_, order, AlteredOrder);
}

std::int32_t ilImage::setColorModel(std::int32_t model) {
    return setAttribute(colorModel_, model, AlteredColorModel);
}

std::int32_t ilImage::setCoordSpace(std::int32_t space) {
    return setAttribute(coordSpace_, space, AlteredCoordSpace);
}

std::int32_t ilImage::setStorageMode(std::int32_t mode) {
    return setAttribute(storageMode_, mode, AlteredStorageMode, KeepFromChildren);
}

std::int32_t ilImage::setPageSize(std::int32_t x, std::int32_t y, std::int32_t z) {
    ilXYZCstruct<std::int32_t> size{pageX_, pageY_, pageZ_, 0};
    const std::int32_t result = setAttribute(size, {x, y, z, 0}, AlteredPageSize, KeepFromChildren);
    pageX_ = size.x;
    pageY_ = size.y;
    pageZ_ = size.z;
    refreshPageBytes();
    return result;
}

std::int32_t ilImage::setPageBorder(std::int32_t x, std::int32_t y, std::int32_t z) {
    ilXYZCstruct<std::int32_t> border{borderX_, borderY_, borderZ_, 0};
    const std::int32_t result = setAttribute(border, {x, y, z, 0}, AlteredBorder, KeepFromChildren);
    borderX_ = border.x;
    borderY_ = border.y;
    borderZ_ = border.z;
    return result;
}

std::int32_t ilImage::setFill(const ilPixel& pixel) {
    return setAttribute(fill_, pixel, AlteredFill);
}

std::int32_t ilImage::setFillChannel(double value, std::int32_t channel) {
    if ((allowedFlags_ & AlteredFill) == 0) return ImageNotAllowed;
    reset();
    // A value that the type cuts to the stored one still counts as a change.
    const bool held = channel >= 0 && channel < fill_.channels();
    if (held && fill_.channel(channel) == value) {
        setFlags_ |= AlteredFill;
        return ImageOk;
    }
    ilPixel changed = fill_;
    if (!changed.setChannel(channel, value)) return ImageNotAllowed;
    fill_ = changed;
    return setAltered(AlteredFill);
}

std::int32_t ilImage::setMinValue(const ilPixel& pixel) {
    return setAttribute(minValue_, pixel, AlteredMinValue);
}

std::int32_t ilImage::setMaxValue(const ilPixel& pixel) {
    return setAttribute(maxValue_, pixel, AlteredMaxValue);
}

std::int32_t ilImage::setMinValue(double value, std::int32_t channel) {
    return setLimit(minValue_, value, channel, AlteredMinValue);
}

std::int32_t ilImage::setMaxValue(double value, std::int32_t channel) {
    return setLimit(maxValue_, value, channel, AlteredMaxValue);
}

std::int32_t ilImage::setScale(double min, double max) {
    Extent<double> scale{scaleMin_, scaleMax_};
    const std::int32_t result = setAttribute(scale, {min, max}, AlteredScale, NotifyOnly);
    scaleMin_ = scale.x;
    scaleMax_ = scale.y;
    return result;
}

std::int32_t ilImage::setScaleFromType(std::int32_t type) {
    const DataTypeInfo& info = dataTypeInfo(type == 0 ? dataType() : type);
    return setScale(info.minimum, info.maximum);
}

// Brings the image up to date first: the channels beside this one keep their defaults.
std::int32_t ilImage::setChannelOf(ilPixel& pixel, double value, std::int32_t channel,
                                   std::uint32_t flag) {
    if ((allowedFlags_ & flag) == 0) return ImageNotAllowed;
    reset();
    ilPixel changed = pixel;
    if (!changed.setChannel(channel, value)) return ImageNotAllowed;
    return setAttribute(pixel, changed, flag);
}

std::int32_t ilImage::setLimit(ilPixel& limit, double value, std::int32_t channel,
                               std::uint32_t flag) {
    if (channel >= 0) return setChannelOf(limit, value, channel, flag);
    if ((allowedFlags_ & flag) == 0) return ImageNotAllowed;
    reset();
    std::int32_t result = ImageOk;
    for (std::int32_t i = 0; i < limit.channels() && result == ImageOk; ++i) {
        result = setChannelOf(limit, value, i, flag);
    }
    return result;
}

}  // namespace brushwork
