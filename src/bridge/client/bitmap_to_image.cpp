#include "bridge/client/bitmap_to_image.h"

#include <cstring>

#include "bridge/client/picture_transfer.h"
#include "bridge/format_names.h"
#include "bridge/pixel_order.h"

namespace brushwork {

namespace {

using platform::ImagingStatus;
using platform::PixelFormat;
using znString::CString;
using znString::IString;

// Rows of four channels, turned over and in the engine's order.
class ColourSink final : public platform::RowSink {
  public:
    explicit ColourSink(ilSPMemoryImg& image)
        : pixels_(image.data()),
          width_(static_cast<std::size_t>(image.sizeX())),
          height_(image.sizeY()) {}

    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        for (const std::int32_t end = y + count; y < end; ++y, bgra += width_ * 4) {
            std::uint8_t* const row =
                pixels_ + width_ * 4 * static_cast<std::size_t>(height_ - 1 - y);
            std::memcpy(row, bgra, width_ * 4);
            swapRedAndBlue(row, width_);
        }
        return true;
    }

  private:
    std::uint8_t* pixels_;
    std::size_t width_;
    std::int32_t height_;
};

// The first byte of every pixel, rows as they come.
class GreySink final : public platform::RowSink {
  public:
    explicit GreySink(ilSPMemoryImg& image)
        : pixels_(image.data()), width_(static_cast<std::size_t>(image.sizeX())) {}

    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        std::uint8_t* to = pixels_ + width_ * static_cast<std::size_t>(y);
        for (std::size_t left = width_ * static_cast<std::size_t>(count); left > 0; --left) {
            *to++ = *bgra;
            bgra += 4;
        }
        return true;
    }

  private:
    std::uint8_t* pixels_;
    std::size_t width_;
};

// Cleared, since a decoder leaves blank rows out; null without pixels.
Ref<ilSPMemoryImg> makeImage(std::int32_t width, std::int32_t height, std::int32_t channels) {
    const Ref<ilSPMemoryImg> image(new ilSPMemoryImg(width, height, channels));
    if (!image->data()) return nullptr;
    std::memset(image->data(), 0, image->byteSize());
    return image;
}

Ref<ilSPMemoryImg> decode(Gdiplus::Bitmap& bitmap, PixelFormat format, bool grey) {
    const Ref<ilSPMemoryImg> image = makeImage(bitmap.width(), bitmap.height(), grey ? 1 : 4);
    if (!image) return nullptr;
    bool whole = false;
    if (grey) {
        GreySink sink(*image);
        whole = bitmap.readRows(format, sink);
    } else {
        ColourSink sink(*image);
        whole = bitmap.readRows(format, sink);
    }
    return whole ? image : nullptr;
}

void setResolution(ImageFileParams& params, double x, double y) {
    params.xResolution = x;
    params.yResolution = y;
}

// The helper's pixels, brought to the alpha and the order of an image decoded here.
BitmapToImageResult decodeThroughBridge(const IString& path, PixelAlpha alpha) {
    BitmapToImageResult result;
    OpenedPixels opened = openPixelsThroughBridge(path);
    if (!opened.image || opened.params.channels != 4) return result;
    const ilTile box = flatTile(0, 0, opened.params.width, opened.params.height);
    const Ref<ilSPMemoryImg> image = makeImage(box.nx, box.ny, 4);
    if (!image || opened.image->readRegion(box, image->data(), box) != ImageOk) return result;

    const std::size_t count = image->byteSize() / 4;
    if (alpha == PixelAlpha::Premultiplied && !arrivesPremultiplied(opened.format.view()))
        premultiply(image->data(), count);
    swapRedAndBlue(image->data(), count);
    result.image = image;
    result.format = CString(opened.format.toUtf8());
    setResolution(result.params, opened.params.xResolution, opened.params.yResolution);
    return result;
}

bool mayFallBack(ImagingStatus status) {
    return status == ImagingStatus::OutOfMemory || status == ImagingStatus::InvalidParameter;
}

}  // namespace

BitmapToImageResult bitmapToImage(Gdiplus::Bitmap* bitmap, const IString& path,
                                  const BitmapToImageOptions& options) {
    BitmapToImageResult result;
    if (!bitmap) return result;
    if (bitmap->width() >= 1 && bitmap->height() >= 1) {
        platform::Guid rawFormat;
        const IString format(bitmap->rawFormat(rawFormat) ? formatName(rawFormat) : u"");
        const bool premultiplied =
            options.alpha == PixelAlpha::Premultiplied || arrivesPremultiplied(format.view());
        const bool grey = options.grey == GreyDetection::On && bitmap->isGrey();
        result.image =
            decode(*bitmap, premultiplied ? PixelFormat::Pargb32 : PixelFormat::Argb32, grey);
        if (result.image) {
            result.format = CString(format.toUtf8());
            setResolution(result.params, double{bitmap->xResolution()},
                          double{bitmap->yResolution()});
            return result;
        }
    }
    if (options.fallback == Fallback::Forbidden || path.isEmpty() ||
        !mayFallBack(bitmap->lastStatus()))
        return result;
    return decodeThroughBridge(path, options.alpha);
}

}  // namespace brushwork
