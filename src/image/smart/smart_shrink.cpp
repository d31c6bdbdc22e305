// Shrinking the bounds of ilSmartImage: to pages, and to the pixel.
#include <algorithm>
#include <cstring>

#include "image/smart/il_smart_image.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_walk.h"

namespace brushwork {
namespace {

constexpr std::int32_t group = 4;  // pixels that are summed up

template <class T>
T valueAt(const std::uint8_t* data, std::int32_t index) {
    T value;
    std::memcpy(&value, data + static_cast<std::size_t>(index) * sizeof(T), sizeof value);
    return value;
}

// Whether `count` values, `stride` apart, pass for the fill: groups of four by their sum, so that
// four that differ from it may pass together, the rest one by one.
template <class T>
bool passes(const std::uint8_t* data, std::int32_t first, std::int32_t stride, std::int32_t count,
            std::uint32_t fill) {
    const std::uint64_t wanted = std::uint64_t{group} * fill;
    std::int32_t at = first;
    std::int32_t left = count;
    for (; left >= group; left -= group, at += group * stride) {
        std::uint64_t sum = 0;
        for (std::int32_t n = 0; n < group; ++n) sum += valueAt<T>(data, at + n * stride);
        if (sum != wanted) return false;
    }
    for (; left > 0; --left, at += stride)
        if (valueAt<T>(data, at) != fill) return false;
    return true;
}

bool passes(const SmartPage& page, std::int32_t first, std::int32_t stride, std::int32_t count,
            std::uint32_t fill) {
    return page.channels == 1 ? passes<std::uint8_t>(page.data, first, stride, count, fill)
                              : passes<std::uint32_t>(page.data, first, stride, count, fill);
}

}  // namespace

void ilSmartImage::shrinkToPages() {
    const ImageLockScope lock;
    if (beginOperation() != ImageOk) return;
    shrinkNow();
    setAltered(NotifyOnly);
}

// Without bringing any page in: what isn't solid counts as something.
void ilSmartImage::shrinkNow() {
    needsShrink_ = false;
    const std::uint32_t fill = pages_.solidValue();
    if ((channels_ == 1 && fill != 0) || boxes_.content.isEmpty() || boxes_.hasFixed) return;
    ilTile used = emptyTile;
    {
        PageWalk walk(pages_, boxes_.content, PageWalk::Create::No);
        if (!walk.isComplete()) return;
        while (walk.next())
            if (!walk.slot()->isSolid() || walk.slot()->solid != fill)
                used = unionOf(used, walk.tile());
    }
    applyBounds(used.isEmpty() ? emptyTile : intersection(boxes_.content, used));
}

void ilSmartImage::shrinkBounds(bool force) {
    const ImageLockScope lock;
    if (beginOperation() != ImageOk || boxes_.hasFixed) return;
    if (channels_ == 1 && pages_.solidValue() != 0 && !force) return;
    for (;;) {
        const ilTile before = boxes_.content;
        if (before.isEmpty()) break;
        shrinkNow();
        ilTile box = boxes_.content;
        cutFillLines(box);
        if (!applyBounds(box) || boxes_.content == before) break;
    }
    if (boxes_.content.isEmpty()) {
        pages_.clear();
        applyBounds(emptyTile);
    }
    setAltered(AlteredPixels);
}

void ilSmartImage::cutFillLines(ilTile& box) {
    while (box.ny > 0 && isFillRow(box.endY() - 1, box.x, box.endX())) --box.ny;
    if (box.ny < 1) return;
    while (box.nx > 0 && isFillColumn(box.endX() - 1, box.y, box.endY())) --box.nx;
    if (box.nx < 1) return;
    for (; box.ny > 0 && isFillRow(box.y, box.x, box.endX()); --box.ny) ++box.y;
    if (box.ny < 1) return;
    for (; box.nx > 0 && isFillColumn(box.x, box.y, box.endY()); --box.nx) ++box.x;
}

bool ilSmartImage::isFillRow(std::int32_t y, std::int32_t x, std::int32_t endX) {
    const std::uint32_t fill = pages_.solidValue();
    const std::int32_t line = (y & ~pageMask) * pageSide;
    for (std::int32_t px = x & pageMask; px < endX; px += pageSide) {
        const SmartPage* const page = readPage(px, y & pageMask);
        if (!page) return false;
        const std::int32_t from = std::max(x, px) - px;
        const std::int32_t to = std::min(endX - px, pageSide);
        if (page->isSolid() ? page->solid != fill : !passes(*page, line + from, 1, to - from, fill))
            return false;
    }
    return true;
}

// Of each page all 128 values of the column count, those beyond the box too.
bool ilSmartImage::isFillColumn(std::int32_t x, std::int32_t y, std::int32_t endY) {
    const std::uint32_t fill = pages_.solidValue();
    for (std::int32_t py = y & pageMask; py < endY; py += pageSide) {
        const SmartPage* const page = readPage(x & pageMask, py);
        if (!page) return false;
        if (page->isSolid() ? page->solid != fill
                            : !passes(*page, x & ~pageMask, pageSide, pageSide, fill))
            return false;
    }
    return true;
}

}  // namespace brushwork
