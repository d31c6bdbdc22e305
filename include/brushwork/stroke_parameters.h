// StrokeParameters: how a stroke lays its stamps.
#pragma once

#include <cstdint>

#include "brushwork/blend_mode_table.h"
#include "brushwork/guide_curve.h"
#include "brushwork/ref.h"

namespace brushwork {

// Fields in this order. "Twentieths": a jitter of 20 changes a value by up to all of it.
struct StrokeParameters {
    float spacing = 1.0f;        // multiplies the step between stamps; 0.1 at least for the facade
    float spacingJitter = 0.0f;  // random change of the step, as a part of it
    float angleJitter = 0.0f;    // degrees, to both sides
    float opacityJitter = 0.0f;  // twentieths, only downward
    float flowJitter = 0.0f;     // twentieths, only downward; other than 0 asks for a paint mode
    float reserved0[3] = {};     // copied only
    float radiusJitter = 0.0f;   // twentieths, to both sides
    float strokeValue0 = 32.0f;  // the host's; copied only
    float paintFactor0 = 1.0f;   // other than 1 asks for a paint mode
    float paintFactor1 = 1.0f;   // other than 1 asks for a paint mode
    float strokeValue1 = 1.0f;   // the host's; copied only
    std::int32_t strokeValue2 = 1000;  // the host's; copied only
    // How the path runs between the points of the pen: 0 straight, 1 smoothed, 2 along the guide
    // (smoothed if there is none), 3 on from where the last stroke stopped (smoothed if there is a
    // guide or was no stroke). Any other number: smoothed.
    std::int32_t interpolationKind = 1;
    Ref<GuideCurve> guide;
    bool isMarker = false;         // a marker, whatever brushKind says; changes the spacing
    bool airbrush = false;         // stamps go on while the pen rests
    bool followDirection = false;  // the way of travel is added to the angle
    std::uint8_t reserved1 = 0;    // copied only
    // The medium: 1 marker, 2 smudge (begins with what lies under the pen), 3 the same beginning
    // with the brush's colour, 4 marker without colour, 6 pastel, 7 replace, 8 eraser, 9 glow. Any
    // other number: paint.
    std::int32_t brushKind = 0;
    float strokeBufferOpacity = 1.0f;                    // 0..1, of the layer's stroke buffer
    BlendModeId strokeBufferMode = BlendModeId::Normal;  // of the layer's stroke buffer
    bool clearPickupBuffers = true;
    float pickupScale = 1.0f;  // size of the pick-up buffers, relative to the stamp
};
static_assert(sizeof(void*) != 4 || sizeof(StrokeParameters) == 88);

}  // namespace brushwork
