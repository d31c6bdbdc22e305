#include "document/stack/stack_painters.h"

namespace brushwork::stack {
namespace {

constexpr std::int32_t reach = 256;  // beyond the canvas on each side

ilImage* paintTarget(const StackParts& stack, Layer& layer) {
    if (stack.painters.onStencil) {
        layer.ensureStencil();
        return layer.stencilImage();
    }
    if (!layer.colorImageRef()) {
        const ilPixel blank(TypeUChar, layer.role() == LayerRole::Paint ? 4 : 1);
        layer.setColorImage(Ref<ilSmartImage>(new ilSmartImage(blank)).get());
    }
    return layer.colorImageRef();
}

// Room for a stroke that leaves the canvas and comes back.
void limit(const StackParts& stack, Layer& layer, PaintOps& painter) {
    const ilTile& canvas = stack.plane.canvasBounds;
    if (canvas.isEmpty()) {
        painter.setBounds(flatTile(0, 0, 0, 0));
        return;
    }
    std::int32_t x = 0;
    std::int32_t y = 0;
    layer.offsetInt(&x, &y);
    painter.setBounds(flatTile(canvas.x - reach - x, canvas.y - reach - y, canvas.nx + 2 * reach,
                               canvas.ny + 2 * reach));
}

}  // namespace

PaintOps* paintOps(StackParts& stack) {
    Painters& painters = stack.painters;
    Layer* const layer = stack.active.layer.get();
    if (stack.transform.open || !layer) return nullptr;
    if (stack.fill.live && painters.current) return painters.current.get();
    ilImage* const target = paintTarget(stack, *layer);
    if (!painters.plain) painters.plain = Ref<SoftPaintOps>(new SoftPaintOps(target));
    if (painters.plain->image() != target) painters.plain->setImage(target);
    painters.current = painters.plain;
    if (painters.guard) {
        if (!painters.masked) painters.masked = Ref<MaskingPaintOps>(new MaskingPaintOps);
        std::int32_t x = 0;
        std::int32_t y = 0;
        layer->offsetInt(&x, &y);
        painters.masked->setInner(painters.plain.get());
        painters.masked->setMask(painters.guard.get(), x, y);
        painters.current = painters.masked;
    } else {
        painters.masked.reset();
    }
    limit(stack, *layer, *painters.plain);
    return painters.current.get();
}

void setPaintOnStencil(StackParts& stack, bool on) {
    if (stack.painters.onStencil == on) return;
    stack.painters.onStencil = on;
    stack.painters.current.reset();
    stack.painters.masked.reset();
    stack.painters.plain.reset();
    paintOps(stack);
}

const ilTile& canvasBounds(StackParts& stack) {
    stack.plane.refreshBounds();
    if (stack.painters.plain && stack.active.layer)
        limit(stack, *stack.active.layer, *stack.painters.plain);
    return stack.plane.canvasBounds;
}

}  // namespace brushwork::stack
