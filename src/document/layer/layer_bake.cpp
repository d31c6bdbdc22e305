// What lies over the colour, worked into its pixels.
#include <algorithm>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/layer_fade.h"
#include "image/smart/smart_bounds.h"

namespace brushwork {
namespace {

constexpr std::uint8_t passes = 255, hides = 0;

ilPixel grayPixel(std::uint8_t value) {
    return ilPixel(TypeUChar, 1, &value);
}

bool isBlank(const ilPixel& fill) {
    return std::all_of(fill.data(), fill.data() + fill.channels(), [](auto c) { return c == 0; });
}

Ref<SoftPaintOps> painterOn(ilImage* image, BlendFactors pair) {
    Ref<SoftPaintOps> painter(new SoftPaintOps(image));
    painter->setBlendFactors(pair.source, pair.target);
    return painter;
}

// Whole pages of a smart image: what is written to a page widens the bounds by all of it, so that
// the rest of it, which shows the fill, must change with the fill.
ilTile wholePages(ilImage* image) {
    const ilTile box = boundsOf(image);
    return ilSmartImage::isSmartImage(image) ? SmartBounds::toPages(box) : box;
}

void setFillWithin(ilImage* image, const ilPixel& fill, const ilTile& bounds) {
    image->setFill(fill);
    if (ilSmartImage* const smart = ilSmartImage::from(image)) smart->setBounds(bounds);
}

void multiplyIn(ilImage* color, ilImage* by, const ilTile& box) {
    if (box.isEmpty()) return;
    painterOn(color, pairKeepInside)
        ->rect_copy(box.x, box.y, box.nx, box.ny, PaintSource::of(by, box.x, box.y), {}, 0, 1.0f,
                    1.0f);
}

// Where `by` has pixels. A colour that is blank beyond its pixels has nothing there to multiply.
void multiply(ilImage* color, ilImage* by) {
    if (!color || !by) return;
    ilTile box = boundsOf(by);
    if (isBlank(color->fill())) box = intersection(box, boundsOf(color));
    multiplyIn(color, by, box);
}

// What a painter makes of that pixel.
ilPixel faded(const ilPixel& pixel, float opacity) {
    const ilTile place = flatTile(0, 0, 1, 1);
    const Ref<ilSmartImage> one(new ilSmartImage(pixel));
    one->fillRegion(place, pixel);
    fade(*painterOn(one.get(), pairKeepInside), place, opacity);
    ilPixel result(TypeUChar, pixel.channels());
    one->readPixel(0, 0, 0, result);
    return result;
}

}  // namespace

// No pixels at all, rather than such that let all pass: what has no box costs nothing to draw.
void Layer::clearStencil() {
    ensureStencil();
    ilImage& stencil = *images_.stencil;
    const ilTile box = boundsOf(&stencil);
    if (!box.isEmpty()) stencil.fillRegion(box, grayPixel(passes));
    stencil.setFill(grayPixel(passes));
    if (ilSmartImage* const smart = smartStencil()) smart->setBounds(flatTile(0, 0, 0, 0), true);
    touch();
}

void Layer::stencilOutAll() {
    clearStencil();
    images_.stencil->fillRegion(flatTile(-4096, -4096, 8192, 8192), grayPixel(hides));
}

void Layer::bakeStencil() {
    multiply(colorImageRef(), images_.stencil.get());
    clearStencil();
}

void Layer::bakeClip() {
    refreshClip();
    ilImage* const color = colorImageRef();
    ilImage* const clip = images_.clip.get();
    const std::uint8_t beyond = clip ? clip->fill().data()[0] : passes;
    if (!color || beyond == passes) {
        multiply(color, clip);
    } else {
        const bool covers = !isBlank(color->fill());
        const ilTile box = covers ? unionOf(boundsOf(color), boundsOf(clip)) : boundsOf(color);
        multiplyIn(color, clip, covers ? SmartBounds::toPages(box) : box);
        if (covers)
            setFillWithin(color, faded(color->fill(), static_cast<float>(beyond) / 255.0f), box);
    }
    touch();
}

void Layer::bakeOpacity() {
    ilImage* const color = colorImageRef();
    if (color && opacity_ < opaqueEnough) {
        const ilTile box = boundsOf(color);
        const ilTile pages = wholePages(color);
        const Ref<SoftPaintOps> painter = painterOn(color, pairKeepInside);
        if (!box.isEmpty()) fade(*painter, isBlank(color->fill()) ? box : pages, opacity_);
        if (!isBlank(color->fill())) setFillWithin(color, faded(color->fill(), opacity_), box);
    }
    opacity_ = 1.0f;
    markClipDirty();
    touch();
}

void Layer::invertMask() {
    ilImage* const color = colorImageRef();
    if (!isMask() || !color) return;
    tighten();
    const ilTile box = boundsOf(color);
    ilPixel all(TypeUChar, color->channels());
    std::fill_n(all.data(), all.channels(), std::uint8_t{255});
    if (!box.isEmpty()) painterOn(color, pairInvert)->fillRegion(wholePages(color), all);
    ilPixel fill = color->fill();
    for (std::int32_t c = 0; c < fill.channels(); ++c)
        fill.data()[c] = static_cast<std::uint8_t>(255 - fill.data()[c]);
    setFillWithin(color, fill, box);
    touch();
}

}  // namespace brushwork
