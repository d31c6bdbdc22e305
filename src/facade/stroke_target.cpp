#include "facade/stroke_target.h"

#include "facade/stroke_coverage.h"
#include "strokes/stroke/brush_mode.h"

namespace brushwork {
namespace {

using npc::BrushKind;

BrushKind kindOf(const BrushState& brush) {
    return static_cast<BrushKind>(npc::strokeKind(brush.stroke));
}

// Media that work on what is there already.
bool worksOnCanvas(const FacadeState& state) {
    switch (kindOf(state.brush)) {
        case BrushKind::Marker:
        case BrushKind::SmudgeCanvas:
        case BrushKind::SmudgeColor:
        case BrushKind::MarkerColorless:
        case BrushKind::Pastel:
        case BrushKind::GlowBrush: return true;
        default: return state.modal.textureBrushOn || state.modal.patternBrushOn;
    }
}

bool isEraser(const BrushState& brush) {
    return kindOf(brush) == BrushKind::Eraser;
}

bool needsWet(const FacadeState& state, const LayerStack& stack) {
    const BrushState& brush = state.brush;
    return isEraser(brush) || stack.paintMask() || brush.blendModeOfBrush != 0 || brush.texture ||
           brush.wetBlendFactor < 1.0f || brush.stroke.strokeBufferOpacity < 1.0f ||
           brush.stroke.strokeBufferMode != BlendModeId::Normal;
}

std::int32_t wetMode(const BrushState& brush) {
    if (isEraser(brush)) return static_cast<std::int32_t>(BlendModeId::Clear);
    if (brush.blendModeOfBrush != 0) return brush.blendModeOfBrush;
    return static_cast<std::int32_t>(brush.stroke.strokeBufferMode);
}

}  // namespace

ilSmartImage* openTarget(FacadeState& state, LayerStack& stack, Layer& layer) {
    LiveStroke& stroke = state.stroke;
    ilSmartImage* const image = stroke.onStencil ? layer.smartStencil() : layer.smartColor();
    if (!image) return nullptr;
    stroke.wet = false;
    if (image->channels() == 1) return openCoverage(state, stack, layer, *image);
    stroke.wet = needsWet(state, stack);
    if (!stroke.wet) return image;
    const bool onCanvas = worksOnCanvas(state);
    const Ref<ilSmartImage> wet(onCanvas ? new ilSmartImage(image)
                                         : new ilSmartImage(ilPixel(TypeUChar, image->channels())));
    layer.setWet(wet.get(), 0, 0);
    layer.setWetBlend(onCanvas ? static_cast<std::int32_t>(BlendModeId::Replace)
                               : wetMode(state.brush));
    layer.setWetOpacity(state.brush.wetBlendFactor * state.brush.stroke.strokeBufferOpacity);
    layer.setBlendFlags(state.brush.lockAlpha != 0 ? 1 : 0);
    // The mask lies on the document.
    if (ilImage* const mask = stack.paintMask())
        layer.setWetMask(mask, -layer.offsetXInt(), -layer.offsetYInt());
    return wet.get();
}

}  // namespace brushwork
