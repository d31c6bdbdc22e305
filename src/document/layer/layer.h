// Layer: one raster sheet of a document: its pixels, a stencil that attenuates them, the live paint
// of a stroke, a place, and the attributes by which it is shown.
//
//     const Ref<Layer> layer(new Layer(color, {}, LayerRole::Paint, Layer::plainFlags, 0, 0));
//     layer->setOpacity(0.5f);
//     layer->offsetInt(&x, &y);
//
// A LayerStack owns layers in a list linked through `next` and `previous`; groups own a list of
// their own. Attributes never touch pixels: they set marks. Boxes are in the layer's own pixels
// unless a comment says document. Only the document's thread enters.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "blending/paint/paint_ops.h"
#include "brushwork/i_string.h"
#include "brushwork/resource.h"
#include "document/layer/floating_transform.h"
#include "document/layer/layer_images.h"
#include "document/layer/layer_parent.h"
#include "document/layer/layer_place.h"
#include "document/layer/layer_text_obj.h"
#include "document/layer/layer_view.h"
#include "document/layer/thumbnail.h"
#include "document/layer/wet_buffers.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_sp_memory_img.h"
#include "image/work/quad_solver.h"

namespace brushwork {

class LayerGroup;

enum class LayerRole { Paint, Mask, Stencil };

// Drawn no less than fully, or not at all.
inline constexpr float opaqueEnough = 0.998f;
inline constexpr float invisibleEnough = 0.002f;
inline constexpr std::int32_t passThroughMode = 0xffff;

using LayerColor = std::array<float, 4>;  // red, green, blue, alpha, 0 to 1

class Layer : public Resource {
  public:
    enum Flag : std::uint32_t {
        Movable = 0x47,          // any of these bits
        KeptByFlatten = 0x02,    // flatten leaves the layer and makes it the active one
        HasText = 0x04,          // carries a text object
        CountsThumbnail = 0x20,  // is counted when the stack tells how many are out of date
        HoldsShapes = 0x100,
        FrozenThumbnail = 0x200,  // with a neighbour above and a thumbnail, that isn't rebuilt
    };
    static constexpr std::uint32_t plainFlags = 0xa1;

    // Images that aren't smart are logged and taken all the same. Without a stencil an empty one is
    // made. The layer takes the next id and, for its role, the next default name.
    Layer(ilImage* color, ilImage* stencil, LayerRole role, std::uint32_t flags, float x, float y);
    // The same under a name of its own: the default names aren't counted on.
    Layer(ilImage* color, ilImage* stencil, LayerRole role, std::uint32_t flags, float x, float y,
          const znString::IString& name);
    // Images that share all pages of the source's; the live paint is shared. A new id; the name and
    // changedFlag are the source's. Neighbours, parent, attachment and painter are not taken over,
    // and a floating transform is closed in the copy.
    Layer(const Layer& other);
    Layer& operator=(const Layer&) = delete;

  protected:
    ~Layer() override;

  public:
    // Slots 9 to 43, in this order.

    // Moves the image so that its box starts at (0, 0), and the layer by as much the other way.
    virtual void normalizeOrigin();
    // The offset, truncated toward zero.
    [[nodiscard]] virtual std::int32_t offsetXInt();
    [[nodiscard]] virtual std::int32_t offsetYInt();
    virtual void offset(float* x, float* y);
    virtual void offsetInt(std::int32_t* x, std::int32_t* y);
    virtual void setOffset(float x, float y);
    // Ignored for a layer that isn't movable.
    virtual void setTransform(const TransformRecord& record, float x, float y);
    virtual void setOffsetInt(const TransformRecord& record, std::int32_t x, std::int32_t y);
    // Box of the colour and the live paint; all zero without a colour image. `placed`: in document
    // coordinates, by the truncated offset.
    virtual void contentBounds(ilTile& out, bool placed);
    virtual void endTransform(bool keepPreview);
    // `up`: groups around open theirs, too.
    virtual void beginTransform(std::int32_t mode, std::int32_t arg, bool up);
    // Resamples colour and stencil so that the content's corners fall on the given ones (document
    // coordinates). False, with nothing changed, for a quad without area or without memory.
    virtual bool perspectiveWarp(const QuadCorners& corners, SampleMode quality);
    virtual bool affineResample(const TransformRecord& record, SampleMode quality);
    // The same into the preview images of an open floating transform.
    virtual bool previewPerspective(const QuadCorners& corners, SampleMode quality);
    virtual bool previewAffine(const TransformRecord& record, SampleMode quality);
    // Of a mask layer; no other.
    virtual void invertMask();
    // Draws colour, tint, opacity, stencil and clip into the shared temporary image and answers
    // that: valid until the next call on any layer. The box is the image's by default. An override
    // takes the stencil's place. `inherited`: opacity times that of the groups around.
    [[nodiscard]] virtual Ref<ilImage> renderEffective(const ilTile* box, ilImage* stencilOverride,
                                                       bool inherited);
    // The colour image itself where nothing attenuates it, else as renderEffective.
    [[nodiscard]] virtual Ref<ilImage> effectiveImage(const ilTile* box, ilImage* stencilOverride,
                                                      bool refreshClip, bool inherited);
    // Borrowed.
    [[nodiscard]] virtual ilImage* colorImageRef();
    virtual void setOpacity(float opacity);
    virtual void setPivot(float x, float y, bool set);
    virtual void setVisible(bool visible, std::int32_t arg = 1);
    // Only if forced, or the group around isn't locked: those around that lock it, too.
    virtual void setLocked(bool locked, bool force = false);
    // Pass-through becomes 0 unless this is a group.
    virtual void setBlendMode(std::int32_t mode);
    // Ignored at 8 and above.
    virtual void setLabelColor(std::uint32_t label);
    // A shape layer draws its shapes; others have nothing to do. `box` null: all.
    virtual void prepareForRender(const ilTile* box, bool force);
    [[nodiscard]] virtual bool isShapeRenderer();
    [[nodiscard]] virtual Ref<Layer> clone();
    // "Layer[%s] lh[%p] active[%d]\n" where the host asks for such logs.
    virtual void dump(bool active);
    // A new offset and image for a record, for this layer's `source`: from a reduced level where
    // allowed and good enough, else by affineResample. Answers the placed image; null without
    // memory.
    [[nodiscard]] virtual Ref<ilSmartImage> applyTransformRecord(ilSmartImage& source,
                                                                 const TransformRecord& record,
                                                                 float* x, float* y,
                                                                 bool preferReduced);
    // A copy that keeps the id.
    [[nodiscard]] virtual Ref<Layer> duplicate();
    // Collapses colour, stencil and clip.
    virtual void collapseImages();
    // The effective image placed by a record, cached; its corner goes to (x, y).
    [[nodiscard]] virtual Ref<ilImage> renderTransformed(const TransformRecord& record,
                                                         std::int32_t* x, std::int32_t* y);
    virtual void refreshViewLevels(std::int32_t tag);
    virtual void setViewTransform(const TransformRecord& record);

    // Of the list. Owned through `next`.
    Ref<Layer> next;
    Layer* previous = nullptr;
    LayerParent* parent = nullptr;  // the group around; null at the top level
    Ref<Resource> attachment;       // carried
    std::string tag;                // carried, and copied

    [[nodiscard]] std::int32_t id() const { return id_; }
    void setId(std::int32_t id) { id_ = id; }
    [[nodiscard]] std::uint32_t flags() const { return flags_; }
    void setFlags(std::uint32_t flags) { flags_ = flags; }
    [[nodiscard]] bool isMask() const { return role_ == LayerRole::Mask; }
    [[nodiscard]] bool isStencil() const { return role_ == LayerRole::Stencil; }
    [[nodiscard]] LayerRole role() const { return role_; }
    [[nodiscard]] bool holdsShapes() const { return (flags_ & HoldsShapes) != 0; }
    [[nodiscard]] virtual LayerGroup* asGroup() { return nullptr; }
    [[nodiscard]] const znString::IString& name() const { return name_; }
    void setName(const znString::IString& name) { name_ = name; }

    [[nodiscard]] float opacity() const { return opacity_; }
    [[nodiscard]] std::int32_t blendMode() const { return blendMode_; }
    [[nodiscard]] bool isPassThrough() const { return blendMode_ == passThroughMode; }
    [[nodiscard]] bool visible() const { return visible_; }
    [[nodiscard]] std::int32_t visibleArg() const { return visibleArg_; }
    [[nodiscard]] bool locked() const { return locked_; }
    [[nodiscard]] std::uint32_t labelColor() const { return labelColor_; }
    // The effect of a mask or of the selection.
    [[nodiscard]] bool enabled() const { return enabled_; }
    [[nodiscard]] std::int32_t enabledArg() const { return enabledArg_; }
    void setEnabled(bool enabled, std::int32_t arg = 1);
    [[nodiscard]] bool stencilActive() const { return stencilActive_; }
    void setStencilActive(bool active);
    [[nodiscard]] std::uint32_t blendFlags() const { return blendFlags_; }
    void setBlendFlags(std::uint32_t flags) { blendFlags_ = flags; }
    // The tint by which a mask or stencil layer is shown.
    [[nodiscard]] const LayerColor& overlayColor() const { return overlayColor_; }
    void setOverlayColor(const LayerColor& color);
    [[nodiscard]] float overlayOpacity() const { return overlayOpacity_; }
    void setOverlayOpacity(float opacity);
    [[nodiscard]] LayerTextObj* textObject() const { return textObject_.get(); }
    // Sets or clears HasText, too.
    void setTextObject(LayerTextObj* object);

    // Set by every change; read and cleared by the host.
    [[nodiscard]] bool takeHostState() { return std::exchange(hostState_, false); }
    [[nodiscard]] bool takeChangedFlag() { return std::exchange(changedFlag_, false); }
    [[nodiscard]] std::uint64_t changeCount() const { return view_.changeCount; }

    // On this layer and each group around: counts a change, and thumbnail and view are stale.
    void touch();
    // The clip image of the base layer (of a stencil) or of this one is out of date.
    void markClipDirty(bool dirty = true);
    // Marks the caches of the groups around: of each that isn't pass-through, as a whole or (box
    // not null, document coordinates) in the box. `self`: of this layer, too, if it is a group.
    void propagateChange(bool touchSelf, const ilTile* box = nullptr);

    // The first paint layer at or below this one in its list; this one if there is none.
    [[nodiscard]] Layer* baseLayer();
    // The next visible layer above; with `skipMasks` no mask.
    [[nodiscard]] Layer* nextClipLayer(bool skipMasks);
    [[nodiscard]] float inheritedOpacity();
    // Visible, and so are all groups around. `around` gets the latter alone.
    [[nodiscard]] bool isVisibleInTree(bool* around = nullptr, bool stopAtOpaqueGroup = false);
    // Neither mask nor stencil, visible in the tree, and opacity above invisibleEnough.
    [[nodiscard]] bool isDrawable();

    void pivot(float* x, float* y);
    [[nodiscard]] bool pivotSet() const { return place_.pivotSet; }
    void setOrigin(std::int32_t x, std::int32_t y);
    // Moves any layer, movable or not, along with the document; its origin becomes (0, 0).
    void absorbOrigin(std::int32_t x, std::int32_t y);
    [[nodiscard]] std::int32_t originX() const { return place_.originX; }
    [[nodiscard]] std::int32_t originY() const { return place_.originY; }

    // Pixels. Borrowed images.
    void setColorImage(ilImage* image);
    // One that isn't smart is logged and taken; null: an empty one is made.
    void setStencilImage(ilImage* image);
    [[nodiscard]] ilImage* stencilImage() const { return images_.stencil.get(); }
    [[nodiscard]] ilSmartImage* smartColor() { return ilSmartImage::from(colorImageRef()); }
    [[nodiscard]] ilSmartImage* smartStencil() { return ilSmartImage::from(images_.stencil.get()); }
    void ensureStencil();
    void clearStencil();
    void stencilOutAll();
    // Brings the clip image up to date on the base layer, if that is a paint layer.
    void refreshClip();
    [[nodiscard]] ilImage* clipImage() const { return images_.clip.get(); }
    [[nodiscard]] ilImage* sourceImage() const { return images_.source.get(); }
    void setSourceImage(ilImage* image) { images_.source = Ref<ilImage>(image); }
    [[nodiscard]] bool isEmptyMask();
    // Bounds of colour and stencil cut to their pixels.
    void tighten();
    void bakeStencil();
    void bakeClip();
    void bakeOpacity();
    void bakeOffset();
    void flipImage(bool horizontal, bool vertical);
    void rotateImage(bool other);
    [[nodiscard]] Ref<ilSmartImage> copyOfColor(std::int32_t margin);
    // Resamples about the document's corner: a place p goes to p * scale.
    bool scaleBy(float scale, SampleMode mode);

    // The live stroke.
    [[nodiscard]] const WetBuffers& wet() const { return wet_; }
    void setWet(ilImage* image, std::int32_t x, std::int32_t y);
    void setWetMask(ilImage* image, std::int32_t x, std::int32_t y);
    void setWetTexture(ilImage* image, std::int32_t x, std::int32_t y);
    void setWetBlend(std::int32_t mode) { wet_.blend = mode; }
    void setWetOpacity(float opacity) { wet_.opacity = opacity; }
    void setWetTextureBlend(std::int32_t mode) { wet_.textureBlend = mode; }
    void clearWet();
    // Blends the wet image into `target` (null: the colour image, or for a wet image of one channel
    // on a layer of four the stencil). Nothing without a wet image. The wet fields stay.
    void commitWet(ilImage* target = nullptr);
    // What shows the box (in the layer's pixels) as painted so far, live stroke, stencil, clip and
    // tint included, and where its pixel (0, 0) lies in the document: the truncated offset, by
    // either pointer unless null. The layer's opacity isn't in it: whoever blends it says so there.
    // The colour image itself where nothing is to be drawn over it, else a temporary one that holds
    // the box, valid until the next call on any layer. Colours unchanged.
    [[nodiscard]] Ref<ilImage> wetComposite(const ilTile& box, std::int32_t* x, std::int32_t* y);

    // Draws a layer's colour with tint, opacity, stencil and clip into a painter on a blank image,
    // whose pixel (0, 0) is the layer's. Any image may stand in for the colour or the stencil.
    struct Drawing {
        ilTile box;
        ilImage* color = nullptr;
        ilImage* stencil = nullptr;
        float opacity = 1.0f;
        LayerRole role = LayerRole::Paint;
        LayerColor overlayColor{};
        float overlayOpacity = 1.0f;
    };
    void drawSteps(PaintOps& target, const Drawing& drawing);
    // All of it in a new image, whatever the drawing's box. Where the colour covers what nobody has
    // painted, so does the image: its fill is what the steps make of that.
    [[nodiscard]] Ref<ilSmartImage> drawWhole(const Drawing& drawing);
    // As this layer draws itself at the moment, with `opacity` as its own.
    [[nodiscard]] Drawing drawing(const ilTile& box, float opacity);

    // A painter on the colour image, made when first asked for, re-targeted if the image changed.
    [[nodiscard]] PaintOps* paintOpsFor();
    // Scratch copies of colour and wet image, made when first asked for; level 0 is the image
    // itself. Null for a level outside 0 to mostLevels - 1 and without an image.
    static constexpr std::int32_t mostLevels = 64;
    [[nodiscard]] ilImage* levelImage(std::int32_t level);
    [[nodiscard]] ilImage* wetLevelImage(std::int32_t level);
    // The scratch copy of that level, if there is one, becomes the colour image.
    void renameImage(std::int32_t level);

    // Floating transform.
    [[nodiscard]] const FloatingTransform& transform() const { return transform_; }
    [[nodiscard]] bool inTransform() const { return transform_.open; }

    // Thumbnail: borrowed.
    [[nodiscard]] ilSPMemoryImg* thumbnailImage(const ilTile* box, std::int32_t x, std::int32_t y);
    [[nodiscard]] bool isThumbnailCurrent(const ilTile* box, std::int32_t x, std::int32_t y) const;
    void setThumbnailSize(std::int32_t width, std::int32_t height);
    [[nodiscard]] const Thumbnail& thumbnail() const { return thumbnail_; }
    void dropView();

  protected:
    // For derived classes: a plain layer's start without images.
    Layer(LayerRole role, std::uint32_t flags);

    // Its own pixels as they show, with the opacities around: what a thumbnail is reduced from
    // where the view's levels don't serve.
    [[nodiscard]] virtual Ref<ilImage> thumbnailSource();
    // Of a member, when its group goes.
    static void groupGoes(Layer& member) { member.aboutToRelease(); }

    LayerImages images_;
    WetBuffers wet_;
    FloatingTransform transform_;
    LayerPlace place_;
    LayerView view_;
    Thumbnail thumbnail_;

  private:
    friend class LayerAccess;  // the rooms that carry out this class's work

    // Whether drawing the box (null: anything) takes more than the colour and the opacity.
    [[nodiscard]] bool isAttenuated(const ilTile* box, ilImage* stencil);
    // Whether the clip image attenuates anything.
    [[nodiscard]] bool clips() const;
    [[nodiscard]] bool wetIsOnStencil();

    std::uint32_t flags_ = plainFlags;
    LayerRole role_ = LayerRole::Paint;
    std::int32_t id_ = -1;
    znString::IString name_;
    std::int32_t blendMode_ = 0;
    std::uint32_t labelColor_ = 0;
    float opacity_ = 1.0f;
    float overlayOpacity_ = 0.5f;
    LayerColor overlayColor_{1.0f, 0.0f, 0.0f, 1.0f};
    bool visible_ = true, enabled_ = true, stencilActive_ = true, locked_ = false;
    std::int32_t visibleArg_ = 1, enabledArg_ = 1;
    bool hostState_ = true, changedFlag_ = true;
    std::uint32_t blendFlags_ = 0;
    Ref<LayerTextObj> textObject_;
    Ref<PaintOps> paintOps_;
};

}  // namespace brushwork
