#include "fill/flood_fill_operation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>

#include "image/smart/smart_page_table.h"

namespace brushwork {
namespace {

std::int32_t wholeTolerance(float tolerance) {
    const float scaled = tolerance * 255.0f;
    if (!(scaled > 0.0f)) return 0;
    return static_cast<std::int32_t>(std::round(std::min(scaled, 255.0f)));
}

std::int32_t apart(std::uint32_t a, std::uint32_t b) {
    return std::abs(static_cast<std::int32_t>(a & 0xFF) - static_cast<std::int32_t>(b & 0xFF));
}

}  // namespace

FloodFillOperation::FloodFillOperation(std::int32_t x, std::int32_t y, std::int32_t offsetX,
                                       std::int32_t offsetY, float tolerance, const Color& color,
                                       FillSurface& source, FillSurface& destination,
                                       bool sourceIsGrey, bool destinationIsGrey)
    : offsetX_(offsetX),
      offsetY_(offsetY),
      tolerance_(wholeTolerance(tolerance)),
      fillColor_(packColor(color.red, color.green, color.blue, color.alpha)),
      source_(source),
      destination_(destination),
      sourceIsGrey_(sourceIsGrey),
      destinationIsGrey_(destinationIsGrey) {
    const std::uint32_t pixel = source_.get(x, y);
    target_ = sourceIsGrey_ ? pixel << 24 : pixel;
}

FloodFillOperation::FloodFillOperation(std::int32_t x, std::int32_t y, float tolerance,
                                       const Color& color, FillSurface& surface, bool isGrey)
    : FloodFillOperation(x, y, 0, 0, tolerance, color, surface, surface, isGrey, isGrey) {}

void FloodFillOperation::fill(std::int32_t x, std::int32_t y, std::int32_t left, std::int32_t top,
                              std::int32_t right, std::int32_t bottom, bool flag) {
    begin({left, top, right, bottom});
    reachedEdge_ = false;
    seeds_.clear();
    if (!clip().holds(x, y)) return;
    fillSpan({x, y});
    while (!seeds_.empty()) {
        const Seed seed = seeds_.back();
        seeds_.pop_back();
        // Another span may have come over it since.
        if (!isFilled(seed.x, seed.y)) fillSpan(seed);
    }
    const FloodBox& box = dirty();
    const bool touches =
        box.left == left || box.top == top || box.right == right || box.bottom == bottom;
    if (flag && touches) fillOutside();
}

void FloodFillOperation::fillSpan(const Seed& seed) {
    right_ = expandRight(seed.x, seed.y);
    left_ = expandLeft(seed.x, seed.y);
    setSpan(left_, right_, seed.y);
    noteSpan(left_, right_, seed.y);
    if (seed.y < clip().bottom) seedRow(seed.y + 1);
    if (seed.y > clip().top) seedRow(seed.y - 1);
}

// The last pixel of each run of inside pixels beside the span that aren't filled yet.
void FloodFillOperation::seedRow(std::int32_t y) {
    bool inRun = false;
    for (std::int32_t x = left_; x <= right_ + 1; ++x) {
        const bool open = x <= right_ && !isFilled(x, y) && inside(x, y);
        if (inRun && !open) {
            try {
                seeds_.push_back({x - 1, y});
            } catch (const std::bad_alloc&) {
                return;  // what lies beyond isn't filled
            }
        }
        inRun = open;
    }
}

bool FloodFillOperation::inside(std::int32_t x, std::int32_t y) {
    const std::uint32_t pixel = source_.get(x, y);
    if (sourceIsGrey_) return apart(pixel, target_ >> 24) <= tolerance_;
    return apart(pixel, target_) <= tolerance_ && apart(pixel >> 8, target_ >> 8) <= tolerance_ &&
           apart(pixel >> 16, target_ >> 16) <= tolerance_ &&
           apart(pixel >> 24, target_ >> 24) <= tolerance_;
}

std::uint32_t FloodFillOperation::fillValue() const {
    return destinationIsGrey_ ? fillColor_ >> 24 : fillColor_;
}

bool FloodFillOperation::isFilled(std::int32_t x, std::int32_t y) {
    return destination_.get(x + offsetX_, y + offsetY_) == fillValue();
}

void FloodFillOperation::setPixel(std::int32_t x, std::int32_t y) {
    destination_.put(x + offsetX_, y + offsetY_, fillValue());
}

void FloodFillOperation::setSpan(std::int32_t left, std::int32_t right, std::int32_t y) {
    destination_.putSpan(left + offsetX_, right + offsetX_, y + offsetY_, fillValue());
}

void FloodFillOperation::fillOutside() {
    reachedEdge_ = true;
    const auto boxOf = [this](const FloodBox& box) {
        return flatTile(box.left + offsetX_, box.top + offsetY_, box.right - box.left + 1,
                        box.bottom - box.top + 1);
    };
    const ilTile area = boxOf(clip());
    ilTile pages = flatTile(area.x & pageMask, area.y & pageMask, 0, 0);
    pages.nx = ((area.endX() + pageSide - 1) & pageMask) - pages.x;
    pages.ny = ((area.endY() + pageSide - 1) & pageMask) - pages.y;
    destination_.fillOutside(pages, boxOf(dirty()), fillValue());
}

}  // namespace brushwork
