#include "blending/paint/mask_guard.h"

namespace brushwork {
namespace {

// Has a painter draw as it is told here, and no other way, for a scope.
class PlainPainter {
  public:
    PlainPainter(PaintOps& painter, ilImage* stroke)
        : painter_(painter),
          stroke_(painter.strokeImage()),
          factors_(painter.blendFactors()),
          state_(painter.state()),
          preview_(painter.preview()) {
        painter_.setStrokeImage(stroke);
        painter_.setPreview(true);
        painter_.setBlendFactors(pairOver.source, pairOver.target);
        painter_.setZoom(1.0F, 1.0F);
        painter_.setScaleBias({});
    }
    PlainPainter(const PlainPainter&) = delete;
    PlainPainter& operator=(const PlainPainter&) = delete;
    ~PlainPainter() {
        painter_.setScaleBias(state_.scaleBias);
        painter_.setZoom(state_.zoomX, state_.zoomY);
        painter_.setBlendFactors(factors_.source, factors_.target);
        painter_.setPreview(preview_);
        painter_.setStrokeImage(stroke_.get());
    }

  private:
    PaintOps& painter_;
    Ref<ilImage> stroke_;
    BlendFactors factors_;
    PaintState state_;
    bool preview_;
};

}  // namespace

void MaskGuard::setOffset(std::int32_t x, std::int32_t y) {
    x_ = x;
    y_ = y;
}

double MaskGuard::fillValue() const {
    return mask_ ? mask_->fill().channel(0) : 0.0;
}

ilTile MaskGuard::area() const {
    if (!mask_) return {};
    ilTile area;
    if (ilSmartImage* const smart = ilSmartImage::from(mask_.get()))
        smart->bounds(area);
    else
        area = mask_->box();
    if (area.isEmpty()) return {};
    area.x -= x_;
    area.y -= y_;
    return area;
}

bool MaskGuard::forbids(const ilTile& box) const {
    return fillValue() >= 255.0 && intersection(box, area()).isEmpty();
}

ilTile MaskGuard::regionOf(const ilTile& box) const {
    const ilTile masked = area();
    if (masked.isEmpty()) return {};
    const ilTile region = fillValue() != 0.0 ? box : intersection(box, masked);
    return region.isEmpty() ? ilTile{} : region;
}

bool MaskGuard::protect(ilImage* target, const ilTile& box) {
    const ilTile region = regionOf(box);
    if (region.isEmpty()) return true;
    if (!target) return false;
    if (!active_) {
        snapshot_ = Ref<ilSmartImage>(new ilSmartImage(target));
        if (snapshot_->status() != ImageOk) {
            snapshot_.reset();
            return false;
        }
        protected_ = {};
        active_ = true;
    }
    // Pages of a smart target are shared; another's pixels are copied, now.
    snapshot_->materialize(&region, !ilSmartImage::isSmartImage(target));
    protected_ = unionOf(protected_, region);
    return true;
}

void MaskGuard::reset() {
    snapshot_.reset();
    protected_ = {};
    active_ = false;
}

void MaskGuard::restore(PaintOps& painter) {
    if (!active_) return;
    layOver(painter, protected_);
    reset();
}

void MaskGuard::layOver(PaintOps& painter, const ilTile& box) const {
    const ilTile region = regionOf(box);
    if (region.isEmpty() || !snapshot_) return;
    const PlainPainter plain(painter, snapshot_.get());
    painter.rect_copy(region.x, region.y, region.nx, region.ny,
                      PaintSource::of(mask_.get(), x_ + region.x, y_ + region.y), {}, 0, 1.0F,
                      1.0F);
}

}  // namespace brushwork
