#include "document/stack/stack_scaled.h"

#include <algorithm>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/changed_area.h"
#include "document/layer/layer_boxes.h"
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

// A stencil shows in what it clips.
bool isTransformed(const StackParts& stack, Layer& outer) {
    return std::any_of(stack.transform.ids.begin(), stack.transform.ids.end(),
                       [&](std::int32_t id) {
                           Layer* const layer = outermost(layerById(stack, id));
                           return layer && layer->baseLayer() == &outer;
                       });
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

// Pixel (0, 0) of the image lies at (x, y), to which the corner of the placed one goes.
Ref<ilSmartImage> placed(ilSmartImage& image, const TransformRecord& record, SampleMode mode,
                         std::int32_t& x, std::int32_t& y) {
    ilTile box;
    image.bounds(box);
    if (box.isEmpty()) return {};
    const auto placing = placingByRecord(record, box, x, y);
    if (!placing) return {};
    const ilTile target = placedBox(*placing, mode);
    x = target.x;
    y = target.y;
    return placedCopy(image, *placing, mode, target);
}

// A paint or stencil layer alone, as one of the display's pixels. Null for what has none.
Ref<Layer> onDisplay(Layer& layer, const TransformRecord& record) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    Ref<ilImage> image;
    if (layer.role() == LayerRole::Paint) {
        const Ref<Layer> alone = layer.clone();
        alone->markClipDirty();
        image = alone->renderTransformed(record, &x, &y);
    } else if (ilSmartImage* const held = layer.isStencil() ? layer.smartColor() : nullptr) {
        layer.offsetInt(&x, &y);
        if (boundsOf(held).isEmpty())
            image = Ref<ilImage>(held);
        else
            image = placed(*held, record, SampleMode::Bilinear, x, y);
    }
    if (!image) return {};
    Ref<Layer> copy(new Layer(image.get(), nullptr, layer.role(), Layer::plainFlags,
                              static_cast<float>(x), static_cast<float>(y), layer.name()));
    copy->setOpacity(layer.opacity());
    copy->setVisible(layer.visible());
    copy->setStencilActive(layer.stencilActive());
    return copy;
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

    // A group is drawn as one; where its members don't move alike, or corners move, which each has
    // of its own, or its picture doesn't end, it is put together from them. Shapes stay.
    void add(ilSPMemoryImg& target, Layer& layer, bool groupMoves) {
        if (!layer.isDrawable()) return;
        const bool isMoved = moves(layer, groupMoves);
        LayerGroup* const group = layer.asGroup();
        if (group && group->LayerGroup::isPassThrough()) {
            group->eachMember([&](Layer& member) { add(target, member, isMoved); });
        } else if (group && isPutTogether(*group, isMoved)) {
            const Ref<ilSPMemoryImg> picture(
                new ilSPMemoryImg(target.sizeX(), target.sizeY(), target.channels()));
            if (!picture->data()) return;
            picture->fillRegion(picture->box(), ilPixel(TypeUChar, 4));
            group->eachMember([&](Layer& member) { add(*picture, member, isMoved); });
            show(target, picture.get(), 0, 0, layer.blendMode(), layer.inheritedOpacity());
        } else {
            std::int32_t x = 0;
            std::int32_t y = 0;
            const Ref<ilImage> image =
                isClippedApart(layer, groupMoves)
                    ? clippedOnDisplay(target.box(), layer, groupMoves, x, y)
                    : layer.renderTransformed(isMoved ? moved_ : view_, &x, &y);
            show(target, image.get(), x, y, layer.blendMode(), layer.inheritedOpacity());
        }
    }

  private:
    [[nodiscard]] bool moves(const Layer& layer, bool groupMoves) const {
        return (groupMoves || isWhollyTransformed(stack_, layer)) && !layer.holdsShapes();
    }
    // Stencils above the layer move and it doesn't, or the other way round, or each by its corners.
    [[nodiscard]] bool isClippedApart(const Layer& layer, bool groupMoves) const {
        const bool isMoved = moves(layer, groupMoves);
        const Layer* above = layer.next.get();
        for (; above && above->role() != LayerRole::Paint; above = above->next.get())
            if (above->isStencil() &&
                (moves(*above, groupMoves) != isMoved || (isMoved && moved_.movesCorners())))
                return true;
        return false;
    }
    // Layer and stencils, each where it goes on the display, as layers of their own there.
    [[nodiscard]] Ref<ilImage> clippedOnDisplay(const ilTile& display, Layer& layer,
                                                bool groupMoves, std::int32_t& x,
                                                std::int32_t& y) const {
        LayerChain shown;
        for (Layer* step = &layer; step && (step == &layer || step->role() != LayerRole::Paint);
             step = step->next.get())
            if (const Ref<Layer> copy = onDisplay(*step, moves(*step, groupMoves) ? moved_ : view_))
                shown.insertAbove(*copy, shown.last);
        Layer* const base = shown.first.get();
        if (!base || base->role() != LayerRole::Paint) return {};
        base->offsetInt(&x, &y);
        return base->wetComposite(moved(display, -x, -y), &x, &y);
    }
    [[nodiscard]] bool isPutTogether(LayerGroup& group, bool isMoved) const {
        if (coversGround(group)) return true;
        return isMoved ? moved_.movesCorners() || holdsShapes(group) : holdsTransformed(group);
    }
    static bool holdsShapes(LayerGroup& group) {
        return !eachLayer(group.children(), [](Layer& layer) { return !layer.holdsShapes(); });
    }
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
