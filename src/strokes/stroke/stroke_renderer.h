// npc::StrokeRenderer: from the points of a pen to painted pixels, with one brush.
//
//     StrokeRenderer renderer(high.get(), low.get());
//     renderer.setParameters(stroke, &brush);
//     renderer.setTileCallback([&](const ilTile& touched) { dirty.add(touched); });
//     renderer.beginStroke(false);
//     for (const StampPoint& point : pen) renderer.addPoint(point);
//     renderer.endStroke();
//
// One renderer serves stroke after stroke, on the stroke's thread, which the host's timers must
// call back on, too.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "brushwork/stroke_parameters.h"
#include "strokes/path/stroke_interpolator.h"
#include "strokes/stamp/stamp_renderer.h"
#include "strokes/stroke/airbrush.h"

namespace brushwork::npc {

// Hears of every box of pixels that may have changed, once the stamps of a point are laid.
using TileCallback = std::function<void(const ilTile&)>;

class StrokeRenderer {
  public:
    // With a stamp renderer of its own on these planes.
    StrokeRenderer(ilImage* high, ilImage* low);
    explicit StrokeRenderer(std::shared_ptr<StampRenderer> stampRenderer);
    StrokeRenderer(const StrokeRenderer&) = delete;
    StrokeRenderer& operator=(const StrokeRenderer&) = delete;

    // Slots, in this order in every class.
    virtual ~StrokeRenderer();
    // Between strokes, on the same stamp renderer, without interpolator and callback.
    [[nodiscard]] virtual std::shared_ptr<StrokeRenderer> clone() const;
    // Null: points are refused. Answers true.
    virtual bool setStampRenderer(const std::shared_ptr<StampRenderer>& stampRenderer);
    [[nodiscard]] virtual std::shared_ptr<StampRenderer> getStampRenderer() const;
    // A brush of null leaves the present one.
    virtual void setParameters(const StrokeParameters& stroke, const BrushParameters* brush);
    [[nodiscard]] virtual StrokeParameters* parameters();
    virtual void resetParameters();
    virtual void setTileCallback(TileCallback callback);
    virtual void clearTileCallback();
    // Called by beginStroke and endStroke.
    virtual void prepareInterpolator();
    virtual void strokeEnded() {}
    // One point of the pen, which is changed to what the interpolator took. True if a stamp was
    // laid.
    virtual bool drawSegment(StampPoint& point);
    // One stamp just there, and at the interpolator's copies of it. True if one was laid.
    virtual bool drawStamp(const StampPoint& point);
    // Fills what the brush carries for a start at this place.
    virtual void preparePickup(float x, float y);

    // Does nothing within a stroke. The flag is only kept.
    void beginStroke(bool flag);
    // True if a stamp was laid: the first one only comes when the pen has moved or is lifted. False
    // without a stamp renderer, and for a point whose place isn't finite, which is ignored.
    bool addPoint(const StampPoint& point);
    bool addPoint(float x, float y, float radius, float opacity, float flow, float angle,
                  float scaleX, float scaleY, float textureStrength);
    // Lays a stamp beside the path.
    void addPointNoSmoothing(const StampPoint& point);
    void addPointNoSmoothing(float x, float y, float radius, float opacity, float flow, float angle,
                             float scaleX, float scaleY, float textureStrength);
    // A stroke that took points and laid no stamp lays one at the last of them: a tap is a dot.
    void endStroke();

    // Null: a new plain one. It borrows this renderer's parameters from each stroke's begin on.
    void setInterpolator(std::shared_ptr<StrokeInterpolator> interpolator);
    [[nodiscard]] const std::shared_ptr<StrokeInterpolator>& interpolator() const {
        return interpolator_;
    }
    // Source images set before a stroke stay, unless its mode is another than the last one's.
    void setKeepSource(bool on) { keepSource_ = on; }
    [[nodiscard]] bool keepSource() const { return keepSource_; }
    [[nodiscard]] bool getFlagAtBegin() const { return flagAtBegin_; }
    [[nodiscard]] bool begun() const { return begun_; }
    [[nodiscard]] BlendModeId blendMode() const { return blendMode_; }
    // Milliseconds until a resting airbrush goes on, and between its stamps.
    void setHoldDelay(std::int32_t milliseconds) { airbrush_.holdDelay = milliseconds; }
    void setRepeatInterval(std::int32_t milliseconds) { airbrush_.repeatInterval = milliseconds; }
    [[nodiscard]] const Airbrush& airbrush() const { return airbrush_; }
    [[nodiscard]] const StampPoint& lastPoint() const { return lastPoint_; }

  protected:
    // For a renderer that paints through others. A path begins; a stamp beside the path (true if it
    // was laid); the dot of a path that laid no stamp.
    virtual void pathBegan(const StampPoint& first);
    virtual bool layBeside(const StampPoint& point);
    virtual void layDot(const StampPoint& last);

    void copySettingsTo(StrokeRenderer& copy) const;
    void report(const ilTile& touched) const;

  private:
    [[nodiscard]] bool smears() const { return stampRenderer_->parameters().smearEnabled; }
    [[nodiscard]] bool copyOf(const StampPoint& point, std::int32_t n, StampPoint& copy) const;
    void layStamp(const StampPoint& stamp);
    void reportTouched();
    void chooseMode();

    bool begun_ = false;
    bool flagAtBegin_ = false;
    std::shared_ptr<StampRenderer> stampRenderer_;
    StrokeParameters params_;
    BlendModeId blendMode_ = BlendModeId::Normal;
    bool keepSource_ = false;
    std::shared_ptr<StrokeInterpolator> interpolator_;
    bool firstPoint_ = true;
    bool laidStamp_ = false;  // in this stroke
    bool hadStroke_ = false;  // this one or an earlier one
    TileCallback tileCallback_;
    std::vector<ilTile> touched_;  // by the stamps of a point
    StampPoint lastPoint_;
    Airbrush airbrush_;
};

}  // namespace brushwork::npc
