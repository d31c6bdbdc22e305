// LayerGroup: a layer that holds layers.
//
// With a blend mode of its own it draws its children into a cache image, which is then blended like
// a plain layer's. Pass-through (a new group's mode) it has no image: its children are drawn
// straight into the caller's target, as if they stood in the list around. Groups nest.
#pragma once

#include "document/layer/group_render_request.h"
#include "document/layer/layer.h"
#include "document/layer/layer_chain.h"
#include "image/chain/il_page_tile_manager.h"

namespace brushwork {

class LayerGroup : public Layer, public LayerParent {
  public:
    explicit LayerGroup(const znString::IString& name);
    // Copies the children one after another with clone.
    LayerGroup(const LayerGroup& other);

  protected:
    ~LayerGroup() override;
    // Its members are told, too.
    void aboutToRelease() override;
    // Of a pass-through group its members together, where they have pixels.
    [[nodiscard]] Ref<ilImage> thumbnailSource() override;

  public:
    [[nodiscard]] LayerGroup* asGroup() override { return this; }

    // LayerParent
    [[nodiscard]] Layer& asLayer() override { return *this; }
    [[nodiscard]] bool isPassThrough() const override { return blendMode() == passThroughMode; }
    void markCache(const ilTile* box) override;
    void eachMember(const std::function<void(Layer&)>& visit) override;

    // Of Layer's slots.
    void offset(float* x, float* y) override;
    void offsetInt(std::int32_t* x, std::int32_t* y) override;
    void setOffset(float x, float y) override;
    void setTransform(const TransformRecord& record, float x, float y) override;
    void setOffsetInt(const TransformRecord& record, std::int32_t x, std::int32_t y) override;
    void contentBounds(ilTile& out, bool placed) override;
    void endTransform(bool keepPreview) override;
    void beginTransform(std::int32_t mode, std::int32_t arg, bool up) override;
    bool affineResample(const TransformRecord& record, SampleMode quality) override;
    bool previewAffine(const TransformRecord& record, SampleMode quality) override;
    [[nodiscard]] Ref<ilImage> effectiveImage(const ilTile* box, ilImage* stencilOverride,
                                              bool refreshClip, bool inherited) override;
    [[nodiscard]] ilImage* colorImageRef() override;
    void setOpacity(float opacity) override;
    void setPivot(float x, float y, bool set) override;
    void setVisible(bool visible, std::int32_t arg = 1) override;
    void setLocked(bool locked, bool force = false) override;
    void setBlendMode(std::int32_t mode) override;
    void setLabelColor(std::uint32_t label) override;
    [[nodiscard]] Ref<Layer> clone() override;
    [[nodiscard]] Ref<Layer> duplicate() override;
    void collapseImages() override;
    [[nodiscard]] Ref<ilImage> renderTransformed(const TransformRecord& record, std::int32_t* x,
                                                 std::int32_t* y) override;
    void refreshViewLevels(std::int32_t renderTag) override;

    // Beside the slots.
    [[nodiscard]] const LayerChain& children() const { return children_; }
    [[nodiscard]] Layer* firstChild() const { return children_.first.get(); }
    [[nodiscard]] Layer* lastChild() const { return children_.last; }
    // 0: the bottom; -2: above `reference`; else above the child of that number, or on top.
    void insertChild(Layer& layer, std::int32_t at, Layer* reference = nullptr,
                     bool belowMatching = false);
    // True if it was a child. Its neighbours and parent are cleared and it has been touched.
    bool removeChild(Layer& layer);
    [[nodiscard]] std::int32_t childCount(bool recursive) const;
    [[nodiscard]] std::int32_t indexOf(std::int32_t id, bool recursive) const;
    [[nodiscard]] Layer* childAt(std::int32_t index, bool recursive) const;
    [[nodiscard]] Layer* childById(std::int32_t id, bool recursive) const;
    // Scales the members, at any depth, about the document's corner; false if one couldn't be.
    bool scaleInto(float scale, SampleMode mode);
    // Drops children and cache; a pass-through group of that name.
    void resetGroup(const znString::IString& name);

    // The host's open state.
    [[nodiscard]] bool expanded() const { return expanded_; }
    void setExpanded(bool expanded) { expanded_ = expanded; }

    // Draws the group: see group_render.h. The image to blend with its corner at (0, 0) of the
    // document; for a pass-through group the request's target, null without one.
    [[nodiscard]] Ref<ilImage> renderGroup(GroupRenderRequest request);
    [[nodiscard]] bool cacheDirty() const { return cacheDirty_; }
    [[nodiscard]] const ilPageTileManager& dirtyTiles() const { return dirtyTiles_; }
    [[nodiscard]] bool needsRender(std::int32_t renderTag) const;

  private:
    friend class GroupRender;  // group_render
    void propagatePassThrough();
    [[nodiscard]] bool canLock(bool force) const;

    LayerChain children_;
    bool expanded_ = false;
    std::int32_t cacheTag_ = 0;
    ilPageTileManager dirtyTiles_;
    bool cacheDirty_ = true;
    // What requests had asked for when all was drawn: beyond it members that cover the ground, too,
    // haven't been.
    ilTile drawnGround_;
};

}  // namespace brushwork
