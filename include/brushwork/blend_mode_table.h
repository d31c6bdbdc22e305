// The blend modes: their numbers and names.
#pragma once

#include <cstdint>
#include <string_view>

#include "brushwork/export.h"

namespace brushwork {

// Expands X(name, id, class) once a mode, in order of the numbers. A new mode is a row here and its
// formula in its family's file under blending/modes/; enumeration, names and the registry follow.
#define BRUSHWORK_BLEND_MODES(X)                   \
    X(Normal, 0, NormalBlender)                    \
    X(Multiply, 1, MultiplyBlender)                \
    X(Add, 2, AddBlender)                          \
    X(Screen, 3, ScreenBlender)                    \
    X(Overlay, 4, OverlayBlender)                  \
    X(Lighten, 5, LightenBlender)                  \
    X(Darken, 6, DarkenBlender)                    \
    X(Color, 8, ColorBlender)                      \
    X(Hue, 9, HueBlender)                          \
    X(Saturation, 10, SaturationBlender)           \
    X(Luminosity, 11, LuminosityBlender)           \
    X(ColorBurn, 13, ColorBurnBlender)             \
    X(LinearBurn, 14, LinearBurnBlender)           \
    X(HardLight, 15, HardLightBlender)             \
    X(SoftLight, 16, SoftLightBlender)             \
    X(ColorDodge, 21, ColorDodgeBlender)           \
    X(Glow, 22, GlowBlender)                       \
    X(SoftGlow, 23, SoftGlowBlender)               \
    X(Replace, 24, ReplaceBlender)                 \
    X(Marker, 25, MarkerBlender)                   \
    X(MarkerColorless, 26, MarkerColorlessBlender) \
    X(Smudge, 27, SmudgeBlender)                   \
    X(GlowBrush, 28, GlowBrushBlender)             \
    X(Pastel, 29, PastelBlender)                   \
    X(Paint, 30, PaintBlender)                     \
    X(SolidColorPaint, 32, SolidColorPaintBlender) \
    X(Clear, 33, ClearBlender)                     \
    X(MaskMultiply, 100, MaskMultiplyBlender)

enum class BlendModeId : std::int32_t {
#define BRUSHWORK_BLEND_MODE_ENUMERATOR(name, id, type) name = id,
    BRUSHWORK_BLEND_MODES(BRUSHWORK_BLEND_MODE_ENUMERATOR)
#undef BRUSHWORK_BLEND_MODE_ENUMERATOR
};

// "Multiply"; empty for a number that is no mode.
[[nodiscard]] BRUSHWORK_API std::string_view blendModeName(BlendModeId mode);

}  // namespace brushwork
