#include "document/layer/changed_area.h"

namespace brushwork {

bool coversGround(ilImage& image) {
    const ilPixel fill = image.fill();
    for (std::int32_t channel = 0; channel < fill.channels(); ++channel)
        if (fill.channel(channel) != 0.0) return true;
    return false;
}

bool coversGround(Layer& layer) {
    if (auto* const group = dynamic_cast<LayerParent*>(&layer)) {
        bool covers = false;
        group->eachMember([&](Layer& member) { covers = covers || coversGround(member); });
        return covers;
    }
    ilImage* const color = layer.holdsShapes() ? nullptr : layer.colorImageRef();
    return color && coversGround(*color);
}

ChangedArea::ChangedArea(Layer& layer) : layer_(layer) {
    add();
}

void ChangedArea::add() {
    if (!layer_.parent) return;
    ilTile box;
    layer_.contentBounds(box, true);
    box_ = unionOf(box_, box);
    // Shapes and groups leave what they don't draw empty.
    if (layer_.holdsShapes() || layer_.asGroup()) return;
    ilImage* const color = layer_.colorImageRef();
    everywhere_ = everywhere_ || (color && coversGround(*color));
}

void ChangedArea::mark() {
    add();
    layer_.touch();
    if (everywhere_)
        layer_.propagateChange(false);
    else if (!box_.isEmpty())
        layer_.propagateChange(false, &box_);
}

}  // namespace brushwork
