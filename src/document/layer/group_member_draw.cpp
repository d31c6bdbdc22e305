#include "document/layer/group_member_draw.h"

#include "blending/modes/blender_registry.h"
#include "blending/paint/soft_paint_ops.h"
#include "document/layer/changed_area.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/prepared_blend.h"

namespace brushwork {
namespace {

// What a run blends from, and where its pixel (0, 0) lies.
struct MemberSource {
    Ref<ilImage> image;
    std::int32_t x = 0, y = 0;
};

Ref<ilSmartImage> blankColors() {
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
}

// Cells of the area, cut to a box where only that has something to blend.
npc::TileSet partsOf(const ilPageTileManager& area, const ilTile& box, bool cut) {
    npc::TileSet parts;
    for (const auto& [cell, tile] : area.cells()) {
        const ilTile part = cut ? intersection(tile, box) : tile;
        if (!part.isEmpty()) parts.insert(part);
    }
    return parts;
}

ilTile boundsOfParts(const npc::TileSet& parts) {
    ilTile box;
    for (const ilTile& part : parts) box = unionOf(box, part);
    return box;
}

// Drawing what lies between scattered parts would cost more than drawing them one by one.
bool isScattered(const npc::TileSet& parts) {
    std::int64_t covered = 0;
    for (const ilTile& part : parts) covered += std::int64_t{part.nx} * part.ny;
    const ilTile box = boundsOfParts(parts);
    return std::int64_t{box.nx} * box.ny > 2 * covered;
}

// One channel as what it stands for: white of that coverage.
Ref<ilImage> expanded(ilImage& image, const ilTile& box) {
    const Ref<ilSmartImage> colors = blankColors();
    constexpr std::uint8_t white[4] = {255, 255, 255, 255};
    colors->fillRegion(box, ilPixel(TypeUChar, 4, white));
    const Ref<PaintOps> painter(new SoftPaintOps(colors.get()));
    painter->setBlendFactors(pairKeepInside.source, pairKeepInside.target);
    painter->rect_copy(box.x, box.y, box.nx, box.ny, PaintSource::of(&image, box.x, box.y), {}, 0,
                       1.0f, 1.0f);
    return colors;
}

// The layer with the masked stroke in progress, in a box of its own pixels.
Ref<ilImage> withMaskedStroke(Layer& layer, const GroupRenderRequest& request, const ilTile& box) {
    Layer::Drawing drawing = layer.drawing(box, 1.0f);
    const Ref<ilImage> stroke(request.selectionMask->imageForRead(box));
    if (stroke) (request.showSelection ? drawing.stencil : drawing.color) = stroke.get();
    Ref<ilImage> color(drawing.color);
    if (color && color->channels() == 1 && drawing.role == LayerRole::Paint) {
        color = expanded(*color, box);
        drawing.color = color.get();
    }
    const Ref<ilSmartImage> image = blankColors();
    const Ref<PaintOps> painter(new SoftPaintOps(image.get()));
    layer.drawSteps(*painter, drawing);
    return image;
}

bool hasMaskedStroke(Layer& layer, const GroupRenderRequest& request) {
    return request.selectionMask && request.activeLayer == &layer;
}

// The layer in a box of the document.
MemberSource sourceOf(Layer& layer, const GroupRenderRequest& request, const ilTile& box) {
    MemberSource source;
    layer.offsetInt(&source.x, &source.y);
    const ilTile own = moved(box, -source.x, -source.y);
    if (hasMaskedStroke(layer, request)) {
        source.image = withMaskedStroke(layer, request, own);
        return source;
    }
    source.image = layer.wetComposite(own, &source.x, &source.y);
    if (source.image && source.image->channels() == 1)
        source.image = expanded(*source.image, moved(box, -source.x, -source.y));
    return source;
}

void blend(npc::GenericBlender& blender, const MemberSource& source, const npc::TileSet& parts) {
    if (!source.image) return;
    blender.setSource(source.image.get(), source.x, source.y, false);
    blender.run(parts);
}

std::shared_ptr<npc::GenericBlender> blenderFor(std::int32_t mode, const MemberTarget& target,
                                                float opacity) {
    auto blender = npc::createBlender(mode);
    if (!blender) return blender;
    blender->setDestination(&target.image, target.x, target.y);
    blender->setOpacity(opacity);
    blender->setThreaded(true);
    return blender;
}

}  // namespace

void MemberPile::put(ilSmartImage& color, Layer& layer, float opacity, const npc::TileSet& parts) {
    PreparedBlend::Placed source{&color, 0, 0};
    layer.offsetInt(&source.x, &source.y);
    PreparedBlend& blend = blends_.emplace_back(source, layer.blendMode(), opacity);
    for (const ilTile& part : parts) blend.putOn(pile_, part);
}

void MemberPile::run() {
    pile_.run();
    blends_.clear();
}

void drawMember(Layer& layer, const MemberTarget& target, float opacity, MemberPile& pile) {
    const auto blender = blenderFor(layer.blendMode(), target, opacity);
    if (!blender) return;
    layer.prepareForRender(nullptr, false);
    const Ref<ilImage> color(layer.colorImageRef());
    if (!color) return;
    ilTile box;
    layer.contentBounds(box, true);
    const bool stroke = hasMaskedStroke(layer, target.request);
    const bool cut = !stroke && npc::keepsUnderNothing(layer.blendMode()) && !coversGround(*color);
    const npc::TileSet parts = partsOf(target.area, box, cut);
    if (parts.empty()) return;
    const bool paints = layer.role() == LayerRole::Paint;
    if (paints && !stroke)
        if (ilSmartImage* const plain = plainColor(layer))
            return pile.put(*plain, layer, opacity, parts);
    pile.run();
    if (paints) layer.refreshClip();
    if (!isScattered(parts)) {
        blend(*blender, sourceOf(layer, target.request, boundsOfParts(parts)), parts);
        return;
    }
    for (const ilTile& part : parts)
        blend(*blender, sourceOf(layer, target.request, part), npc::TileSet{part});
}

void drawMemberCache(Layer& group, ilImage& cache, const MemberTarget& target, float opacity) {
    const auto blender = blenderFor(group.blendMode(), target, opacity);
    if (!blender) return;
    const npc::TileSet parts =
        partsOf(target.area, boundsOf(&cache), npc::keepsUnderNothing(group.blendMode()));
    if (!parts.empty()) blend(*blender, {Ref<ilImage>(&cache), 0, 0}, parts);
}

}  // namespace brushwork
