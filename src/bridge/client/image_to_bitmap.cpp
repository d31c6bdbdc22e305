#include "bridge/client/image_to_bitmap.h"

#include <cstring>

#include "bridge/pixel_order.h"

namespace brushwork {

namespace {

// Grey values at the end of the buffer become pixels from its start on.
void spreadGrey(std::uint8_t* bgra, std::size_t count) {
    const std::uint8_t* grey = bgra + count * 3;
    for (const std::uint8_t* const end = grey + count; grey != end; bgra += 4)
        std::memset(bgra, *grey++, 4);
}

}  // namespace

BitmapRows::BitmapRows(ilImage& image, const ImageToBitmapOptions& options)
    : image_(image),
      options_(options),
      width_(image.width()),
      height_(image.height()),
      channels_(image.channels()) {
    if (channels_ != 1 && channels_ != 4) channels_ = 0;
}

bool BitmapRows::read(std::int32_t y, std::int32_t count, std::uint8_t* bgra) {
    const std::size_t pixels = static_cast<std::size_t>(width_) * static_cast<std::size_t>(count);
    const ilTile rows = flatTile(0, y, width_, count);
    ilImageConfig config(TypeUChar, OrderInterleaved, channels_);
    config.coordSpace = SpaceLowerLeft;
    std::uint8_t* const start = channels_ == 1 ? bgra + pixels * 3 : bgra;
    if (image_.readRegion(rows, start, rows, &config) != ImageOk) return false;
    if (channels_ == 1)
        spreadGrey(bgra, pixels);
    else if (options_.order == StoredOrder::Engine)
        swapRedAndBlue(bgra, pixels);
    if (options_.alpha == StoredAlpha::Premultiplied) unpremultiply(bgra, pixels);
    return true;
}

std::unique_ptr<MemoryPicture> imageToBitmap(ilImage* image, const ImageToBitmapOptions& options) {
    if (!image) return nullptr;
    BitmapRows rows(*image, options);
    if (!rows.isUsable()) return nullptr;
    auto picture = MemoryPicture::make(rows.width(), rows.height());
    if (!picture) return nullptr;
    for (std::int32_t y = 0; y < rows.height(); ++y)
        if (!rows.read(y, 1, picture->row(rows.height() - 1 - y))) return nullptr;
    return picture;
}

}  // namespace brushwork
