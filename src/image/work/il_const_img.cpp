#include "image/work/il_const_img.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

#include "image/work/pixel_block.h"

namespace brushwork {
namespace {

constexpr std::int32_t constPageSide = 128;

void fillWords(std::uint8_t* to, const std::uint8_t* word, std::size_t count) {
    std::uint32_t value;
    std::memcpy(&value, word, sizeof value);
    if (value == 0) {
        std::memset(to, 0, count * sizeof value);
        return;
    }
    for (std::size_t n = 0; n < count; ++n, to += sizeof value)
        std::memcpy(to, &value, sizeof value);
}

// Rows of bytes or of words.
void fillRows(const ilPixel& pixel, const ilTile& box, std::uint8_t* buffer, const ilTile& frame) {
    const ilTile inside = intersection(box, frame);
    if (inside.isEmpty()) return;
    const auto channels = static_cast<std::size_t>(pixel.channels());
    const auto width = static_cast<std::size_t>(inside.nx);
    const std::size_t rowBytes = static_cast<std::size_t>(frame.nx) * channels;
    std::uint8_t* row = buffer + static_cast<std::size_t>(inside.y - frame.y) * rowBytes +
                        static_cast<std::size_t>(inside.x - frame.x) * channels;
    for (std::int32_t n = 0; n < inside.ny; ++n, row += rowBytes) {
        if (channels == 4)
            fillWords(row, pixel.data(), width);
        else
            std::memset(row, pixel.data()[0], width);
    }
}

// The pixels asked for are the value's own: bytes, one or four of them, nothing rearranged.
bool asksForOwnPixels(const ilPixel& value, std::int32_t order, const ilImageConfig* config) {
    if (value.type() != TypeUChar || (value.channels() != 1 && value.channels() != 4)) return false;
    // One channel lies the same in every order.
    if (order != OrderInterleaved && value.channels() != 1) return false;
    if (!config) return true;
    return (config->channels == value.channels() || config->channels < 1) &&
           (config->dataType == TypeUChar || config->dataType == TypeAny) &&
           (config->order == order || config->order == OrderAny) && config->channelOffset == 0 &&
           !config->channelList;
}

}  // namespace

const ClassDescriptor ilConstImg::descriptor = {"Constant", &ilImage::descriptor};

ilConstImg::ilConstImg() : ilConstImg(ilPixel(TypeUChar, 1)) {}

ilConstImg::ilConstImg(const ilPixel& pixel) {
    allowedFlags_ |= AlteredFill;
    ilImage::setFill(pixel);
    sizeX_ = sizeY_ = sizeZ_ = 1;
    channels_ = pixel.channels();
    dataType_ = pixel.type();
    order_ = OrderInterleaved;
    colorModel_ = ColorABGR;
    coordSpace_ = SpaceLowerLeft;
    allowedFlags_ |= AlteredSize | AlteredCoordSpace | AlteredColorModel;
}

ilConstImg::~ilConstImg() = default;

const char* ilConstImg::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilConstImg::classDescriptor() const {
    return descriptor;
}

void ilConstImg::update() {
    if (altered_ & AlteredFill) {
        channels_ = fill_.channels();
        dataType_ = fill_.type();
    }
    setDefaultPageSize(constPageSide, constPageSide, 1, 0);
    ilImage::update();
}

std::int32_t ilConstImg::readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                                    const ilImageConfig* config) {
    if (const auto result = reset()) return result;
    if (!buffer) return ImageUnusable;
    if (frame.nz == 1 && asksForOwnPixels(fill_, order_, config)) {
        fillRows(fill_, box, static_cast<std::uint8_t*>(buffer), frame);
        return ImageOk;
    }
    ilImageConfig wanted = config ? *config : ilImageConfig();
    if (wanted.dataType == TypeAny) wanted.dataType = dataType_;
    if (wanted.order == OrderAny) wanted.order = order_;
    if (wanted.channels < 1) wanted.channels = channels_;
    std::vector<std::int32_t> map;
    if (wanted.channelOffset != 0 || wanted.channelList)
        for (std::int32_t n = 0; n < wanted.channels; ++n) map.push_back(wanted.channelAt(n));
    const PixelBlock target =
        PixelBlock::packed(buffer, frame, wanted.dataType, wanted.order, wanted.channels);
    // In the wanted type first, by the rules of single pixels, if one can hold it.
    const std::int32_t count = std::max(wanted.channels, fill_.channels());
    const bool retyped =
        wanted.dataType != fill_.type() &&
        bufferBytes(wanted.dataType, static_cast<std::size_t>(count)) <= ilPixel::capacity;
    const ilPixel value = retyped ? fill_.converted(wanted.dataType, count) : fill_;
    convertBlock(PixelBlock::ofConstant(value, box), target, box,
                 {map.empty() ? nullptr : map.data(), wanted.channels});
    return ImageOk;
}

std::int32_t ilConstImg::writeRegion(const ilTile&, const void*, const ilTile&,
                                     const ilImageConfig*) {
    return ImageNotAllowed;
}

std::int32_t ilConstImg::copyRegion(const ilTile& box, ilImage& other, std::int32_t ox,
                                    std::int32_t oy, std::int32_t oz, const ilImageConfig* config,
                                    CopyDirection direction) {
    if (direction == CopyDirection::FromOther) return ImageNotAllowed;
    if (const auto result = reset()) return result;
    const ilTile there{ox, oy, oz, box.nx, box.ny, box.nz};
    if (!config) return other.fillRegion(there, fill_);
    ilImageConfig filled = *config;
    filled.dataType = dataType_;
    filled.order = order_;
    return other.fillRegion(there, fill_, &filled);
}

}  // namespace brushwork
