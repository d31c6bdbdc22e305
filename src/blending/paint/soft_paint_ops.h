// SoftPaintOps: the painter that draws, with the processor, into any image of bytes.
//
// Plain copies go through the image layer, so that smart images share pages; all else goes row by
// row in place (rect_copy.h). How to use a painter: paint_ops.h.
#pragma once

#include <array>

#include "blending/paint/paint_ops.h"
#include "blending/paint/soft_locked_alpha.h"
#include "blending/rows/image_blend_cache.h"

namespace brushwork {

class SoftPaintOps : public PaintOps {
  public:
    // Holds the image, which may be null until setImage.
    explicit SoftPaintOps(ilImage* image = nullptr);

  protected:
    ~SoftPaintOps() override;

  public:
    std::int32_t setLocked(bool locked) override;
    [[nodiscard]] bool locked() override;
    std::int32_t blendingChanges() override;
    std::int32_t fillRegion(const ilTile& box, const ilPixel& pixel) override;
    // What no path can take is logged.
    std::int32_t rect_copy(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                           const PaintSource& source, const PaintFormat& format, std::size_t rows,
                           float zoomX, float zoomY) override;
    std::int32_t drawHook() override;
    // Lets go of the stroke image if that isn't the new target's.
    std::int32_t setImage(ilImage* image) override;
    std::int32_t beginAccess() override;
    std::int32_t endAccess() override;
    [[nodiscard]] ilImage* strokeImage() override;
    std::int32_t setStrokeImage(ilImage* image) override;
    std::int32_t setPreview(bool preview) override;
    [[nodiscard]] bool preview() override;
    [[nodiscard]] ilImage* backup() override;
    std::int32_t setBackup(ilImage* image) override;
    std::int32_t applyColorAdjust(const ilTile& box, const PixelChange& change) override;
    [[nodiscard]] float mixRate0() override;
    std::int32_t setMixRate0(float rate) override;
    [[nodiscard]] float mixRate1() override;
    std::int32_t setMixRate1(float rate) override;
    [[nodiscard]] float mixRate2() override;
    std::int32_t setMixRate2(float rate) override;
    [[nodiscard]] std::int32_t brushKind() override;
    std::int32_t setBrushKind(std::int32_t kind) override;
    [[nodiscard]] ilImage* pendingStroke() override;
    std::int32_t commitStroke() override;
    std::int32_t setLockAlpha(std::int32_t lock) override;
    [[nodiscard]] std::int32_t lockAlpha() override;
    std::int32_t flush() override;

    // Slots 70 to 72, in this order.
    // With undo on strokes go to a smart child of the target, which is made if there is none; the
    // target's pages stay as they were until commitStroke. With undo off a pending stroke is
    // committed.
    virtual std::int32_t followUndo(bool undoIsOn);
    // Keep and give back the alpha of a stretch of the target (soft_locked_alpha.h). They act, and
    // answer done, with lockAlpha 1, 4 channels and a stretch that isn't empty.
    virtual std::int32_t saveAlpha(const ilTile& stretch);
    virtual std::int32_t restoreAlpha();

    // Beside the slots.
    // The plane of the target's low bytes, for locked alpha in 16 bits; null: none.
    void setLowPlane(ilImage* image) { low_ = Ref<ilImage>(image); }
    // How stretched sources are sampled; bilinear at first.
    void setZoomNearest(bool nearest) { zoomNearest_ = nearest; }

  private:
    Ref<ilImage> backup_;
    Ref<ilImage> stroke_;
    Ref<ilImage> low_;
    bool preview_ = false;
    bool locked_ = false;
    bool zoomNearest_ = false;
    std::array<float, 3> mixRates_{0.5F, 0.5F, 0.5F};
    std::int32_t brushKind_ = 0;
    std::int32_t lockAlpha_ = 0;
    SoftLockedAlpha kept_;
    blender::ImageBlendCache blends_;
};

}  // namespace brushwork
