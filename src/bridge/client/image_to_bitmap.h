// An image as a bitmap for an encoder.
#pragma once

#include <cstdint>
#include <memory>

#include "bridge/client/memory_picture.h"
#include "image/chain/il_image.h"

namespace brushwork {

enum class StoredAlpha { Straight, Premultiplied };
enum class StoredOrder {
    Engine,  // red, green, blue, alpha
    Bitmap,  // blue, green, red, alpha
};

struct ImageToBitmapOptions {
    StoredAlpha alpha = StoredAlpha::Premultiplied;
    StoredOrder order = StoredOrder::Engine;
};

// Rows of an image as a bitmap holds them. Of 4 channels; one of 1 channel gives its value to all
// four bytes of the pixel, alpha included, and so reads as white of that opacity when it counts as
// premultiplied. Other images have no such rows.
class BitmapRows {
  public:
    explicit BitmapRows(ilImage& image, const ImageToBitmapOptions& options = {});

    // Whether there is anything to read.
    [[nodiscard]] bool isUsable() const { return width_ >= 1 && height_ >= 1 && channels_ != 0; }
    [[nodiscard]] std::int32_t width() const { return width_; }
    [[nodiscard]] std::int32_t height() const { return height_; }
    // `count` rows from y on, in the image's direction (row 0 is the bottom), in the bitmap's order
    // and straight.
    [[nodiscard]] bool read(std::int32_t y, std::int32_t count, std::uint8_t* bgra);

  private:
    ilImage& image_;
    ImageToBitmapOptions options_;
    std::int32_t width_;
    std::int32_t height_;
    std::int32_t channels_;  // 1 or 4; 0 for others
};

// The rows from the last to the first, so that a picture stored bottom-up stands upright. Null for
// a null image, one without rows as above, and without memory.
[[nodiscard]] std::unique_ptr<MemoryPicture> imageToBitmap(
    ilImage* image, const ImageToBitmapOptions& options = {});

}  // namespace brushwork
