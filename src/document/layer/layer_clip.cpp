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

// A stencil layer, in the pixels of the layer that it clips. What its fill holds back is held back
// everywhere beyond its box.
struct ClipPart {
    ilImage* image = nullptr;
    std::int32_t x = 0, y = 0;  // of the image's pixel (0, 0)
    ilTile box;
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
        part.opacity = layer->opacity();
        parts.push_back(part);
    }
    return parts;
}

// What holds back in a box, over each other from the bottom up.
class ClipSum {
  public:
    explicit ClipSum(const ilTile& box)
        : box_(box), sum_(grayImage(0)), painter_(new SoftPaintOps(sum_.get())) {
        painter_->setBlendFactors(pairCopy.source, pairCopy.target);
    }

    void add(const ClipPart& part) {
        const bool holdsAll = part.image->fill().data()[0] != 0;
        const ilTile area = holdsAll ? box_ : intersection(part.box, box_);
        if (area.isEmpty()) return;
        const Ref<ilImage> faded = part.opacity < opaqueEnough ? fadedPart(part, area) : nullptr;
        ilImage* const source = faded ? faded.get() : part.image;
        painter_->rect_copy(area.x, area.y, area.nx, area.ny,
                            PaintSource::of(source, area.x - part.x, area.y - part.y), {}, 0, 1.0f,
                            1.0f);
        painter_->setBlendFactors(pairOver.source, pairOver.target);
    }

    [[nodiscard]] const Ref<ilSmartImage>& image() const { return sum_; }

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

    ilTile box_;
    Ref<ilSmartImage> sum_;
    Ref<SoftPaintOps> painter_;
};

Ref<ilSmartImage> sumOf(const std::vector<ClipPart>& parts, const ilTile& box) {
    ClipSum sum(box);
    for (const ClipPart& part : parts) sum.add(part);
    return sum.image();
}

// 255 less what the parts hold back, its fill beyond them; null where they let all through.
Ref<ilImage> clipOf(Layer& base) {
    const std::vector<ClipPart> parts = partsAbove(base);
    ilTile box;
    for (const ClipPart& part : parts) box = unionOf(box, part.box);
    const ilTile outside = flatTile(box.endX(), box.endY(), 1, 1);
    const std::uint32_t beyond = sumOf(parts, outside)->getPixel(outside.x, outside.y) & 255;
    const Ref<ilSmartImage> sum = sumOf(parts, box);
    if (beyond == 0) {
        sum->shrinkBounds();
        box = boundsOf(sum.get());
    }
    const Ref<ilSmartImage> rest = grayImage(static_cast<std::uint8_t>(255 - beyond));
    if (!box.isEmpty()) {
        rest->copyRegion(box, *sum, box.x, box.y, 0, nullptr, CopyDirection::FromOther);
        const Ref<SoftPaintOps> painter(new SoftPaintOps(rest.get()));
        painter->setBlendFactors(pairInvert.source, pairInvert.target);
        constexpr std::uint8_t full = 255;
        painter->fillRegion(box, ilPixel(TypeUChar, 1, &full));
        rest->shrinkBounds(true);
    }
    return beyond == 0 && boundsOf(rest.get()).isEmpty() ? nullptr : rest;
}

}  // namespace

void Layer::refreshClip() {
    Layer& base = *baseLayer();
    if (base.role_ != LayerRole::Paint || base.asGroup()) return;
    LayerImages& images = base.images_;
    if (!images.clipDirty) return;
    images.clipDirty = false;
    images.clip = clipOf(base);
}

}  // namespace brushwork
