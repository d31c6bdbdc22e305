#include "document/layer/group_render.h"

#include "document/layer/changed_area.h"
#include "document/layer/group_member_draw.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

void addCells(const ilPageTileManager& cells, ilPageTileManager& area) {
    for (const auto& [cell, tile] : cells.cells())
        if (!tile.isEmpty()) area.addTile(tile);
}

void addRequested(const GroupRenderRequest& request, ilPageTileManager& area) {
    if (request.tiles)
        addCells(*request.tiles, area);
    else
        area.addTile(request.tileBox);
}

void addContent(LayerGroup& group, ilPageTileManager& area) {
    for (Layer* child = group.firstChild(); child; child = child->next.get()) {
        if (LayerGroup* const inner = child->asGroup()) {
            addContent(*inner, area);
            continue;
        }
        ilTile box;
        child->contentBounds(box, true);
        area.addTile(box);
    }
}

bool takesPart(Layer& child, const GroupRenderRequest& request) {
    if ((child.flags() & request.flagMask) == 0 || !(child.opacity() > invisibleEnough))
        return false;
    if (child.role() != LayerRole::Paint && &child != request.activeLayer) return false;
    return child.isVisibleInTree(nullptr, true);
}

void drawMembers(LayerGroup& group, const MemberTarget& target) {
    MemberPile pile(target);
    for (Layer* child = group.firstChild(); child; child = child->next.get()) {
        if (!takesPart(*child, target.request)) continue;
        GroupRenderRequest inner = target.request;
        inner.tiles = &target.area;
        const float opacity = group.isPassThrough()
                                  ? child->inheritedOpacity() * target.request.opacity
                                  : child->opacity();
        LayerGroup* const childGroup = child->asGroup();
        if (!childGroup) {
            drawMember(*child, target, opacity, pile);
            continue;
        }
        pile.run();
        if (childGroup->isPassThrough()) {
            inner.target = Ref<ilImage>(&target.image);
            inner.originIsSet = true;
            inner.originX = -target.x;
            inner.originY = -target.y;
            if (!group.isPassThrough()) inner.opacity = 1.0f;
            static_cast<void>(childGroup->renderGroup(inner));
        } else {
            inner.target.reset();
            inner.ops = nullptr;
            inner.originIsSet = false;
            inner.opacity = 1.0f;
            if (const Ref<ilImage> cache = childGroup->renderGroup(inner))
                drawMemberCache(*child, *cache, target, opacity);
        }
    }
    pile.run();
}

}  // namespace

Ref<ilImage> GroupRender::run(LayerGroup& group, GroupRenderRequest request) {
    return group.isPassThrough() ? drawThrough(group, request) : drawCache(group, request);
}

Ref<ilImage> GroupRender::drawThrough(LayerGroup& group, const GroupRenderRequest& request) {
    Ref<ilImage> target = request.target;
    if (!target && request.ops) target = Ref<ilImage>(request.ops->image());
    if (!target) return {};
    // No more than was asked for: elsewhere the target has the members already. Tiles that are
    // added to another record may come out larger there.
    ilPageTileManager box;
    if (!request.tiles) box.addTile(request.tileBox);
    const ilPageTileManager& area = request.tiles ? *request.tiles : box;
    drawMembers(group, {request, area, *target, request.originIsSet ? -request.originX : 0,
                        request.originIsSet ? -request.originY : 0});
    group.cacheTag_ = request.tag;
    group.dirtyTiles_.clear();
    group.cacheDirty_ = false;
    return target;
}

Ref<ilImage> GroupRender::drawCache(LayerGroup& group, const GroupRenderRequest& request) {
    const ilTile asked = request.tiles ? request.tiles->bounds() : request.tileBox;
    const bool leavesGround = !asked.isEmpty() && !group.drawnGround_.contains(asked);
    if (!group.images_.color || group.cacheTag_ != request.tag ||
        (leavesGround && coversGround(group)))
        group.cacheDirty_ = true;
    const bool hasStroke = request.selectionMask && request.activeLayer;
    const Ref<ilImage> cache(group.colorImageRef());
    if (!hasStroke && !group.needsRender(request.tag)) return cache;

    ilPageTileManager area;
    addCells(group.dirtyTiles_, area);
    if (group.cacheDirty_ || hasStroke) addRequested(request, area);
    if (group.cacheDirty_) {
        area.addTile(boundsOf(cache.get()));
        addContent(group, area);
        group.drawnGround_ = asked;
    }
    for (const auto& [cell, tile] : area.cells())
        if (!tile.isEmpty()) cache->fillRegion(tile, cache->fill());
    if (group.cacheDirty_)
        if (ilSmartImage* const smart = ilSmartImage::from(cache.get())) smart->shrinkToPages();
    drawMembers(group, {request, area, *cache});
    group.cacheTag_ = request.tag;
    group.dirtyTiles_.clear();
    group.cacheDirty_ = false;
    // What was reduced from the cache shows it as it was.
    group.view_.source.reset();
    group.view_.levels.clear();
    return cache;
}

}  // namespace brushwork
