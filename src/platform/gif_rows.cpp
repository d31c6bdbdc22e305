#include "platform/gif_rows.h"

#include <algorithm>
#include <bit>

namespace brushwork::platform {

GifRows::GifRows(const EncodeRequest& request)
    : request_(request), width_(static_cast<std::size_t>(request.width)), row_(width_ * 4) {}

bool GifRows::choosePalette() {
    ColourCensus census;
    for (std::int32_t y = 0; y < request_.height; ++y) {
        if (!request_.source->getRow(y, row_.data())) return false;
        census.add(row_.data(), width_);
    }
    transparent_ = census.hasTransparency();
    if (census.isExact()) {
        exact_ = census.exactColours();
        colours_ = exact_.colours();
    } else {
        colours_ = fitPalette(census, maxGifColours - (transparent_ ? 1 : 0));
        diffuser_ = std::make_unique<ErrorDiffuser>(width_, colours_, transparentIndex());
    }
    return true;
}

std::size_t GifRows::tableSize() const {
    const std::size_t used = colours_.size() + (transparent_ ? 1 : 0);
    return std::min(std::bit_ceil(std::max<std::size_t>(used, 2)), maxGifColours);
}

bool GifRows::nextRow(std::int32_t y, std::uint8_t* indices) {
    if (!request_.source->getRow(y, row_.data())) return false;
    if (!diffuser_) return mapExactly(indices);
    diffuser_->mapRow(row_.data(), indices);
    return true;
}

// False for a colour that the first reading didn't meet.
bool GifRows::mapExactly(std::uint8_t* indices) const {
    const std::uint8_t* pixel = row_.data();
    for (std::size_t x = 0; x < width_; ++x, pixel += 4) {
        const bool visible = pixel[3] >= opaqueFrom;
        const int index = visible ? exact_.find(colourOf(pixel)) : transparentIndex();
        if (index < 0 || (!visible && !transparent_)) return false;
        indices[x] = static_cast<std::uint8_t>(index);
    }
    return true;
}

}  // namespace brushwork::platform
