// The clip image: how much of a paint layer the stencil layers above it let through.
#include <vector>

#include "blending/paint/soft_paint_ops.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/layer_fade.h"

namespace brushwork {
namespace {

Ref<ilSmartImage> grayImage(std::uint8_t fill) {
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 1, &fill)));
}

// A stencil layer, in the pixels of the layer that it clips.
struct ClipPart {
    ilImage* image = nullptr;
    std::int32_t x = 0, y = 0;  // of the image's pixel (0, 0)
    ilTile box;
    bool coversAll = false;  // it holds back beyond its box, too
    float opacity = 1.0f;
};

// Whether groups around are shown doesn't count: they hide the clipped layer as well, and it is to
// be ready when they are shown again.
bool takesPart(Layer& layer) {
    return layer.isStencil() && layer.opacity() > invisibleEnough && layer.visible() &&
           layer.stencilActive();
}

std::vector<ClipPart> partsAbove(Layer& base) {
    std::vector<ClipPart> parts;
    std::int32_t baseX = 0;
    std::int32_t baseY = 0;
    base.offsetInt(&baseX, &baseY);
    for (Layer* layer = base.next.get(); layer && layer->role() != LayerRole::Paint;
         layer = layer->next.get()) {
        if (!takesPart(*layer)) continue;
        ClipPart part;
        part.image = layer->colorImageRef();
        if (!part.image || part.image->channels() != 1) continue;
        layer->tighten();
        layer->offsetInt(&part.x, &part.y);
        part.x -= baseX;
        part.y -= baseY;
        part.box = moved(boundsOf(part.image), part.x, part.y);
        part.coversAll = part.image->fill().data()[0] != 0;
        part.opacity = layer->opacity();
        parts.push_back(part);
    }
    return parts;
}

// What holds back, over each other from the bottom up, as far as `content` and the parts reach.
class ClipSum {
  public:
    ClipSum() : sum_(grayImage(0)), painter_(new SoftPaintOps(sum_.get())) {
        painter_->setBlendFactors(pairCopy.source, pairCopy.target);
    }

    void add(const ClipPart& part, const ilTile& all) {
        const ilTile area = part.coversAll ? all : part.box;
        if (area.isEmpty()) return;
        const Ref<ilImage> faded = part.opacity < opaqueEnough ? fadedPart(part, area) : nullptr;
        ilImage* const source = faded ? faded.get() : part.image;
        painter_->rect_copy(area.x, area.y, area.nx, area.ny,
                            PaintSource::of(source, area.x - part.x, area.y - part.y), {}, 0, 1.0f,
                            1.0f);
        painter_->setBlendFactors(pairOver.source, pairOver.target);
    }

    // 255 less the sum; null where nothing holds back.
    [[nodiscard]] Ref<ilSmartImage> complement() {
        sum_->shrinkBounds();
        const ilTile box = boundsOf(sum_.get());
        if (box.isEmpty()) return {};
        Ref<ilSmartImage> rest = grayImage(255);
        rest->copyRegion(box, *sum_, box.x, box.y, 0, nullptr, CopyDirection::FromOther);
        const Ref<SoftPaintOps> painter(new SoftPaintOps(rest.get()));
        painter->setBlendFactors(pairInvert.source, pairInvert.target);
        constexpr std::uint8_t full = 255;
        painter->fillRegion(box, ilPixel(TypeUChar, 1, &full));
        rest->shrinkBounds(true);
        return boundsOf(rest.get()).isEmpty() ? nullptr : rest;
    }

  private:
    // At the image's own place.
    static Ref<ilImage> fadedPart(const ClipPart& part, const ilTile& area) {
        const Ref<ilSmartImage> scratch = grayImage(0);
        const ilTile box = moved(area, -part.x, -part.y);
        scratch->copyRegion(box, *part.image, box.x, box.y, 0, nullptr, CopyDirection::FromOther);
        const Ref<SoftPaintOps> painter(new SoftPaintOps(scratch.get()));
        painter->setBlendFactors(pairKeepInside.source, pairKeepInside.target);
        fade(*painter, box, part.opacity);
        return scratch;
    }

    Ref<ilSmartImage> sum_;
    Ref<SoftPaintOps> painter_;
};

// In `reach` if a part covers all.
Ref<ilImage> clipOf(Layer& base, ilTile& reach) {
    reach = ilTile();
    const std::vector<ClipPart> parts = partsAbove(base);
    if (parts.empty()) return {};
    ilTile all;
    base.contentBounds(all, false);
    for (const ClipPart& part : parts) all = unionOf(all, part.box);
    for (const ClipPart& part : parts)
        if (part.coversAll) reach = all.isEmpty() ? flatTile(0, 0, 1, 1) : all;
    ClipSum sum;
    for (const ClipPart& part : parts) sum.add(part, all);
    return sum.complement();
}

}  // namespace

void Layer::refreshClip() {
    Layer& base = *baseLayer();
    if (base.role_ != LayerRole::Paint || base.asGroup()) return;
    LayerImages& images = base.images_;
    if (!images.clipDirty && !images.clipReach.isEmpty()) {
        ilTile content;
        base.contentBounds(content, false);
        images.clipDirty = !content.isEmpty() && !images.clipReach.contains(content);
    }
    if (!images.clipDirty) return;
    images.clipDirty = false;
    images.clip = clipOf(base, images.clipReach);
}

}  // namespace brushwork
