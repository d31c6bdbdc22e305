#include "brushwork/adjust_family.h"

#include "facade/guarded_edit.h"
#include "facade/undo_filing.h"
#include "image/filter/il_color_adjust_img.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {
namespace {

// The adjusted pixels, at the same box; null if nothing is to be changed.
Ref<ilColorAdjustImg> adjusted(ilImage& image, const ilTile& box, const ColorAdjustParm& parms) {
    const Ref<ilColorAdjustImg> work(new ilColorAdjustImg(box.nx, box.ny, 4));
    if (!work->data()) return {};
    work->copyRegion(work->box(), image, box.x, box.y, 0, nullptr, CopyDirection::FromOther);
    Ref<ToneAnalysis> slot;
    return work->apply(&parms, slot) ? work : Ref<ilColorAdjustImg>();
}

ilTile boundsOf(ilImage& image) {
    ilTile box = image.box();
    if (ilSmartImage* const smart = ilSmartImage::from(&image)) smart->bounds(box);
    return box;
}

bool adjustLayer(LayerStack& stack, const ColorAdjustParm& parms) {
    Layer* const layer = stack.activeLayer();
    ilSmartImage* const image = layer->smartColor();
    layer->tighten();
    const ilTile box = boundsOf(*image);
    if (box.isEmpty()) return false;
    const Ref<ilColorAdjustImg> work = adjusted(*image, box, parms);
    PaintOps* const painter = stack.paintOps();
    if (!work || !painter) return false;
    painter->beginAccess();
    painter->setBlendFactors(pairCopy.source, pairCopy.target);
    painter->drawImage(work.get(), box.x, box.y);
    painter->endAccess();
    layer->touch();
    stack.noteChange(layer);
    stack.accumulateDirty(box, *layer);
    stack.present();
    return true;
}

}  // namespace

bool AdjustFamily::colorAdjust(const ImageRef& image, const ColorAdjustParm& parms) {
    if (image) {
        const ilTile box = boundsOf(*image.image());
        if (image.channels() != 4 || box.isEmpty()) return false;
        const Ref<ilColorAdjustImg> work = adjusted(*image.image(), box, parms);
        return work && image.image()->copyRegion(box, *work, 0, 0, 0, nullptr,
                                                 CopyDirection::FromOther) == ImageOk;
    }
    LayerStack* const before = state_.current();
    Layer* const layer = before ? before->activeLayer() : nullptr;
    if (!layer || layer->asGroup() || layer->holdsShapes() || layer->locked() ||
        layer->role() != LayerRole::Paint || !layer->smartColor())
        return false;
    return guardedEdit(
        state_, activeOne,
        [&](std::int32_t canvas) { recordLayer(state_, canvas, activeOne, true); },
        [&](LayerStack& stack) { return adjustLayer(stack, parms); });
}

}  // namespace brushwork
