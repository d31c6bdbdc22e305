// StrokeFamily: strokes.
//
//     manager.beginStroke();
//     for (const StrokeInputPoint& point : pen) manager.addPoint(point);
//     manager.endStroke();
#pragma once

#include <cstdint>
#include <span>

#include "brushwork/export.h"
#include "brushwork/il_tile.h"
#include "brushwork/stamp_point.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API StrokeFamily {
  public:
    // False: a stroke is open, or there is no visible paint layer, mask or stencil to paint on.
    bool beginStroke();
    // View pixels. Ignored outside a stroke.
    void addPoint(const StrokeInputPoint& point, bool flag = false);
    void addPoints(std::span<const StrokeInputPoint> points);
    void endStroke();
    // All is as before it.
    void cancelStroke();
    // A whole stroke, in layer pixels.
    bool strokePolyline(std::span<const StrokePointData> points);
    bool strokeLine(float x0, float y0, float x1, float y1, float pressure = 1.0f);
    [[nodiscard]] bool inStroke() const;
    // Layer pixels that the stroke, or the last one, may have changed.
    [[nodiscard]] ilTile strokeBounds() const;

  protected:
    explicit StrokeFamily(FacadeState& state) : state_(state) {}
    StrokeFamily(const StrokeFamily&) = delete;
    StrokeFamily& operator=(const StrokeFamily&) = delete;
    ~StrokeFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
