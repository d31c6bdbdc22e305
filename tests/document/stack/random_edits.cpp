#include "document/stack/random_edits.h"

#include "brushwork/blend_mode_table.h"

namespace brushwork::test {
namespace {

constexpr std::int32_t everyMode[] = {
#define BRUSHWORK_MODE_NUMBER(name, id, type) id,
    BRUSHWORK_BLEND_MODES(BRUSHWORK_MODE_NUMBER)
#undef BRUSHWORK_MODE_NUMBER
        7,
    99};  // and two that are none
constexpr std::int32_t mostLayers = 14;

}  // namespace

void RandomEdits::build(int most) {
    for (int n = pick(dice_, 1, most); n > 0; --n) addSomething();
    stack_.setBackground({0.9f, 0.8f, 1.0f, pick(dice_, 0, 2) == 0 ? 0.6f : 1.0f});
    stack_.setActiveIndex(pick(dice_, 1, stack_.layerCountTotal(true)), pick(dice_, 0, 1) == 0,
                          false, true);
}

std::string RandomEdits::edit() {
    done_.clear();
    if (inBatch_ && pick(dice_, 0, 1) == 0) {
        finish();
        return "end of a batch";
    }
    const int roll = pick(dice_, 0, 99);
    if (inBatch_ || roll < 34)
        paint();
    else if (roll < 44)
        wetStroke();
    else if (roll < 49)
        maskedStroke();
    else if (roll < 58)
        editSelection();
    else if (roll < 78)
        attribute();
    else if (roll < 90)
        rearrange();
    else
        display();
    return done_;
}

void RandomEdits::finish() {
    if (inBatch_) {
        stack_.paintOps()->endAccess();
        inBatch_ = false;
        pixelsChanged(flatTile(-4000, -4000, 8000, 8000));
    }
    if (Layer* const layer = stack_.activeLayer(); layer && layer->wet().image) {
        layer->clearWet();
        pixelsChanged(flatTile(-4000, -4000, 8000, 8000));
    }
}

Layer* RandomEdits::anyLayer() {
    return stack_.layerByIndex(pick(dice_, 1, std::max(1, stack_.layerCountTotal(true))), true);
}

std::int32_t RandomEdits::anyId() {
    Layer* const layer = anyLayer();
    return layer ? layer->id() : activeOne;
}

std::vector<std::int32_t> RandomEdits::someIds() {
    std::vector<std::int32_t> ids;
    for (int n = pick(dice_, 1, 3); n > 0; --n) ids.push_back(anyId());
    return ids;
}

std::int32_t RandomEdits::anyMode() {
    if (pick(dice_, 0, 2) > 0) return 0;
    return everyMode[dice_() % std::size(everyMode)];
}

float RandomEdits::anyOpacity() {
    static constexpr float some[] = {1.0f, 1.0f, 1.0f, 0.5f, 0.25f, 0.9981f, 0.002f, 0.0021f, 0.0f};
    return some[dice_() % std::size(some)];
}

float RandomEdits::anyPlace() {
    if (pick(dice_, 0, 9) == 0) return pick(dice_, 0, 1) == 0 ? 60000.0f : -40000.5f;
    return static_cast<float>(pick(dice_, -300, 300)) / 4.0f;
}

ilTile RandomEdits::anyArea(int most) {
    const int far = pick(dice_, 0, 15) == 0 ? 400 : 0;
    return flatTile(pick(dice_, -60, 260) + far, pick(dice_, -60, 240) - far, pick(dice_, 1, most),
                    pick(dice_, 1, most));
}

void RandomEdits::addSomething() {
    const int kind = pick(dice_, 0, 11);
    if (stack_.layerCountTotal(true) >= mostLayers) return;
    const std::int32_t at = pick(dice_, 0, stack_.layerCountTotal(true) + 1);
    if (kind < 2) {
        const std::int32_t id = stack_.addGroup(znString::IString(u"Group"), at, kind == 1);
        if (pick(dice_, 0, 1) == 0) stack_.setBlendMode(id, anyMode());
        done_ = "add group " + std::to_string(id);
        return;
    }
    const LayerRole role = kind == 2   ? LayerRole::Mask
                           : kind == 3 ? LayerRole::Stencil
                                       : LayerRole::Paint;
    const int channels = role == LayerRole::Paint ? 4 : 1;
    const std::uint8_t fill = role != LayerRole::Mask && pick(dice_, 0, 9) == 0 ? 70 : 0;
    const Ref<ilSmartImage> color = blank(channels, fill);
    const ilTile box = anyArea();
    if (pick(dice_, 0, 2) == 0)
        paintSolid(*color, box, {40, 80, 20, 120});
    else
        paintNoise(*color, box, dice_);
    stack::NewLayer layer;
    layer.color = color.get();
    layer.role = role;
    layer.at = at;
    layer.makeActive = pick(dice_, 0, 3) == 0;
    layer.render = pick(dice_, 0, 1) == 0;
    layer.x = static_cast<std::int32_t>(anyPlace());
    layer.y = pick(dice_, -40, 40);
    const std::int32_t id = stack_.addLayer(layer);
    if (Layer* const added = stack_.layerById(id)) {
        if (pick(dice_, 0, 4) == 0) paintNoise(*added->stencilImage(), anyArea(), dice_);
        added->touch();
        added->propagateChange(true);
    }
    stack_.setBlendMode(id, anyMode());
    if (pick(dice_, 0, 2) == 0) stack_.setOpacity(id, anyOpacity());
    done_ = "add layer " + std::to_string(id) + " at " + std::to_string(at);
}

// A box in the document, of the active layer's pixels.
void RandomEdits::pixelsChanged(const ilTile& box) {
    Layer* const layer = stack_.activeLayer();
    ilTile own = box;
    own.x -= layer->offsetXInt();
    own.y -= layer->offsetYInt();
    layer->touch();
    stack_.accumulateDirty(own, *layer);
}

void RandomEdits::paint() {
    Layer* const layer = stack_.activeLayer();
    PaintOps* const painter = stack_.paintOps();
    if (!painter || layer->asGroup()) return;
    const ilTile box = anyArea(90);
    ilTile own = box;
    own.x -= layer->offsetXInt();
    own.y -= layer->offsetYInt();
    const int channels = painter->image()->channels();
    const bool over = pick(dice_, 0, 1) == 0;
    painter->setBlendFactors(over ? pairOver.source : pairCopy.source,
                             over ? pairOver.target : pairCopy.target);
    if (pick(dice_, 0, 1) == 0) {
        const Ref<ilSmartImage> picture = noise(channels, flatTile(0, 0, box.nx, box.ny), dice_);
        painter->drawImage(picture.get(), own.x, own.y);
    } else {
        painter->setColor(90, 10, 60, 120);
        painter->fill(own);
    }
    pixelsChanged(box);
    if (layer == stack_.selectionLayer()) stack::selectionChanged(stack_.parts());
    done_ = "paint on " + std::to_string(layer->id());
}

// Begins, goes on with or ends the paint that lies over the active layer.
void RandomEdits::wetStroke() {
    Layer* const layer = stack_.activeLayer();
    if (!layer || layer->asGroup() || layer == stack_.selectionLayer()) return;
    ilSmartImage* wet = ilSmartImage::from(layer->wet().image.get());
    done_ = "wet stroke on " + std::to_string(layer->id());
    if (wet && pick(dice_, 0, 2) == 0) {
        if (pick(dice_, 0, 2) > 0) layer->commitWet();
        layer->clearWet();
        return pixelsChanged(flatTile(-4000, -4000, 8000, 8000));
    }
    if (!wet) {
        const bool onStencil = layer->role() == LayerRole::Paint && pick(dice_, 0, 5) == 0;
        const int channels = onStencil ? 1 : layer->smartColor()->channels();
        const Ref<ilSmartImage> fresh = blank(channels);
        layer->setWet(fresh.get(), pick(dice_, -9, 9), pick(dice_, -9, 9));
        wet = fresh.get();
        static constexpr std::int32_t modes[] = {0, 0, 0, 1, 3, 21};
        // Of one channel there are modes that act where nothing is painted.
        layer->setWetBlend(channels == 1 ? 0 : modes[dice_() % std::size(modes)]);
        layer->setWetOpacity(pick(dice_, 0, 1) == 0 ? 1.0f : 0.4f);
        layer->setBlendFlags(pick(dice_, 0, 4) == 0 ? 1 : 0);
        if (pick(dice_, 0, 3) == 0)
            layer->setWetMask(noise(1, anyArea(200), dice_, anyByte(dice_)).get(), 3, -4);
    }
    ilTile box = anyArea(70);
    ilTile own = box;
    own.x -= layer->offsetXInt() + layer->wet().x;
    own.y -= layer->offsetYInt() + layer->wet().y;
    paintNoise(*wet, own, dice_);
    pixelsChanged(box);
}

// A batch on a layer that a mask restricts: what waits for the mask is seen as it will be.
void RandomEdits::maskedStroke() {
    PaintOps* const painter = stack_.paintOps();
    Layer* const layer = stack_.activeLayer();
    if (!painter || layer->asGroup() || layer == stack_.selectionLayer() || layer->wet().image)
        return;
    if (!stack_.paintMask()) return editSelection();
    if (pick(dice_, 0, 2) == 0 && layer->role() == LayerRole::Paint) {
        stack_.setPaintOnStencil(!stack_.parts().painters.onStencil);
    }
    stack_.paintOps()->beginAccess();
    inBatch_ = true;
    paint();
    done_ = "batch on " + std::to_string(layer->id());
}

void RandomEdits::editSelection() {
    const int roll = pick(dice_, 0, 11);
    done_ = "selection " + std::to_string(roll);
    switch (roll) {
        case 0: return stack_.clearSelection();
        case 1: return stack_.invertSelection();
        case 2: return stack_.moveSelection(anyPlace(), static_cast<float>(pick(dice_, -9, 9)));
        case 3: {
            const Ref<ilSmartImage> image = noise(1, anyArea(), dice_);
            return stack_.addImageToSelection(*image, 3.5f, -2.0f);
        }
        case 4: return stack_.subtractRectFromSelection(anyArea());
        case 5: return stack_.setSelectionColor({0.3f, 0.9f, 0.1f, 1.0f}, anyOpacity());
        case 6: return stack_.makeSelectionActive();
        case 7: {
            const Ref<ilSmartImage> image = noise(1, anyArea(), dice_);
            return stack_.setSelectionImage(image.get(), 5.0f, -7.0f);
        }
        case 8:
        case 9: return stack_.resetSelection();
        default: return stack_.addRectToSelection(anyArea());
    }
}

void RandomEdits::attribute() {
    const std::int32_t id = anyId();
    const Layer* const layer = stack_.layerById(id);
    if (!layer) return;
    const int roll = pick(dice_, 0, 9);
    done_ = "attribute " + std::to_string(roll) + " of " + std::to_string(id);
    switch (roll) {
        case 0:
        case 1: return stack_.setVisible(id, !layer->visible());
        case 2:
        case 3: return stack_.setOpacity(id, anyOpacity());
        case 4:
        case 5: {
            auto* const group = const_cast<Layer*>(layer)->asGroup();
            return stack_.setBlendMode(
                id, group && pick(dice_, 0, 1) == 0 ? passThroughMode : anyMode());
        }
        case 6: return stack_.setStencilActive(id, !layer->stencilActive());
        case 7: return stack_.setEnabled(id, !layer->enabled());
        case 8:
            return pick(dice_, 0, 1) == 0 ? stack_.setMaskOpacity(anyOpacity())
                                          : stack_.setMaskColor({0.1f, anyOpacity(), 0.6f, 1.0f});
        default:
            return stack_.setPosition(id, anyPlace(), anyPlace(), pick(dice_, 0, 1) == 0,
                                      pick(dice_, 0, 1) == 0);
    }
}

void RandomEdits::rearrange() {
    const int roll = pick(dice_, 0, 8);
    done_ = "rearrange " + std::to_string(roll);
    switch (roll) {
        case 0:
        case 1: return addSomething();
        case 2:
            stack_.deleteLayers(std::vector<std::int32_t>{anyId()}, false, pick(dice_, 0, 1) == 0);
            return;
        case 3: {
            stack::LayerMove move;
            move.toIndex = pick(dice_, 0, stack_.layerCountTotal(true));
            Layer* const group = anyLayer();
            if (group && group->asGroup() && pick(dice_, 0, 1) == 0) move.group = group->id();
            move.makeActive = pick(dice_, 0, 2) == 0;
            stack_.moveLayers(someIds(), move);
            return;
        }
        case 4: static_cast<void>(stack_.makeGroupFrom(someIds(), pick(dice_, 0, 1) == 0)); return;
        case 5: stack_.ungroup(someIds(), pick(dice_, 0, 3) == 0); return;
        case 6:
            if (stack_.layerCountTotal(true) < mostLayers)
                static_cast<void>(stack_.duplicateLayer());
            return;
        case 7: return stack_.clearLayer(pick(dice_, 0, 1) == 0);
        default: return stack_.setBackground({anyOpacity(), 0.5f, 0.25f, anyOpacity()});
    }
}

void RandomEdits::display() {
    const int roll = pick(dice_, 0, 9);
    done_ = "display " + std::to_string(roll);
    switch (roll) {
        case 0: return stack_.refreshDisplay(pick(dice_, 0, 1) == 0);
        case 1: return stack_.invalidateRect(anyArea());
        case 2: static_cast<void>(stack_.flatImage()); return;
        case 3: static_cast<void>(stack_.compositeByFlags(0x8002)); return;
        case 4:
            static_cast<void>(stack_.composeToImage(anyId(), nullptr, nullptr, true, true, true));
            return;
        default:
            stack_.setActiveIndex(pick(dice_, 1, stack_.layerCountTotal(true) + 1),
                                  pick(dice_, 0, 1) == 0, false, true);
            done_ = "active layer " + std::to_string(stack_.activeId());
    }
}

}  // namespace brushwork::test
