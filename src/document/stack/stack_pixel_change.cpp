#include "document/stack/stack_pixel_change.h"

#include <utility>

#include "document/stack/stack_display.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_paint_mask.h"
#include "document/stack/stack_painters.h"
#include "document/stack/stack_selection.h"

namespace brushwork::stack {

void drawRestricted(StackParts& stack, const std::function<void(PaintOps&)>& draw) {
    const Ref<PaintOps> painter(paintOps(stack));
    if (!painter) return;
    painter->beginAccess();
    painter->setBlendFactors(pairCopy.source, pairCopy.target);
    draw(*painter);
    painter->endAccess();
    painter->setBlendFactors(pairCopy.source, pairCopy.target);
}

void drawOnColor(StackParts& stack, const std::function<void(PaintOps&)>& draw) {
    const bool onStencil = std::exchange(stack.painters.onStencil, false);
    drawRestricted(stack, draw);
    stack.painters.onStencil = onStencil;
    if (onStencil) paintOps(stack);
}

void noteNewPixels(StackParts& stack, Layer& layer) {
    layer.touch();
    noteChange(stack, &layer);
    if (&layer == stack.selection.layer.get()) {
        selectionChanged(stack);
    } else if (layer.role() != LayerRole::Paint) {
        layer.markClipDirty(true);
        stack.caches.aboveStale = true;
        rebuildPaintMask(stack);
    }
    staleSide(stack, layer);
}

void pixelsChanged(StackParts& stack, Layer& layer, bool presentIt) {
    layer.propagateChange(true);
    noteNewPixels(stack, layer);
    invalidateRect(stack, stack.plane.canvasBounds);
    if (presentIt) present(stack);
}

}  // namespace brushwork::stack
