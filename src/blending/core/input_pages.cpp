#include "blending/core/input_pages.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "image/cache/smart_page.h"
#include "image/chain/data_types.h"

namespace brushwork::npc {
namespace {

// Places of images without bounds end here, so that pages around them still have 32-bit places.
constexpr std::int64_t farthest = std::int64_t{1} << 30;
// Smart images can be read anywhere, but what is written to them further out is lost.
constexpr std::int64_t farthestWritten = coordinateLimit;

// A walk over another input's pages comes back to four pages of this one, and the runs of a stroke
// to all those that they hold.
constexpr std::size_t recentLocks = 64;

std::int64_t floorDiv(std::int64_t value, std::int64_t step) {
    return value >= 0 ? value / step : -((step - 1 - value) / step);
}

WideBox moved(const WideBox& box, std::int64_t dx, std::int64_t dy) {
    return {box.x0 + dx, box.y0 + dy, box.x1 + dx, box.y1 + dy};
}

ilPage* pageOf(const PageLockRequest& request) {
    return request.status == ImageOk ? request.page : nullptr;
}

}  // namespace

bool InputPages::begin(const BlendSlot& slot) {
    image_.reset();
    if (!slot.image) return true;
    ilImage& image = *slot.image;
    channels_ = image.channels();
    if (image.dataType() != TypeUChar || channels_ < 1) return false;
    if (channels_ > 1 && image.order() != OrderInterleaved) return false;

    const std::int32_t kind = image.imageKind();
    layout_ = kind == KindMemory    ? Layout::WholeImage
              : kind == KindPattern ? Layout::Floating
                                    : Layout::Grid;
    bounded_ = kind != KindSmart && kind != KindPattern;
    if (bounded_) {
        sizeX_ = image.sizeX();
        sizeY_ = image.sizeY();
    }
    if (layout_ != Layout::WholeImage && !takePageSize(image)) return false;

    offsetX_ = slot.x;
    offsetY_ = slot.y;
    mode_ = slot.writable ? LockWrite : LockRead;
    image_ = slot.image;
    return true;
}

bool InputPages::serves(const BlendSlot& slot) const {
    const bool writes = mode_ == LockWrite;
    return image_ == slot.image &&
           (!image_ || (offsetX_ == slot.x && offsetY_ == slot.y && writes == slot.writable));
}

// False for pages that hold no pixel, or not all channels.
bool InputPages::takePageSize(ilImage& image) {
    const auto page = image.pageSize();
    const auto border = image.pageBorder();
    pageX_ = page.x;
    pageY_ = page.y;
    borderX_ = border.x;
    borderY_ = border.y;
    return borderX_ >= 0 && borderY_ >= 0 && pageX_ > 2 * std::int64_t{borderX_} &&
           pageY_ > 2 * std::int64_t{borderY_} && page.c == channels_;
}

void InputPages::end() {
    unlock();
    image_.reset();
}

WideBox InputPages::clipped(const WideBox& box) const {
    if (!image_) return box;
    const std::int64_t reach = mode_ == LockWrite ? farthestWritten : farthest;
    const WideBox pixels =
        bounded_ ? WideBox{0, 0, sizeX_, sizeY_} : WideBox{-reach, -reach, reach, reach};
    return intersection(box, moved(pixels, offsetX_, offsetY_));
}

PageView InputPages::pageAt(std::int64_t x, std::int64_t y) {
    x -= offsetX_;
    y -= offsetY_;
    PageView view = layout_ == Layout::WholeImage ? wholeImage()
                    : layout_ == Layout::Grid     ? gridPage(x, y)
                                                  : floatingPage(x, y);
    view.area = moved(view.area, offsetX_, offsetY_);
    view.x += offsetX_;
    view.y += offsetY_;
    return view;
}

PageView InputPages::wholeImage() {
    PageView view;
    view.area = {0, 0, sizeX_, sizeY_};
    const ilPage* const page = lockedPage({0, 0});
    // The page tells the sizes of its buffer.
    if (!page || page->x != sizeX_ || page->y != sizeY_ || page->c != channels_) return view;
    view.data = page->data();
    view.stride = sizeX_;
    return view;
}

PageView InputPages::gridPage(std::int64_t x, std::int64_t y) {
    const std::int64_t stepX = pageX_ - 2 * std::int64_t{borderX_};
    const std::int64_t stepY = pageY_ - 2 * std::int64_t{borderY_};
    PageView view;
    view.area.x0 = floorDiv(x, stepX) * stepX;
    view.area.y0 = floorDiv(y, stepY) * stepY;
    view.area.x1 = view.area.x0 + stepX;
    view.area.y1 = view.area.y0 + stepY;
    view.x = view.area.x0 - borderX_;
    view.y = view.area.y0 - borderY_;
    const ilPage* const page =
        lockedPage({static_cast<std::int32_t>(view.x), static_cast<std::int32_t>(view.y)});
    view.data = page ? page->data() : nullptr;
    view.stride = pageX_;
    return view;
}

PageView InputPages::floatingPage(std::int64_t x, std::int64_t y) {
    PageView view;
    view.area = {x, y, x + pageX_, y + pageY_};
    const ilPage* const page =
        lockedPage({static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)});
    if (!page || !page->isValid()) return view;
    const WideBox told{page->x, page->y, std::int64_t{page->x} + pageX_,
                       std::int64_t{page->y} + pageY_};
    if (x < told.x0 || x >= told.x1 || y < told.y0 || y >= told.y1) return view;
    view.area = told;
    view.x = told.x0;
    view.y = told.y0;
    view.data = page->data();
    view.stride = pageX_;
    return view;
}

// Null if the page can't be had, for want of memory too.
ilPage* InputPages::lockedPage(Place place) {
    const auto recent = std::min(locked_.size(), recentLocks);
    for (auto held = locked_.end() - static_cast<std::ptrdiff_t>(recent); held != locked_.end();
         ++held)
        if (held->x == place.x && held->y == place.y) return pageOf(*held);
    try {
        locked_.push_back({place.x, place.y});
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    PageLockRequest& request = locked_.back();
    try {
        image_->lockPages({&request, 1}, mode_);
    } catch (const std::bad_alloc&) {
        request.page = nullptr;
    }
    ilPage* const page = pageOf(request);
    if (!request.page) locked_.pop_back();
    return page;
}

void InputPages::unlock() {
    if (image_ && !locked_.empty()) image_->unlockPages(locked_);
    locked_.clear();
}

}  // namespace brushwork::npc
