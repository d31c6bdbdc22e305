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
    // On the active layer. False: a stroke is open, or that layer is hidden, locked, a group or
    // holds shapes. Until the stroke ends no other family edits.
    bool beginStroke();
    // View pixels; pressure 0 to 1, at least 0.01. Ignored outside a stroke, and for places that
    // are no numbers or beyond 204800 pixels. `flag` is the host's and changes nothing.
    void addPoint(const StrokeInputPoint& point, bool flag = false);
    void addPoints(std::span<const StrokeInputPoint> points);
    // Files the undo record. A stroke of one point leaves a dot.
    void endStroke();
    // All is as before it.
    void cancelStroke();
    // A whole stroke, in layer pixels, straight from point to point. False as beginStroke, and
    // for no point.
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
