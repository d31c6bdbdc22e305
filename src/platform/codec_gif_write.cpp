#include "platform/codec_gif_write.h"

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "platform/gif_dither.h"
#include "platform/gif_palette.h"

namespace brushwork::platform {

namespace {

constexpr std::int32_t largestSide = 65535;

// What giflib writes, gathered into larger pieces.
class Output {
  public:
    explicit Output(ByteTarget& target) : target_(target) {}

    static int onWrite(GifFileType* gif, const GifByteType* bytes, int count) {
        return static_cast<Output*>(gif->UserData)->put(bytes, static_cast<std::size_t>(count));
    }
    // giflib passes over some failures, so that the answer here is the one that counts.
    [[nodiscard]] bool finish() {
        flush();
        return !failed_;
    }

  private:
    int put(const GifByteType* bytes, std::size_t count) {
        if (count > buffer_.size() - held_) flush();
        if (failed_ || count > buffer_.size()) return 0;
        std::memcpy(buffer_.data() + held_, bytes, count);
        held_ += count;
        return static_cast<int>(count);
    }
    void flush() {
        failed_ = failed_ || !target_.writeAt(offset_, buffer_.data(), held_);
        offset_ += held_;
        held_ = 0;
    }

    ByteTarget& target_;
    std::uint64_t offset_ = 0;
    std::size_t held_ = 0;
    bool failed_ = false;
    std::array<std::uint8_t, 32768> buffer_;
};

struct MapDeleter {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};
struct FileDeleter {
    void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};
using ColourMap = std::unique_ptr<ColorMapObject, MapDeleter>;
using GifFile = std::unique_ptr<GifFileType, FileDeleter>;

// A table has a power of two of entries; those behind the palette are black.
ColourMap makeMap(const std::vector<std::uint32_t>& palette, std::size_t entries) {
    const std::size_t size = std::max<std::size_t>(std::bit_ceil(entries), 2);
    ColourMap map(GifMakeMapObject(static_cast<int>(size), nullptr));
    if (!map) return map;
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint32_t colour = i < palette.size() ? palette[i] : 0;
        map->Colors[i] = {static_cast<GifByteType>(colour >> 16),
                          static_cast<GifByteType>(colour >> 8), static_cast<GifByteType>(colour)};
    }
    return map;
}

class GifWriter {
  public:
    GifWriter(const EncodeRequest& request, ByteTarget& target)
        : request_(request),
          output_(target),
          width_(static_cast<std::size_t>(request.width)),
          row_(width_ * 4),
          indices_(width_) {}

    [[nodiscard]] ImagingStatus write() {
        if (!choosePalette()) return ImagingStatus::GenericError;
        const std::size_t entries = palette_.size() + (transparent_ ? 1 : 0);
        const ColourMap map = makeMap(palette_, entries);
        int error = 0;
        GifFile gif(map ? EGifOpen(&output_, Output::onWrite, &error) : nullptr);
        if (!gif) return ImagingStatus::OutOfMemory;
        if (!writeHeaders(gif.get(), map.get()) || !writeRows(gif.get()))
            return ImagingStatus::GenericError;
        const bool closed = EGifCloseFile(gif.release(), &error) == GIF_OK;
        return output_.finish() && closed ? ImagingStatus::Ok : ImagingStatus::GenericError;
    }

  private:
    bool choosePalette() {
        ColourCensus census;
        for (std::int32_t y = 0; y < request_.height; ++y) {
            if (!request_.source->getRow(y, row_.data())) return false;
            census.add(row_.data(), width_);
        }
        transparent_ = census.hasTransparency();
        if (census.isExact()) {
            exact_ = census.exactColours();
            palette_ = exact_.colours();
        } else {
            palette_ = fitPalette(census, maxGifColours - (transparent_ ? 1 : 0));
            diffuser_ = std::make_unique<ErrorDiffuser>(width_, palette_, transparentIndex());
        }
        return true;
    }

    // Behind the colours.
    std::uint8_t transparentIndex() const { return static_cast<std::uint8_t>(palette_.size()); }

    bool writeHeaders(GifFileType* gif, const ColorMapObject* map) {
        EGifSetGifVersion(gif, true);
        if (EGifPutScreenDesc(gif, request_.width, request_.height, 8, 0, map) != GIF_OK)
            return false;
        if (transparent_) {
            GraphicsControlBlock control{};
            control.TransparentColor = transparentIndex();
            std::array<GifByteType, 4> bytes{};
            const std::size_t count = EGifGCBToExtension(&control, bytes.data());
            if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(count),
                                 bytes.data()) != GIF_OK)
                return false;
        }
        return EGifPutImageDesc(gif, 0, 0, request_.width, request_.height, false, nullptr) ==
               GIF_OK;
    }

    bool writeRows(GifFileType* gif) {
        for (std::int32_t y = 0; y < request_.height; ++y) {
            if (!request_.source->getRow(y, row_.data())) return false;
            if (diffuser_) {
                diffuser_->mapRow(row_.data(), indices_.data());
            } else if (!mapExactly()) {
                return false;
            }
            if (EGifPutLine(gif, indices_.data(), request_.width) != GIF_OK) return false;
        }
        return true;
    }

    // False for a colour that the first reading didn't meet.
    bool mapExactly() {
        const std::uint8_t* pixel = row_.data();
        for (std::size_t x = 0; x < width_; ++x, pixel += 4) {
            const bool visible = pixel[3] >= opaqueFrom;
            const int index = visible ? exact_.find(colourOf(pixel)) : transparentIndex();
            if (index < 0 || (!visible && !transparent_)) return false;
            indices_[x] = static_cast<std::uint8_t>(index);
        }
        return true;
    }

    const EncodeRequest& request_;
    Output output_;
    std::size_t width_;
    std::vector<std::uint8_t> row_;
    std::vector<std::uint8_t> indices_;
    std::vector<std::uint32_t> palette_;
    bool transparent_ = false;
    ColourTable exact_;
    std::unique_ptr<ErrorDiffuser> diffuser_;  // null where the palette is exact
};

}  // namespace

ImagingStatus writeGif(const EncodeRequest& request, ByteTarget& target) {
    if (request.width < 1 || request.height < 1 || request.source == nullptr)
        return ImagingStatus::InvalidParameter;
    if (request.width > largestSide || request.height > largestSide)
        return ImagingStatus::ValueOverflow;
    try {
        return GifWriter(request, target).write();
    } catch (const std::bad_alloc&) {
        return ImagingStatus::OutOfMemory;
    }
}

}  // namespace brushwork::platform
