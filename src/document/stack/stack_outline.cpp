#include "document/stack/stack_outline.h"

#include <vector>

#include "document/layer/layer_boxes.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_paint_mask.h"
#include "fill/mask_outline.h"
#include "foundation/host/host_calls.h"
#include "foundation/host/host_canvas.h"

namespace brushwork::stack {
namespace {

constexpr std::int32_t stepMilliseconds = 100;
constexpr std::int32_t dash = 4;  // pixels
constexpr std::uint8_t dark = 1, light = 255;

void tick(void* argument) {
    auto& stack = *static_cast<StackParts*>(argument);
    stack.selection.timer.reset();
    stepSelectionOutline(stack);
    startSelectionTimer(stack);
}

bool isShown(const StackParts& stack) {
    return stack.selection.mode == 1 && !stack.fill.live && !stack.transform.open &&
           stack.isCurrent && !hostIsUpdating() && hasSelection(stack) &&
           stack.active.layer != stack.selection.layer;
}

}  // namespace

ilImage* selectionOutline(StackParts& stack) {
    SelectionState& selection = stack.selection;
    if (!selection.outline && selection.layer && selection.layer->smartColor())
        selection.outline = maskOutline(*selection.layer->smartColor());
    selection.changed = false;
    return selection.outline.get();
}

// One byte a pixel: 0 for none, else dark or light by dashes along the diagonals, which move on as
// the phase falls.
void stepSelectionOutline(StackParts& stack) {
    if (!isShown(stack)) return;
    if (stack.view.changed) invalidateRect(stack, stack.plane.canvasBounds);
    ilSmartImage* const outline = ilSmartImage::from(selectionOutline(stack));
    if (!outline) return;
    ilTile box;
    outline->bounds(box);
    if (box.isEmpty()) return;
    --stack.selection.phase;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(box.nx) *
                                     static_cast<std::size_t>(box.ny));
    outline->readRegion(box, pixels.data(), box);
    for (std::int32_t y = 0; y < box.ny; ++y)
        for (std::int32_t x = 0; x < box.nx; ++x) {
            std::uint8_t& pixel =
                pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(box.nx) +
                       static_cast<std::size_t>(x)];
            const std::int32_t along = x + y + (stack.selection.phase & (2 * dash - 1));
            if (pixel != 0) pixel = along / dash % 2 == 0 ? light : dark;
        }
    std::int32_t x = 0;
    std::int32_t y = 0;
    stack.selection.layer->offsetInt(&x, &y);
    hostDrawOutline(stack.plane.canvas, pixels.data(), stack.selection.phase,
                    hostBox(flatTile(box.x + x, box.y + y, box.nx, box.ny)));
}

void startSelectionTimer(StackParts& stack) {
    if (stack.selection.mode != 1 || stack.selection.timer) return;
    stack.selection.timer = hostStartTimer(stepMilliseconds, &tick, &stack);
}

void stopSelectionTimer(StackParts& stack) {
    if (!stack.selection.timer) return;
    hostStopTimer(*stack.selection.timer);
    stack.selection.timer.reset();
}

}  // namespace brushwork::stack
