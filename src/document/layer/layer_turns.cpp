// Layer: flip, rotate and shift by whole pages.
#include "document/layer/changed_area.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"
#include "foundation/services/log.h"
#include "image/smart/smart_bounds.h"

namespace brushwork {
namespace {

using TurnKernel = std::int32_t (ilSPMemoryImg::*)();

// The image's pixels, taken out of it, to be put back in turned tiles. Tiles are whole pages and
// share them; what is of one value costs no pixel work.
class PageTurns {
  public:
    PageTurns(ilSmartImage& image, const ilTile& box)
        : image_(image), box_(box), area_(SmartBounds::toPages(box)), copy_(image.clone()) {
        const ilXYZCstruct<std::int32_t> page = image.pageSize();
        pagesFit_ = page.x == pageSide && page.y == pageSide;
        if (copy_) image_.fillRegion(box, image_.fill());
    }

    [[nodiscard]] bool isReady() const { return bool(copy_); }
    [[nodiscard]] bool wasSlow() const { return wasSlow_; }
    // The box, grown to pages.
    [[nodiscard]] const ilTile& area() const { return area_; }
    [[nodiscard]] std::int32_t columns() const { return area_.nx / pageSide; }
    [[nodiscard]] std::int32_t rows() const { return area_.ny / pageSide; }
    [[nodiscard]] ilTile tile(std::int32_t column, std::int32_t row) const {
        return flatTile(area_.x + pageSide * column, area_.y + pageSide * row, pageSide, pageSide);
    }

    // Puts the tile `from` of the picture as it was to `to`, turned. False without memory; then
    // undo() it all.
    [[nodiscard]] bool turn(const ilTile& from, const ilTile& to, TurnKernel kernel) {
        std::uint32_t value = 0;
        const bool solid = copy_->isSolid(from, value, false);
        if (solid || pagesFit_) {
            if (image_.copyRegion(to, *copy_, from.x, from.y, 0, nullptr,
                                  CopyDirection::FromOther) != ImageOk)
                return false;
            if (solid || turnPage(to, kernel)) return true;
        }
        wasSlow_ = true;
        return turnCopy(from, to, kernel);
    }
    void undo() {
        image_.fillRegion(area_, image_.fill());
        image_.copyRegion(box_, *copy_, box_.x, box_.y, 0, nullptr, CopyDirection::FromOther);
    }

  private:
    // In place, in the page's own buffer.
    [[nodiscard]] bool turnPage(const ilTile& tile, TurnKernel kernel) {
        PageLockRequest request;
        request.x = tile.x;
        request.y = tile.y;
        bool turned = false;
        if (image_.lockPages({&request, 1}, LockWrite) == ImageOk && request.page &&
            request.page->data() && request.page->x == tile.x && request.page->y == tile.y) {
            const Ref<ilSPMemoryImg> pixels(new ilSPMemoryImg(request.page->data(), pageSide,
                                                              pageSide, 1, image_.channels(),
                                                              TypeUChar, OrderInterleaved));
            turned = ((*pixels).*kernel)() == ImageOk;
        }
        image_.unlockPages({&request, 1});
        return turned;
    }

    [[nodiscard]] bool turnCopy(const ilTile& from, const ilTile& to, TurnKernel kernel) {
        if (!scratch_)
            scratch_ = Ref<ilSPMemoryImg>(new ilSPMemoryImg(pageSide, pageSide, image_.channels()));
        if (!scratch_->data()) return false;
        if (copy_->readRegion(from, scratch_->data(), from) != ImageOk) return false;
        return ((*scratch_).*kernel)() == ImageOk &&
               image_.writeRegion(to, scratch_->data(), to) == ImageOk;
    }

    ilSmartImage& image_;
    ilTile box_, area_;
    Ref<ilSmartImage> copy_;
    Ref<ilSPMemoryImg> scratch_;
    bool pagesFit_ = false;
    bool wasSlow_ = false;
};

bool flipRows(PageTurns& turns) {
    for (std::int32_t row = turns.rows() - 1; row >= 0; --row)
        for (std::int32_t column = 0; column < turns.columns(); ++column)
            if (!turns.turn(turns.tile(column, row), turns.tile(column, turns.rows() - 1 - row),
                            &ilSPMemoryImg::flipY))
                return false;
    return true;
}

bool flipColumns(PageTurns& turns) {
    for (std::int32_t column = turns.columns() - 1; column >= 0; --column)
        for (std::int32_t row = 0; row < turns.rows(); ++row)
            if (!turns.turn(turns.tile(column, row), turns.tile(turns.columns() - 1 - column, row),
                            &ilSPMemoryImg::mirrorX))
                return false;
    return true;
}

// A quarter against the clock, about the lower left corner of the pages.
bool turnLeft(PageTurns& turns) {
    for (std::int32_t column = 0; column < turns.columns(); ++column)
        for (std::int32_t row = turns.rows() - 1; row >= 0; --row)
            if (!turns.turn(turns.tile(column, row), turns.tile(turns.rows() - 1 - row, column),
                            &ilSPMemoryImg::rotate90))
                return false;
    return true;
}

bool turnRight(PageTurns& turns) {
    for (std::int32_t column = turns.columns() - 1; column >= 0; --column)
        for (std::int32_t row = 0; row < turns.rows(); ++row)
            if (!turns.turn(turns.tile(column, row), turns.tile(row, turns.columns() - 1 - column),
                            &ilSPMemoryImg::rotateMinus90))
                return false;
    return true;
}

bool shiftPixels(ilSmartImage& image, std::int32_t dx, std::int32_t dy) {
    const ilTile box = boundsOf(&image);
    if (box.isEmpty() || (dx == 0 && dy == 0)) return true;
    const Ref<ilSmartImage> copy = image.clone();
    if (!copy) return false;
    const ilTile target = moved(box, dx, dy);
    image.fillRegion(box, image.fill());
    image.copyRegion(target, *copy, box.x, box.y, 0, nullptr, CopyDirection::FromOther);
    image.setBounds(target);
    return true;
}

}  // namespace

void Layer::bakeOffset() {
    if (transform_.open) endTransform(true);
    std::int32_t dx = 0, dy = 0;
    offsetInt(&dx, &dy);
    if (ilSmartImage* const color = smartColor()) {
        if (!shiftPixels(*color, dx, dy)) return;
    }
    if (ilSmartImage* const stencil = smartStencil()) shiftPixels(*stencil, dx, dy);
    place_.offsetX = place_.offsetY = 0.0f;
    if (dx != 0 || dy != 0) markClipDirty(true);
    touch();
}

void Layer::normalizeOrigin() {
    ilSmartImage* const color = smartColor();
    if (!color) return;
    const ilTile box = boundsOf(color);
    if (box.isEmpty() || (box.x == 0 && box.y == 0)) return;
    if (!shiftPixels(*color, -box.x, -box.y)) return;
    if (ilSmartImage* const stencil = smartStencil()) shiftPixels(*stencil, -box.x, -box.y);
    place_.offsetX += static_cast<float>(box.x);
    place_.offsetY += static_cast<float>(box.y);
    markClipDirty(true);
    touch();
}

// With both axes each pass mirrors the picture as it was, and the horizontal one, the later, is
// what remains: who wants both calls twice.
void Layer::flipImage(bool horizontal, bool vertical) {
    if (transform_.open) endTransform(true);
    ChangedArea area(*this);
    bakeStencil();
    bakeOffset();
    tighten();
    ilSmartImage* const color = smartColor();
    const ilTile box = boundsOf(color);
    if (box.isEmpty() || (!horizontal && !vertical)) return;
    PageTurns turns(*color, box);
    if (!turns.isReady()) return;
    if ((vertical && !flipRows(turns)) || (horizontal && !flipColumns(turns))) {
        turns.undo();
        return;
    }
    ilTile mirrored = box;
    if (horizontal)
        mirrored.x = turns.area().x + turns.area().endX() - box.endX();
    else
        mirrored.y = turns.area().y + turns.area().endY() - box.endY();
    color->setBounds(mirrored, true);
    tighten();
    // Back by its place: a layer that may not be moved keeps the shift.
    const ilTile shifted = boundsOf(color);
    if (shifted.x != box.x || shifted.y != box.y) {
        setOffsetInt(TransformRecord(), box.x - shifted.x, box.y - shifted.y);
        bakeOffset();
        tighten();
    }
    const ilTile result = boundsOf(color);
    if (!(result == box)) {
        log("\nError!\n");
        log("LayerFlip -- Original bounds are %d, %d, %d, %d\n", box.x, box.y, box.nx, box.ny);
        log("LayerFlip -- New bounds are %d, %d, %d, %d\n", result.x, result.y, result.nx,
            result.ny);
    }
    if (turns.wasSlow()) log("Brushwork: Flip Layer fell into the slow path!\n");
    markClipDirty(true);
    area.mark();
}

void Layer::rotateImage(bool other) {
    if (transform_.open) endTransform(true);
    ChangedArea area(*this);
    bakeStencil();
    tighten();
    ilSmartImage* const color = smartColor();
    const ilTile box = boundsOf(color);
    if (box.isEmpty()) return;
    PageTurns turns(*color, box);
    if (!turns.isReady()) return;
    if (!(other ? turnRight(turns) : turnLeft(turns))) {
        turns.undo();
        return;
    }
    const ilTile& pages = turns.area();
    const ilTile turned = other ? flatTile(pages.x + (box.y - pages.y),
                                           pages.y + (pages.endX() - box.endX()), box.ny, box.nx)
                                : flatTile(pages.x + (pages.endY() - box.endY()),
                                           pages.y + (box.x - pages.x), box.ny, box.nx);
    color->setBounds(turned, true);
    tighten();
    if (turns.wasSlow()) log("Brushwork: Rotate Layer fell into the slow path!\n");
    markClipDirty(true);
    area.mark();
}

}  // namespace brushwork
