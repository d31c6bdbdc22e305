#include "document/stack/stack_compose.h"

#include <deque>
#include <optional>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/prepared_blend.h"
#include "document/stack/blend_run.h"
#include "document/stack/stack_caches.h"
#include "document/stack/stack_draw.h"
#include "document/stack/stack_lookup.h"
#include "foundation/host/host_canvas.h"

namespace brushwork::stack {
namespace {

constexpr std::size_t tilesAtOnce = 16;

// A run over the dirty tiles: the target's pixel (0, 0) stands at minus the canvas origin. What is
// blended as it stands waits on the pile for what lies over it.
struct Composer {
    StackParts& stack;
    PaintOps& target;
    npc::TileSet tiles;
    LayerDraw draw;
    npc::BlendPile pile;
    std::deque<PreparedBlend> piled;

    Composer(StackParts& parts, PaintOps& painter)
        : stack(parts),
          target(painter),
          pile(*painter.image(), -parts.plane.originX, -parts.plane.originY) {
        draw.box = parts.plane.canvasBounds;
        draw.useOrigin = true;
        draw.originX = parts.plane.originX;
        draw.originY = parts.plane.originY;
    }

    void fill(std::uint32_t pixel) {
        for (const ilTile& tile : tiles)
            target.image()->fillRegion(
                flatTile(tile.x + draw.originX, tile.y + draw.originY, tile.nx, tile.ny),
                ilPixel(TypeUChar, 4, &pixel));
    }
    void put(const PreparedBlend::Placed& source, BlendModeId mode, float opacity = 1.0f) {
        PreparedBlend& blend = piled.emplace_back(source, static_cast<std::int32_t>(mode), opacity);
        bool drawn = false;
        for (const ilTile& tile : tiles) drawn = blend.putOn(pile, tile) || drawn;
        if (drawn) noteBlendRun();
    }
    // False for a layer that isn't blended as it stands.
    bool putPlain(Layer& layer) {
        if (layer.asGroup() || (layer.flags() & draw.flagMask) == 0) return false;
        ilSmartImage* const color = plainColor(layer);
        if (!color) return false;
        PreparedBlend::Placed source{color, 0, 0};
        layer.offsetInt(&source.x, &source.y);
        put(source, static_cast<BlendModeId>(layer.blendMode()), layer.inheritedOpacity());
        return true;
    }
    void runPile() {
        pile.run();
        piled.clear();
    }

    void compose(const ilPageTileManager& dirty, ilSmartImage* above, ilSmartImage* below,
                 bool useMask, bool withSelection) {
        tiles = tilesOf(dirty, stack.plane.canvasBounds);
        if (tiles.empty()) return;
        draw.tiles = &dirty;
        lower(below);
        middle(useMask, withSelection);
        upper(above, withSelection);
        runPile();
    }
    void lower(ilSmartImage* below);
    void middle(bool useMask, bool withTints);
    void maskedStroke(Layer& layer, MaskingPaintOps& masked);
    void upper(ilSmartImage* above, bool withSelection);
};

void Composer::lower(ilSmartImage* below) {
    const bool transparent = stack.display.checkerboard && stack.plane.surfaceIsTransparent();
    if (below)
        put({below, 0, 0}, BlendModeId::Replace);
    else
        fill(transparent ? 0 : backgroundPixel(stack));
}

// A painter that holds back a stroke until the paint mask is obeyed.
MaskingPaintOps* pendingPainter(const StackParts& stack) {
    MaskingPaintOps* const masked = stack.painters.masked.get();
    if (!masked || !stack.selection.paintMask) return nullptr;
    return masked->isSnapshotActive() || masked->pendingStroke() ? masked : nullptr;
}

// The active layer, or the group around it. A mask that is being worked on shows as its tint; the
// selection doesn't.
void Composer::middle(bool useMask, bool withTints) {
    Layer* const active = stack.active.layer.get();
    Layer* const outer = outermost(active);
    if (!active || outer == stack.selection.layer.get()) return;
    if (!outer->visible() || !(outer->opacity() > invisibleEnough)) return;
    const bool shows = withTints || active->role() == LayerRole::Paint;
    if (!shows && active == outer) return;
    MaskingPaintOps* const pending = useMask ? pendingPainter(stack) : nullptr;
    if (active == outer && !pending && putPlain(*active)) return;
    runPile();
    if (pending && active == outer && !active->asGroup()) {
        maskedStroke(*active, *pending);
        return;
    }
    LayerDraw whole = draw;
    whole.activeLayer = shows ? active : nullptr;
    whole.pending = pending;
    whole.onStencil = stack.painters.onStencil;
    drawLayer(stack, outer, target, whole);
}

// What was drawn and still waits for the mask, as it will look once the mask has been obeyed.
void Composer::maskedStroke(Layer& layer, MaskingPaintOps& masked) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    layer.offsetInt(&x, &y);
    SoftPaintOps& scratch = *stack.painters.scratch;
    layer.refreshClip();
    for (const ilTile& tile : tiles) {
        const ilTile inside = flatTile(tile.x - x, tile.y - y, tile.nx, tile.ny);
        ilImage* const shown = masked.imageForRead(inside);
        Layer::Drawing drawing = layer.drawing(inside, 1.0f);
        (stack.painters.onStencil ? drawing.stencil : drawing.color) = shown;
        scratch.image()->fillRegion(inside, ilPixel(TypeUChar, 4));
        layer.drawSteps(scratch, drawing);
        npc::TileSet one{tile};
        blend({target.image(), -draw.originX, -draw.originY, scratch.image(), x, y,
               layer.blendMode(), layer.inheritedOpacity()},
              one);
    }
}

// Groups are asked for all tiles at once: where their members cover the ground, each request beyond
// what was drawn before draws all of them anew.
bool drawsPlainly(const StackParts& stack) {
    return stack.caches.aboveIsSimple && !outermost(stack.active.layer.get())->asGroup();
}

// The selection lies over them however they are drawn.
void Composer::upper(ilSmartImage* above, bool withSelection) {
    if (stack.caches.aboveIsSimple) {
        if (above) put({above, 0, 0}, BlendModeId::Normal);
        return;
    }
    draw.refreshThumbnail = stack.damage.thumbnailsWanted;
    for (Layer* layer = firstAbove(stack); layer; layer = layer->next.get()) {
        if (!isDrawnAbove(stack, *layer, withSelection)) continue;
        if (!draw.refreshThumbnail && putPlain(*layer)) continue;
        runPile();
        drawLayer(stack, layer, target, draw);
    }
    draw.refreshThumbnail = false;
    runPile();
    if (showsSelection(stack, withSelection))
        drawLayer(stack, stack.selection.layer.get(), target, draw);
}

// Makes the caches good. Where what lies below is made anew, its blocks go into the plane as they
// come; true if they did.
bool freshenAndCompose(StackParts& stack) {
    PaintOps& target = *stack.plane.ops;
    std::optional<Composer> composer;
    freshenCaches(stack, [&](ilSmartImage& below, const ilTile& block) {
        if (!drawsPlainly(stack) || !target.image()) return;
        if (!composer) composer.emplace(stack, target);
        ilPageTileManager part;
        for (const ilTile& tile : tilesOf(stack.damage.tiles, block)) part.addTile(tile);
        composer->compose(part, stack.caches.above.get(), &below, true, true);
    });
    return composer.has_value();
}

}  // namespace

void compositeTiles(StackParts& stack, ilSmartImage* above, ilSmartImage* below, bool useMask,
                    bool withSelection, PaintOps& target) {
    if (stack.damage.lockCount > 0 || stack.damage.tiles.isEmpty() || !stack.active.layer ||
        !target.image())
        return;
    Composer composer(stack, target);
    if (!drawsPlainly(stack))
        return composer.compose(stack.damage.tiles, above, below, useMask, withSelection);
    // A few tiles at a time, so that what one step leaves is still at hand for the next.
    ilPageTileManager some;
    for (const auto& [cell, tile] : stack.damage.tiles.cells()) {
        some.addTile(intersection(tile, stack.plane.canvasBounds));
        if (some.cells().size() < tilesAtOnce) continue;
        composer.compose(some, above, below, useMask, withSelection);
        some.clear();
    }
    composer.compose(some, above, below, useMask, withSelection);
}

// Tiles that can't be composed for want of an active layer wait for one.
void compositeNow(StackParts& stack) {
    if (stack.damage.lockCount > 0 || !stack.plane.ops) return;
    if (stack.active.layer && !stack.damage.tiles.isEmpty()) {
        if (!freshenAndCompose(stack))
            compositeTiles(stack, stack.caches.above.get(), stack.caches.below.get(), true, true,
                           *stack.plane.ops);
        if (stack.display.image)
            for (const auto& [cell, tile] : stack.damage.tiles.cells())
                stack.display.tiles.addTile(tile);
        stack.damage.tiles.clear();
    }
    hostPresentSurface(stack.plane.surface());
}

}  // namespace brushwork::stack
