#include "document/layer/layer_group.h"

#include <utility>

#include "blending/modes/blender_registry.h"
#include "document/layer/group_render.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

// So many cells aren't worth remembering one by one: what members hold is found faster.
constexpr std::size_t mostDirtyCells = 4096;

bool isVast(const ilTile& box) {
    constexpr std::int64_t side = 128;
    return (box.nx / side + 2) * (box.ny / side + 2) > std::int64_t{mostDirtyCells};
}

Ref<ilImage> blankImage() {
    return Ref<ilImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
}

// Both trees are alike.
void copyIds(const LayerGroup& from, LayerGroup& to) {
    to.setId(from.id());
    Layer* copy = to.firstChild();
    for (Layer* layer = from.firstChild(); layer && copy; layer = layer->next.get()) {
        copy->setId(layer->id());
        if (layer->asGroup() && copy->asGroup()) copyIds(*layer->asGroup(), *copy->asGroup());
        copy = copy->next.get();
    }
}

}  // namespace

LayerGroup::LayerGroup(const znString::IString& name) : Layer(LayerRole::Paint, plainFlags) {
    resetGroup(name);
}

LayerGroup::LayerGroup(const LayerGroup& other)
    : Layer(other), LayerParent(), expanded_(other.expanded_) {
    images_.color = blankImage();
    for (Layer* child = other.firstChild(); child; child = child->next.get()) {
        const Ref<Layer> copy = child->clone();
        copy->parent = this;
        children_.insertAbove(*copy, children_.last);
    }
}

LayerGroup::~LayerGroup() {
    for (Layer* child = firstChild(); child; child = child->next.get()) child->parent = nullptr;
}

void LayerGroup::aboutToRelease() {
    Layer::aboutToRelease();
    eachMember([](Layer& child) { groupGoes(child); });
}

void LayerGroup::resetGroup(const znString::IString& name) {
    for (Layer* child = firstChild(); child; child = child->next.get()) child->parent = nullptr;
    children_.clear();
    images_.color = blankImage();
    dirtyTiles_.clear();
    cacheDirty_ = true;
    setName(name);
    Layer::setBlendMode(passThroughMode);
}

void LayerGroup::markCache(const ilTile* box) {
    cacheDirty_ =
        cacheDirty_ || !box || isVast(*box) || dirtyTiles_.cells().size() > mostDirtyCells;
    // All of it is drawn anew, wherever.
    if (cacheDirty_)
        dirtyTiles_.clear();
    else
        dirtyTiles_.addTile(*box);
}

void LayerGroup::eachMember(const std::function<void(Layer&)>& visit) {
    for (Layer* child = firstChild(); child; child = child->next.get()) visit(*child);
}

// A group has no place of its own.
void LayerGroup::offset(float* x, float* y) {
    if (x) *x = 0.0f;
    if (y) *y = 0.0f;
}

void LayerGroup::offsetInt(std::int32_t* x, std::int32_t* y) {
    if (x) *x = 0;
    if (y) *y = 0;
}

void LayerGroup::setOffset(float, float) {}

void LayerGroup::setTransform(const TransformRecord&, float, float) {}

void LayerGroup::setOffsetInt(const TransformRecord&, std::int32_t, std::int32_t) {}

// What the members cover: the cache may be behind them.
void LayerGroup::contentBounds(ilTile& out, bool) {
    out = {};
    for (Layer* child = firstChild(); child; child = child->next.get()) {
        ilTile box;
        child->contentBounds(box, true);
        out = unionOf(out, box);
    }
}

// Members float; a group only remembers that some do.
void LayerGroup::beginTransform(std::int32_t mode, std::int32_t arg, bool up) {
    if (transform_.open) return;
    transform_.mode = mode;
    transform_.arg = arg;
    transform_.open = true;
    if (up && parent) parent->asLayer().beginTransform(mode, arg, up);
}

void LayerGroup::endTransform(bool keepPreview) {
    if (!transform_.open) return;
    transform_.open = false;
    if (parent) parent->asLayer().endTransform(keepPreview);
    if (!keepPreview) {
        dropView();
        view_.transform = TransformRecord();
    }
}

bool LayerGroup::affineResample(const TransformRecord&, SampleMode) {
    return false;
}

bool LayerGroup::previewAffine(const TransformRecord&, SampleMode) {
    return false;
}

Ref<ilImage> LayerGroup::effectiveImage(const ilTile*, ilImage*, bool, bool) {
    if (!isPassThrough() && needsRender(cacheTag_)) {
        GroupRenderRequest request;
        request.tag = cacheTag_;
        return renderGroup(std::move(request));
    }
    return Ref<ilImage>(colorImageRef());
}

ilImage* LayerGroup::colorImageRef() {
    if (!images_.color) {
        images_.color = blankImage();
        cacheDirty_ = true;
    }
    return images_.color.get();
}

Ref<ilImage> LayerGroup::thumbnailSource() {
    if (!isPassThrough()) return Layer::thumbnailSource();
    const Ref<ilSmartImage> picture(new ilSmartImage(ilPixel(TypeUChar, 4)));
    GroupRenderRequest request;
    request.tag = cacheTag_;
    request.target = picture;
    contentBounds(request.tileBox, true);
    static_cast<void>(renderGroup(std::move(request)));
    picture->shrinkBounds();
    return picture;
}

void LayerGroup::setOpacity(float opacity) {
    Layer::setOpacity(opacity);
    propagatePassThrough();
}

void LayerGroup::setPivot(float x, float y, bool set) {
    Layer::setPivot(x, y, set);
    eachMember([&](Layer& child) { child.setPivot(x, y, set); });
}

void LayerGroup::setVisible(bool visible, std::int32_t arg) {
    Layer::setVisible(visible, arg);
    propagatePassThrough();
}

bool LayerGroup::canLock(bool force) const {
    return force || !parent || !parent->asLayer().locked();
}

void LayerGroup::setLocked(bool locked, bool force) {
    if (!canLock(force)) return;
    Layer::setLocked(locked, true);
    eachMember([&](Layer& child) { child.setLocked(locked, true); });
}

void LayerGroup::setBlendMode(std::int32_t mode) {
    const bool wasPassThrough = isPassThrough();
    propagatePassThrough();
    Layer::setBlendMode(mode);
    if (isPassThrough() != wasPassThrough) {
        cacheDirty_ = true;
        touch();
    }
    propagatePassThrough();
}

void LayerGroup::setLabelColor(std::uint32_t label) {
    Layer::setLabelColor(label);
    eachMember([&](Layer& child) { child.setLabelColor(label); });
}

Ref<Layer> LayerGroup::clone() {
    return Ref<Layer>(new LayerGroup(*this));
}

Ref<Layer> LayerGroup::duplicate() {
    const Ref<LayerGroup> copy(new LayerGroup(*this));
    copyIds(*this, *copy);
    return copy;
}

void LayerGroup::collapseImages() {
    eachMember([](Layer& child) { child.collapseImages(); });
}

// A pass-through group's members, each by its own record, as they show together.
Ref<ilImage> LayerGroup::renderTransformed(const TransformRecord& record, std::int32_t* x,
                                           std::int32_t* y) {
    if (!isPassThrough()) {
        refreshViewLevels(cacheTag_);
        return Layer::renderTransformed(record, x, y);
    }
    if (x) *x = 0;
    if (y) *y = 0;
    Ref<ilImage> image = blankImage();
    eachMember([&](Layer& child) {
        if (!child.isDrawable()) return;
        std::int32_t childX = 0, childY = 0;
        const Ref<ilImage> placed = child.renderTransformed(record, &childX, &childY);
        const ilTile box = moved(boundsOf(placed.get()), childX, childY);
        const auto blender = npc::createBlender(child.isPassThrough() ? 0 : child.blendMode());
        if (box.isEmpty() || !blender) return;
        blender->setDestination(image.get(), 0, 0);
        blender->setSource(placed.get(), childX, childY, false);
        blender->setOpacity(child.isPassThrough() ? 1.0f : child.inheritedOpacity());
        blender->setThreaded(true);
        blender->run(box);
    });
    return image;
}

void LayerGroup::refreshViewLevels(std::int32_t renderTag) {
    if (!isPassThrough()) {
        if (cacheDirty_ || !dirtyTiles_.isEmpty()) {
            GroupRenderRequest request;
            request.tag = cacheTag_;
            // The answer is the cache, from which the levels come.
            static_cast<void>(renderGroup(std::move(request)));
            view_.source.reset();
            view_.levels.clear();
        }
    }
    Layer::refreshViewLevels(renderTag);
}

void LayerGroup::insertChild(Layer& layer, std::int32_t at, Layer* reference, bool belowMatching) {
    // Never into itself or what it holds.
    for (LayerParent* around = this; around; around = around->asLayer().parent)
        if (&around->asLayer() == &layer) return;
    const Ref<Layer> held(&layer);
    if (layer.parent == this) children_.remove(layer);
    Layer* below = at == -2 ? reference : at == 0 ? nullptr : children_.at(at, false);
    if (at != 0 && (!below || below->parent != this || below == &layer)) below = lastChild();
    if (belowMatching) below = LayerChain::pastAttached(below, layer);
    children_.insertAbove(layer, below);
    layer.parent = this;
    layer.propagateChange(true);
    layer.touch();
}

bool LayerGroup::removeChild(Layer& layer) {
    if (layer.parent != this) return false;
    const Ref<Layer> held(&layer);
    // While it still stands in the tree: what it leaves must be drawn anew.
    layer.propagateChange(true);
    layer.touch();
    children_.remove(layer);
    layer.parent = nullptr;
    return true;
}

std::int32_t LayerGroup::childCount(bool recursive) const {
    return children_.total(recursive);
}

std::int32_t LayerGroup::indexOf(std::int32_t id, bool recursive) const {
    const Layer* const layer = children_.byId(id, recursive);
    return layer ? children_.indexOf(*layer, recursive) : -1;
}

Layer* LayerGroup::childAt(std::int32_t index, bool recursive) const {
    return children_.at(index, recursive);
}

Layer* LayerGroup::childById(std::int32_t id, bool recursive) const {
    return children_.byId(id, recursive);
}

bool LayerGroup::scaleInto(float scale, SampleMode mode) {
    bool done = true;
    eachMember([&](Layer& child) {
        LayerGroup* const group = child.asGroup();
        done = (group ? group->scaleInto(scale, mode) : child.scaleBy(scale, mode)) && done;
    });
    return done;
}

// The members that show through this group take its opacity and visibility with them.
void LayerGroup::propagatePassThrough() {
    const bool all = isPassThrough();
    eachMember([all](Layer& child) {
        LayerGroup* const group = child.asGroup();
        if (!all && !(group && group->isPassThrough())) return;
        child.touch();
        if (group) group->propagatePassThrough();
    });
}

bool LayerGroup::needsRender(std::int32_t renderTag) const {
    return !images_.color || cacheTag_ != renderTag || cacheDirty_ || !dirtyTiles_.isEmpty();
}

Ref<ilImage> LayerGroup::renderGroup(GroupRenderRequest request) {
    return GroupRender::run(*this, std::move(request));
}

}  // namespace brushwork
