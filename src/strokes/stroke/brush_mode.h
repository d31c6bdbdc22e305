// How a brush blends and how close its stamps stand.
#pragma once

#include "brushwork/blend_mode_table.h"
#include "brushwork/brush_parameters.h"
#include "brushwork/stroke_parameters.h"

namespace brushwork::npc {

// Values of StrokeParameters::brushKind that mean a medium of its own. All others are plain paint.
enum class BrushKind : std::int32_t {
    Marker = 1,
    SmudgeCanvas = 2,  // begins with what lies under the pen
    SmudgeColor = 3,   // begins with the brush's colour
    MarkerColorless = 4,
    Pastel = 6,
    Replace = 7,
    Eraser = 8,
    GlowBrush = 9,
};

// The kind a stroke really has: a marker if it is marked as one.
[[nodiscard]] std::int32_t strokeKind(const StrokeParameters& stroke);

struct BrushMode {
    BlendModeId mode = BlendModeId::Normal;
    // Strokes of the eraser, and of a colour that packs to 0, are laid in opaque white: what counts
    // is their coverage.
    bool inWhite = false;
};
[[nodiscard]] BrushMode brushModeOf(const StrokeParameters& stroke, const BrushParameters& brush);

// Multiplies the step between stamps. Small markers are laid closer; beyond a radius of 40 the
// scale falls back from 1 to 0.8, so that their soft rims don't show as ripples.
[[nodiscard]] float spacingScaleOf(const StrokeParameters& stroke, const BrushParameters& brush);

}  // namespace brushwork::npc
