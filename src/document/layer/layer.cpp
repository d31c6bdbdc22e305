#include "document/layer/layer.h"

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/layer_numbers.h"
#include "foundation/services/log.h"

namespace brushwork {
namespace {

constexpr std::int32_t layerLogLevel = 0x2016;

const char* namePattern(LayerRole role) {
    switch (role) {
        case LayerRole::Mask: return "MaskLayer-%d";
        case LayerRole::Stencil: return "StencilLayer-%d";
        case LayerRole::Paint: break;
    }
    return "PaintLayer-%d";
}

bool isOdd(ilImage* image) {
    return image && !ilSmartImage::isSmartImage(image);
}

}  // namespace

Layer::Layer(ilImage* color, ilImage* stencil, LayerRole role, std::uint32_t flags, float x,
             float y)
    : Layer(color, stencil, role, flags, x, y, nextLayerName(namePattern(role))) {}

Layer::Layer(ilImage* color, ilImage* stencil, LayerRole role, std::uint32_t flags, float x,
             float y, const znString::IString& name)
    : flags_(flags), role_(role), id_(nextLayerId()), name_(name) {
    if (isOdd(color)) log("Color Img must be a smart image!\n");
    if (isOdd(stencil)) log("Stencil must be a smart image!\n");
    images_.color = Ref<ilImage>(color);
    images_.stencil = Ref<ilImage>(stencil);
    ensureStencil();
    Layer::setOffset(x, y);
}

Layer::Layer(LayerRole role, std::uint32_t flags)
    : flags_(flags), role_(role), id_(nextLayerId()), name_(nextLayerName(namePattern(role))) {}

Layer::~Layer() = default;

std::int32_t Layer::offsetXInt() {
    float x = 0.0f;
    float y = 0.0f;
    offset(&x, &y);
    return truncated(x);
}

std::int32_t Layer::offsetYInt() {
    float x = 0.0f;
    float y = 0.0f;
    offset(&x, &y);
    return truncated(y);
}

void Layer::offset(float* x, float* y) {
    if (x) *x = place_.offsetX;
    if (y) *y = place_.offsetY;
}

void Layer::offsetInt(std::int32_t* x, std::int32_t* y) {
    if (x) *x = offsetXInt();
    if (y) *y = offsetYInt();
}

void Layer::contentBounds(ilTile& out, bool placed) {
    out = {};
    ilImage* const color = colorImageRef();
    if (!color) return;
    out = boundsOf(color);
    if (wet_.image) out = unionOf(out, moved(boundsOf(wet_.image.get()), wet_.x, wet_.y));
    if (!placed) return;
    std::int32_t x = 0;
    std::int32_t y = 0;
    offsetInt(&x, &y);
    out = moved(out, x, y);
}

ilImage* Layer::colorImageRef() {
    return images_.color.get();
}

void Layer::prepareForRender(const ilTile*, bool) {}

bool Layer::isShapeRenderer() {
    return false;
}

void Layer::dump(bool active) {
    logAt(layerLogLevel, "Layer[%s] lh[%p] active[%d]\n", name_.narrow(), static_cast<void*>(this),
          active ? 1 : 0);
}

void Layer::collapseImages() {
    for (ilImage* const image : {images_.color.get(), images_.stencil.get(), images_.clip.get()})
        if (ilSmartImage* const smart = ilSmartImage::from(image)) smart->collapse();
}

void Layer::setColorImage(ilImage* image) {
    images_.color = Ref<ilImage>(image);
    images_.levels.clear();
    images_.wetLevels.clear();
    view_.source.reset();
}

void Layer::setStencilImage(ilImage* image) {
    if (isOdd(image)) log("New Stencil must be smart!\n");
    images_.stencil = Ref<ilImage>(image);
    view_.source.reset();
    ensureStencil();
}

void Layer::ensureStencil() {
    if (images_.stencil) return;
    constexpr std::uint8_t passes = 255;
    images_.stencil = Ref<ilImage>(new ilSmartImage(ilPixel(TypeUChar, 1, &passes)));
}

bool Layer::clips() const {
    const Ref<ilImage>& clip = images_.clip;
    return !boundsOf(clip.get()).isEmpty() || (clip && clip->fill().data()[0] != 255);
}

bool Layer::isEmptyMask() {
    return !clips() && boundsOf(images_.stencil.get()).isEmpty();
}

// A stencil's fill lets all pass, so that its bounds shrink only by force.
void Layer::tighten() {
    if (ilSmartImage* const color = smartColor()) color->shrinkBounds();
    if (ilSmartImage* const stencil = smartStencil()) stencil->shrinkBounds(true);
}

PaintOps* Layer::paintOpsFor() {
    ilImage* const color = colorImageRef();
    if (!color) return nullptr;
    if (!paintOps_)
        paintOps_ = Ref<PaintOps>(new SoftPaintOps(color));
    else if (paintOps_->image() != color)
        paintOps_->setImage(color);
    return paintOps_.get();
}

}  // namespace brushwork
