#include "platform/codec_gif_output.h"

#include <cstring>
#include <vector>

namespace brushwork::platform {

int GifOutput::onWrite(GifFileType* gif, const GifByteType* bytes, int count) {
    return static_cast<GifOutput*>(gif->UserData)->put(bytes, static_cast<std::size_t>(count));
}

bool GifOutput::finish() {
    flush();
    return !failed_;
}

int GifOutput::put(const GifByteType* bytes, std::size_t count) {
    if (count > buffer_.size() - held_) flush();
    if (failed_ || count > buffer_.size()) return 0;
    std::memcpy(buffer_.data() + held_, bytes, count);
    held_ += count;
    return static_cast<int>(count);
}

void GifOutput::flush() {
    failed_ = failed_ || !target_.writeAt(offset_, buffer_.data(), held_);
    offset_ += held_;
    held_ = 0;
}

GifColours makeGifColours(const GifRows& rows) {
    const std::vector<std::uint32_t>& colours = rows.colours();
    GifColours map(GifMakeMapObject(static_cast<int>(rows.tableSize()), nullptr));
    if (!map) return map;
    for (std::size_t i = 0; i < rows.tableSize(); ++i) {
        const std::uint32_t colour = i < colours.size() ? colours[i] : 0;
        map->Colors[i] = {static_cast<GifByteType>(colour >> 16),
                          static_cast<GifByteType>(colour >> 8), static_cast<GifByteType>(colour)};
    }
    return map;
}

bool putGifRows(GifFileType* gif, GifRows& rows, std::int32_t width, std::int32_t height) {
    std::vector<std::uint8_t> indices(static_cast<std::size_t>(width));
    for (std::int32_t y = 0; y < height; ++y) {
        if (!rows.nextRow(y, indices.data())) return false;
        if (EGifPutLine(gif, indices.data(), width) != GIF_OK) return false;
    }
    return true;
}

bool putGifControl(GifFileType* gif, const GraphicsControlBlock& control) {
    std::array<GifByteType, 4> bytes{};
    const std::size_t count = EGifGCBToExtension(&control, bytes.data());
    return EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(count), bytes.data()) ==
           GIF_OK;
}

}  // namespace brushwork::platform
