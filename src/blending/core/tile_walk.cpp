#include "blending/core/tile_walk.h"

#include <algorithm>
#include <cstdint>

namespace brushwork::npc {

bool TileWalk::begin(const BlendSlots& slots) {
    end();
    return renew(slots);
}

bool TileWalk::renew(const BlendSlots& slots) {
    bool bound = false;
    for (std::size_t n = 0; n < blendInputCount; ++n) {
        if (!inputs_[n].serves(slots[n])) {
            inputs_[n].end();
            if (!inputs_[n].begin(slots[n])) {
                end();
                return false;
            }
        }
        bound = bound || inputs_[n].isBound();
    }
    return bound;
}

std::size_t TileWalk::lockCount() const {
    std::size_t count = 0;
    for (const InputPages& input : inputs_) count += input.lockCount();
    return count;
}

void TileWalk::end() {
    for (InputPages& input : inputs_) input.end();
    plainMask_ = {};
}

void TileWalk::setPlainMask(const WorkPlane& pixels, std::int64_t x, std::int64_t y) {
    plainMask_ = pixels;
    maskX_ = x;
    maskY_ = y;
}

WideBox TileWalk::clipped(WideBox box) const {
    for (const InputPages& input : inputs_) box = input.clipped(box);
    return box;
}

void TileWalk::run(const WideBox& box, const Visitor& visit) {
    if (!box.isEmpty()) walk(blendInputCount, box, visit);
}

WideBox TileWalk::presentPages() const {
    WideBox common = clipped({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX});
    for (std::size_t n = 0; n < blendInputCount; ++n) {
        if (!inputs_[n].isBound()) continue;
        common = intersection(common, current_[n].area);
    }
    return common;
}

void TileWalk::unlock() {
    for (InputPages& input : inputs_) input.unlock();
}

// From the last input down to the first, so that targets are locked after what is read: a target
// that shares a page with a source then gets its copy, and the source keeps the page it has.
void TileWalk::walk(std::size_t inputsLeft, const WideBox& box, const Visitor& visit) {
    while (inputsLeft > 0 && !inputs_[inputsLeft - 1].isBound()) --inputsLeft;
    if (inputsLeft == 0) {
        visit(record(box));
        return;
    }
    const std::size_t index = inputsLeft - 1;
    std::int64_t rowEnd = box.y1;
    for (std::int64_t y = box.y0; y < box.y1; y = rowEnd) {
        rowEnd = box.y1;
        for (std::int64_t x = box.x0; x < box.x1;) {
            const PageView view = inputs_[index].pageAt(x, y);
            const WideBox part{x, y, std::min(box.x1, view.area.x1),
                               std::min(box.y1, view.area.y1)};
            if (view.data) {
                current_[index] = view;
                walk(index, part, visit);
            }
            rowEnd = std::min(rowEnd, part.y1);
            x = part.x1;
        }
    }
}

WorkRecord TileWalk::record(const WideBox& box) const {
    WorkRecord record = imageRecord(box);
    if (plainMask_.base) {
        WorkPlane& mask = record.planes[InputMask];
        mask = plainMask_;
        mask.base += (box.y0 - maskY_) * mask.rowBytes() + (box.x0 - maskX_);
    }
    return record;
}

WorkRecord TileWalk::imageRecord(const WideBox& box) const {
    WorkRecord record;
    record.width = static_cast<std::int32_t>(box.width());
    record.height = static_cast<std::int32_t>(box.height());
    record.x = box.x0;
    record.y = box.y0;
    for (std::size_t n = 0; n < blendInputCount; ++n) {
        if (!inputs_[n].isBound()) continue;
        const PageView& view = current_[n];
        WorkPlane& plane = record.planes[n];
        plane.stride = view.stride;
        plane.channels = inputs_[n].channels();
        plane.bytesPerPixel = plane.channels;
        const std::int64_t pixel = (box.y0 - view.y) * view.stride + (box.x0 - view.x);
        plane.base = view.data + static_cast<std::ptrdiff_t>(pixel * plane.bytesPerPixel);
    }
    return record;
}

}  // namespace brushwork::npc
