#include "strokes/tip/image_paint_obj.h"

#include <utility>

namespace brushwork {

ImagePaintObj::ImagePaintObj(const Ref<ilImage>& image, Levels levels) {
    if (levels == Levels::Reduced)
        levels_ = imageLadderOf(image);
    else if (image)
        levels_.push_back(image);
}

ImagePaintObj::~ImagePaintObj() = default;

Ref<ilImage> ImagePaintObj::imageAtSize(std::int32_t width, std::int32_t height) const {
    return ladderLevel(levels_, width, height);
}

void ImagePaintObj::setImageLadder(const Ref<ilImage>& image) {
    if (levels_.empty() ? !image : levels_.front() == image) return;
    replace(imageLadderOf(image));
}

void ImagePaintObj::setSingleImage(const Ref<ilImage>& image) {
    replace(image ? ImageLadder{image} : ImageLadder{});
}

void ImagePaintObj::replace(ImageLadder levels) {
    levels_ = std::move(levels);
    ++revision_;
    notifyObservers();
}

}  // namespace brushwork
