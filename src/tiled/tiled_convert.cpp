// Region access of ilZNTiledImage with other types, orders, channels and coordinate spaces than its
// own: through a buffer of plain pixels.
#include <vector>

#include "image/memory/image_buffer.h"
#include "image/work/pixel_block.h"
#include "tiled/il_zn_tiled_image.h"

namespace brushwork {
namespace {

// A request with nothing left open, and the plain pixels of its box.
struct Request {
    ilImageConfig config;
    ilTile box;
    ilTile upright;  // the box in the image's own space
    ImageBuffer pixels;
    std::vector<std::int32_t> toBuffer, toImage;

    Request(ilImage& image, const ilTile& wanted, const ilImageConfig& asked)
        : config(image.completed(&asked)),
          box(wanted),
          upright(uprightOf(image, wanted, config.coordSpace)),
          pixels(blockBytes(TypeUChar, upright.nx, upright.ny, 1, image.channels())),
          channels_(image.channels()),
          ownSpace_(image.coordSpace()) {
        toImage.assign(static_cast<std::size_t>(channels_), -1);
        for (std::int32_t n = 0; n < config.channels; ++n) {
            const std::int32_t place = config.channelAt(n);
            const bool exists = place >= 0 && place < channels_;
            toBuffer.push_back(exists ? place : -1);
            if (exists) toImage[static_cast<std::size_t>(place)] = n;
        }
    }
    // As the config's space sees them, at the place of the box.
    [[nodiscard]] PixelBlock plain() const {
        PixelBlock block = PixelBlock::packed(pixels.data(), flatTile(0, 0, upright.nx, upright.ny),
                                              TypeUChar, OrderInterleaved, channels_)
                               .seenIn(config.coordSpace, ownSpace_);
        block.frame = box;
        return block;
    }
    [[nodiscard]] PixelBlock buffer(void* data, const ilTile& frame) const {
        return PixelBlock::packed(data, frame, config.dataType, config.order, config.channels);
    }

  private:
    static ilTile uprightOf(ilImage& image, const ilTile& box, std::int32_t space) {
        const auto rect =
            mapRect<std::int32_t>({box.x, box.y, box.nx, box.ny}, space, image.coordSpace(),
                                  image.sizeIn(image.coordSpace()));
        return {rect.x, rect.y, box.z, rect.w, rect.h, box.nz};
    }
    std::int32_t channels_;
    std::int32_t ownSpace_;
};

ChannelMap mapOf(const std::vector<std::int32_t>& channels) {
    return {channels.data(), static_cast<std::int32_t>(channels.size())};
}

}  // namespace

std::int32_t ilZNTiledImage::readConverted(const ilTile& box, void* buffer, const ilTile& frame,
                                           const ilImageConfig& config) {
    const Request request(*this, box, config);
    if (!request.pixels.data()) return ImageUnusable;
    if (const auto result = readRegion(request.upright, request.pixels.data(), request.upright))
        return result;
    convertBlock(request.plain(), request.buffer(buffer, frame), box, mapOf(request.toBuffer));
    return ImageOk;
}

std::int32_t ilZNTiledImage::writeConverted(const ilTile& box, const void* buffer,
                                            const ilTile& frame, const ilImageConfig& config) {
    const Request request(*this, box, config);
    if (!request.pixels.data()) return ImageUnusable;
    // Channels that the buffer doesn't have stay.
    if (const auto result = readRegion(request.upright, request.pixels.data(), request.upright))
        return result;
    // Only read from, as the converter's source.
    convertBlock(request.buffer(const_cast<void*>(buffer), frame), request.plain(), box,
                 mapOf(request.toImage));
    return writeRegion(request.upright, request.pixels.data(), request.upright);
}

std::int32_t ilZNTiledImage::fillConverted(const ilTile& box, const ilPixel& pixel,
                                           const ilImageConfig& config) {
    const Request request(*this, box, config);
    if (!request.pixels.data()) return ImageUnusable;
    if (const auto result = readRegion(request.upright, request.pixels.data(), request.upright))
        return result;
    convertBlock(PixelBlock::ofConstant(pixel, box), request.plain(), box, mapOf(request.toImage));
    return writeRegion(request.upright, request.pixels.data(), request.upright);
}

}  // namespace brushwork
