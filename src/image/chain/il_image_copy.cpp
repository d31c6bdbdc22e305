#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"
#include "image/memory/image_buffer.h"

namespace brushwork {
namespace {

// Channels of two images that exchange values, entry by entry.
struct ChannelPairs {
    std::vector<std::int32_t> mine;
    std::vector<std::int32_t> theirs;
};

ChannelPairs pairChannels(const ilImageConfig* config, std::int32_t mine, std::int32_t theirs) {
    ilImageConfig map = config ? *config : ilImageConfig();
    if (map.channels <= 0) map.channels = mine;
    ChannelPairs pairs;
    for (std::int32_t i = 0; i < mine; ++i) {
        const std::int32_t partner = map.channelAt(i);
        if (partner < 0 || partner >= theirs) continue;
        pairs.mine.push_back(i);
        pairs.theirs.push_back(partner);
    }
    return pairs;
}

// A buffer with those channels of an image.
ilImageConfig bufferConfig(std::int32_t type, std::int32_t order,
                           const std::vector<std::int32_t>& list) {
    ilImageConfig config(type, order, static_cast<std::int32_t>(list.size()), list.front());
    for (std::size_t i = 1; i < list.size(); ++i) {
        if (list[i] == list[i - 1] + 1) continue;
        config.channelOffset = 0;
        config.channelList = list.data();
        break;
    }
    return config;
}

// What reaches beyond the source was read as its fill; that is no failure.
bool isFailure(std::int32_t result) {
    return result != ImageOk && result != ImageClipped;
}

struct Side {
    ilImage& image;
    const ilTile& box;
    const std::vector<std::int32_t>& channels;
};

// Turns a block of pixels from the first space into the second.
void turnBlock(const std::uint8_t* from, const Side& source, std::uint8_t* to, const Side& target,
               std::size_t pixelBytes) {
    const SpaceMap& map = spaceMap(target.image.coordSpace(), source.image.coordSpace());
    const Extent<std::int32_t> size{source.box.nx, source.box.ny};
    for (std::int32_t z = 0; z < target.box.nz; ++z) {
        for (std::int32_t y = 0; y < target.box.ny; ++y) {
            for (std::int32_t x = 0; x < target.box.nx; ++x, to += pixelBytes) {
                const auto p = map.apply<std::int32_t>({x, y}, size);
                const auto row = static_cast<std::size_t>(z) * static_cast<std::size_t>(size.y) +
                                 static_cast<std::size_t>(p.y);
                const auto place =
                    row * static_cast<std::size_t>(size.x) + static_cast<std::size_t>(p.x);
                std::memcpy(to, from + place * pixelBytes, pixelBytes);
            }
        }
    }
}

std::int32_t transfer(const Side& source, const Side& target, std::int32_t type,
                      std::int32_t order) {
    const bool turned = source.image.coordSpace() != target.image.coordSpace();
    if (turned) {
        // Whole pixels change places, and bits can't be moved alone; a short keeps their sign.
        order = OrderInterleaved;
        if (type == TypeBit) type = TypeShort;
    }
    const auto count = static_cast<std::int32_t>(source.channels.size());
    const ilTile& box = source.box;
    const ImageBuffer read(blockBytes(type, box.nx, box.ny, box.nz, count));
    if (!read.data()) return ImageUnusable;
    // A class that answers a read without pixels must not hand on what lay in memory before.
    std::memset(read.data(), 0, read.bytes());
    const ilImageConfig readConfig = bufferConfig(type, order, source.channels);
    const std::int32_t readResult = source.image.readRegion(box, read.data(), box, &readConfig);
    if (isFailure(readResult)) return readResult;

    const ilImageConfig writeConfig = bufferConfig(type, order, target.channels);
    std::int32_t result = ImageOk;
    if (turned) {
        const ImageBuffer upright(read.bytes());
        if (!upright.data()) return ImageUnusable;
        turnBlock(read.data(), source, upright.data(), target,
                  bufferBytes(type, source.channels.size()));
        result = target.image.writeRegion(target.box, upright.data(), target.box, &writeConfig);
    } else {
        result = target.image.writeRegion(target.box, read.data(), target.box, &writeConfig);
    }
    return result != ImageOk ? result : readResult;
}

}  // namespace

// Only the models are compared: types, orders and value ranges are the region access's to convert.
bool ilImage::needsConversion(ilImage& other, const ilImageConfig* config) {
    if (config && config->remapsChannels()) return false;
    const bool configLeads = config && config->colorModel != 0;
    return (configLeads ? config->colorModel : other.colorModel()) != colorModel();
}

std::int32_t ilImage::copyRegion(const ilTile& box, ilImage& other, std::int32_t ox,
                                 std::int32_t oy, std::int32_t oz, const ilImageConfig* config,
                                 CopyDirection direction) {
    const Ref<ilImage> held(&other);
    if (reset() != ImageOk) return status();
    if (box.isEmpty()) return ImageOk;
    ilTile otherBox{ox, oy, oz, box.nx, box.ny, box.nz};
    if (isTransposed(coordSpace_) != isTransposed(other.coordSpace())) {
        std::swap(otherBox.nx, otherBox.ny);
    }
    const bool fromOther = direction == CopyDirection::FromOther;
    if (other.coordSpace() == coordSpace_ && needsConversion(other, config)) {
        // The other image's own way of copying may be better than this one. Named as a model of
        // the other's, the request can't come back here.
        ilImageConfig handedOn = config ? *config : ilImageConfig();
        handedOn.colorModel = other.colorModel();
        return other.copyRegion(otherBox, *this, box.x, box.y, box.z, &handedOn,
                                fromOther ? CopyDirection::ToOther : CopyDirection::FromOther);
    }
    const ChannelPairs pairs = pairChannels(config, channels_, other.channels());
    if (pairs.mine.empty()) return ImageOk;
    const Side mine{*this, box, pairs.mine};
    const Side theirs{other, otherBox, pairs.theirs};
    return fromOther ? transfer(theirs, mine, dataType_, order_)
                     : transfer(mine, theirs, dataType_, order_);
}

std::int32_t ilImage::fillRegion(const ilTile&, const ilPixel&, const ilImageConfig*,
                                 const ilTile*) {
    return ImageNoFill;
}

std::int32_t ilImage::transferRegion(const ilTile&, ilImage&, const ilImageConfig*) {
    return ImageNotAllowed;
}

namespace {

bool cutAxis(std::int32_t& start, std::int32_t& extent, std::int32_t size, std::int32_t border) {
    const std::int64_t low = std::max<std::int64_t>(start, -std::int64_t{border});
    const std::int64_t high =
        std::min(std::int64_t{start} + extent, std::int64_t{size} + std::int64_t{border});
    if (low == start && high == std::int64_t{start} + extent) return false;
    start = static_cast<std::int32_t>(low);
    extent = static_cast<std::int32_t>(std::max<std::int64_t>(high - low, 0));
    return true;
}

}  // namespace

std::int32_t ilImage::clip(ilTile& box, ClipTo to) {
    reset();
    const std::int32_t keep = to == ClipTo::ImageAndBorder ? 1 : 0;
    const bool x = cutAxis(box.x, box.nx, sizeX_, keep * borderX_);
    const bool y = cutAxis(box.y, box.ny, sizeY_, keep * borderY_);
    const bool z = cutAxis(box.z, box.nz, sizeZ_, keep * borderZ_);
    return x || y || z ? ImageClipped : ImageOk;
}

std::int32_t ilImage::readPixel(std::int32_t x, std::int32_t y, std::int32_t z, ilPixel& pixel) {
    if (pixel.channels() < 1) pixel = ilPixel(dataType(), channels());
    const ilTile place{x, y, z, 1, 1, 1};
    const ilImageConfig config(pixel.type(), OrderInterleaved, pixel.channels());
    return readRegion(place, pixel.data(), place, &config);
}

std::int32_t ilImage::writePixel(std::int32_t x, std::int32_t y, std::int32_t z,
                                 const ilPixel& pixel) {
    const ilPixel value = pixel.channels() < 1 ? ilPixel(dataType(), channels()) : pixel;
    const ilTile place{x, y, z, 1, 1, 1};
    const ilImageConfig config(value.type(), OrderInterleaved, value.channels());
    return writeRegion(place, value.data(), place, &config);
}

}  // namespace brushwork
