#include "bridge/client/memory_picture.h"

#include <cstring>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "bridge/pixel_order.h"
#include "bridge/raw_pixel_file.h"

namespace brushwork {

using platform::ImagingStatus;
using platform::PixelFormat;

namespace {

// The published identifier of a bitmap that came from no file.
constexpr platform::Guid imageFormatMemory{
    0xb96b3caa, 0x0728, 0x11d3, {0x9d, 0x7b, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

}  // namespace

MemoryPicture::MemoryPicture(std::int32_t width, std::int32_t height,
                             std::unique_ptr<std::uint8_t[]> pixels)
    : width_(width),
      height_(height),
      rowBytes_(static_cast<std::size_t>(width) * 4),
      pixels_(std::move(pixels)) {}

std::unique_ptr<MemoryPicture> MemoryPicture::make(std::int32_t width, std::int32_t height) {
    const auto bytes = pixelFileBytes(width, height, 4);
    if (!bytes || *bytes > std::numeric_limits<std::size_t>::max() / 2) return nullptr;
    std::unique_ptr<std::uint8_t[]> pixels(new (std::nothrow)
                                               std::uint8_t[static_cast<std::size_t>(*bytes)]());
    if (!pixels) return nullptr;
    return std::unique_ptr<MemoryPicture>(new (std::nothrow)
                                              MemoryPicture(width, height, std::move(pixels)));
}

std::unique_ptr<MemoryPicture> MemoryPicture::of(Gdiplus::Bitmap& bitmap) {
    auto picture = make(bitmap.width(), bitmap.height());
    if (!picture || !bitmap.readRows(PixelFormat::Argb32, *picture)) return nullptr;
    picture->xResolution_ = bitmap.xResolution();
    picture->yResolution_ = bitmap.yResolution();
    return picture;
}

std::uint8_t* MemoryPicture::row(std::int32_t y) {
    return pixels_.get() + rowBytes_ * static_cast<std::size_t>(y);
}

platform::Guid MemoryPicture::rawFormat() const {
    return imageFormatMemory;
}

ImagingStatus MemoryPicture::readRows(PixelFormat format, platform::RowSink& sink) {
    if (format == PixelFormat::Rgb24) return ImagingStatus::InvalidParameter;
    if (format == PixelFormat::Argb32)
        return sink.putRows(0, height_, pixels_.get()) ? ImagingStatus::Ok
                                                       : ImagingStatus::GenericError;
    std::vector<std::uint8_t> premultiplied(rowBytes_);
    for (std::int32_t y = 0; y < height_; ++y) {
        std::memcpy(premultiplied.data(), row(y), rowBytes_);
        premultiply(premultiplied.data(), static_cast<std::size_t>(width_));
        if (!sink.putRows(y, 1, premultiplied.data())) return ImagingStatus::GenericError;
    }
    return ImagingStatus::Ok;
}

bool MemoryPicture::getRow(std::int32_t y, std::uint8_t* bgra) {
    if (y < 0 || y >= height_) return false;
    std::memcpy(bgra, row(y), rowBytes_);
    return true;
}

bool MemoryPicture::putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) {
    if (y < 0 || count < 1 || count > height_ || y > height_ - count) return false;
    std::memcpy(row(y), bgra, rowBytes_ * static_cast<std::size_t>(count));
    return true;
}

}  // namespace brushwork
