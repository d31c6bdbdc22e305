// What giflib needs of whoever writes a GIF: where its bytes go, and colour tables.
#pragma once

#include <gif_lib.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/byte_stream.h"
#include "platform/gif_rows.h"

namespace brushwork::platform {

// What giflib writes, gathered into larger pieces. The target outlives it.
class GifOutput {
  public:
    explicit GifOutput(ByteTarget& target) : target_(target) {}

    static int onWrite(GifFileType* gif, const GifByteType* bytes, int count);
    // giflib passes over some failures, so that the answer here is the one that counts.
    [[nodiscard]] bool finish();

  private:
    int put(const GifByteType* bytes, std::size_t count);
    void flush();

    ByteTarget& target_;
    std::uint64_t offset_ = 0;
    std::size_t held_ = 0;
    bool failed_ = false;
    std::array<std::uint8_t, 32768> buffer_;
};

struct GifMapDeleter {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};
struct GifFileDeleter {
    void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};
using GifColours = std::unique_ptr<ColorMapObject, GifMapDeleter>;
using GifFile = std::unique_ptr<GifFileType, GifFileDeleter>;

// The table of a picture's colours; what stands behind them is black. Null without memory.
[[nodiscard]] GifColours makeGifColours(const GifRows& rows);
// All rows of the image whose description was written last. False if source or target failed.
[[nodiscard]] bool putGifRows(GifFileType* gif, GifRows& rows, std::int32_t width,
                              std::int32_t height);
// The graphic control in front of an image.
[[nodiscard]] bool putGifControl(GifFileType* gif, const GraphicsControlBlock& control);

}  // namespace brushwork::platform
