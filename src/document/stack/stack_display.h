// Bringing the canvas to the screen.
#pragma once

#include <vector>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

void present(StackParts& stack);
// Whole canvas; with `rebuildCaches` both composites first.
void refreshDisplay(StackParts& stack, bool rebuildCaches);
void redrawAll(StackParts& stack);
// The image to show: the plane, or what the view makes of it. Borrowed.
ilImage* renderDisplay(StackParts& stack, bool toOffscreen);
// The whole canvas, selection and checkerboard off.
[[nodiscard]] Ref<ilSPMemoryImg> flatImage(StackParts& stack);
// Rebuilds the plane from the host's surface.
void imagePlaneRecreate(StackParts& stack, bool presentIt);
void resizePlane(StackParts& stack, std::int32_t width, std::int32_t height);
void setCanvas(StackParts& stack, HostCanvas canvas);
void setView(StackParts& stack, const TransformRecord& record);
[[nodiscard]] ViewPoint viewToLayer(const StackParts& stack, ViewPoint view, std::int32_t id);
[[nodiscard]] ViewPoint layerToView(const StackParts& stack, ViewPoint layer, std::int32_t id);
// The canvas in view space, cut to the viewport, and the display cells that it meets.
[[nodiscard]] std::vector<ViewPoint> visiblePolygon(const StackParts& stack,
                                                    const ilTile& viewport);
void tileCover(const std::vector<ViewPoint>& polygon, ilPageTileManager& out);

}  // namespace brushwork::stack
