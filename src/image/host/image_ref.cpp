#include "brushwork/image_ref.h"

#include <utility>

#include "image/smart/il_smart_image.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

ImageRef::ImageRef() = default;

ImageRef::ImageRef(ilImage* image) : image_(image) {
    if (image_) image_->addRef();
}

ImageRef::ImageRef(const ImageRef& other) : ImageRef(other.image_) {}

ImageRef::ImageRef(ImageRef&& other) noexcept : image_(std::exchange(other.image_, nullptr)) {}

ImageRef& ImageRef::operator=(const ImageRef& other) {
    ImageRef copy(other);
    std::swap(image_, copy.image_);
    return *this;
}

ImageRef& ImageRef::operator=(ImageRef&& other) noexcept {
    std::swap(image_, other.image_);
    return *this;
}

ImageRef::~ImageRef() {
    if (image_) image_->release();
}

ImageRef ImageRef::make(std::int32_t channels) {
    if (channels != 1 && channels != 4) return {};
    return ImageRef(Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, channels))).get());
}

ImageRef ImageRef::wrap(void* pixels, std::int32_t width, std::int32_t height,
                        std::int32_t channels) {
    if (!pixels || width < 1 || height < 1 || (channels != 1 && channels != 4)) return {};
    return ImageRef(Ref<ilSPMemoryImg>(new ilSPMemoryImg(pixels, width, height, 1, channels,
                                                         TypeUChar, OrderInterleaved))
                        .get());
}

std::int32_t ImageRef::channels() const {
    return image_ ? image_->channels() : 0;
}

ilTile ImageRef::bounds() const {
    if (!image_) return {};
    ilTile box = image_->box();
    if (ilSmartImage* const smart = ilSmartImage::from(image_)) {
        smart->shrinkBounds();
        smart->bounds(box);
    }
    return box;
}

bool ImageRef::read(const ilTile& box, void* pixels) const {
    if (!image_ || !pixels || box.isEmpty()) return false;
    const ilImageConfig config(TypeUChar, OrderInterleaved, image_->channels());
    const std::int32_t result = image_->readRegion(box, pixels, box, &config);
    return result == ImageOk || result == ImageClipped;
}

bool ImageRef::write(const ilTile& box, const void* pixels) {
    if (!image_ || !pixels || box.isEmpty()) return false;
    const ilImageConfig config(TypeUChar, OrderInterleaved, image_->channels());
    const std::int32_t result = image_->writeRegion(box, pixels, box, &config);
    return result == ImageOk || result == ImageClipped;
}

bool ImageRef::fill(const ilTile& box, std::uint32_t pixel) {
    if (!image_ || box.isEmpty()) return false;
    const std::int32_t result =
        image_->fillRegion(box, ilPixel(TypeUChar, image_->channels(), &pixel));
    return result == ImageOk || result == ImageClipped;
}

ImageRef ImageRef::copy() const {
    if (!image_) return {};
    if (ilSmartImage* const smart = ilSmartImage::from(image_))
        return ImageRef(smart->clone().get());
    const ilTile box = image_->box();
    const Ref<ilSmartImage> sparse(new ilSmartImage(ilPixel(TypeUChar, channels())));
    sparse->copyRegion(box, *image_, 0, 0, 0, nullptr, CopyDirection::FromOther);
    return ImageRef(sparse.get());
}

}  // namespace brushwork
