// LayerStack: one canvas of a document: its layers, the active one, the selection, the view, and
// what brings all of it to the screen.
//
//     const Ref<LayerStack> stack(new LayerStack(value1, value2, 1024, 768));
//     stack->addLayer({});
//     PaintOps* const painter = stack->paintOps();
//     ... paint ...
//     stack->accumulateDirty(box, *stack->activeLayer());
//     stack->present();
//
// One object to its callers; each concern has a room stack_ of its own, named behind each group of
// members, where members are explained. Ids and indexes: stack_lookup.h. Only the document's
// thread enters. Nothing throws; a wrong id or index does nothing.
#pragma once

#include "brushwork/resource.h"
#include "document/stack/stack_active.h"
#include "document/stack/stack_attributes.h"
#include "document/stack/stack_caches.h"
#include "document/stack/stack_compose.h"
#include "document/stack/stack_copy.h"
#include "document/stack/stack_delete.h"
#include "document/stack/stack_display.h"
#include "document/stack/stack_draw.h"
#include "document/stack/stack_duplicate.h"
#include "document/stack/stack_fill.h"
#include "document/stack/stack_insert.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_merge.h"
#include "document/stack/stack_move.h"
#include "document/stack/stack_outline.h"
#include "document/stack/stack_paint_mask.h"
#include "document/stack/stack_painters.h"
#include "document/stack/stack_pixels.h"
#include "document/stack/stack_scaled.h"
#include "document/stack/stack_selection.h"
#include "document/stack/stack_shrink_wrap.h"
#include "document/stack/stack_transform.h"
#include "document/stack/stack_wand.h"

namespace brushwork {

class LayerStack : public Resource {
  public:
    // Asks the host for a canvas by the two values; with neither a host's surface nor a size of its
    // own the stack has no plane and is never shown.
    LayerStack(std::intptr_t value1, std::intptr_t value2, std::int32_t width, std::int32_t height);
    // For undo: see stack_copy.h.
    LayerStack(const LayerStack& other);
    LayerStack& operator=(const LayerStack&) = delete;

  protected:
    ~LayerStack() override;

  public:
    // For the layers above that act on parts of a stack: undo and the facade.
    [[nodiscard]] StackParts& parts() { return parts_; }
    [[nodiscard]] const StackParts& parts() const { return parts_; }

    [[nodiscard]] Layer* activeLayer() const { return parts_.active.layer.get(); }
    [[nodiscard]] std::int32_t activeId() const {
        return parts_.active.layer ? parts_.active.layer->id() : noLayer;
    }
    [[nodiscard]] Layer* selectionLayer() const { return parts_.selection.layer.get(); }
    [[nodiscard]] std::int32_t layerCount() const { return parts_.list.count; }
    [[nodiscard]] std::int32_t width() const { return parts_.plane.canvasBounds.nx; }
    [[nodiscard]] std::int32_t height() const { return parts_.plane.canvasBounds.ny; }
    [[nodiscard]] ilSPMemoryImg* imagePlane() const { return parts_.plane.image.get(); }
    [[nodiscard]] ilImage* paintMask() const { return parts_.selection.paintMask.get(); }
    [[nodiscard]] HostCanvas canvas() const { return parts_.plane.canvas; }
    [[nodiscard]] std::int32_t generation() const { return parts_.damage.generation; }
    [[nodiscard]] bool inTransform() const { return parts_.transform.open; }
    [[nodiscard]] bool isFloodFilling() const { return parts_.fill.live; }
    [[nodiscard]] znString::IString layerName(std::int32_t id) const;
    // Composing stops until as many unlocks.
    void lockCompositing() { ++parts_.damage.lockCount; }
    void unlockCompositing() { --parts_.damage.lockCount; }
    void copyStackFrom(const LayerStack& other) { stack::copyStackFrom(parts_, other.parts_); }
    void collapseImages() { stack::collapseImages(parts_); }
    bool scaleFrom(const LayerStack& other, float scale, SampleMode mode) {
        return stack::scaleFrom(parts_, other.parts_, scale, mode);
    }
    // Pixels or attributes of the layer changed.
    void noteChange(Layer* layer) { stack::noteChange(parts_, layer); }
    bool drawLayer(Layer* layer, PaintOps& target, const stack::LayerDraw& draw) {
        return stack::drawLayer(parts_, layer, target, draw);
    }

    // Finding layers: stack_lookup.h.
    [[nodiscard]] Layer* layerById(std::int32_t id) const;
    [[nodiscard]] Layer* layerByIndex(std::int32_t index, bool members,
                                      LayerGroup* group = nullptr) const;
    [[nodiscard]] std::int32_t indexOf(const Layer* layer, bool members,
                                       LayerGroup* group = nullptr) const;
    [[nodiscard]] std::int32_t indexOfId(std::int32_t id, bool members,
                                         LayerGroup* group = nullptr) const;
    [[nodiscard]] std::int32_t idOfIndex(std::int32_t index, bool members,
                                         LayerGroup* group = nullptr) const;
    [[nodiscard]] std::int32_t layerCountTotal(bool members) const;
    [[nodiscard]] std::int32_t activeIndex(bool members);
    [[nodiscard]] std::int32_t groupDepth(std::int32_t index, bool members) const;
    [[nodiscard]] std::int32_t groupOf(std::int32_t id) const;
    [[nodiscard]] std::int32_t groupMemberCount(std::int32_t id) const;
    [[nodiscard]] std::int32_t groupChild(std::int32_t id, std::int32_t index) const;
    [[nodiscard]] std::int32_t maxGroupDepth(std::int32_t id) const;
    [[nodiscard]] LayerGroup* groupById(std::int32_t id) const;
    [[nodiscard]] bool isNameUnique(const znString::IString& name) const;
    [[nodiscard]] znString::IString uniqueName(const znString::IString& name) const;

    // What the tools paint with: stack_painters.h.
    PaintOps* paintOps();
    void setPaintOnStencil(bool on);
    const ilTile& canvasBounds();

    // What is stale: stack_invalidate.h.
    void invalidateRect(const ilTile& box);
    void accumulateDirty(const ilTile& box, Layer& layer);
    void addPaintBounds(const ilTile& box);

    // What restricts painting: stack_paint_mask.h.
    void rebuildPaintMask();
    [[nodiscard]] bool hasSelection() const;

    // Drawing layers: stack_draw.h.
    [[nodiscard]] Ref<ilSmartImage> composeLayers(std::span<Layer* const> layers,
                                                  std::span<const float> opacities);
    [[nodiscard]] Ref<ilSmartImage> compositeByFlags(std::uint32_t flagMask);
    [[nodiscard]] Ref<ilSmartImage> composeToImage(std::int32_t id, std::int32_t* x,
                                                   std::int32_t* y, bool clipToCanvas,
                                                   bool withSelection, bool withOpacity);

    // Composites around the active layer: stack_caches.h.
    void refreshBelow();
    void refreshAbove(bool refreshMask);
    void freshenCaches();

    // compose: stack_compose.h.
    void compositeNow();

    // To the screen: stack_display.h.
    void present();
    void refreshDisplay(bool rebuildCaches);
    void redrawAll();
    ilImage* renderDisplay(bool toOffscreen);
    [[nodiscard]] Ref<ilSPMemoryImg> flatImage();
    void imagePlaneRecreate(bool presentIt);
    void resizePlane(std::int32_t width, std::int32_t height);
    void setCanvas(HostCanvas canvas);
    void setView(const TransformRecord& record);
    [[nodiscard]] ViewPoint viewToLayer(ViewPoint view, std::int32_t id) const;
    [[nodiscard]] ViewPoint layerToView(ViewPoint layer, std::int32_t id) const;
    [[nodiscard]] std::vector<ViewPoint> visiblePolygon(const ilTile& viewport) const;

    // Attributes: stack_attributes.h.
    void setVisible(std::int32_t id, bool visible, std::int32_t arg = 1);
    void setOpacity(std::int32_t id, float opacity);
    void setBlendMode(std::int32_t id, std::int32_t mode);
    void setLocked(std::int32_t id, bool locked);
    void setLabelColor(std::int32_t id, std::uint32_t label);
    void setEnabled(std::int32_t id, bool enabled, std::int32_t arg = 1);
    void setStencilActive(std::int32_t id, bool active);
    void setName(std::int32_t id, const znString::IString& name);
    void setPosition(std::int32_t id, float x, float y, bool presentIt, bool unrestricted);
    void setBackground(const LayerColor& color);
    void setMaskColor(const LayerColor& color);
    void setMaskOpacity(float opacity);
    void absorbOrigin();
    [[nodiscard]] bool layerState(std::int32_t id, stack::LayerStateRecord& state) const;

    // Transforming several layers: stack_transform.h.
    bool beginTransform(std::span<const std::int32_t> ids, std::int32_t mode, std::int32_t arg,
                        bool keep);
    void updateTransform(const TransformRecord& record);
    void endTransform(bool keep);
    void closeTransform();
    void setTransformPivot(float x, float y);

    // The active layer: stack_active.h.
    void setActiveIndex(std::int32_t index, bool refresh, bool force, bool members);

    // Into the list: stack_insert.h.
    std::int32_t addLayer(const stack::NewLayer& layer);
    std::int32_t addGroup(const znString::IString& name, std::int32_t at, bool makeActive);
    void insertLayer(Layer& layer, bool belowMatching, std::int32_t at, LayerGroup* group,
                     bool inheritState);
    void unlinkLayer(Layer& layer);

    // Out of the list: stack_delete.h.
    void deleteLayer(Layer& layer);
    [[nodiscard]] bool canDelete(std::span<const std::int32_t> ids) const;
    bool deleteLayers(std::span<const std::int32_t> ids, bool dryRun, bool presentIt);
    void clearLayers();

    // Order and groups: stack_move.h.
    [[nodiscard]] bool moveCheck(std::span<const std::int32_t> ids, std::int32_t toIndex,
                                 std::int32_t group) const;
    bool moveLayers(std::span<const std::int32_t> ids, const stack::LayerMove& move);
    std::int32_t makeGroupFrom(std::span<const std::int32_t> ids, bool makeActive);
    bool ungroup(std::span<const std::int32_t> ids, bool keepGroup);

    // Merging: stack_merge.h.
    bool mergeDown(std::int32_t id, std::int32_t idBelow);
    bool mergeVisible(bool dryRun, std::int32_t at, bool presentIt);
    bool flatten(bool visibleOnly);
    bool flattenGroup(std::int32_t id, bool dryRun, std::int32_t at, bool presentIt);

    // Selection: stack_selection.h.
    void resetSelection();
    void selectAll(const ilTile& box);
    void selectImage(ilImage& image);
    void clearSelection();
    void invertSelection();
    void addRectToSelection(const ilTile& box);
    void addImageToSelection(ilImage& image, float x, float y);
    void subtractRectFromSelection(const ilTile& box);
    void subtractImageFromSelection(ilImage& image, float x, float y);
    void setSelectionImage(ilImage* image, float x, float y);
    void selectionBounds(bool& empty, ilTile& box);
    void makeSelectionActive();
    void moveSelection(float dx, float dy);
    void setSelectionColor(const LayerColor& color, float opacity);

    // Copies of layers: stack_duplicate.h.
    std::int32_t duplicateLayer();
    bool duplicateLayers(std::span<const std::int32_t> ids, std::vector<std::int32_t>& newIds);
    std::int32_t newTemporaryLayer();

    // Live fill: stack_fill.h.
    bool floodFill(float x, float y, const LayerColor& color, float tolerance, std::int32_t id);
    bool continueFill(float tolerance);
    void endFill();
    [[nodiscard]] bool sampleFill(float x, float y, std::int32_t id, std::uint32_t& pixel);

    // Pixels of a layer: stack_pixels.h.
    void clearLayer(bool presentIt);
    void clearLayerContents(std::int32_t id, const ilTile& box, bool presentIt);
    void clearRegion(const ilTile& box, std::int32_t id);
    void fillLayer(const LayerColor& color, bool presentIt);
    void fillWithImage(ilImage& image, bool presentIt, bool keepBlendMode);
    void invertMask(std::int32_t id);
    void flipCanvas(bool horizontal, bool vertical, std::int32_t id);
    void flipLayer(bool horizontal, bool vertical, std::int32_t id, bool bakeFirst);
    [[nodiscard]] std::int32_t pickLayer(float x, float y, float alphaThreshold, bool skipShapes);
    void checkerFill(std::int32_t size);

    // A halo around what is drawn: stack_shrink_wrap.h.
    void shrinkWrap(const LayerColor& color, float blur, float tolerance);

    // Selecting by colour and polygon: stack_wand.h.
    bool magicWand(float x, float y, float tolerance, const stack::WandParams& params, bool replace,
                   std::int32_t layerId);
    void polygonSelect(std::span<const ViewPoint> points);

    // The marching outline: stack_outline.h.
    [[nodiscard]] ilImage* selectionOutline();
    void stepSelectionOutline();

    // Whole stacks: stack_copy.h.
    void dump();

  private:
    StackParts parts_;
};

}  // namespace brushwork
