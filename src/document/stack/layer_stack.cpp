#include "document/stack/layer_stack.h"

#include "foundation/host/host_canvas.h"

namespace brushwork {

LayerStack::LayerStack(std::intptr_t value1, std::intptr_t value2, std::int32_t width,
                       std::int32_t height) {
    parts_.plane.canvas = hostCreateCanvas(value1, value2);
    hostCanvasCreated(parts_.plane.canvas);
    if (!parts_.plane.wrapSurface()) parts_.plane.makeOwn(width, height);
    parts_.painters.scratchImage = Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
    parts_.painters.scratch =
        Ref<SoftPaintOps>(new SoftPaintOps(parts_.painters.scratchImage.get()));
    stack::makeSelectionLayer(parts_);
    stack::startSelectionTimer(parts_);
}

LayerStack::LayerStack(const LayerStack& other) : Resource() {
    stack::copyParts(parts_, other.parts_);
}

LayerStack::~LayerStack() {
    stack::stopSelectionTimer(parts_);
}

znString::IString LayerStack::layerName(std::int32_t id) const {
    const Layer* const layer = stack::layerById(parts_, id);
    return layer ? layer->name() : znString::IString();
}

Layer* LayerStack::layerById(std::int32_t id) const {
    return stack::layerById(parts_, id);
}

Layer* LayerStack::layerByIndex(std::int32_t index, bool members, LayerGroup* group) const {
    return stack::layerByIndex(parts_, index, members, group);
}

std::int32_t LayerStack::indexOf(const Layer* layer, bool members, LayerGroup* group) const {
    return stack::indexOf(parts_, layer, members, group);
}

std::int32_t LayerStack::indexOfId(std::int32_t id, bool members, LayerGroup* group) const {
    return stack::indexOfId(parts_, id, members, group);
}

std::int32_t LayerStack::idOfIndex(std::int32_t index, bool members, LayerGroup* group) const {
    return stack::idOfIndex(parts_, index, members, group);
}

std::int32_t LayerStack::layerCountTotal(bool members) const {
    return stack::layerCountTotal(parts_, members);
}

std::int32_t LayerStack::activeIndex(bool members) {
    return stack::activeIndex(parts_, members);
}

std::int32_t LayerStack::groupDepth(std::int32_t index, bool members) const {
    return stack::groupDepth(parts_, index, members);
}

std::int32_t LayerStack::groupOf(std::int32_t id) const {
    return stack::groupOf(parts_, id);
}

std::int32_t LayerStack::groupMemberCount(std::int32_t id) const {
    return stack::groupMemberCount(parts_, id);
}

std::int32_t LayerStack::groupChild(std::int32_t id, std::int32_t index) const {
    return stack::groupChild(parts_, id, index);
}

std::int32_t LayerStack::maxGroupDepth(std::int32_t id) const {
    return stack::maxGroupDepth(parts_, id);
}

LayerGroup* LayerStack::groupById(std::int32_t id) const {
    return stack::groupById(parts_, id);
}

bool LayerStack::isNameUnique(const znString::IString& name) const {
    return stack::isNameUnique(parts_, name);
}

znString::IString LayerStack::uniqueName(const znString::IString& name) const {
    return stack::uniqueName(parts_, name);
}

PaintOps* LayerStack::paintOps() {
    return stack::paintOps(parts_);
}

void LayerStack::setPaintOnStencil(bool on) {
    stack::setPaintOnStencil(parts_, on);
}

const ilTile& LayerStack::canvasBounds() {
    return stack::canvasBounds(parts_);
}

void LayerStack::invalidateRect(const ilTile& box) {
    stack::invalidateRect(parts_, box);
}

void LayerStack::accumulateDirty(const ilTile& box, Layer& layer) {
    stack::accumulateDirty(parts_, box, layer);
}

void LayerStack::addPaintBounds(const ilTile& box) {
    stack::addPaintBounds(parts_, box);
}

void LayerStack::rebuildPaintMask() {
    stack::rebuildPaintMask(parts_);
}

bool LayerStack::hasSelection() const {
    return stack::hasSelection(parts_);
}

Ref<ilSmartImage> LayerStack::composeLayers(std::span<Layer* const> layers,
                                            std::span<const float> opacities) {
    return stack::composeLayers(parts_, layers, opacities);
}

Ref<ilSmartImage> LayerStack::compositeByFlags(std::uint32_t flagMask) {
    return stack::compositeByFlags(parts_, flagMask);
}

Ref<ilSmartImage> LayerStack::composeToImage(std::int32_t id, std::int32_t* x, std::int32_t* y,
                                             bool clipToCanvas, bool withSelection,
                                             bool withOpacity) {
    return stack::composeToImage(parts_, id, x, y, clipToCanvas, withSelection, withOpacity);
}

void LayerStack::refreshBelow() {
    stack::refreshBelow(parts_);
}

void LayerStack::refreshAbove(bool refreshMask) {
    stack::refreshAbove(parts_, refreshMask);
}

void LayerStack::freshenCaches() {
    stack::freshenCaches(parts_);
}

void LayerStack::compositeNow() {
    stack::compositeNow(parts_);
}

void LayerStack::present() {
    stack::present(parts_);
}

void LayerStack::refreshDisplay(bool rebuildCaches) {
    stack::refreshDisplay(parts_, rebuildCaches);
}

void LayerStack::redrawAll() {
    stack::redrawAll(parts_);
}

ilImage* LayerStack::renderDisplay(bool toOffscreen) {
    return stack::renderDisplay(parts_, toOffscreen);
}

Ref<ilSPMemoryImg> LayerStack::flatImage() {
    return stack::flatImage(parts_);
}

void LayerStack::imagePlaneRecreate(bool presentIt) {
    stack::imagePlaneRecreate(parts_, presentIt);
}

void LayerStack::resizePlane(std::int32_t width, std::int32_t height) {
    stack::resizePlane(parts_, width, height);
}

void LayerStack::setCanvas(HostCanvas canvas) {
    stack::setCanvas(parts_, canvas);
}

void LayerStack::setView(const TransformRecord& record) {
    stack::setView(parts_, record);
}

ViewPoint LayerStack::viewToLayer(ViewPoint view, std::int32_t id) const {
    return stack::viewToLayer(parts_, view, id);
}

ViewPoint LayerStack::layerToView(ViewPoint layer, std::int32_t id) const {
    return stack::layerToView(parts_, layer, id);
}

std::vector<ViewPoint> LayerStack::visiblePolygon(const ilTile& viewport) const {
    return stack::visiblePolygon(parts_, viewport);
}

void LayerStack::setVisible(std::int32_t id, bool visible, std::int32_t arg) {
    stack::setVisible(parts_, id, visible, arg);
}

void LayerStack::setOpacity(std::int32_t id, float opacity) {
    stack::setOpacity(parts_, id, opacity);
}

void LayerStack::setBlendMode(std::int32_t id, std::int32_t mode) {
    stack::setBlendMode(parts_, id, mode);
}

void LayerStack::setLocked(std::int32_t id, bool locked) {
    stack::setLocked(parts_, id, locked);
}

void LayerStack::setLabelColor(std::int32_t id, std::uint32_t label) {
    stack::setLabelColor(parts_, id, label);
}

void LayerStack::setEnabled(std::int32_t id, bool enabled, std::int32_t arg) {
    stack::setEnabled(parts_, id, enabled, arg);
}

void LayerStack::setStencilActive(std::int32_t id, bool active) {
    stack::setStencilActive(parts_, id, active);
}

void LayerStack::setName(std::int32_t id, const znString::IString& name) {
    stack::setName(parts_, id, name);
}

void LayerStack::setPosition(std::int32_t id, float x, float y, bool presentIt, bool unrestricted) {
    stack::setPosition(parts_, id, x, y, presentIt, unrestricted);
}

void LayerStack::setBackground(const LayerColor& color) {
    stack::setBackground(parts_, color);
}

void LayerStack::setMaskColor(const LayerColor& color) {
    stack::setMaskColor(parts_, color);
}

void LayerStack::setMaskOpacity(float opacity) {
    stack::setMaskOpacity(parts_, opacity);
}

void LayerStack::absorbOrigin() {
    stack::absorbOrigin(parts_);
}

bool LayerStack::layerState(std::int32_t id, stack::LayerStateRecord& state) const {
    return stack::layerState(parts_, id, state);
}

bool LayerStack::beginTransform(std::span<const std::int32_t> ids, std::int32_t mode,
                                std::int32_t arg, bool keep) {
    return stack::beginTransform(parts_, ids, mode, arg, keep);
}

void LayerStack::updateTransform(const TransformRecord& record) {
    stack::updateTransform(parts_, record);
}

void LayerStack::endTransform(bool keep) {
    stack::endTransform(parts_, keep);
}

void LayerStack::closeTransform() {
    stack::closeTransform(parts_);
}

void LayerStack::setTransformPivot(float x, float y) {
    stack::setTransformPivot(parts_, x, y);
}

void LayerStack::setActiveIndex(std::int32_t index, bool refresh, bool force, bool members) {
    stack::setActiveIndex(parts_, index, refresh, force, members);
}

std::int32_t LayerStack::addLayer(const stack::NewLayer& layer) {
    return stack::addLayer(parts_, layer);
}

std::int32_t LayerStack::addGroup(const znString::IString& name, std::int32_t at, bool makeActive) {
    return stack::addGroup(parts_, name, at, makeActive);
}

void LayerStack::insertLayer(Layer& layer, bool belowMatching, std::int32_t at, LayerGroup* group,
                             bool inheritState) {
    stack::insertLayer(parts_, layer, belowMatching, at, group, inheritState);
}

void LayerStack::unlinkLayer(Layer& layer) {
    stack::unlinkLayer(parts_, layer);
}

void LayerStack::deleteLayer(Layer& layer) {
    stack::deleteLayer(parts_, layer);
}

bool LayerStack::canDelete(std::span<const std::int32_t> ids) const {
    return stack::canDelete(parts_, ids);
}

bool LayerStack::deleteLayers(std::span<const std::int32_t> ids, bool dryRun, bool presentIt) {
    return stack::deleteLayers(parts_, ids, dryRun, presentIt);
}

void LayerStack::clearLayers() {
    stack::clearLayers(parts_);
}

bool LayerStack::moveCheck(std::span<const std::int32_t> ids, std::int32_t toIndex,
                           std::int32_t group) const {
    return stack::moveCheck(parts_, ids, toIndex, group);
}

bool LayerStack::moveLayers(std::span<const std::int32_t> ids, const stack::LayerMove& move) {
    return stack::moveLayers(parts_, ids, move);
}

std::int32_t LayerStack::makeGroupFrom(std::span<const std::int32_t> ids, bool makeActive) {
    return stack::makeGroupFrom(parts_, ids, makeActive);
}

bool LayerStack::ungroup(std::span<const std::int32_t> ids, bool keepGroup) {
    return stack::ungroup(parts_, ids, keepGroup);
}

bool LayerStack::mergeDown(std::int32_t id, std::int32_t idBelow) {
    return stack::mergeDown(parts_, id, idBelow);
}

bool LayerStack::mergeVisible(bool dryRun, std::int32_t at, bool presentIt) {
    return stack::mergeVisible(parts_, dryRun, at, presentIt);
}

bool LayerStack::flatten(bool visibleOnly) {
    return stack::flatten(parts_, visibleOnly);
}

bool LayerStack::flattenGroup(std::int32_t id, bool dryRun, std::int32_t at, bool presentIt) {
    return stack::flattenGroup(parts_, id, dryRun, at, presentIt);
}

void LayerStack::resetSelection() {
    stack::resetSelection(parts_);
}

void LayerStack::selectAll(const ilTile& box) {
    stack::selectAll(parts_, box);
}

void LayerStack::selectImage(ilImage& image) {
    stack::selectImage(parts_, image);
}

void LayerStack::clearSelection() {
    stack::clearSelection(parts_);
}

void LayerStack::invertSelection() {
    stack::invertSelection(parts_);
}

void LayerStack::addRectToSelection(const ilTile& box) {
    stack::addRectToSelection(parts_, box);
}

void LayerStack::addImageToSelection(ilImage& image, float x, float y) {
    stack::addImageToSelection(parts_, image, x, y);
}

void LayerStack::subtractRectFromSelection(const ilTile& box) {
    stack::subtractRectFromSelection(parts_, box);
}

void LayerStack::subtractImageFromSelection(ilImage& image, float x, float y) {
    stack::subtractImageFromSelection(parts_, image, x, y);
}

void LayerStack::setSelectionImage(ilImage* image, float x, float y) {
    stack::setSelectionImage(parts_, image, x, y);
}

void LayerStack::selectionBounds(bool& empty, ilTile& box) {
    stack::selectionBounds(parts_, empty, box);
}

void LayerStack::makeSelectionActive() {
    stack::makeSelectionActive(parts_);
}

void LayerStack::moveSelection(float dx, float dy) {
    stack::moveSelection(parts_, dx, dy);
}

void LayerStack::setSelectionColor(const LayerColor& color, float opacity) {
    stack::setSelectionColor(parts_, color, opacity);
}

std::int32_t LayerStack::duplicateLayer() {
    return stack::duplicateLayer(parts_);
}

bool LayerStack::duplicateLayers(std::span<const std::int32_t> ids,
                                 std::vector<std::int32_t>& newIds) {
    return stack::duplicateLayers(parts_, ids, newIds);
}

std::int32_t LayerStack::newTemporaryLayer() {
    return stack::newTemporaryLayer(parts_);
}

bool LayerStack::floodFill(float x, float y, const LayerColor& color, float tolerance,
                           std::int32_t id) {
    return stack::floodFill(parts_, x, y, color, tolerance, id);
}

bool LayerStack::continueFill(float tolerance) {
    return stack::continueFill(parts_, tolerance);
}

void LayerStack::endFill() {
    stack::endFill(parts_);
}

bool LayerStack::sampleFill(float x, float y, std::int32_t id, std::uint32_t& pixel) {
    return stack::sampleFill(parts_, x, y, id, pixel);
}

void LayerStack::clearLayer(bool presentIt) {
    stack::clearLayer(parts_, presentIt);
}

void LayerStack::clearLayerContents(std::int32_t id, const ilTile& box, bool presentIt) {
    stack::clearLayerContents(parts_, id, box, presentIt);
}

void LayerStack::clearRegion(const ilTile& box, std::int32_t id) {
    stack::clearRegion(parts_, box, id);
}

void LayerStack::fillLayer(const LayerColor& color, bool presentIt) {
    stack::fillLayer(parts_, color, presentIt);
}

void LayerStack::fillWithImage(ilImage& image, bool presentIt, bool keepBlendMode) {
    stack::fillWithImage(parts_, image, presentIt, keepBlendMode);
}

void LayerStack::invertMask(std::int32_t id) {
    stack::invertMask(parts_, id);
}

void LayerStack::flipCanvas(bool horizontal, bool vertical, std::int32_t id) {
    stack::flipCanvas(parts_, horizontal, vertical, id);
}

void LayerStack::flipLayer(bool horizontal, bool vertical, std::int32_t id, bool bakeFirst) {
    stack::flipLayer(parts_, horizontal, vertical, id, bakeFirst);
}

std::int32_t LayerStack::pickLayer(float x, float y, float alphaThreshold, bool skipShapes) {
    return stack::pickLayer(parts_, x, y, alphaThreshold, skipShapes);
}

void LayerStack::shrinkWrap(const LayerColor& color, float blur, float tolerance) {
    stack::shrinkWrap(parts_, color, blur, tolerance);
}

void LayerStack::checkerFill(std::int32_t size) {
    stack::checkerFill(parts_, size);
}

bool LayerStack::magicWand(float x, float y, float tolerance, const stack::WandParams& params,
                           bool replace, std::int32_t layerId) {
    return stack::magicWand(parts_, x, y, tolerance, params, replace, layerId);
}

void LayerStack::polygonSelect(std::span<const ViewPoint> points) {
    stack::polygonSelect(parts_, points);
}

ilImage* LayerStack::selectionOutline() {
    return stack::selectionOutline(parts_);
}

void LayerStack::stepSelectionOutline() {
    stack::stepSelectionOutline(parts_);
}

void LayerStack::dump() {
    stack::dump(parts_);
}

}  // namespace brushwork
