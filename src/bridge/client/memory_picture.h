// A bitmap in memory: what an image becomes before it is encoded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "bridge/bitmap.h"
#include "platform/imaging.h"

namespace brushwork {

// Rows of blue, green, red, straight alpha; row 0 is the top. As a picture it can be read any
// number of times, as a source it serves an encoder, as a sink it takes what a decoder gives.
class MemoryPicture final : public platform::Picture,
                            public platform::RowSource,
                            public platform::RowSink {
  public:
    // All zero. Null for a size below 1 and without memory.
    [[nodiscard]] static std::unique_ptr<MemoryPicture> make(std::int32_t width,
                                                             std::int32_t height);
    // The pixels of a bitmap, which is decoded by this. Null if that fails.
    [[nodiscard]] static std::unique_ptr<MemoryPicture> of(Gdiplus::Bitmap& bitmap);

    [[nodiscard]] std::uint8_t* row(std::int32_t y);

    [[nodiscard]] std::int32_t width() const override { return width_; }
    [[nodiscard]] std::int32_t height() const override { return height_; }
    [[nodiscard]] float xResolution() const override { return xResolution_; }
    [[nodiscard]] float yResolution() const override { return yResolution_; }
    // Of no file.
    [[nodiscard]] platform::Guid rawFormat() const override;
    [[nodiscard]] bool isGrey() const override { return false; }
    [[nodiscard]] platform::ImagingStatus readRows(platform::PixelFormat format,
                                                   platform::RowSink& sink) override;

    [[nodiscard]] bool getRow(std::int32_t y, std::uint8_t* bgra) override;
    [[nodiscard]] bool putRows(std::int32_t y, std::int32_t count,
                               const std::uint8_t* bgra) override;

  private:
    MemoryPicture(std::int32_t width, std::int32_t height, std::unique_ptr<std::uint8_t[]> pixels);

    std::int32_t width_;
    std::int32_t height_;
    float xResolution_ = 96.0F;
    float yResolution_ = 96.0F;
    std::size_t rowBytes_;
    std::unique_ptr<std::uint8_t[]> pixels_;
};

}  // namespace brushwork
