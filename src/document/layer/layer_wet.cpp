// The live stroke: its fields, its commit, and how the layer looks with it meanwhile.
#include "blending/modes/blender_registry.h"
#include "blending/paint/soft_paint_ops.h"
#include "document/layer/effective_scratch.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

bool isAbsent(ilSmartImage* wet, const ilTile& part) {
    std::uint32_t value = 1;
    return wet && wet->isSolid(part, value, false) && value == 0;
}

// The pages of a box on which there may be paint, in the layer's pixels. Others stay as they are,
// solid ones without memory.
npc::TileSet paintedParts(const WetBuffers& wet, const ilTile& box) {
    npc::TileSet parts;
    ilSmartImage* const smart = ilSmartImage::from(wet.image.get());
    const ilTile inside = moved(box, -wet.x, -wet.y);
    constexpr std::int32_t toPage = ~(pageSide - 1);
    for (std::int32_t y = inside.y & toPage; y < inside.endY(); y += pageSide)
        for (std::int32_t x = inside.x & toPage; x < inside.endX(); x += pageSide) {
            const ilTile part = intersection(flatTile(x, y, pageSide, pageSide), inside);
            if (!isAbsent(smart, part)) parts.insert(moved(part, wet.x, wet.y));
        }
    return parts;
}

// Whether the target shows the very page: what is the same needs no blending.
bool isSharedWith(ilSmartImage* target, const SmartPageRef& page, std::int32_t x, std::int32_t y) {
    SmartPageRef* const slot = target ? target->pages().findSlot(x, y) : nullptr;
    return slot && slot->get() == page.get();
}

// For the whole of a stroke: the same by what the wet image holds, so that a stroke costs what it
// touched, however far it went. A child of the target shows the target's own pixels elsewhere.
npc::TileSet heldParts(const WetBuffers& wet, ilSmartImage& image, ilSmartImage* target,
                       const ilTile& box) {
    npc::TileSet parts;
    const bool isChild = image.smartSource() != nullptr;
    const ilTile inside = moved(box, -wet.x, -wet.y);
    image.pages().eachPage([&](std::int32_t x, std::int32_t y, SmartPageRef& page) {
        const ilTile part = intersection(flatTile(x, y, pageSide, pageSide), inside);
        if (part.isEmpty()) return;
        if (isChild ? isSharedWith(target, page, x, y) : page->isSolid() && page->solid == 0)
            return;
        parts.insert(moved(part, wet.x, wet.y));
    });
    return parts;
}

// The wet image through its texture, at the layer's places.
Ref<ilImage> textured(const WetBuffers& wet, const npc::TileSet& parts) {
    const auto blender = npc::createBlender(BlendModeId::MaskMultiply);
    Ref<ilSmartImage> result(new ilSmartImage(ilPixel(TypeUChar, wet.image->channels())));
    blender->setDestination(result.get(), 0, 0);
    blender->setSource(wet.image.get(), wet.x, wet.y, false);
    blender->setMask(wet.texture.get(), wet.textureX, wet.textureY, false);
    blender->setThreaded(true);
    blender->run(parts);
    return result;
}

ilTile wetBounds(const WetBuffers& wet) {
    return moved(boundsOf(wet.image.get()), wet.x, wet.y);
}

// Blends what of the stroke lies in the box into the target, whose pixel (0, 0) is the layer's.
class WetRun {
  public:
    WetRun(const WetBuffers& wet, const ilTile& box)
        : wet_(wet), blender_(npc::createBlender(wet.blend)) {
        const ilTile area = intersection(box, wetBounds(wet));
        if (!blender_ || area.isEmpty()) return;
        if (npc::keepsUnderNothing(wet.blend))
            parts_ = paintedParts(wet, area);
        else
            parts_.insert(area);
    }

    // All of the stroke.
    WetRun(const WetBuffers& wet, ilImage& target)
        : wet_(wet), blender_(npc::createBlender(wet.blend)) {
        ilSmartImage* const image = ilSmartImage::from(wet.image.get());
        ilSmartImage* const under = ilSmartImage::from(&target);
        const ilTile area = wetBounds(wet);
        if (!blender_ || area.isEmpty()) return;
        const bool isOwnChild = image && under && image->smartSource() == under && wet.x == 0 &&
                                wet.y == 0 && wet.blend == static_cast<int>(BlendModeId::Replace);
        const bool isBlank = image && !image->source() && npc::keepsUnderNothing(wet.blend) &&
                             image->pages().solidValue() == 0;
        if (isOwnChild || isBlank)
            parts_ = heldParts(wet, *image, under, area);
        else
            parts_ = WetRun(wet, area).parts_;
    }

    [[nodiscard]] bool hasWork() const { return !parts_.empty(); }

    void into(ilImage& target, bool keepAlpha) {
        const bool hasTexture = wet_.texture && wet_.texture->channels() == 1;
        const Ref<ilImage> source = hasTexture ? textured(wet_, parts_) : wet_.image;
        blender_->setDestination(&target, 0, 0);
        blender_->setSource(source.get(), hasTexture ? 0 : wet_.x, hasTexture ? 0 : wet_.y, false);
        if (wet_.mask) blender_->setMask(wet_.mask.get(), wet_.maskX, wet_.maskY, false);
        blender_->setOpacity(wet_.opacity);
        blender_->setLockAlpha(keepAlpha);
        blender_->setThreaded(true);
        blender_->run(parts_);
    }

  private:
    const WetBuffers& wet_;
    std::shared_ptr<npc::GenericBlender> blender_;
    npc::TileSet parts_;
};

// The box of an image with the stroke over it.
Ref<ilSmartImage> painted(ilImage& image, const ilTile& box, WetRun& run, bool keepAlpha) {
    Ref<ilSmartImage> copy(new ilSmartImage(image.fill()));
    const ilTile part = intersection(box, boundsOf(&image));
    if (!part.isEmpty())
        copy->copyRegion(part, image, part.x, part.y, 0, nullptr, CopyDirection::FromOther);
    run.into(*copy, keepAlpha);
    return copy;
}

}  // namespace

void Layer::setWet(ilImage* image, std::int32_t x, std::int32_t y) {
    if (wet_.image != image) images_.wetLevels.clear();
    wet_.image = Ref<ilImage>(image);
    wet_.x = x;
    wet_.y = y;
}

void Layer::setWetMask(ilImage* image, std::int32_t x, std::int32_t y) {
    wet_.mask = Ref<ilImage>(image);
    wet_.maskX = x;
    wet_.maskY = y;
}

void Layer::setWetTexture(ilImage* image, std::int32_t x, std::int32_t y) {
    wet_.texture = Ref<ilImage>(image);
    wet_.textureX = x;
    wet_.textureY = y;
}

void Layer::clearWet() {
    setWet(nullptr, 0, 0);
    setWetMask(nullptr, 0, 0);
    setWetTexture(nullptr, 0, 0);
}

// A stroke of one channel on a layer of four is painted on the stencil.
bool Layer::wetIsOnStencil() {
    ilImage* const color = colorImageRef();
    return wet_.image && wet_.image->channels() == 1 && color && color->channels() == 4 &&
           images_.stencil;
}

void Layer::commitWet(ilImage* target) {
    if (!wet_.image) return;
    const Ref<ilImage> into(target             ? target
                            : wetIsOnStencil() ? images_.stencil.get()
                                               : colorImageRef());
    if (!into) return;
    WetRun run(wet_, *into);
    if (run.hasWork()) run.into(*into, blendFlags_ != 0);
    touch();
}

Ref<ilImage> Layer::wetComposite(const ilTile& box, std::int32_t* x, std::int32_t* y) {
    offsetInt(x, y);
    Ref<ilImage> color(colorImageRef());
    Ref<ilImage> stencil(images_.stencil);
    if (wet_.image && color) {
        Ref<ilImage>& under = wetIsOnStencil() ? stencil : color;
        WetRun run(wet_, box);
        if (run.hasWork()) under = painted(*under, box, run, blendFlags_ != 0);
    }
    if (role_ == LayerRole::Paint) refreshClip();
    if (!isAttenuated(&box, stencil.get())) return color;
    const Ref<ilSmartImage> scratch = newEffectiveScratch();
    Drawing steps = drawing(box, 1.0f);
    steps.color = color.get();
    steps.stencil = stencil.get();
    const Ref<SoftPaintOps> painter(new SoftPaintOps(scratch.get()));
    drawSteps(*painter, steps);
    return scratch;
}

}  // namespace brushwork
