#include "brushwork/zn_gdi_plus_file_io.h"

#include <new>

#include "bridge/client/bitmap_to_image.h"
#include "bridge/client/image_to_bitmap.h"
#include "bridge/client/picture_transfer.h"
#include "bridge/format_names.h"
#include "brushwork/bridge_client.h"

namespace brushwork {

namespace {

using platform::ImagingStatus;
using znString::IString;

// Both in dots per inch, if they are usable. Computed as floats, as bitmaps keep them.
void setResolution(const ImageFileInfo& info, platform::EncodeRequest& encode) {
    constexpr float centimetresPerInch = 2.54F;
    auto x = static_cast<float>(info.xResolution);
    auto y = static_cast<float>(info.yResolution);
    if (info.resolutionUnit == DotsPerCentimetre) {
        x *= centimetresPerInch;
        y *= centimetresPerInch;
    } else if (info.resolutionUnit != DotsPerInch) {
        return;
    }
    if (!(x > 0.0F) || !(y > 0.0F)) return;
    encode.hasResolution = true;
    encode.xResolution = x;
    encode.yResolution = y;
}

// The rows that a bitmap would hold, without the bitmap.
bool saveThroughBridge(const ImageDescriptor& descriptor, const ImageFileParams& params) {
    if (!descriptor.image) return false;
    BitmapRows rows(*descriptor.image);
    if (!rows.isUsable()) return false;
    const PixelStrips strips{rows.width(), rows.height(), 4,
                             [&](std::int32_t y, std::int32_t count, std::uint8_t* pixels) {
                                 return rows.read(y, count, pixels);
                             }};
    return savePixelsThroughBridge(strips, descriptor.filename.path(), descriptor.format, params);
}

bool save(const ImageDescriptor& descriptor, bool hasQuality, std::int32_t quality) {
    platform::Guid format;
    platform::Guid encoder;
    if (!formatFromName(IString(descriptor.format).view(), format) || !findEncoder(format, encoder))
        return false;
    if (const auto bitmap = imageToBitmap(descriptor.image.get())) {
        platform::EncodeRequest encode;
        encode.width = bitmap->width();
        encode.height = bitmap->height();
        encode.source = bitmap.get();
        if (hasQuality) encode.quality = quality;
        if (descriptor.info) setResolution(*descriptor.info, encode);
        const ImagingStatus status =
            platform::imagingService().saveFile(descriptor.filename.path().view(), encoder, encode);
        if (status != ImagingStatus::OutOfMemory) return status == ImagingStatus::Ok;
    }
    ImageFileParams params;
    params.hasQuality = hasQuality ? 1 : 0;
    params.quality = quality;
    if (const ImageFileInfo* info = descriptor.info) {
        params.xResolution = info->xResolution;
        params.yResolution = info->yResolution;
        params.resolutionUnit = info->resolutionUnit;
    }
    return saveThroughBridge(descriptor, params);
}

}  // namespace

znGdiPlusFileIO::znGdiPlusFileIO() {
    readFilters_ = {u"Bitmap Files (*.bmp)|*.bmp|",
                    u"JPEG Files (*.jpg,*.jpeg,*.jpe)|*.jpg;*.jpeg;*.jpe|",
                    u"GIF Files (*.gif)|*.gif|", u"PNG Files (*.png)|*.png|"};
    readExtensions_ = {u".bmp", u".jpg", u".jpeg", u".jpe", u".gif", u".png"};
    writeFilters_ = readFilters_;
    writeExtensions_ = readExtensions_;
}

znGdiPlusFileIO::~znGdiPlusFileIO() = default;

bool znGdiPlusFileIO::canRead() {
    return true;
}
bool znGdiPlusFileIO::canWrite() {
    return true;
}
bool znGdiPlusFileIO::acceptsFile(const znOS::Filename&) {
    return true;
}
bool znGdiPlusFileIO::readMetadata(ImageDescriptor&) {
    return false;
}
bool znGdiPlusFileIO::writeMetadata(ImageDescriptor&) {
    return false;
}
bool znGdiPlusFileIO::keepsLayers() {
    return false;
}

bool znGdiPlusFileIO::readHeader(const ImageDescriptor& descriptor, ImageFileInfo& info) try {
    info.imageCount = 1;
    const IString& path = descriptor.filename.path();
    const auto bitmap = Gdiplus::Bitmap::fromFile(path.view());
    if (bitmap.lastStatus() != ImagingStatus::Ok)
        return getSizeThroughBridge(path, info.width, info.height);
    info.height = bitmap.height();
    info.width = bitmap.width();
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool znGdiPlusFileIO::getImageSize(const znOS::Filename& filename, std::int32_t& width,
                                   std::int32_t& height) try {
    const auto bitmap = Gdiplus::Bitmap::fromFile(filename.path().view());
    width = bitmap.width();
    height = bitmap.height();
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool znGdiPlusFileIO::loadImage(ImageDescriptor& descriptor) try {
    descriptor.image.reset();
    const IString& path = descriptor.filename.path();
    auto bitmap = Gdiplus::Bitmap::fromFile(path.view());
    BitmapToImageOptions options;
    options.alpha = PixelAlpha::Premultiplied;
    const BitmapToImageResult loaded = bitmapToImage(&bitmap, path, options);
    if (!loaded.image) return false;
    descriptor.image = loaded.image;
    descriptor.format = loaded.format;
    if (descriptor.info) {
        descriptor.info->reset();
        descriptor.info->xResolution = loaded.params.xResolution;
        descriptor.info->yResolution = loaded.params.yResolution;
        descriptor.info->resolutionUnit = DotsPerInch;
    }
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool znGdiPlusFileIO::saveImage(const ImageDescriptor& descriptor, bool hasQuality,
                                std::int32_t quality) try {
    return save(descriptor, hasQuality, quality);
} catch (const std::bad_alloc&) {
    return false;
}

}  // namespace brushwork
