#include "platform/codec_gif_write.h"

#include <gif_lib.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "platform/gif_rows.h"

namespace brushwork::platform {

namespace {

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

// What stands behind the colours is black.
ColourMap makeMap(const GifRows& rows) {
    const std::vector<std::uint32_t>& colours = rows.colours();
    ColourMap map(GifMakeMapObject(static_cast<int>(rows.tableSize()), nullptr));
    if (!map) return map;
    for (std::size_t i = 0; i < rows.tableSize(); ++i) {
        const std::uint32_t colour = i < colours.size() ? colours[i] : 0;
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
          rows_(request),
          indices_(static_cast<std::size_t>(request.width)) {}

    [[nodiscard]] ImagingStatus write() {
        if (!rows_.choosePalette()) return ImagingStatus::GenericError;
        const ColourMap map = makeMap(rows_);
        int error = 0;
        GifFile gif(map ? EGifOpen(&output_, Output::onWrite, &error) : nullptr);
        if (!gif) return ImagingStatus::OutOfMemory;
        if (!writeHeaders(gif.get(), map.get()) || !writeRows(gif.get()))
            return ImagingStatus::GenericError;
        const bool closed = EGifCloseFile(gif.release(), &error) == GIF_OK;
        return output_.finish() && closed ? ImagingStatus::Ok : ImagingStatus::GenericError;
    }

  private:
    bool writeHeaders(GifFileType* gif, const ColorMapObject* map) {
        EGifSetGifVersion(gif, true);
        if (EGifPutScreenDesc(gif, request_.width, request_.height, 8, 0, map) != GIF_OK)
            return false;
        if (rows_.hasTransparency()) {
            GraphicsControlBlock control{};
            control.TransparentColor = rows_.transparentIndex();
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
            if (!rows_.nextRow(y, indices_.data())) return false;
            if (EGifPutLine(gif, indices_.data(), request_.width) != GIF_OK) return false;
        }
        return true;
    }

    const EncodeRequest& request_;
    Output output_;
    GifRows rows_;
    std::vector<std::uint8_t> indices_;
};

}  // namespace

ImagingStatus writeGif(const EncodeRequest& request, ByteTarget& target) {
    if (request.width < 1 || request.height < 1 || request.source == nullptr)
        return ImagingStatus::InvalidParameter;
    if (request.width > largestGifSide || request.height > largestGifSide)
        return ImagingStatus::ValueOverflow;
    try {
        return GifWriter(request, target).write();
    } catch (const std::bad_alloc&) {
        return ImagingStatus::OutOfMemory;
    }
}

}  // namespace brushwork::platform
