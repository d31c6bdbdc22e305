#include "document/stack/naive_compositor.h"

#include <algorithm>
#include <cmath>

#include "blending/modes/blender_registry.h"

namespace brushwork::test {
namespace {

constexpr float leastOpacity = 0.002f;
constexpr float fullOpacity = 0.998f;

int partOf(int x, int f) {
    return f == 255 ? x : x * f >> 8;
}

int byteOf(float value) {
    return static_cast<int>(std::lround(value * 255.0f));
}

std::vector<std::uint8_t> bytesIn(ilImage* image, const ilTile& box) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(box.nx) *
                                    static_cast<std::size_t>(box.ny) *
                                    static_cast<std::size_t>(image->channels()));
    image->readRegion(box, bytes.data(), box);
    return bytes;
}

ilTile shifted(ilTile box, std::int32_t dx, std::int32_t dy) {
    box.x += dx;
    box.y += dy;
    return box;
}

struct Run {
    std::int32_t mode = 0;
    float opacity = 1.0f;
    const Picture* mask = nullptr;
    bool lockAlpha = false;
};

Ref<ilSPMemoryImg> wrapped(const ilTile& box, const Picture& bytes) {
    const auto channels =
        static_cast<std::int32_t>(bytes.size() / static_cast<std::size_t>(box.nx * box.ny));
    Ref<ilSPMemoryImg> image(new ilSPMemoryImg(box.nx, box.ny, channels));
    std::copy(bytes.begin(), bytes.end(), image->data());
    return image;
}

// Two pictures of one box, as one call of the mode's blender on contiguous memory.
void blendPictures(const ilTile& box, Picture& target, const Picture& source, const Run& run) {
    const auto blender = npc::createBlender(run.mode);
    if (!blender) return;
    const Ref<ilSPMemoryImg> to = wrapped(box, target);
    const Ref<ilSPMemoryImg> from = wrapped(box, source);
    Ref<ilSPMemoryImg> mask;
    blender->setDestination(to.get(), 0, 0);
    blender->setSource(from.get(), 0, 0, false);
    if (run.mask) {
        mask = wrapped(box, *run.mask);
        blender->setMask(mask.get(), 0, 0, false);
    }
    blender->setOpacity(run.opacity);
    blender->setLockAlpha(run.lockAlpha);
    blender->run(flatTile(0, 0, box.nx, box.ny));
    std::copy_n(to->data(), target.size(), target.begin());
}

class Compositor {
  public:
    explicit Compositor(LayerStack& stack, bool withTints = true)
        : parts_(stack.parts()), canvas_(parts_.plane.canvasBounds), withTints_(withTints) {}

    // Layer by layer, whichever is the active one.
    Picture plainPicture() {
        Picture target = ground();
        for (Layer* layer = parts_.list.first.get(); layer; layer = layer->next.get())
            if (takesPart(*layer)) draw(target, *layer);
        return target;
    }

    Picture picture() {
        Picture target = ground();
        Layer* const active = parts_.active.layer.get();
        Layer* outer = active;
        while (outer && outer->parent) outer = &outer->parent->asLayer();
        const bool selecting = outer == parts_.selection.layer.get();
        Layer* layer = parts_.list.first.get();
        for (; layer && (selecting || layer != outer); layer = layer->next.get())
            if (takesPart(*layer)) draw(target, *layer);
        if (!selecting) {
            drawActive(target, *outer);
            drawAbove(target, *outer);
        } else if (showsSelection()) {
            draw(target, *parts_.selection.layer);
        }
        return target;
    }

  private:
    Picture blank() const {
        return Picture(static_cast<std::size_t>(canvas_.nx) * static_cast<std::size_t>(canvas_.ny) *
                       4);
    }

    Picture ground() const {
        Picture picture = blank();
        const auto& color = parts_.backgroundColor;
        const float weights[4] = {color[0] * color[3], color[1] * color[3], color[2] * color[3],
                                  color[3]};
        for (std::size_t n = 0; n < picture.size(); ++n)
            picture[n] = static_cast<std::uint8_t>(byteOf(weights[n % 4]));
        return picture;
    }

    static bool isVisibleAround(const Layer& layer) {
        for (const LayerParent* group = layer.parent; group;) {
            Layer& around = const_cast<LayerParent*>(group)->asLayer();
            if (!around.visible()) return false;
            group = around.parent;
        }
        return layer.visible();
    }

    // Of the layers below the active one, and the active group.
    static bool takesPart(const Layer& layer) {
        return layer.role() == LayerRole::Paint && layer.opacity() > leastOpacity &&
               isVisibleAround(layer);
    }

    bool isSelectionActive() const {
        Layer* const selection = parts_.selection.layer.get();
        if (!selection || !selection->enabled() || selection == parts_.active.layer.get())
            return false;
        ilTile box;
        selection->smartColor()->bounds(box);
        return !box.isEmpty();
    }

    bool showsSelection() const {
        const Layer* const selection = parts_.selection.layer.get();
        return withTints_ && isSelectionActive() && parts_.selection.mode == 0 &&
               selection->visible() && selection->opacity() > leastOpacity &&
               selection->blendMode() == 0;
    }

    // A mask above shows as a tint unless a selection shows instead or what it masks is hidden.
    bool goesAbove(Layer& layer) const {
        if (!layer.visible() || !(layer.opacity() > leastOpacity) || layer.isStencil())
            return false;
        return !layer.isMask() ||
               (withTints_ && !isSelectionActive() && isVisibleAround(*layer.baseLayer()));
    }

    void drawActive(Picture& target, Layer& outer) {
        if (!outer.visible() || !(outer.opacity() > leastOpacity)) return;
        if (withTints_ || outer.role() == LayerRole::Paint) draw(target, outer);
    }

    void drawAbove(Picture& target, Layer& outer) {
        bool simple = true;
        for (const Layer* layer = outer.next.get(); layer; layer = layer->next.get())
            simple = simple && layer->blendMode() == 0;
        Picture above = blank();
        Picture& into = simple ? above : target;
        for (Layer* layer = outer.next.get(); layer; layer = layer->next.get())
            if (goesAbove(*layer)) draw(into, *layer);
        if (showsSelection()) draw(into, *parts_.selection.layer);
        if (simple) blendPictures(canvas_, target, above, {});
    }

    // One of the top level.
    void draw(Picture& target, Layer& layer) {
        if (LayerGroup* const group = layer.asGroup()) {
            if (group->LayerGroup::isPassThrough()) return drawMembers(target, *group, {});
            Picture cache = blank();
            drawMembers(cache, *group, {});
            blendPictures(canvas_, target, cache, {layer.blendMode(), layer.opacity()});
            return;
        }
        blendPictures(canvas_, target, pictureOf(layer), {layer.blendMode(), layer.opacity()});
    }

    // `through`: opacities of the pass-through groups around, the outermost first.
    void drawMembers(Picture& target, LayerGroup& group, std::vector<float> through) {
        if (group.LayerGroup::isPassThrough()) through.push_back(group.opacity());
        const bool showsAll = isShown(group);
        for (Layer* child = group.firstChild(); child; child = child->next.get()) {
            if (!showsAll || !child->visible() || !(child->opacity() > leastOpacity)) continue;
            const bool isTint = child->role() != LayerRole::Paint;
            if (isTint && (!withTints_ || child != parts_.active.layer)) continue;
            float opacity = child->opacity();
            for (auto step = through.rbegin(); step != through.rend(); ++step) opacity *= *step;
            LayerGroup* const inner = child->asGroup();
            if (inner && inner->LayerGroup::isPassThrough()) {
                drawMembers(target, *inner, through);
                continue;
            }
            Picture source;
            if (inner) {
                source = blank();
                drawMembers(source, *inner, {});
            } else {
                source = pictureOf(*child);
            }
            blendPictures(canvas_, target, source, {child->blendMode(), opacity});
        }
    }

    // A hidden pass-through group hides its members; what is around a group with a picture of its
    // own is nothing to it.
    static bool isShown(LayerGroup& group) {
        return !group.LayerGroup::isPassThrough() || group.visible();
    }

    // The stroke that waits for the mask is seen as it will be.
    ilImage* shownImage(Layer& layer, bool stencil, const ilTile& own) const {
        ilImage* const image = stencil ? layer.stencilImage() : layer.colorImageRef();
        MaskingPaintOps* const masked = parts_.painters.masked.get();
        const bool pending = masked && masked->isSnapshotActive() && parts_.selection.paintMask &&
                             &layer == parts_.active.layer.get() &&
                             stencil == parts_.painters.onStencil;
        return pending ? masked->imageForRead(own) : image;
    }

    Picture pictureOf(Layer& layer) {
        const std::int32_t x = layer.offsetXInt(), y = layer.offsetYInt();
        const ilTile own = shifted(canvas_, -x, -y);
        Picture color = bytesIn(shownImage(layer, false, own), own);
        Picture stencil = bytesIn(shownImage(layer, true, own), own);
        paintWet(layer, own, color, stencil);
        const bool tinted = layer.role() != LayerRole::Paint;
        const Picture clip = tinted ? Picture() : clipOf(layer, own);
        static constexpr LayerColor yellow{1.0f, 1.0f, 0.0f, 1.0f};
        const LayerColor& tint = layer.isMask() ? layer.overlayColor() : yellow;
        Picture picture = blank();
        for (std::size_t n = 0; n < picture.size(); ++n) {
            int value = color[tinted ? n / 4 : n];
            if (tinted) {
                value = partOf(static_cast<int>(tint[n % 4] * 255.0f + 0.5f), value);
                value = partOf(value, byteOf(0.5f));
                if (layer.overlayOpacity() < fullOpacity)
                    value = partOf(value, byteOf(layer.overlayOpacity()));
            }
            value = partOf(value, stencil[n / 4]);
            if (!clip.empty()) value = partOf(value, clip[n / 4]);
            picture[n] = static_cast<std::uint8_t>(value);
        }
        return picture;
    }

    static void paintWet(Layer& layer, const ilTile& own, Picture& color, Picture& stencil) {
        const WetBuffers& wet = layer.wet();
        if (!wet.image) return;
        Picture paint = bytesIn(wet.image.get(), shifted(own, -wet.x, -wet.y));
        const bool onStencil = wet.image->channels() == 1 && layer.colorImageRef()->channels() == 4;
        Run run{wet.blend, wet.opacity, nullptr, layer.blendFlags() != 0};
        Picture mask;
        if (wet.mask) {
            mask = bytesIn(wet.mask.get(), shifted(own, -wet.maskX, -wet.maskY));
            run.mask = &mask;
        }
        blendPictures(own, onStencil ? stencil : color, paint, run);
    }

    // How much of the layer the stencils above it let through.
    static Picture clipOf(Layer& base, const ilTile& own) {
        Picture clip(static_cast<std::size_t>(own.nx) * static_cast<std::size_t>(own.ny), 255);
        std::vector<int> held(clip.size());
        for (Layer* layer = base.next.get(); layer && layer->role() != LayerRole::Paint;
             layer = layer->next.get()) {
            if (!layer->isStencil() || !layer->visible() || !layer->stencilActive() ||
                !(layer->opacity() > leastOpacity))
                continue;
            const Picture bytes = bytesIn(layer->colorImageRef(),
                                          shifted(own, base.offsetXInt() - layer->offsetXInt(),
                                                  base.offsetYInt() - layer->offsetYInt()));
            const int fade = layer->opacity() < fullOpacity ? byteOf(layer->opacity()) : 255;
            for (std::size_t n = 0; n < held.size(); ++n) {
                const int s = partOf(bytes[n], fade);
                held[n] = s + partOf(held[n], 255 - s);
            }
        }
        for (std::size_t n = 0; n < clip.size(); ++n)
            clip[n] = static_cast<std::uint8_t>(255 - held[n]);
        return clip;
    }

    const StackParts& parts_;
    const ilTile canvas_;
    const bool withTints_;
};

}  // namespace

Picture naivePicture(LayerStack& stack) {
    return Compositor(stack).picture();
}

Picture naiveFlatPicture(LayerStack& stack) {
    return Compositor(stack, false).picture();
}

Picture naivePlainPicture(LayerStack& stack) {
    return Compositor(stack, false).plainPicture();
}

}  // namespace brushwork::test
