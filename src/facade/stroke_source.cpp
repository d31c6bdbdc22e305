#include "facade/stroke_source.h"

#include <cmath>

#include "strokes/stroke/brush_mode.h"

namespace brushwork {

bool keepsItsPaint(const StrokeParameters& stroke, const BrushParameters& brush) {
    return npc::brushModeOf(stroke, brush).mode == BlendModeId::MarkerColorless &&
           !stroke.clearPickupBuffers;
}

BrushParameters brushFor(const BrushState& state, bool gray) {
    BrushParameters brush = state.brush;
    brush.color = gray ? std::array<float, 4>{1.0f, 1.0f, 1.0f, state.color[3]} : state.color;
    if (state.texture) {
        brush.texture = state.texture;
        brush.textureEnabled = true;
        if (state.grain) brush.textureImage = state.grain->getImage();
    }
    if (state.paintObj && state.stampIsMask)
        brush.shapeObject = state.paintObj;
    else if (state.paintObj && !gray)
        brush.colorObject = state.paintObj;
    return brush;
}

void openSource(const FacadeState& state, LayerStack& stack, Layer& layer,
                npc::StampRenderer& stamps) {
    const BrushState& brush = state.brush;
    const bool keepsPaint = keepsItsPaint(brush.stroke, stamps.parameters());
    Ref<ilImage> image = stack.parts().cloneSource;
    std::int32_t x = 0;
    std::int32_t y = 0;
    if (brush.cloneFromLayer) {
        Layer* const source = stack.layerById(brush.cloneSourceLayer);
        ilSmartImage* const pixels = source ? source->smartColor() : nullptr;
        // What the stroke itself paints is not painted again.
        image = pixels ? Ref<ilImage>(pixels->clone()) : Ref<ilImage>();
        if (source) {
            x = source->offsetXInt() - layer.offsetXInt();
            y = source->offsetYInt() - layer.offsetYInt();
        }
    }
    // An eraser takes away whatever another layer holds.
    if (npc::strokeKind(brush.stroke) == static_cast<std::int32_t>(npc::BrushKind::Eraser))
        image.reset();
    if (!image) {
        if (!keepsPaint) stamps.setSource(nullptr, nullptr, false, 0, 0);
        return;
    }
    stamps.setSource(image.get(), nullptr, true,
                     x + static_cast<std::int32_t>(std::lround(brush.cloneOffsetX)),
                     y + static_cast<std::int32_t>(std::lround(brush.cloneOffsetY)));
}

}  // namespace brushwork
