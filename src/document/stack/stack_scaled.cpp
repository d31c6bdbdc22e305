#include "document/stack/stack_scaled.h"

#include <algorithm>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/placed_copy.h"
#include "document/stack/blend_run.h"
#include "document/stack/host_view.h"
#include "document/stack/stack_draw.h"
#include "document/stack/stack_lookup.h"

namespace brushwork::stack {
namespace {

// From document pixels to the display.
TransformRecord viewRecord(const StackParts& stack, const HostView& view) {
    TransformRecord record;
    record.scaleX = view.scale;
    record.scaleY = view.scale;
    record.x = static_cast<float>(stack.plane.originX) * view.scale - view.x;
    record.y = static_cast<float>(stack.plane.originY) * view.scale - view.y;
    return record;
}

// First the layers' own record, then the view's.
TransformRecord seenThrough(const TransformRecord& record, const TransformRecord& view) {
    TransformRecord seen = record;
    seen.scaleX *= view.scaleX;
    seen.scaleY *= view.scaleY;
    seen.x = view.scaleX * (record.pivotX + record.x) + view.x - record.pivotX;
    seen.y = view.scaleY * (record.pivotY + record.y) + view.y - record.pivotY;
    for (float& move : seen.corners) move *= view.scaleX;
    return seen;
}

bool isTransformed(const StackParts& stack, Layer& outer) {
    return std::any_of(stack.transform.ids.begin(), stack.transform.ids.end(),
                       [&](std::int32_t id) { return outermost(layerById(stack, id)) == &outer; });
}

bool isWhollyTransformed(const StackParts& stack, const Layer& layer) {
    const auto& ids = stack.transform.ids;
    return std::find(ids.begin(), ids.end(), layer.id()) != ids.end();
}

Ref<ilSmartImage> composite(StackParts& stack, Layer* from, const Layer* to, bool withGround) {
    const std::uint32_t ground = withGround ? backgroundPixel(stack) : 0;
    const Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    if (withGround) image->fillRegion(stack.plane.canvasBounds, ilPixel(TypeUChar, 4, &ground));
    const Ref<SoftPaintOps> painter(new SoftPaintOps(image.get()));
    LayerDraw draw;
    draw.box = stack.plane.canvasBounds;
    for (Layer* layer = from; layer && layer != to; layer = layer->next.get())
        if (layer->isDrawable()) drawLayer(stack, layer, *painter, draw);
    return image;
}

// Its corner goes to (x, y).
Ref<ilImage> placed(ilSmartImage& image, const TransformRecord& record, SampleMode mode,
                    std::int32_t& x, std::int32_t& y) {
    ilTile box;
    image.bounds(box);
    if (box.isEmpty()) return {};
    const auto placing = placingByRecord(record, box, 0.0, 0.0);
    if (!placing) return {};
    const ilTile target = placedBox(*placing, mode);
    x = target.x;
    y = target.y;
    return placedCopy(image, *placing, mode, target);
}

void show(ilSPMemoryImg& target, ilImage* image, std::int32_t x, std::int32_t y, std::int32_t mode,
          float opacity) {
    if (!image) return;
    blend({&target, 0, 0, image, x, y, mode, opacity}, target.box());
}

// Layers one over the other, as they are being moved.
class Frame {
  public:
    explicit Frame(StackParts& stack)
        : stack_(stack),
          view_(viewRecord(stack, hostViewOf(stack))),
          moved_(seenThrough(stack.transform.record, view_)) {}

    // A group is drawn as one; where only some of its members move, or corners move, which each
    // member has of its own, it is put together from them.
    void add(ilSPMemoryImg& target, Layer& layer, bool isMoved) {
        if (!layer.isDrawable()) return;
        isMoved = isMoved || isWhollyTransformed(stack_, layer);
        LayerGroup* const group = layer.asGroup();
        if (group && group->LayerGroup::isPassThrough()) {
            group->eachMember([&](Layer& member) { add(target, member, isMoved); });
        } else if (group && (isMoved ? moved_.movesCorners() : holdsTransformed(*group))) {
            const Ref<ilSPMemoryImg> picture(
                new ilSPMemoryImg(target.sizeX(), target.sizeY(), target.channels()));
            if (!picture->data()) return;
            picture->fillRegion(picture->box(), ilPixel(TypeUChar, 4));
            group->eachMember([&](Layer& member) { add(*picture, member, isMoved); });
            show(target, picture.get(), 0, 0, layer.blendMode(), layer.inheritedOpacity());
        } else {
            std::int32_t x = 0;
            std::int32_t y = 0;
            const Ref<ilImage> image = layer.renderTransformed(isMoved ? moved_ : view_, &x, &y);
            show(target, image.get(), x, y, layer.blendMode(), layer.inheritedOpacity());
        }
    }

  private:
    [[nodiscard]] bool holdsTransformed(const LayerGroup& group) const {
        return std::any_of(stack_.transform.ids.begin(), stack_.transform.ids.end(),
                           [&](std::int32_t id) { return standsIn(layerById(stack_, id), group); });
    }

    StackParts& stack_;
    TransformRecord view_, moved_;
};

}  // namespace

void clearScaled(StackParts& stack) {
    stack.scaled = ScaledPath();
}

bool prepareScaled(StackParts& stack) {
    ScaledPath& scaled = stack.scaled;
    if (!stack.transform.open || stack.transform.operand != 0 || !stack.active.layer) return false;
    const HostView view = hostViewOf(stack);
    const auto mode = static_cast<std::int32_t>(view.filterX);
    if (scaled.start && scaled.mode == mode && !stack.view.changed) return true;
    clearScaled(stack);
    Layer* last = nullptr;
    for (Layer* layer = stack.list.first.get(); layer; layer = layer->next.get()) {
        if (!isTransformed(stack, *layer)) continue;
        if (!scaled.start) scaled.start = layer;
        last = layer;
    }
    if (!scaled.start) return false;
    const TransformRecord record = viewRecord(stack, view);
    const Ref<ilSmartImage> below = composite(stack, stack.list.first.get(), scaled.start, true);
    scaled.below = placed(*below, record, view.filterX, scaled.belowX, scaled.belowY);
    bool simple = true;
    for (const Layer* layer = last->next.get(); layer; layer = layer->next.get())
        simple = simple && layer->blendMode() == 0;
    if (simple && last->next) {
        scaled.end = last->next.get();
        const Ref<ilSmartImage> above = composite(stack, scaled.end, nullptr, false);
        scaled.above = placed(*above, record, view.filterX, scaled.aboveX, scaled.aboveY);
    }
    scaled.mode = mode;
    return true;
}

void drawScaledFrame(StackParts& stack, ilSPMemoryImg& target) {
    ScaledPath& scaled = stack.scaled;
    const ilTile whole = target.box();
    if (scaled.result) {
        target.copyRegion(whole, *scaled.result, 0, 0, 0, nullptr, CopyDirection::FromOther);
        return;
    }
    target.fillRegion(whole, ilPixel(TypeUChar, 4));
    show(target, scaled.below.get(), scaled.belowX, scaled.belowY, 0, 1.0f);
    Frame frame(stack);
    for (Layer* layer = scaled.start; layer && layer != scaled.end; layer = layer->next.get())
        frame.add(target, *layer, false);
    show(target, scaled.above.get(), scaled.aboveX, scaled.aboveY, 0, 1.0f);
    const Ref<ilSPMemoryImg> result(new ilSPMemoryImg(whole.nx, whole.ny, 4));
    result->copyRegion(whole, target, 0, 0, 0, nullptr, CopyDirection::FromOther);
    scaled.result = result;
}

}  // namespace brushwork::stack
