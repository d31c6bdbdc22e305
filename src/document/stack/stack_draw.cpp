#include "document/stack/stack_draw.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "blending/modes/blender_registry.h"
#include "blending/paint/soft_paint_ops.h"
#include "document/layer/changed_area.h"
#include "document/layer/document_switches.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/prepared_blend.h"
#include "document/stack/blend_run.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_raster.h"
#include "image/memory/image_lock.h"

namespace brushwork::stack {
namespace {

constexpr std::uint32_t wantsBackground = 0x8000;

Ref<ilSmartImage> blankImage() {
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
}

bool showsNothingAround(Layer& layer) {
    ilImage* const color = layer.colorImageRef();
    if (!color) return true;
    const ilPixel fill = color->fill();
    return std::all_of(fill.data(), fill.data() + fill.channels(),
                       [](std::uint8_t value) { return value == 0; });
}

// What of the box a plain layer can change, in document coordinates: of empty ground nothing, save
// under a mode that acts where nothing is. That acts everywhere, or a dab would change what lies
// far from it.
ilTile areaOf(Layer& layer, const ilTile& box) {
    if (!showsNothingAround(layer) || !npc::keepsUnderNothing(layer.blendMode())) return box;
    ilTile content;
    layer.contentBounds(content, true);
    return intersection(content, box);
}

// Where nothing attenuates it and no paint is live the source is the layer's own image, for all
// such boxes at once; elsewhere it is made for each box.
bool blendPlain(Layer& layer, BlendRun run, const npc::TileSet& boxes, std::int32_t shiftX,
                std::int32_t shiftY) {
    std::int32_t x = 0;
    std::int32_t y = 0;
    layer.offsetInt(&x, &y);
    npc::TileSet plain;
    bool drawn = false;
    for (const ilTile& box : boxes) {
        std::int32_t imageX = 0;
        std::int32_t imageY = 0;
        const Ref<ilImage> image =
            layer.wetComposite(flatTile(box.x - x, box.y - y, box.nx, box.ny), &imageX, &imageY);
        if (!image) continue;
        if (image == layer.colorImageRef()) {
            plain.insert(box);
            continue;
        }
        run.source = image.get();
        run.sourceX = imageX - shiftX;
        run.sourceY = imageY - shiftY;
        drawn = blend(run, box) || drawn;
    }
    run.source = layer.colorImageRef();
    run.sourceX = x - shiftX;
    run.sourceY = y - shiftY;
    return blend(run, plain) || drawn;
}

npc::TileSet boxesOf(const LayerDraw& draw, const ilTile& area) {
    if (draw.tiles) return tilesOf(*draw.tiles, area);
    npc::TileSet boxes;
    if (!area.isEmpty()) boxes.insert(area);
    return boxes;
}

// Blocks of whole pages. Small ones, so that they are still at hand when they go into the plane.
constexpr std::int32_t blockX = 256, blockY = 128;
constexpr std::int32_t cellSide = npc::BlendPile::cellSide;

// One of several plain layers that are drawn together.
struct BlockLayer {
    Layer* layer;
    std::optional<PreparedBlend> blend;  // none: drawn for each block
    ilTile area;
};

BlockLayer blockLayer(Layer& layer, const LayerDraw& draw) {
    BlockLayer ready{&layer, {}, {}};
    ilSmartImage* const color = plainColor(layer);
    if (!color || (layer.flags() & draw.flagMask) == 0 || draw.useOrigin || draw.clipLayer)
        return ready;
    PreparedBlend::Placed source{color, 0, 0};
    layer.offsetInt(&source.x, &source.y);
    ready.blend.emplace(source, layer.blendMode(),
                        draw.ownOpacity ? layer.opacity() : layer.inheritedOpacity());
    ready.area = areaOf(layer, draw.box);
    return ready;
}

// A place of one page of the target where layers are drawn.
struct BlockCell {
    ilTile box;
    std::size_t lowest = 0;  // of the layers that show there
    bool hides = false;      // the lowest one does, all below
};

// From the topmost layer on that hides all below it there.
std::size_t findLowest(BlockCell& cell, std::span<BlockLayer> layers) {
    for (std::size_t n = layers.size(); n-- > 0 && !cell.hides;) {
        BlockLayer& each = layers[n];
        cell.hides = each.blend && each.area.contains(cell.box) && each.blend->hides(cell.box);
        cell.lowest = cell.hides ? n : 0;
    }
    return cell.lowest;
}

bool drawBlock(StackParts& stack, std::span<BlockLayer> layers, PaintOps& target,
               const LayerDraw& draw, std::span<BlockCell> cells, npc::BlendPile& pile) {
    std::size_t first = layers.size();
    {
        const ImageLockScope lock;  // once for all looks at pages
        for (BlockCell& cell : cells) first = std::min(first, findLowest(cell, layers));
    }
    bool drawn = false;
    for (std::size_t n = first; n < layers.size(); ++n) {
        BlockLayer& each = layers[n];
        if (!each.blend) {
            pile.run();
            drawn = drawLayer(stack, each.layer, target, draw) || drawn;
            continue;
        }
        bool shows = false;
        for (const BlockCell& cell : cells) {
            const ilTile part = intersection(cell.box, each.area);
            if (n < cell.lowest || part.isEmpty()) continue;
            const bool replaces = cell.hides && n == cell.lowest;
            shows = (replaces && each.blend->shareWith(*target.image(), part)) ||
                    each.blend->putOn(pile, part) || shows;
        }
        if (shows) noteBlendRun();
        drawn = drawn || shows;
    }
    pile.run();
    return drawn;
}

// The cells of a box, block by block.
std::vector<std::vector<BlockCell>> blocksOf(const ilTile& box) {
    std::vector<std::vector<BlockCell>> blocks;
    for (std::int32_t y = box.y & -blockY; y < box.endY(); y += blockY)
        for (std::int32_t x = box.x & -blockX; x < box.endX(); x += blockX) {
            const ilTile block = intersection(flatTile(x, y, blockX, blockY), box);
            std::vector<BlockCell>& cells = blocks.emplace_back();
            for (std::int32_t cy = block.y & -cellSide; cy < block.endY(); cy += cellSide)
                for (std::int32_t cx = block.x & -cellSide; cx < block.endX(); cx += cellSide)
                    cells.push_back({intersection(flatTile(cx, cy, cellSide, cellSide), block)});
        }
    return blocks;
}

// And those of tiles, some at a time.
std::vector<std::vector<BlockCell>> blocksOf(const ilPageTileManager& tiles, const ilTile& box) {
    constexpr std::size_t cellsPerBlock = blockX / cellSide * (blockY / cellSide);
    std::vector<std::vector<BlockCell>> blocks;
    for (const ilTile& tile : tilesOf(tiles, box)) {
        if (blocks.empty() || blocks.back().size() == cellsPerBlock) blocks.emplace_back();
        blocks.back().push_back({tile});
    }
    return blocks;
}

bool drawBlocks(StackParts& stack, std::span<Layer* const> layers, PaintOps& target,
                const LayerDraw& whole) {
    LayerDraw draw = whole;
    draw.refreshThumbnail = false;
    std::vector<BlockLayer> ready;
    ready.reserve(layers.size());
    for (Layer* layer : layers) ready.push_back(blockLayer(*layer, whole));
    npc::BlendPile pile(*target.image(), 0, 0);
    bool drawn = false;
    for (auto& cells : whole.tiles ? blocksOf(*whole.tiles, whole.box) : blocksOf(whole.box)) {
        ilPageTileManager tiles;
        draw.box = {};
        for (const BlockCell& cell : cells) {
            draw.box = unionOf(draw.box, cell.box);
            if (whole.tiles) tiles.addTile(cell.box);
        }
        if (whole.tiles) draw.tiles = &tiles;
        drawn = drawBlock(stack, ready, target, draw, cells, pile) || drawn;
        if (whole.blockDone) whole.blockDone(draw.box);
    }
    if (whole.refreshThumbnail)
        for (Layer* layer : layers) static_cast<void>(layer->thumbnailImage(nullptr, 0, 0));
    return drawn;
}

GroupRenderRequest requestOf(const LayerDraw& draw) {
    GroupRenderRequest request;
    request.tag = draw.tag;
    request.tileBox = draw.box;
    // Members that meet other flags, or that are shown for being painted on, make another picture.
    if (draw.flagMask != ~std::uint32_t{0})
        request.tag = static_cast<std::int32_t>(draw.flagMask | 0x80000000);
    else if (draw.activeLayer && draw.activeLayer->role() != LayerRole::Paint)
        request.tag = draw.activeLayer->id() + 1;
    request.tiles = draw.tiles;
    request.hasTiles = draw.tiles != nullptr;
    request.originIsSet = draw.useOrigin;
    request.originX = draw.originX;
    request.originY = draw.originY;
    request.flagMask = draw.flagMask;
    request.activeLayer = draw.activeLayer;
    request.selectionMask = draw.pending;
    request.showSelection = draw.onStencil;
    return request;
}

// With that opacity, which a pass-through group leaves to its members.
bool drawAs(Layer* layer, PaintOps& target, const LayerDraw& draw, float opacity) {
    ilImage* const image = target.image();
    if (!layer || !image || (layer->flags() & draw.flagMask) == 0) return false;
    BlendRun run;
    run.target = image;
    run.mode = layer->blendMode();
    run.opacity = opacity;
    if (draw.useOrigin) {
        run.targetX = -draw.originX;
        run.targetY = -draw.originY;
    }
    std::int32_t shiftX = 0;
    std::int32_t shiftY = 0;
    if (draw.clipLayer) const_cast<Layer*>(draw.clipLayer)->offsetInt(&shiftX, &shiftY);
    bool drawn = false;
    if (LayerGroup* const group = layer->asGroup()) {
        GroupRenderRequest request = requestOf(draw);
        if (group->LayerGroup::isPassThrough()) {
            request.originX -= shiftX;
            request.originY -= shiftY;
            request.originIsSet = request.originIsSet || draw.clipLayer;
            request.target = Ref<ilImage>(image);
            request.ops = &target;
            return bool(group->renderGroup(request));
        }
        const Ref<ilImage> cache = group->renderGroup(request);
        if (cache) {
            run.source = cache.get();
            run.sourceX = -shiftX;
            run.sourceY = -shiftY;
            const bool all = !npc::keepsUnderNothing(run.mode);
            const ilTile area = all ? draw.box : intersection(boundsOf(cache.get()), draw.box);
            drawn = blend(run, boxesOf(draw, area));
        }
    } else {
        layer->prepareForRender(nullptr, false);
        layer->refreshClip();
        drawn = blendPlain(*layer, run, boxesOf(draw, areaOf(*layer, draw.box)), shiftX, shiftY);
    }
    if (draw.refreshThumbnail) static_cast<void>(layer->thumbnailImage(nullptr, 0, 0));
    return drawn;
}

// All that layers draw, what holds them back included; beyond it each is of one colour.
ilTile reachOf(Layer& layer) {
    ilTile reach;
    if (LayerGroup* const group = layer.asGroup()) {
        group->eachMember([&](Layer& member) { reach = unionOf(reach, reachOf(member)); });
        return reach;
    }
    layer.refreshClip();
    layer.contentBounds(reach, true);
    std::int32_t x = 0;
    std::int32_t y = 0;
    layer.offsetInt(&x, &y);
    for (ilImage* const image : {layer.stencilImage(), layer.clipImage()})
        reach = unionOf(reach, moved(boundsOf(image), x, y));
    return reach;
}

ilTile toPages(const ilTile& box) {
    constexpr std::int32_t side = 128;
    const std::int32_t x = box.x & ~(side - 1);
    const std::int32_t y = box.y & ~(side - 1);
    return flatTile(x, y, ((box.endX() + side - 1) & ~(side - 1)) - x,
                    ((box.endY() + side - 1) & ~(side - 1)) - y);
}

void drawAll(std::span<Layer* const> layers, std::span<const float> opacities, ilSmartImage& image,
             const ilTile& box) {
    const Ref<SoftPaintOps> painter(new SoftPaintOps(&image));
    LayerDraw draw;
    draw.box = box;
    for (std::size_t n = 0; n < layers.size() && n < opacities.size(); ++n)
        drawAs(layers[n], *painter, draw, opacities[n]);
}

}  // namespace

bool isDrawable(Layer& layer) {
    return layer.isDrawable();
}

bool drawLayer(StackParts& stack, Layer* layer, PaintOps& target, const LayerDraw& draw) {
    static_cast<void>(stack);
    if (!layer) return false;
    return drawAs(layer, target, draw,
                  draw.ownOpacity ? layer->opacity() : layer->inheritedOpacity());
}

bool drawLayers(StackParts& stack, std::span<Layer* const> layers, PaintOps& target,
                const LayerDraw& draw) {
    const auto isPlain = [](Layer* layer) { return !layer->asGroup(); };
    bool drawn = false;
    while (!layers.empty()) {
        const auto end = std::find_if_not(layers.begin(), layers.end(), isPlain);
        const auto plain = static_cast<std::size_t>(end - layers.begin());
        if (plain == 0) {
            drawn = drawLayer(stack, layers.front(), target, draw) || drawn;
            layers = layers.subspan(1);
            continue;
        }
        LayerDraw together = draw;
        if (plain < layers.size()) together.blockDone = {};
        drawn = drawBlocks(stack, layers.first(plain), target, together) || drawn;
        layers = layers.subspan(plain);
    }
    return drawn;
}

void gatherVisible(const LayerChain& chain, float opacity, std::vector<Layer*>& layers,
                   std::vector<float>& opacities) {
    for (Layer* layer = chain.first.get(); layer; layer = layer->next.get()) {
        if (!layer->visible() || layer->role() != LayerRole::Paint) continue;
        const float product = opacity * layer->opacity();
        if (product <= invisibleEnough) continue;
        LayerGroup* const group = layer->asGroup();
        if (group && group->LayerGroup::isPassThrough()) {
            gatherVisible(group->children(), product, layers, opacities);
            continue;
        }
        layers.push_back(layer);
        opacities.push_back(product);
    }
}

Ref<ilSmartImage> composeLayers(StackParts& stack, std::span<Layer* const> layers,
                                std::span<const float> opacities) {
    static_cast<void>(stack);
    ilTile reach;
    bool covers = false;
    for (Layer* layer : layers) {
        layer->prepareForRender(nullptr, false);
        reach = unionOf(reach, reachOf(*layer));
        covers = covers || coversGround(*layer);
    }
    reach.nz = 1;
    Ref<ilSmartImage> image = blankImage();
    if (covers) {
        // One pixel of what lies beyond tells the fill; within, nothing shows that.
        reach = toPages(reach);
        const std::int32_t x = reach.endX();
        const std::int32_t y = reach.y;
        drawAll(layers, opacities, *image, flatTile(x, y, 1, 1));
        const std::uint32_t beyond = image->getPixel(x, y);
        image = Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4, &beyond)));
        image->fillRegion(reach, ilPixel(TypeUChar, 4));
    }
    if (!reach.isEmpty()) drawAll(layers, opacities, *image, reach);
    image->shrinkBounds();
    return image;
}

Ref<ilSmartImage> compositeByFlags(StackParts& stack, std::uint32_t flagMask) {
    const Ref<ilSmartImage> image = blankImage();
    const Ref<SoftPaintOps> painter(new SoftPaintOps(image.get()));
    LayerDraw draw;
    draw.box = stack.plane.canvasBounds;
    draw.flagMask = flagMask & ~wantsBackground;
    if ((flagMask & wantsBackground) != 0) {
        const std::uint32_t pixel = backgroundPixel(stack);
        image->fillRegion(draw.box, ilPixel(TypeUChar, 4, &pixel));
    }
    for (Layer* layer = stack.list.first.get(); layer; layer = layer->next.get())
        if (layer->isDrawable()) drawLayer(stack, layer, *painter, draw);
    return image;
}

Ref<ilSmartImage> composeToImage(StackParts& stack, std::int32_t id, std::int32_t* x,
                                 std::int32_t* y, bool clipToCanvas, bool withSelection,
                                 bool withOpacity) {
    Layer* const layer = layerById(stack, id);
    if (!layer) return {};
    layer->prepareForRender(nullptr, false);
    layer->refreshClip();
    ilTile box;
    layer->contentBounds(box, true);
    if (coversGround(*layer)) box = unionOf(box, stack.plane.canvasBounds);
    if (clipToCanvas) box = intersection(box, stack.plane.canvasBounds);
    const Ref<ilSmartImage> image(
        new ilSmartImage(ilPixel(TypeUChar, layer->role() == LayerRole::Paint ? 4 : 1)));
    if (x) *x = box.x;
    if (y) *y = box.y;
    if (box.isEmpty()) return image;
    std::int32_t layerX = 0;
    std::int32_t layerY = 0;
    layer->offsetInt(&layerX, &layerY);
    BlendRun run;
    run.target = image.get();
    run.mode = static_cast<std::int32_t>(BlendModeId::Replace);
    run.targetX = box.x;
    run.targetY = box.y;
    run.opacity = withOpacity ? layer->inheritedOpacity() : 1.0f;
    std::int32_t placeX = 0;
    std::int32_t placeY = 0;
    Ref<ilImage> source;
    if (LayerGroup* const group = layer->asGroup()) {
        GroupRenderRequest request;
        request.tag = 0;
        request.tileBox = box;
        source = group->LayerGroup::isPassThrough() ? Ref<ilImage>() : group->renderGroup(request);
        if (!source) {
            std::vector<Layer*> layers;
            std::vector<float> opacities;
            gatherVisible(group->children(), 1.0f, layers, opacities);
            source = composeLayers(stack, layers, opacities);
        }
    } else {
        source = layer->wetComposite(flatTile(box.x - layerX, box.y - layerY, box.nx, box.ny),
                                     &placeX, &placeY);
    }
    if (!source) return image;
    run.source = source.get();
    run.sourceX = placeX;
    run.sourceY = placeY;
    blend(run, box);
    ilImage* const mask = stack.selection.paintMask.get();
    if (withSelection && stack.selection.active && mask) {
        const Ref<SoftPaintOps> painter(new SoftPaintOps(image.get()));
        painter->setBlendFactors(pairKeepInside.source, pairKeepInside.target);
        painter->rect_copy(0, 0, box.nx, box.ny, PaintSource::of(mask, box.x, box.y), PaintFormat(),
                           0, 1.0f, 1.0f);
    }
    return image;
}

std::uint32_t backgroundPixel(const StackParts& stack) {
    const auto& color =
        stack.useGlobalBackground ? documentSwitches().globalBackground : stack.backgroundColor;
    std::uint32_t word = 0;
    std::memcpy(&word, pixelOf(color, 4).data(), sizeof word);
    return word;
}

}  // namespace brushwork::stack
