// The points of a stroke: what a pen sends, what is stored of a polyline, what becomes a stamp.
#pragma once

#include "brushwork/export.h"

namespace brushwork {

// Bounds of a stamp's radius, in pixels.
inline constexpr float minimumStampRadius = 0.0625f;
inline constexpr float maximumStampRadius = 511.0f;

// The unit that travels through a stroke. Nine 32-bit floats, in this order.
struct StampPoint {
    float x = 0.0f;  // layer pixels
    float y = 0.0f;
    float radius = 1.0f;   // pixels; minimumStampRadius..maximumStampRadius where it is used
    float opacity = 1.0f;  // 0..1, strength of the stamp
    float flow = 1.0f;     // 0..1, how much paint a paint mode lays down
    float angle = 0.0f;    // degrees, [0, 360)
    float scaleX = 1.0f;   // width over 2 * radius, never 0; 1 is round
    float scaleY = 1.0f;   // height over 2 * radius
    float textureStrength = 1.0f;
};
static_assert(sizeof(StampPoint) == 36);

// A point of the pen as a host hands it in. Nine 32-bit values.
struct StrokeInputPoint {
    float x = 0.0f;  // view pixels
    float y = 0.0f;
    float pressure = 0.0f;  // 0..1
    float values[6] = {};   // what else the host knows of the pen
};
static_assert(sizeof(StrokeInputPoint) == 36);

// A stored point of a polyline that can be replayed as a stroke.
class BRUSHWORK_API StrokePointData {
  public:
    StrokePointData() = default;
    StrokePointData(float atX, float atY, float withPressure)
        : x(atX), y(atY), pressure(withPressure) {}
    StrokePointData(const StrokePointData&) = default;
    StrokePointData& operator=(const StrokePointData&) = default;
    virtual ~StrokePointData();

    float x = 0.0f;  // layer pixels
    float y = 0.0f;
    float pressure = 0.0f;  // brought into 0..1 by the replay
};

}  // namespace brushwork
