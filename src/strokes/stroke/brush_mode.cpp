#include "strokes/stroke/brush_mode.h"

#include <cmath>
#include <limits>

#include "strokes/stamp/stamp_binding.h"

namespace brushwork::npc {
namespace {

bool isNear(float value, float other) {
    return std::fabs(value - other) < std::numeric_limits<float>::epsilon();
}

BlendModeId plainMode(const StrokeParameters& stroke, const BrushParameters& brush) {
    const bool flows = !isNear(stroke.paintFactor0, 1.0f) || !isNear(stroke.paintFactor1, 1.0f) ||
                       !isNear(stroke.flowJitter, 0.0f);
    if (!flows) return BlendModeId::Normal;
    return brush.colorObject ? BlendModeId::Paint : BlendModeId::SolidColorPaint;
}

float markerScale(float radius) {
    if (radius < 8.0f) return 0.3f;
    if (radius < 20.0f) return (radius - 8.0f) / 12.0f * 0.5f + 0.3f;
    if (radius <= 40.0f) return (radius - 20.0f) / 20.0f * 0.2f + 0.8f;
    return 0.8f;
}

}  // namespace

std::int32_t strokeKind(const StrokeParameters& stroke) {
    return stroke.isMarker ? static_cast<std::int32_t>(BrushKind::Marker) : stroke.brushKind;
}

BrushMode brushModeOf(const StrokeParameters& stroke, const BrushParameters& brush) {
    const auto kind = static_cast<BrushKind>(strokeKind(stroke));
    if (kind == BrushKind::Eraser || packedColor(brush.color) == 0)
        return {BlendModeId::SolidColorPaint, true};
    switch (kind) {
        case BrushKind::Marker: return {BlendModeId::Marker, false};
        case BrushKind::SmudgeCanvas:
        case BrushKind::SmudgeColor: return {BlendModeId::Smudge, false};
        case BrushKind::MarkerColorless: return {BlendModeId::MarkerColorless, false};
        case BrushKind::Pastel: return {BlendModeId::Pastel, false};
        case BrushKind::Replace: return {BlendModeId::Replace, false};
        case BrushKind::GlowBrush: return {BlendModeId::GlowBrush, false};
        default: return {plainMode(stroke, brush), false};
    }
}

float spacingScaleOf(const StrokeParameters& stroke, const BrushParameters& brush) {
    return stroke.isMarker ? markerScale(brush.radiusHigh) * stroke.spacing : stroke.spacing;
}

}  // namespace brushwork::npc
