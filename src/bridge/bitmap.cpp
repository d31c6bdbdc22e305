#include "bridge/bitmap.h"

#include <utility>

namespace brushwork::Gdiplus {

using platform::ImagingStatus;

Bitmap Bitmap::fromFile(std::u16string_view path) {
    Bitmap bitmap;
    ImagingStatus status = ImagingStatus::Ok;
    bitmap.picture_ = platform::imagingService().openFile(path, status);
    bitmap.store(status);
    return bitmap;
}

Bitmap Bitmap::fromMemory(std::span<const std::uint8_t> bytes) {
    Bitmap bitmap;
    ImagingStatus status = ImagingStatus::Ok;
    bitmap.picture_ = platform::imagingService().openMemory(bytes, status);
    bitmap.store(status);
    return bitmap;
}

Bitmap Bitmap::fromPicture(std::unique_ptr<platform::Picture> picture, ImagingStatus status) {
    Bitmap bitmap;
    bitmap.picture_ = std::move(picture);
    bitmap.store(status);
    return bitmap;
}

bool Bitmap::store(ImagingStatus status) {
    if (status != ImagingStatus::Ok) lastStatus_ = status;
    return status == ImagingStatus::Ok;
}

std::int32_t Bitmap::width() const {
    return picture_ ? picture_->width() : 0;
}
std::int32_t Bitmap::height() const {
    return picture_ ? picture_->height() : 0;
}
float Bitmap::xResolution() const {
    return picture_ ? picture_->xResolution() : 0.0F;
}
float Bitmap::yResolution() const {
    return picture_ ? picture_->yResolution() : 0.0F;
}
bool Bitmap::isGrey() const {
    return picture_ && picture_->isGrey();
}

bool Bitmap::rawFormat(platform::Guid& format) {
    if (!picture_) return store(ImagingStatus::InvalidParameter);
    format = picture_->rawFormat();
    return true;
}

bool Bitmap::readRows(platform::PixelFormat format, platform::RowSink& sink) {
    if (!picture_) return store(ImagingStatus::InvalidParameter);
    return store(picture_->readRows(format, sink));
}

}  // namespace brushwork::Gdiplus
