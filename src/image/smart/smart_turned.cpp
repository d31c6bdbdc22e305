// Region access in another coordinate space than the image's own, and beyond the limit.
#include <vector>

#include "image/chain/box_difference.h"
#include "image/memory/image_buffer.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/page_accessor.h"
#include "image/work/pixel_block.h"

namespace brushwork {
namespace {

ilTile mapped(const ilTile& box, std::int32_t from, std::int32_t to, ilImage& image) {
    const auto rect =
        mapRect<std::int32_t>({box.x, box.y, box.nx, box.ny}, from, to, image.sizeIn(to));
    return {rect.x, rect.y, box.z, rect.w, rect.h, box.nz};
}

// A config with the image's own values for its wildcards, and the image's channels for those of the
// buffer and the other way.
struct Request {
    ilImageConfig config;
    std::vector<std::int32_t> toBuffer, toImage;

    Request(ilImage& image, const ilImageConfig* wanted) : config(image.completed(wanted)) {
        toImage.assign(static_cast<std::size_t>(image.channels()), -1);
        for (std::int32_t n = 0; n < config.channels; ++n) {
            const std::int32_t place = config.channelAt(n);
            const bool exists = place >= 0 && place < image.channels();
            toBuffer.push_back(exists ? place : -1);
            if (exists) toImage[static_cast<std::size_t>(place)] = n;
        }
    }
    [[nodiscard]] PixelBlock buffer(void* data, const ilTile& frame) const {
        return PixelBlock::packed(data, frame, config.dataType, config.order, config.channels);
    }
};

ChannelMap mapOf(const std::vector<std::int32_t>& channels) {
    return {channels.data(), static_cast<std::int32_t>(channels.size())};
}

// The pixels of an upright box, as the config's space sees them, at the place of `box`.
PixelBlock turned(std::uint8_t* pixels, const ilTile& upright, const ilTile& box,
                  std::int32_t channels, std::int32_t space, std::int32_t ownSpace) {
    PixelBlock block = PixelBlock::packed(pixels, flatTile(0, 0, upright.nx, upright.ny), TypeUChar,
                                          OrderInterleaved, channels)
                           .seenIn(space, ownSpace);
    block.frame = box;
    return block;
}

}  // namespace

void ilSmartImage::fillBeyond(const ilTile& box, const ilTile& inside, void* buffer,
                              const ilTile& frame, const ilImageConfig* config) {
    const Request request(*this, config);
    const ilPixel value = pixelOfWord(channels_, pages_.solidValue());
    ilTile piece;
    for (BoxDifference beyond(box, inside); beyond.next(piece);)
        convertBlock(PixelBlock::ofConstant(value, piece), request.buffer(buffer, frame), piece,
                     mapOf(request.toBuffer));
}

std::int32_t ilSmartImage::readTurned(const ilTile& box, void* buffer, const ilTile& frame,
                                      const ilImageConfig& config) {
    const ilTile wanted = intersection(box, frame);
    if (wanted.isEmpty() || wanted.nz != 1) return wanted.isEmpty() ? ImageOk : ImageUnusable;
    const ilTile upright = mapped(wanted, config.coordSpace, coordSpace_, *this);
    const ImageBuffer pixels(blockBytes(TypeUChar, upright.nx, upright.ny, 1, channels_));
    if (!pixels.data()) return ImageUnusable;
    const std::int32_t result = readRegion(upright, pixels.data(), upright);
    const Request request(*this, &config);
    convertBlock(turned(pixels.data(), upright, wanted, channels_, config.coordSpace, coordSpace_),
                 request.buffer(buffer, frame), wanted, mapOf(request.toBuffer));
    return result;
}

std::int32_t ilSmartImage::writeTurned(const ilTile& box, const void* buffer, const ilTile& frame,
                                       const ilImageConfig& config) {
    const ilTile wanted = intersection(box, frame);
    if (wanted.isEmpty() || wanted.nz != 1) return wanted.isEmpty() ? ImageOk : ImageUnusable;
    const ilTile upright = mapped(wanted, config.coordSpace, coordSpace_, *this);
    const ImageBuffer pixels(blockBytes(TypeUChar, upright.nx, upright.ny, 1, channels_));
    if (!pixels.data()) return ImageUnusable;
    const Request request(*this, &config);
    if (!takesAllChannels(&config)) {
        if (const auto result = readRegion(upright, pixels.data(), upright)) return result;
    }
    // Only read from, as the converter's source.
    convertBlock(request.buffer(const_cast<void*>(buffer), frame),
                 turned(pixels.data(), upright, wanted, channels_, config.coordSpace, coordSpace_),
                 wanted, mapOf(request.toImage));
    return writeRegion(upright, pixels.data(), upright);
}

std::int32_t ilSmartImage::fillTurned(const ilTile& box, const ilPixel& pixel,
                                      const ilImageConfig& config, const ilTile* keepOut) {
    ilImageConfig upright = config;
    upright.coordSpace = 0;
    const ilTile area = mapped(box, config.coordSpace, coordSpace_, *this);
    if (!keepOut) return fillRegion(area, pixel, &upright);
    const ilTile kept = mapped(*keepOut, config.coordSpace, coordSpace_, *this);
    return fillRegion(area, pixel, &upright, &kept);
}

}  // namespace brushwork
