#include "document/stack/stack_display.h"

#include <algorithm>
#include <cmath>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/document_switches.h"
#include "document/layer/screen_block.h"
#include "document/stack/host_view.h"
#include "document/stack/stack_caches.h"
#include "document/stack/stack_compose.h"
#include "document/stack/stack_draw.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_painters.h"
#include "document/stack/stack_scaled.h"
#include "foundation/host/host_canvas.h"
#include "foundation/services/log.h"

namespace brushwork::stack {
namespace {

constexpr ilTile nothing{0, 0, 0, 0, 0, 1};

bool ensureDisplay(StackParts& stack) {
    DisplayTarget& display = stack.display;
    Ref<ilSPMemoryImg> image = display.image;
    if (!display.offscreen) {
        // Another one when the screen has changed.
        image = screenBlock(stack.plane.canvasBounds.nx, stack.plane.canvasBounds.ny);
    } else if (display.width < 1 || display.height < 1) {
        return false;
    } else if (!image || image->sizeX() != display.width || image->sizeY() != display.height) {
        image = Ref<ilSPMemoryImg>(new ilSPMemoryImg(display.width, display.height, 4));
    }
    if (!image || !image->data()) return false;
    if (image == display.image) return true;
    display.image = image;
    display.ops = Ref<PaintOps>(new SoftPaintOps(display.image.get()));
    display.blender = npc::createBlender(BlendModeId::Normal);
    display.tiles.addTile(stack.plane.canvasBounds);
    stack.view.changed = true;
    return true;
}

// A dirty tile of the plane onto the display, at the host's scale about its centre.
void showTile(StackParts& stack, const ilTile& tile, const HostView& view) {
    ilSPMemoryImg& plane = *stack.plane.image;
    ilSPMemoryImg& shown = *stack.display.image;
    const ilTile place =
        flatTile(tile.x + stack.plane.originX, tile.y + stack.plane.originY, tile.nx, tile.ny);
    const auto left = static_cast<std::int32_t>(std::floor(view.x));
    const auto bottom = static_cast<std::int32_t>(std::floor(view.y));
    if (view.scale == 1.0f) {
        shown.copyRegion(flatTile(place.x - left, place.y - bottom, place.nx, place.ny), plane,
                         place.x, place.y, 0, nullptr, CopyDirection::FromOther);
        return;
    }
    plane.setScale(view.scale, view.scale);
    plane.setSampleModes(view.filterX, view.filterY);
    const auto scaledFrom = [&](std::int32_t at) {
        return static_cast<std::int32_t>(std::floor(static_cast<float>(at) * view.scale)) - 1;
    };
    const auto scaledTo = [&](std::int32_t at) {
        return static_cast<std::int32_t>(std::ceil(static_cast<float>(at) * view.scale)) + 1;
    };
    Rect<std::int32_t> box{};
    box.x = std::max(scaledFrom(place.x), left);
    box.y = std::max(scaledFrom(place.y), bottom);
    box.w = std::min(scaledTo(place.endX()), left + shown.sizeX()) - box.x;
    box.h = std::min(scaledTo(place.endY()), bottom + shown.sizeY()) - box.y;
    if (box.w < 1 || box.h < 1) return;
    ScaledTarget target = shown.scaledTarget();
    target.offsetX = box.x - left;
    target.offsetY = box.y - bottom;
    plane.scaleRegionInto(box, target);
}

}  // namespace

void present(StackParts& stack) {
    if (stack.damage.deferComposite) {
        if (stack.plane.canvas && !hostIsUpdating()) hostRequestRepaint(stack.plane.canvas);
        return;
    }
    compositeNow(stack);
    if (!stack.damage.clearOnPresent) return;
    stack.damage.paint = nothing;
    stack.damage.dirty = nothing;
}

void refreshDisplay(StackParts& stack, bool rebuildCaches) {
    stack.damage.pendingDisplay = false;
    paintOps(stack);
    invalidateRect(stack, canvasBounds(stack));
    if (rebuildCaches) {
        refreshAbove(stack, true);
        refreshBelow(stack);
    }
    present(stack);
}

void redrawAll(StackParts& stack) {
    stack.caches.groups.clear();
    staleBoth(stack);
    refreshDisplay(stack, false);
}

ilImage* renderDisplay(StackParts& stack, bool toOffscreen) {
    if (!stack.plane.image) return nullptr;
    if (!toOffscreen) {
        if (!documentSwitches().displaySuspended) compositeNow(stack);
        return stack.plane.image.get();
    }
    if (!ensureDisplay(stack)) return stack.plane.image.get();
    if (stack.transform.open && prepareScaled(stack)) {
        drawScaledFrame(stack, *stack.display.image);
    } else {
        if (!documentSwitches().displaySuspended) compositeNow(stack);
        const HostView view = hostViewOf(stack);
        if (stack.view.changed) stack.display.tiles.addTile(stack.plane.canvasBounds);
        for (const auto& [cell, tile] : stack.display.tiles.cells())
            if (!tile.isEmpty()) showTile(stack, tile, view);
    }
    stack.display.tiles.clear();
    stack.view.changed = false;
    documentSwitches().bypassDisplay = false;
    return stack.display.image.get();
}

Ref<ilSPMemoryImg> flatImage(StackParts& stack) {
    const ilTile& canvas = stack.plane.canvasBounds;
    if (canvas.isEmpty()) return {};
    const Ref<ilSPMemoryImg> image(new ilSPMemoryImg(canvas.nx, canvas.ny, 4));
    if (!stack.active.layer) {
        const std::uint32_t background = backgroundPixel(stack);
        image->fillRegion(image->box(), ilPixel(TypeUChar, 4, &background));
        return image;
    }
    const Ref<SoftPaintOps> painter(new SoftPaintOps(image.get()));
    const bool checkerboard = std::exchange(stack.display.checkerboard, false);
    Ref<ilSmartImage> above;
    Ref<ilSmartImage> below;
    const bool wasSimple = stack.caches.aboveIsSimple;
    rebuildAbove(stack, above, false, false);
    rebuildBelow(stack, below);
    const ilPageTileManager kept = std::exchange(stack.damage.tiles, ilPageTileManager());
    stack.damage.tiles.addTile(canvas);
    compositeTiles(stack, above.get(), below.get(), true, false, *painter);
    stack.damage.tiles = kept;
    stack.caches.aboveIsSimple = wasSimple;
    stack.display.checkerboard = checkerboard;
    present(stack);
    return image;
}

void imagePlaneRecreate(StackParts& stack, bool presentIt) {
    if (!stack.plane.wrapSurface()) return;
    log("imagePlane created (%d, %d).\n", stack.plane.image->sizeX(), stack.plane.image->sizeY());
    stack.view.changed = true;
    stack.view.sizeChanged = true;
    stack.caches.groups.clear();
    staleBoth(stack);
    canvasBounds(stack);
    invalidateRect(stack, stack.plane.canvasBounds);
    if (presentIt) present(stack);
}

void resizePlane(StackParts& stack, std::int32_t width, std::int32_t height) {
    if (stack.plane.canvas) return imagePlaneRecreate(stack, false);
    stack.plane.makeOwn(width, height);
    stack.view.sizeChanged = true;
    stack.caches.groups.clear();
    staleBoth(stack);
    canvasBounds(stack);
    invalidateRect(stack, stack.plane.canvasBounds);
}

void setCanvas(StackParts& stack, HostCanvas canvas) {
    stack.plane.canvas = canvas;
    imagePlaneRecreate(stack, false);
}

void setView(StackParts& stack, const TransformRecord& record) {
    if (stack.view.valid && stack.view.record == record) return;
    stack.view.record = record;
    stack.view.valid = true;
    stack.view.changed = true;
    clearScaled(stack);
}

ViewPoint viewToLayer(const StackParts& stack, ViewPoint view, std::int32_t id) {
    ViewPoint place = stack.view.toDocument(view);
    if (Layer* const layer = layerById(stack, id)) {
        std::int32_t x = 0;
        std::int32_t y = 0;
        layer->offsetInt(&x, &y);
        place.x -= static_cast<float>(x);
        place.y -= static_cast<float>(y);
    }
    return place;
}

ViewPoint layerToView(const StackParts& stack, ViewPoint place, std::int32_t id) {
    if (Layer* const layer = layerById(stack, id)) {
        std::int32_t x = 0;
        std::int32_t y = 0;
        layer->offsetInt(&x, &y);
        place.x += static_cast<float>(x);
        place.y += static_cast<float>(y);
    }
    return stack.view.toView(place);
}

std::vector<ViewPoint> visiblePolygon(const StackParts& stack, const ilTile& viewport) {
    const ilTile& canvas = stack.plane.canvasBounds;
    const auto left = static_cast<float>(canvas.x);
    const auto bottom = static_cast<float>(canvas.y);
    const auto right = static_cast<float>(canvas.endX());
    const auto top = static_cast<float>(canvas.endY());
    const StackView& view = stack.view;
    return clipPolygon({view.toView({left, bottom}), view.toView({right, bottom}),
                        view.toView({right, top}), view.toView({left, top})},
                       viewport);
}

void tileCover(const std::vector<ViewPoint>& polygon, ilPageTileManager& out) {
    if (polygon.empty()) return;
    constexpr std::int32_t side = 128;
    const auto byX = [](ViewPoint a, ViewPoint b) { return a.x < b.x; };
    const auto byY = [](ViewPoint a, ViewPoint b) { return a.y < b.y; };
    const auto [left, right] = std::minmax_element(polygon.begin(), polygon.end(), byX);
    const auto [bottom, top] = std::minmax_element(polygon.begin(), polygon.end(), byY);
    const auto cellOf = [](float place) {
        return static_cast<std::int32_t>(std::floor(place / static_cast<float>(side)));
    };
    for (std::int32_t y = cellOf(bottom->y); y <= cellOf(top->y); ++y)
        for (std::int32_t x = cellOf(left->x); x <= cellOf(right->x); ++x) {
            const ilTile cell = flatTile(x * side, y * side, side, side);
            if (clipPolygon(polygon, cell).size() > 2) out.addTile(cell);
        }
}

}  // namespace brushwork::stack
