#include "platform/imaging_gdiplus_gif.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "platform/gif_dither.h"
#include "platform/gif_palette.h"

namespace brushwork::platform::gdiplus {

namespace {

constexpr std::int32_t largestSide = 65535;

// The rows of a picture as indices into a palette made for it: exact where one can hold all of its
// colours, else the best that we find, with the error spread.
class PaletteRows {
  public:
    explicit PaletteRows(const EncodeRequest& request)
        : request_(request), width_(static_cast<std::size_t>(request.width)), row_(width_ * 4) {}

    // False if the source failed.
    bool choosePalette() {
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

    // A power of two of entries; what stands behind the colours is black.
    Palette256 palette() const {
        Palette256 palette;
        const std::size_t used = colours_.size() + (transparent_ ? 1 : 0);
        const std::size_t count =
            std::min(std::bit_ceil(std::max<std::size_t>(used, 2)), std::size(palette.entries));
        palette.count = static_cast<std::uint32_t>(count);
        for (std::size_t i = 0; i < count; ++i)
            palette.entries[i] = opaque | (i < colours_.size() ? colours_[i] : 0);
        if (transparent_) {
            palette.flags = paletteHasAlpha;
            palette.entries[transparentIndex()] = 0;
        }
        return palette;
    }

    // Rows from the top, each once. False if the source failed or its rows have changed.
    bool nextRow(std::int32_t y, std::uint8_t* indices) {
        if (!request_.source->getRow(y, row_.data())) return false;
        if (!diffuser_) return mapExactly(indices);
        diffuser_->mapRow(row_.data(), indices);
        return true;
    }

  private:
    static constexpr std::uint32_t opaque = 0xFF000000U;

    // Behind the colours.
    std::uint8_t transparentIndex() const { return static_cast<std::uint8_t>(colours_.size()); }

    bool mapExactly(std::uint8_t* indices) const {
        const std::uint8_t* pixel = row_.data();
        for (std::size_t x = 0; x < width_; ++x, pixel += 4) {
            const bool visible = pixel[3] >= opaqueFrom;
            const int index = visible ? exact_.find(colourOf(pixel)) : transparentIndex();
            if (index < 0 || (!visible && !transparent_)) return false;
            indices[x] = static_cast<std::uint8_t>(index);
        }
        return true;
    }

    const EncodeRequest& request_;
    std::size_t width_;
    std::vector<std::uint8_t> row_;
    std::vector<std::uint32_t> colours_;
    bool transparent_ = false;
    ColourTable exact_;
    std::unique_ptr<ErrorDiffuser> diffuser_;  // null where the palette is exact
};

}  // namespace

ImagingStatus makePaletteBitmap(const EncodeRequest& request, BitmapOwner& bitmap) {
    if (request.width > largestSide || request.height > largestSide)
        return ImagingStatus::ValueOverflow;
    PaletteRows rows(request);
    if (!rows.choosePalette()) return ImagingStatus::Aborted;
    const Palette256 palette = rows.palette();
    ImagingStatus status = makeBitmap(request.width, request.height, formatIndexed8, bitmap);
    if (status == ImagingStatus::Ok) status = GdipSetImagePalette(bitmap.get(), &palette);
    if (status != ImagingStatus::Ok) return status;
    LockedBits bits(bitmap.get(), request.width, request.height, lockForWriting, formatIndexed8);
    if (bits.status() != ImagingStatus::Ok) return bits.status();
    for (std::int32_t y = 0; y < request.height; ++y)
        if (!rows.nextRow(y, bits.row(y))) return ImagingStatus::Aborted;
    return bits.unlock();
}

}  // namespace brushwork::platform::gdiplus
