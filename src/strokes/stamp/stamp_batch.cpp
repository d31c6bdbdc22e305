#include "strokes/stamp/stamp_batch.h"

#include <algorithm>
#include <new>

#include "blending/core/work_sharing.h"
#include "blending/modes/blender_registry.h"
#include "foundation/tasks/task_pool.h"
#include "image/cache/smart_page.h"

namespace brushwork::npc {
namespace {

// Smaller ones are done with before another thread has heard of them.
constexpr std::int64_t leastPixels = 4096;
constexpr std::int64_t mostPixels = 1 << 20;
constexpr std::size_t mostStamps = 64;
// Fewer are laid in the time that it takes to wake a worker, and for it to come.
constexpr std::int64_t worthWaking = 1 << 17;

// A thread takes so many rows of a page at a time: few calls a stamp, and no thread waits for long
// at the end.
constexpr std::int32_t bandRows = 32;
constexpr std::int32_t bandsPerPage = pageSide / bandRows;

std::int64_t pixelsOf(const ilTile& box) {
    return std::int64_t{box.nx} * box.ny;
}

// No vector holds more pixels.
constexpr std::int64_t vectorPixels = 8;

// Whole vectors where there is room.
WideBox widened(WideBox box, std::int64_t left, std::int64_t right) {
    const std::int64_t width = (box.width() + vectorPixels - 1) & -vectorPixels;
    const std::int64_t end = std::min(box.x0 + width, right);
    if (end - width < left) return box;
    box.x0 = end - width;
    box.x1 = end;
    return box;
}

// The part of a plane from a pixel on.
WorkPlane from(WorkPlane plane, std::int64_t right, std::int64_t up) {
    if (plane.base)
        plane.base += static_cast<std::ptrdiff_t>(up) * plane.rowBytes() +
                      static_cast<std::ptrdiff_t>(right) * plane.bytesPerPixel;
    return plane;
}

}  // namespace

StampBatch::StampBatch() = default;
StampBatch::~StampBatch() = default;

bool StampBatch::isWorthIt(const StampImages& stamp) {
    return pixelsOf(stamp.inked) >= leastPixels && TaskPool::instance().size() > 0;
}

bool StampBatch::isFull() const {
    return pixels_ >= mostPixels || stamps_.size() >= mostStamps;
}

void StampBatch::add(const Stamp& stamp) {
    stamps_.push_back(
        {stamp, Ref<ilSPMemoryImg>(stamp.images.mask), Ref<ilSPMemoryImg>(stamp.images.color)});
    pixels_ += pixelsOf(stamp.images.inked);
}

void StampBatch::clear() {
    stamps_.clear();
    pixels_ = 0;
}

void StampBatch::lay(const Canvas& canvas) {
    canvas_ = canvas;
    ++turn_;
    try {
        preparePainters();
        if (lockPages()) {
            makeSheets();
            shareWork(
                pages_.size() * bandsPerPage, [this](std::size_t n) { layPiece(n); },
                pixels_ < worthWaking ? SharedWork::Some : SharedWork::Much);
        }
    } catch (const std::bad_alloc&) {
    }
    high_.end();
    low_.end();
    pages_.clear();
    canvas_ = {};
    clear();
}

// One for each worker and one for this thread. Whose turn comes makes its own ready.
void StampBatch::preparePainters() {
    const auto mode = static_cast<std::int32_t>(canvas_.mode);
    if (!painters_.empty() && painters_[0]->blender->mode() != mode) painters_.clear();
    const auto wanted = static_cast<std::size_t>(TaskPool::instance().size()) + 1;
    while (painters_.size() < wanted) {
        auto painter = std::make_unique<Painter>();
        painter->blender = createBlender(canvas_.mode);
        painters_.push_back(std::move(painter));
    }
}

bool StampBatch::lockPages() {
    if (!high_.begin({Ref<ilImage>(canvas_.high), true, 0, 0})) return false;
    if (!low_.begin({Ref<ilImage>(canvas_.low), canvas_.low != nullptr, 0, 0})) return false;
    for (const Waiting& waiting : stamps_)
        lockPagesUnder(low_.clipped(high_.clipped(wideBox(waiting.stamp.images.inked))));
    return true;
}

// Pages that can't be had are left out.
void StampBatch::lockPagesUnder(const WideBox& box) {
    const auto planeOf = [](const InputPages& input, const PageView& view) {
        return WorkPlane{view.data, view.stride, input.channels(), input.channels()};
    };
    if (box.isEmpty()) return;
    for (std::int64_t y = box.y0 & -std::int64_t{pageSide}; y < box.y1; y += pageSide)
        for (std::int64_t x = box.x0 & -std::int64_t{pageSide}; x < box.x1; x += pageSide) {
            const auto isHere = [&](const Page& page) {
                return page.area.x0 == x && page.area.y0 == y;
            };
            if (std::any_of(pages_.rbegin(), pages_.rend(), isHere)) continue;
            Page& page = pages_.emplace_back();
            page.area = {x, y, x + pageSide, y + pageSide};
            if (low_.isBound()) page.low = planeOf(low_, low_.pageAt(x, y));
            if (page.low.base || !low_.isBound()) page.high = planeOf(high_, high_.pageAt(x, y));
            if (!page.high.base) pages_.pop_back();
        }
}

void StampBatch::makeSheets() {
    sheets_.clear();
    for (const Waiting& waiting : stamps_) {
        const StampImages& images = waiting.stamp.images;
        const ilTile& ink = images.inked;
        Sheet& sheet = sheets_.emplace_back();
        sheet.left = ink.x;
        sheet.bottom = ink.y;
        sheet.right = ink.endX();
        sheet.top = ink.endY();
        sheet.imagesX = images.box.x;
        sheet.imagesY = images.box.y;
        sheet.mask = images.maskPixels;
        sheet.maskStride = images.maskStride;
        sheet.color = images.color ? images.color->data() : nullptr;
        sheet.colorStride = images.color ? images.color->sizeX() : 0;
        // Pixels of a locked alpha are fitted to it also where the mask is 0.
        const std::int32_t columns =
            sheet.color ? std::min(sheet.maskStride, sheet.colorStride) : sheet.maskStride;
        sheet.roomLeft = canvas_.lockAlpha ? sheet.left : images.box.x;
        sheet.roomRight = canvas_.lockAlpha ? sheet.right : images.box.x + columns;
        sheet.opacity = waiting.stamp.point.opacity;
        sheet.flow = waiting.stamp.point.flow;
    }
}

// The caller takes pieces from the front and helpers from the back: so the even bands, which come
// first, are mostly the caller's, and stay in its processor's cache from batch to batch.
void StampBatch::layPiece(std::size_t n) {
    constexpr std::size_t ofEach = bandsPerPage / 2;
    const std::size_t evenOnes = pages_.size() * ofEach;
    const bool odd = n >= evenOnes;
    const std::size_t rest = odd ? n - evenOnes : n;
    const Page& page = pages_[rest / ofEach];
    WideBox band = page.area;
    band.y0 += static_cast<std::int64_t>(rest % ofEach * 2 + (odd ? 1 : 0)) * bandRows;
    band.y1 = band.y0 + bandRows;
    Painter& painter = claimPainter();
    for (const Sheet& sheet : sheets_) layRows(*painter.blender, sheet, page, band);
    painter.busy.clear(std::memory_order_release);
}

void StampBatch::layRows(GenericBlender& blender, const Sheet& sheet, const Page& page,
                         const WideBox& band) {
    WideBox box = intersection(band, {sheet.left, sheet.bottom, sheet.right, sheet.top});
    if (box.isEmpty()) return;
    box = widened(box, std::max<std::int64_t>(sheet.roomLeft, band.x0),
                  std::min<std::int64_t>(sheet.roomRight, band.x1));
    WorkRecord rows;
    rows.width = static_cast<std::int32_t>(box.width());
    rows.height = static_cast<std::int32_t>(box.height());
    rows.x = box.x0;
    rows.y = box.y0;
    const std::int64_t pageX = box.x0 - page.area.x0, pageY = box.y0 - page.area.y0;
    rows.planes[InputDestination] = from(page.high, pageX, pageY);
    rows.planes[InputSecondDestination] = from(page.low, pageX, pageY);
    const std::int64_t x = box.x0 - sheet.imagesX, y = box.y0 - sheet.imagesY;
    rows.planes[InputMask] = from({sheet.mask, sheet.maskStride, 1, 1}, x, y);
    rows.planes[InputSource] = from({sheet.color, sheet.colorStride, 4, 4}, x, y);
    setStampValues(blender, sheet.opacity, sheet.flow);
    blender.prepareRecords();
    blender.blendRecord(rows);
}

// Each thread asks for its own first. There is one for each that may come, so the search ends.
StampBatch::Painter& StampBatch::claimPainter() {
    auto n = static_cast<std::size_t>(TaskPool::callingWorkerIndex() + 1) % painters_.size();
    while (painters_[n]->busy.test_and_set(std::memory_order_acquire))
        n = (n + 1) % painters_.size();
    Painter& painter = *painters_[n];
    if (painter.turn == turn_) return painter;
    painter.turn = turn_;
    setModeParameters(*painter.blender, *canvas_.brush);
    painter.blender->setConstantColor(canvas_.color);
    painter.blender->setLockAlpha(canvas_.lockAlpha);
    return painter;
}

}  // namespace brushwork::npc
