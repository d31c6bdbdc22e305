#include "document/layer/prepared_blend.h"

#include <algorithm>
#include <cstring>

#include "blending/modes/blender_registry.h"
#include "brushwork/blend_mode_table.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

std::shared_ptr<npc::GenericBlender> blenderOf(std::int32_t mode, float opacity) {
    auto blender = npc::createBlender(mode);
    if (blender) blender->setOpacity(opacity);
    return blender;
}

bool isPage(const ilTile& box) {
    return ((box.x | box.y) & (pageSide - 1)) == 0 && box.nx == pageSide && box.ny == pageSide;
}

}  // namespace

ilSmartImage* plainColor(Layer& layer) {
    layer.prepareForRender(nullptr, false);
    layer.refreshClip();
    ilSmartImage* const color = layer.smartColor();
    const bool isPlain = color && color->channels() == 4 && !layer.wet().image &&
                         layer.role() == LayerRole::Paint && layer.isEmptyMask();
    return isPlain ? color : nullptr;
}

PreparedBlend::PreparedBlend(const Placed& source, std::int32_t mode, float opacity)
    : image_(source.image),
      source_{source.image, source.x, source.y, npc::keepsUnderNothing(mode)},
      hidesAll_(mode == static_cast<std::int32_t>(BlendModeId::Normal) && opacity >= 1.0f),
      blender_(blenderOf(mode, opacity)) {}

ilTile PreparedBlend::inSource(const ilTile& part) const {
    return moved(part, -source_.x, -source_.y);
}

// What is known of a page spares a look at it, and one pixel spares most others a look at all of
// them; those that pass keep the answer.
bool PreparedBlend::hides(const ilTile& part) {
    if (!blender_ || !hidesAll_) return false;
    const ilTile own = inSource(part);
    if (~image_->lookAtPage(own.x, own.y).filledCells != 0) return false;
    return image_->getPixel(own.x, own.y) >> 24 == 255 &&
           image_->alphaClassOf(own, true) == AlphaClass::Opaque;
}

bool PreparedBlend::putOn(npc::BlendPile& pile, const ilTile& part) {
    return blender_ && pile.add(*blender_, source_, part);
}

bool PreparedBlend::shareWith(ilImage& image, const ilTile& part) {
    ilSmartImage* const target = ilSmartImage::from(&image);
    const ilTile from = inSource(part);
    if (!target || target->channels() != image_->channels() || !isPage(from) || !isPage(part))
        return false;
    return target->copyRegion(part, *image_, from.x, from.y, 0, nullptr,
                              CopyDirection::FromOther) == ImageOk;
}

}  // namespace brushwork
