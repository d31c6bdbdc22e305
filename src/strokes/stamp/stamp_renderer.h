// npc::StampRenderer: puts the stamps of a brush into a layer's planes.
//
//     StampRenderer renderer(high.get(), low.get());
//     renderer.setParameters(&brush);
//     renderer.begin(BlendModeId::SolidColorPaint);
//     ilTile touched = renderer.renderPoint(point);
//     renderer.end();
//
// It stays for many strokes, and so do the stamps that it made. The stroke's thread alone; it lets
// the workers of the TaskPool help with large stamps.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "strokes/stamp/stamp_batch.h"
#include "strokes/stamp/stamp_binding.h"
#include "strokes/stamp/stamp_maker.h"
#include "strokes/tip/stamp.h"

namespace brushwork::npc {

class StampRenderer {
  public:
    // The planes hold the upper and the lower bytes of 16-bit channels. Without a lower one the
    // target is one of bytes.
    StampRenderer(ilImage* high, ilImage* low);
    StampRenderer(const StampRenderer&) = delete;
    StampRenderer& operator=(const StampRenderer&) = delete;

    // Slots, in this order in every class. The three in the middle do nothing here.
    virtual ~StampRenderer();

  protected:
    virtual void paramsChanged() {}
    virtual void began() {}
    virtual void ending() {}

  public:
    // Lays a quantised stamp: the box of pixels that it may have changed. Empty without begin, and
    // if there is no memory for it or it lies out of reach.
    virtual ilTile renderStamp(const StampPoint& stamp);

    // Does nothing while begun, and for a number that is no mode. From begin to end the targets are
    // this renderer's: stamps show in their pixels by the end, and who copies them or shares their
    // pages waits for it. (With a brush that drags the canvas they show at once.)
    void begin(BlendModeId mode);
    void end();
    [[nodiscard]] bool begun() const { return begun_; }
    // Quantises a point and lays its stamp.
    ilTile renderPoint(const StampPoint& point);
    // As stamps of this brush are rounded.
    [[nodiscard]] StampPoint quantized(const StampPoint& point) const;

    // Null: those of BrushParameters::defaults. While begun, it goes on in the same mode.
    void setParameters(const BrushParameters* brush);
    // There is no way to change it behind the cache's back.
    [[nodiscard]] const BrushParameters& parameters() const { return brush_; }
    void setColor(const std::array<float, 4>& color);
    // Share of the radius that is solid.
    [[nodiscard]] float hardness() const { return brush_.solidShare(); }

    // Images that stand in for the brush's colour from now on; none for null. A pinned one lies at
    // (x, y) in the layer, another at (x, y) from each stamp's corner.
    void setSource(ilImage* high, ilImage* low, bool pinned, std::int32_t x, std::int32_t y);
    // Paint that goes along with the pen: its middle lies on each stamp's.
    void setCarriedSource(ilImage* high, ilImage* low);
    [[nodiscard]] const StampSource& source() const { return source_; }
    // Another one for a while: the present one comes back.
    [[nodiscard]] StampSource exchangeSource(StampSource source) {
        layWaiting();
        return std::exchange(source_, std::move(source));
    }
    void setTargets(ilImage* high, ilImage* low);
    [[nodiscard]] const Ref<ilImage>& highTarget() const { return high_; }
    [[nodiscard]] const Ref<ilImage>& lowTarget() const { return low_; }
    // The target keeps its alpha.
    void setLockAlpha(bool on);
    [[nodiscard]] bool lockAlpha() const { return lockAlpha_; }

    // To share one among the renderers of a document; null is ignored.
    void setCache(const Ref<StampImageCache>& cache) { maker_.setCache(cache); }
    [[nodiscard]] const Ref<StampImageCache>& cache() const { return maker_.cache(); }
    void setCacheEnabled(bool on) { maker_.setCacheEnabled(on); }
    [[nodiscard]] bool cacheEnabled() const { return maker_.cacheEnabled(); }

    [[nodiscard]] BlendModeId blendMode() const { return blendMode_; }
    // Follows the brush: tip images, and radius and opacity of the last point.
    [[nodiscard]] const Ref<Stamp>& stamp() const { return stamp_; }

  private:
    [[nodiscard]] bool mayWait(const StampImages& images) const;
    void lay(const StampImages& images, const StampPoint& stamp);
    void bindFor(const StampImages& images, const StampPoint& stamp);
    void layWaiting();
    void bindTargets();
    void refreshTip();
    void takeBrush(const BrushParameters& brush);

    BlendModeId blendMode_ = BlendModeId::Normal;
    std::shared_ptr<GenericBlender> blender_;  // null unless begun
    // The last one, without images: a pen's next point needs the same.
    std::shared_ptr<GenericBlender> spare_;
    // What the last stamp left in the blender.
    struct Bound {
        bool constantSource = false;
        float opacity = std::numeric_limits<float>::quiet_NaN();  // none
        float flow = std::numeric_limits<float>::quiet_NaN();
    } bound_;
    BrushParameters brush_;
    Ref<Stamp> stamp_;
    Ref<ilImage> high_, low_;
    std::uint32_t color_ = 0;  // packed
    float growth_ = 1.0f;      // of radii
    bool lockAlpha_ = false;
    StampSource source_;
    StampMaker maker_;
    bool tipChanged_ = true;  // since the maker was told
    TextureMask texture_;
    StampBatch batch_;
    bool begun_ = false;
};

}  // namespace brushwork::npc
