// ilImageConfig: what a caller wants pixels converted to, or says they are.
#pragma once

#include <cstdint>

#include "image/chain/coord_space.h"
#include "image/chain/data_types.h"

namespace brushwork {

class ilImage;

// Beside a buffer it describes the buffer's pixels. Wildcards (TypeAny, OrderAny, 0 channels) mean
// the image's own; ilImage::completed puts them in.
struct ilImageConfig {
    std::int32_t dataType = TypeAny;
    std::int32_t order = OrderAny;
    std::int32_t coordSpace = 0;  // 0: the image's own
    std::int32_t channels = 0;
    std::int32_t channelOffset = 0;
    const std::int32_t* channelList = nullptr;  // borrowed; offset + channels entries
    std::int32_t colorModel = 0;                // 0: the image's own
    std::int32_t reserved = 0;

    ilImageConfig() = default;
    ilImageConfig(std::int32_t type, std::int32_t dimensionOrder, std::int32_t channelCount,
                  std::int32_t offset = 0)
        : dataType(type), order(dimensionOrder), channels(channelCount), channelOffset(offset) {}
    // The image's type, order, space, channels and colour model. Implemented with ilImage.
    explicit ilImageConfig(ilImage& image);

    [[nodiscard]] bool remapsChannels() const { return channelList || channelOffset != 0; }
    // Which channel of the image channel `index` of the request is, or -1 for an index outside 0 to
    // channels - 1: the offset is added, and the list, if there is one, is asked with the sum.
    [[nodiscard]] std::int32_t channelAt(std::int32_t index) const {
        if (index < 0 || index >= channels) return -1;
        const std::int32_t place = channelOffset + index;
        return channelList ? channelList[place] : place;
    }
};

}  // namespace brushwork
