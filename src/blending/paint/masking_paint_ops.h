// MaskingPaintOps: stands before another painter and keeps a part of the target from it.
//
//     const Ref<MaskingPaintOps> masked(new MaskingPaintOps);
//     masked->setInner(ops);
//     masked->setMask(mask, layerX, layerY);
//     masked->drawImage(picture, 0, 0);  // where the mask is 255 the target stays as it is
//
// Whatever draws by fillRegion, rect_copy or applyColorAdjust, and so clear, fill, drawImage and
// drawSoftBox, draws as the inner painter does; then what the mask protects comes back
// (mask_guard.h). Between beginAccess and endAccess that happens once, at the end, and
// imageForRead shows meanwhile how it will look. commitStroke isn't watched: a pending stroke has
// met the mask before.
#pragma once

#include <cstdint>

#include "blending/paint/mask_guard.h"
#include "blending/paint/paint_ops.h"
#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

class MaskingPaintOps : public PaintOps {
  public:
    MaskingPaintOps();

  protected:
    ~MaskingPaintOps() override;  // ends an open batch

  public:
    std::int32_t fillRegion(const ilTile& box, const ilPixel& pixel) override;
    std::int32_t rect_copy(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                           const PaintSource& source, const PaintFormat& format, std::size_t rows,
                           float zoomX, float zoomY) override;
    // The inner painter's, cut to the mask's pixels where the mask is 255 around them.
    void bounds(ilTile& box) override;
    // Ends an open batch first.
    std::int32_t setImage(ilImage* image) override;
    // A batch that is open is ended first.
    std::int32_t beginAccess() override;
    std::int32_t endAccess() override;
    [[nodiscard]] ilImage* imageForRead(const ilTile& box) override;
    std::int32_t applyColorAdjust(const ilTile& box, const PixelChange& change) override;

    // Slots 70 and 71, in this order.
    // The painter that draws, held; null: none. Ends an open batch first.
    virtual std::int32_t setInner(PaintOps* inner);
    // Pixel (x, y) of the mask lies on the target's (0, 0). One channel; null keeps the mask and
    // moves it. While a batch is open the mask is only moved.
    virtual std::int32_t setMask(ilImage* image, std::int32_t x, std::int32_t y);

    [[nodiscard]] ilImage* mask() const { return guard_.mask(); }
    // The image of the latest setMask that set one.
    [[nodiscard]] ilImage* maskSource() const { return maskSource_.get(); }
    // Whether drawn pixels wait for what the mask protects of them.
    [[nodiscard]] bool isSnapshotActive() const { return guard_.isActive(); }
    [[nodiscard]] bool inBatch() const { return inBatch_; }

  private:
    template <class Draw>
    std::int32_t guarded(const ilTile& box, const Draw& draw);
    void restore();
    void makeDisplay(ilImage& target);

    Ref<ilSmartImage> displayImage_;
    Ref<PaintOps> displayOps_;
    Ref<ilImage> maskSource_;
    MaskGuard guard_;
    bool inBatch_ = false;
};

}  // namespace brushwork
