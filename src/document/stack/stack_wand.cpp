#include "document/stack/stack_wand.h"

#include <algorithm>
#include <cmath>

#include "document/layer/layer_boxes.h"
#include "document/stack/stack_display.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_selection.h"
#include "fill/doodle_flood_fill_operation.h"
#include "fill/flood_fill_operation.h"
#include "shapes/outline_raster.h"
#include "shapes/sample_lines.h"

namespace brushwork::stack {
namespace {

std::int32_t within(float place, std::int32_t start, std::int32_t size) {
    const float floor = std::floor(place);
    if (!(floor > static_cast<float>(start))) return start;
    return floor >= static_cast<float>(start + size - 1) ? start + size - 1
                                                         : static_cast<std::int32_t>(floor);
}

void followRamps(StackParts& stack, ilSmartImage& picture, const ilTile& box, std::int32_t x,
                 std::int32_t y, float tolerance, std::int32_t layerX, std::int32_t layerY) {
    DoodleFloodFillOperation doodle(box, box);
    doodle.run(x, y, tolerance, picture);
    if (doodle.mask())
        addImageToSelection(stack, *doodle.mask(), static_cast<float>(layerX),
                            static_cast<float>(layerY));
}

}  // namespace

bool magicWand(StackParts& stack, float x, float y, float tolerance, const WandParams& params,
               bool replace, std::int32_t layerId) {
    Layer* const layer = layerById(stack, layerId);
    if (!layer || layer->holdsShapes() || layer->asGroup()) return false;
    if (!stack.selection.layer) makeSelectionLayer(stack);
    ilSmartImage* const picture = layer->smartColor();
    ilSmartImage* const selection = stack.selection.layer->smartColor();
    if (!picture || !selection || layer == stack.selection.layer.get()) return false;
    // Bounds that only follow pages would let the flood out of what is drawn.
    layer->tighten();
    const ilTile box = boundsOf(picture);
    if (box.isEmpty()) return false;
    stack.fill.end();
    if (replace) resetSelection(stack);
    const ViewPoint place = viewToLayer(stack, {x, y}, layer->id());
    const std::int32_t px = within(place.x, box.x, box.nx);
    const std::int32_t py = within(place.y, box.y, box.ny);
    std::int32_t layerX = 0;
    std::int32_t layerY = 0;
    std::int32_t selectionX = 0;
    std::int32_t selectionY = 0;
    layer->offsetInt(&layerX, &layerY);
    stack.selection.layer->offsetInt(&selectionX, &selectionY);
    stack.fill.live = true;
    if (params.doodle) {
        followRamps(stack, *picture, box, px, py, tolerance, layerX, layerY);
    } else {
        const auto source = makeFillSurface(*picture);
        const auto target = makeFillSurface(*selection);
        if (source && target) {
            FloodFillOperation flood(px, py, layerX - selectionX, layerY - selectionY, tolerance,
                                     {1.0f, 1.0f, 1.0f, 1.0f}, *source, *target,
                                     picture->channels() == 1, true);
            flood.fill(px, py, box.x, box.y, box.endX() - 1, box.endY() - 1, false);
        }
    }
    stack.fill.live = false;
    selectionChanged(stack);
    return true;
}

void polygonSelect(StackParts& stack, std::span<const ViewPoint> points) {
    if (points.size() < 3) return;
    std::vector<ViewPoint> corners;
    for (const ViewPoint& point : points) {
        const ViewPoint place = viewToLayer(stack, point, noLayer);
        if (!std::isfinite(place.x) || !std::isfinite(place.y)) return;
        corners.push_back({offSampleLines(place.x), offSampleLines(place.y)});
    }
    const auto [left, right] = std::minmax_element(
        corners.begin(), corners.end(), [](ViewPoint a, ViewPoint b) { return a.x < b.x; });
    const auto [bottom, top] = std::minmax_element(
        corners.begin(), corners.end(), [](ViewPoint a, ViewPoint b) { return a.y < b.y; });
    constexpr float most = 102400.0f;
    if (left->x < -most || bottom->y < -most || right->x > most || top->y > most) return;
    const auto x = static_cast<std::int32_t>(std::floor(left->x)) - 4;
    const auto y = static_cast<std::int32_t>(std::floor(bottom->y)) - 4;
    const ilTile area = flatTile(x, y, static_cast<std::int32_t>(std::ceil(right->x)) - x + 4,
                                 static_cast<std::int32_t>(std::ceil(top->y)) - y + 4);
    const ilTile box = intersection(
        area, flatTile(stack.plane.canvasBounds.x - 256, stack.plane.canvasBounds.y - 256,
                       stack.plane.canvasBounds.nx + 512, stack.plane.canvasBounds.ny + 512));
    if (box.isEmpty()) return;
    std::vector<HostSegment> segments;
    for (std::size_t n = 0; n < corners.size(); ++n) {
        const ViewPoint from = corners[n];
        const ViewPoint to = corners[(n + 1) % corners.size()];
        segments.push_back({from.x, from.y, to.x - from.x, to.y - from.y});
    }
    std::vector<std::uint8_t> mask(static_cast<std::size_t>(box.nx) *
                                   static_cast<std::size_t>(box.ny));
    if (!rasterizeOutline(OutlineSegments(segments), box, mask)) return;
    const Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 1)));
    image->writeRegion(box, mask.data(), box);
    addImageToSelection(stack, *image, 0.0f, 0.0f);
}

}  // namespace brushwork::stack
