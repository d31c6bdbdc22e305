#include "bridge/client/clipboard_images.h"

#include <limits>

#include "bridge/bridge_exchange.h"
#include "bridge/client/device_bitmap.h"
#include "bridge/client/image_to_bitmap.h"
#include "bridge/client/stream_images.h"
#include "bridge/format_names.h"
#include "platform/swap_io.h"

namespace brushwork {

namespace {

using platform::GlobalBlock;
using platform::LockedBlock;

GlobalBlock fileInBlock(const znString::IString& path) {
    platform::PositionedFile file;
    if (!file.open(path.view(), platform::PositionedFile::Mode::Read)) return {};
    const std::uint64_t size = file.size();
    if (size > std::numeric_limits<std::size_t>::max()) return {};
    GlobalBlock block = GlobalBlock::allocate(static_cast<std::size_t>(size));
    const LockedBlock lock(block);
    const auto count = static_cast<std::size_t>(size);
    if (lock.bytes().size() < count || file.readAt(0, lock.bytes().data(), count) != count)
        return {};
    return block;
}

// Encoders write files, so the bytes take their way through one.
GlobalBlock tiffOf(MemoryPicture& picture) {
    platform::Guid encoder;
    if (findEncoderByMimeType(u"image/tiff", encoder) < 0) return {};
    platform::EncodeRequest encode;
    encode.width = picture.width();
    encode.height = picture.height();
    encode.source = &picture;
    encode.xResolution = picture.xResolution();
    encode.yResolution = picture.yResolution();
    ExchangeFile file;
    if (!file.makeName() || platform::imagingService().saveFile(
                                file.path().view(), encoder, encode) != platform::ImagingStatus::Ok)
        return {};
    return fileInBlock(file.path());
}

}  // namespace

GlobalBlock imageToClipboard(std::uint32_t format, ilImage* image) {
    if (!image) return {};
    if (format == ClipboardDib) return deviceBitmapOf(*image);
    if (format != ClipboardTiff) return {};
    const auto picture = imageToBitmap(image);
    return picture ? tiffOf(*picture) : GlobalBlock();
}

GlobalBlock bitmapToClipboard(std::uint32_t format, Gdiplus::Bitmap& bitmap) {
    if (format == ClipboardDib) return deviceBitmapOf(bitmap);
    if (format != ClipboardTiff) return {};
    const auto picture = MemoryPicture::of(bitmap);
    return picture ? tiffOf(*picture) : GlobalBlock();
}

Ref<ilSPMemoryImg> imageFromClipboard(std::uint32_t format, const GlobalBlock& block) {
    if (format == ClipboardTiff) return imageFromBlock(block);
    if (format != ClipboardDib) return nullptr;
    const GlobalBlock file = bitmapFileOf(block);
    return file ? imageFromBlock(file) : nullptr;
}

}  // namespace brushwork
