#include "brushwork/pixel_family.h"

#include <cmath>

#include "facade/canvas_rotation.h"
#include "facade/guarded_edit.h"
#include "facade/input_limits.h"
#include "facade/undo_filing.h"
#include "image/filter/il_convolution_img.h"

namespace brushwork {
namespace {

std::int32_t canvasOf(const FacadeState& state, std::int32_t id) {
    std::int32_t canvas = noLayer;
    static_cast<void>(state.canvases.stackOfLayer(id, &canvas));
    return canvas;
}

// With a record of the layer's pixels.
template <class Work>
void onPixels(FacadeState& state, std::int32_t id, const Work& work) {
    const std::int32_t canvas = canvasOf(state, id);
    LayerStack* const before = state.stackAt(canvas);
    Layer* const layer = before ? before->layerById(id) : nullptr;
    if (!layer || layer->asGroup() || layer->holdsShapes() || layer->locked()) return;
    guardedEdit(
        state, canvas, [&](std::int32_t index) { recordLayer(state, index, id, true); },
        [&](LayerStack& stack) { work(stack); });
}

bool pixelOf(ilImage& image, std::int32_t x, std::int32_t y, std::uint32_t* pixel) {
    const ilTile one = flatTile(x, y, 1, 1);
    *pixel = 0;
    return image.readRegion(one, pixel, one) == ImageOk;
}

float radiusOf(const PixelFamily::ConvolveParams& params) {
    return params.sharpen ? params.detail : params.radius;
}

bool isUsable(const PixelFamily::ConvolveParams& params) {
    constexpr float mostRadius = 1000.0f;
    constexpr float mostStrength = 1000.0f;
    const float radius = radiusOf(params);
    return radius >= 0.0f && radius <= mostRadius &&
           (!params.sharpen || std::fabs(params.strength) <= mostStrength);
}

// The filtered layer, page-wise memory aside: its whole box at once.
void convolve(LayerStack& stack, Layer& layer, const PixelFamily::ConvolveParams& params) {
    ilSmartImage* const image = layer.smartColor();
    if (!image || image->channels() != 4) return;
    const float radius = radiusOf(params);
    layer.tighten();
    ilTile box;
    image->bounds(box);
    if (box.isEmpty()) return;
    const auto margin = params.sharpen ? 0 : static_cast<std::int32_t>(radius) + 1;
    const ilTile area =
        flatTile(box.x - margin, box.y - margin, box.nx + 2 * margin, box.ny + 2 * margin);
    const Ref<ilConvolutionImg> filtered(new ilConvolutionImg(area.nx, area.ny, 4));
    if (!filtered->data()) return;
    filtered->copyRegion(filtered->box(), *image, area.x, area.y, 0, nullptr,
                         CopyDirection::FromOther);
    const float sharpness = params.sharpen ? params.strength * 0.1f : -1.0f;
    if (filtered->convolve(ConvolutionKernel(sharpness, radius, 1.0f / 3.0f)) != ImageOk) return;
    const ActiveFor active(stack, layer);
    PaintOps* const painter = stack.paintOps();
    if (!painter) return;
    painter->beginAccess();
    painter->setBlendFactors(pairCopy.source, pairCopy.target);
    painter->drawImage(filtered.get(), area.x, area.y);
    painter->endAccess();
    layer.touch();
    stack.noteChange(&layer);
    stack.accumulateDirty(area, layer);
    stack.refreshDisplay(false);
}

}  // namespace

void PixelFamily::clearLayer(bool present) {
    onPixels(state_, activeOne, [&](LayerStack& stack) { stack.clearLayer(present); });
}

void PixelFamily::fillLayer(const std::array<float, 4>& color) {
    onPixels(state_, activeOne, [&](LayerStack& stack) { stack.fillLayer(color, true); });
}

void PixelFamily::fillWithImage(const ImageRef& image) {
    if (!image) return;
    onPixels(state_, activeOne,
             [&](LayerStack& stack) { stack.fillWithImage(*image.image(), true, true); });
}

void PixelFamily::clearRegion(const ilTile& box, std::int32_t id) {
    if (!isBox(box) || box.isEmpty()) return;
    onPixels(state_, id, [&](LayerStack& stack) { stack.clearRegion(box, id); });
}

void PixelFamily::invertMask(std::int32_t id) {
    onPixels(state_, id, [&](LayerStack& stack) { stack.invertMask(id); });
}

void PixelFamily::flipLayer(bool horizontal, bool vertical, std::int32_t id, bool bakeFirst) {
    onPixels(state_, id,
             [&](LayerStack& stack) { stack.flipLayer(horizontal, vertical, id, bakeFirst); });
}

void PixelFamily::rotateLayer(bool other, std::int32_t id) {
    onPixels(state_, id, [&](LayerStack& stack) { rotateOneLayer(stack, id, other); });
}

void PixelFamily::flipCanvas(bool horizontal, bool vertical) {
    guardedEdit(
        state_, activeOne, [&](std::int32_t canvas) { recordStack(state_, canvas, true); },
        [&](LayerStack& stack) { flipWholeCanvas(stack, horizontal, vertical); });
}

void PixelFamily::rotateCanvas(bool other, znUtil::Progress* progress) {
    guardedEdit(
        state_, activeOne, [&](std::int32_t canvas) { recordStack(state_, canvas, true); },
        [&](LayerStack& stack) { rotateWholeCanvas(stack, other, progress); });
}

PixelFamily::ConvolveParams PixelFamily::convolveParams(bool sharpen) const {
    const BrushState& brush = state_.brush;
    return {brush.convolveStrength, brush.convolveDetail, brush.convolveRadius, sharpen};
}

void PixelFamily::applyConvolve(const ConvolveParams& params, std::int32_t id) {
    const Layer* const meant = state_.layerById(id);
    if (!meant || meant->role() != LayerRole::Paint || !isUsable(params)) return;
    onPixels(state_, id, [&](LayerStack& stack) {
        if (Layer* const layer = stack.layerById(id)) convolve(stack, *layer, params);
    });
}

void PixelFamily::shrinkWrap(const std::array<float, 4>& color, float blur, float tolerance) {
    onPixels(state_, activeOne,
             [&](LayerStack& stack) { stack.shrinkWrap(color, blur, tolerance); });
}

bool PixelFamily::layerPixel(std::int32_t id, std::int32_t x, std::int32_t y,
                             std::uint32_t* pixel) const {
    Layer* const layer = state_.layerById(id);
    if (!layer || !pixel || !isPlace(x, y)) return false;
    layer->prepareForRender(nullptr, false);
    ilImage* const image = layer->colorImageRef();
    return image && pixelOf(*image, x, y, pixel);
}

bool PixelFamily::canvasPixel(std::int32_t x, std::int32_t y, std::uint32_t* pixel) {
    LayerStack* const stack = state_.current();
    if (!stack || !pixel || !stack->imagePlane()) return false;
    const ilTile box = stack->canvasBounds();
    if (x < box.x || y < box.y || x >= box.endX() || y >= box.endY()) return false;
    stack->present();
    return pixelOf(*stack->imagePlane(), x - box.x, y - box.y, pixel);
}

ImageRef PixelFamily::layerImage(std::int32_t id) const {
    Layer* const layer = state_.layerById(id);
    if (!layer) return {};
    layer->prepareForRender(nullptr, false);
    ilSmartImage* const image = layer->smartColor();
    return image ? ImageRef(image->clone().get()) : ImageRef();
}

ImageRef PixelFamily::layerStencil(std::int32_t id) const {
    Layer* const layer = state_.layerById(id);
    ilSmartImage* const image = layer ? layer->smartStencil() : nullptr;
    return image ? ImageRef(image->clone().get()) : ImageRef();
}

}  // namespace brushwork
