// The steps by which a layer is drawn, and the effective image that they make.
#include "blending/paint/soft_paint_ops.h"
#include "document/layer/changed_area.h"
#include "document/layer/effective_scratch.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/layer_fade.h"

namespace brushwork {
namespace {

// Of the tint of a mask or stencil, beside its overlay opacity.
constexpr float tintStrength = 0.5f;
constexpr LayerColor stencilTint{1.0f, 1.0f, 0.0f, 1.0f};

void setPair(PaintOps& painter, BlendFactors pair) {
    painter.setBlendFactors(pair.source, pair.target);
}

ilPixel pixelOf(const LayerColor& color) {
    std::uint8_t bytes[4];
    for (std::size_t c = 0; c < 4; ++c) bytes[c] = colorByte(color[c]);
    return ilPixel(TypeUChar, 4, bytes);
}

void drawAt(PaintOps& painter, const ilTile& box, ilImage* image) {
    painter.rect_copy(box.x, box.y, box.nx, box.ny, PaintSource::of(image, box.x, box.y), {}, 0,
                      1.0f, 1.0f);
}

void keepInside(PaintOps& painter, const ilTile& part, ilImage* image) {
    if (part.isEmpty()) return;
    setPair(painter, pairKeepInside);
    drawAt(painter, part, image);
}

void fadeInside(PaintOps& painter, const ilTile& box, float opacity) {
    if (!(opacity < opaqueEnough)) return;
    setPair(painter, pairKeepInside);
    fade(painter, box, opacity);
}

}  // namespace

bool Layer::isAttenuated(const ilTile* box, ilImage* stencil) {
    if (role_ != LayerRole::Paint) return true;
    if (!box) return !boundsOf(stencil).isEmpty() || clips();
    return !intersection(boundsOf(stencil), *box).isEmpty() ||
           !clippedPart(images_.clip.get(), *box).isEmpty();
}

void Layer::drawSteps(PaintOps& target, const Drawing& drawing) {
    const ilTile& box = drawing.box;
    if (!drawing.color || box.isEmpty()) return;
    const bool isTinted = drawing.role != LayerRole::Paint;
    target.setColor(0, 0, 0, 0);
    setPair(target, pairCopy);
    if (isTinted) {
        const bool isMask = drawing.role == LayerRole::Mask;
        target.fillRegion(box, pixelOf(isMask ? drawing.overlayColor : stencilTint));
        setPair(target, pairKeepInside);
    }
    drawAt(target, box, drawing.color);
    fadeInside(target, box, isTinted ? tintStrength : drawing.opacity);
    fadeInside(target, box, drawing.overlayOpacity);
    keepInside(target, intersection(boundsOf(drawing.stencil), box), drawing.stencil);
    if (role_ == LayerRole::Paint) refreshClip();
    keepInside(target, clippedPart(images_.clip.get(), box), images_.clip.get());
}

Ref<ilSmartImage> Layer::drawWhole(const Drawing& drawing) {
    if (role_ == LayerRole::Paint) refreshClip();
    Drawing steps = drawing;
    steps.box = boundsOf(drawing.color);
    ilPixel ground(TypeUChar, 4);
    const bool covers = drawing.color && coversGround(*drawing.color);
    if (covers) {
        steps.box = unionOf(steps.box, boundsOf(drawing.stencil));
        steps.box = unionOf(steps.box, boundsOf(images_.clip.get()));
        Drawing beyond = steps;
        beyond.box = flatTile(steps.box.endX(), steps.box.endY(), 1, 1);
        const Ref<ilSmartImage> one(new ilSmartImage(ground));
        drawSteps(*Ref<SoftPaintOps>(new SoftPaintOps(one.get())), beyond);
        one->readPixel(beyond.box.x, beyond.box.y, 0, ground);
    }
    Ref<ilSmartImage> image(new ilSmartImage(ground));
    drawSteps(*Ref<SoftPaintOps>(new SoftPaintOps(image.get())), steps);
    // Not those of the pages that it was painted on: corners are where the colour's are.
    if (!covers) image->setBounds(steps.box);
    return image;
}

Layer::Drawing Layer::drawing(const ilTile& box, float opacity) {
    Drawing drawing;
    drawing.box = box;
    drawing.color = colorImageRef();
    drawing.stencil = images_.stencil.get();
    drawing.opacity = opacity;
    drawing.role = role_;
    drawing.overlayColor = overlayColor_;
    drawing.overlayOpacity = role_ == LayerRole::Paint ? 1.0f : overlayOpacity_;
    return drawing;
}

Ref<ilImage> Layer::renderEffective(const ilTile* box, ilImage* stencilOverride, bool inherited) {
    Drawing steps = drawing(box ? *box : ilTile{}, inherited ? inheritedOpacity() : opacity_);
    if (stencilOverride) steps.stencil = stencilOverride;
    if (!box) {
        const Ref<ilSmartImage> whole = drawWhole(steps);
        setEffectiveScratch(whole);
        return whole;
    }
    const Ref<ilSmartImage> scratch = newEffectiveScratch();
    const Ref<SoftPaintOps> painter(new SoftPaintOps(scratch.get()));
    drawSteps(*painter, steps);
    return scratch;
}

Ref<ilImage> Layer::effectiveImage(const ilTile* box, ilImage* stencilOverride, bool refreshClips,
                                   bool inherited) {
    if (role_ == LayerRole::Paint && refreshClips) refreshClip();
    ilImage* const stencil = stencilOverride ? stencilOverride : images_.stencil.get();
    const float opacity = inherited ? inheritedOpacity() : opacity_;
    if (opacity < opaqueEnough || isAttenuated(box, stencil))
        return renderEffective(box, stencilOverride, inherited);
    dropEffectiveScratch();
    return Ref<ilImage>(colorImageRef());
}

}  // namespace brushwork
