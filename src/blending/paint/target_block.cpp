#include "blending/paint/target_block.h"

#include <new>

#include "image/smart/il_smart_image.h"
#include "image/work/il_memory_img.h"

namespace brushwork {

bool TargetBlock::canOpen(ilImage& image) {
    const std::int32_t channels = image.channels();
    return image.dataType() == TypeUChar && (channels == 1 || channels == 4) &&
           (channels == 1 || image.order() == OrderInterleaved);
}

TargetBlock::TargetBlock(ilImage& image)
    : image_(image),
      channels_(static_cast<std::size_t>(image.channels())),
      isSmart_(ilSmartImage::isSmartImage(&image)) {
    if (image.isKindOf(ilMemoryImg::descriptor) != 0)
        memory_ = static_cast<ilMemoryImg&>(image).data();
}

TargetBlock::~TargetBlock() {
    close();
}

bool TargetBlock::open(const ilTile& box) {
    close();
    box_ = box;
    const auto width = static_cast<std::size_t>(box.nx);
    if (memory_) {
        if (!image_.box().contains(box)) return false;
        rowBytes_ = channels_ * static_cast<std::size_t>(image_.sizeX());
        pixels_ = memory_ + static_cast<std::size_t>(box.y) * rowBytes_ +
                  static_cast<std::size_t>(box.x) * channels_;
        return true;
    }
    if (isSmart_) {
        request_ = {};
        request_.x = box.x;
        request_.y = box.y;
        if (image_.lockPages({&request_, 1}, LockWrite) != ImageOk || !request_.page ||
            !request_.page->data()) {
            return false;
        }
        rowBytes_ = channels_ * static_cast<std::size_t>(image_.pageSize().x);
        pixels_ = request_.page->data() +
                  static_cast<std::size_t>(box.y - request_.page->y) * rowBytes_ +
                  static_cast<std::size_t>(box.x - request_.page->x) * channels_;
        return true;
    }
    rowBytes_ = channels_ * width;
    try {
        copy_.resize(rowBytes_ * static_cast<std::size_t>(box.ny));
    } catch (const std::bad_alloc&) {
        return false;
    }
    const ilImageConfig config(TypeUChar, OrderInterleaved, image_.channels());
    if (image_.readRegion(box, copy_.data(), box, &config) != ImageOk) return false;
    pixels_ = copy_.data();
    return true;
}

bool TargetBlock::close() {
    if (!pixels_) return true;
    pixels_ = nullptr;
    if (memory_) {
        image_.setAltered(NotifyOnly);
        return true;
    }
    if (isSmart_) {
        image_.unlockPages({&request_, 1});
        return true;
    }
    const ilImageConfig config(TypeUChar, OrderInterleaved, image_.channels());
    return image_.writeRegion(box_, copy_.data(), box_, &config) == ImageOk;
}

}  // namespace brushwork
