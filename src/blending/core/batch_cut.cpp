#include "blending/core/batch_cut.h"

#include <algorithm>

namespace brushwork::npc {
namespace {

constexpr std::int64_t squareBlocks = 16;

std::int64_t blocksFor(std::int64_t pixels) {
    return (pixels + BatchCut::block - 1) / BatchCut::block;
}

}  // namespace

BatchCut::BatchCut(const WideBox& box) : box_(box), x_(box.x0), y_(box.y0) {
    if (box_.isEmpty()) {
        y_ = box_.y1;
        return;
    }
    std::int64_t across = blocksFor(box.width());
    std::int64_t up = blocksFor(box.height());
    if (across > mostBlocks || across * up > mostBlocks) {
        if (across > squareBlocks && up > squareBlocks)
            across = up = squareBlocks;
        else if (across > up)
            across = mostBlocks / up;
        else
            up = mostBlocks / across;
    }
    width_ = across * block;
    height_ = up * block;
}

bool BatchCut::next(WideBox& batch) {
    if (y_ >= box_.y1) return false;
    const std::int64_t height = std::min(height_, box_.y1 - y_);
    const std::int64_t width = height < height_ ? mostBlocks / blocksFor(height) * block : width_;
    batch = {x_, y_, std::min(x_ + width, box_.x1), y_ + height};
    x_ = batch.x1;
    if (x_ == box_.x1) {
        x_ = box_.x0;
        y_ = batch.y1;
    }
    return true;
}

}  // namespace brushwork::npc
