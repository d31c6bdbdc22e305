// Layer: drawing the thumbnail.
#include <algorithm>
#include <cmath>

#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

// The box as a thumbnail remembers it.
ilTile shownBox(const ilTile* box) {
    ilTile shown = box ? *box : ilTile{0, 0, 0, 0, 0, 1};
    shown.nx = std::max(shown.nx, Thumbnail::leastSize);
    shown.ny = std::max(shown.ny, Thumbnail::leastSize);
    return shown;
}

std::int32_t scaledSize(std::int32_t size, float scale) {
    return std::max(1, static_cast<std::int32_t>(static_cast<float>(size) * scale + 0.5f));
}

// All of the box at that scale, in a buffer of its own. Null without memory.
Ref<ilSPMemoryImg> reduced(ilImage& image, const ilTile& box, std::int32_t width,
                           std::int32_t height) {
    const Ref<ilSPMemoryImg> pixels(new ilSPMemoryImg(box.nx, box.ny, 4));
    if (!pixels->data()) return {};
    const std::int32_t read = image.readRegion(box, pixels->data(), box);
    if (read != ImageOk && read != ImageClipped) return {};
    if (box.nx == width && box.ny == height) return pixels;
    const Ref<ilSPMemoryImg> result(new ilSPMemoryImg(width, height, 4));
    if (!result->data()) return {};
    result->fillRegion(result->box(), ilPixel(TypeUChar, 4));
    return pixels->scaleInto(result.get()) ? result : Ref<ilSPMemoryImg>();
}

// The box of a level's pixels that hold a box of the image.
ilTile levelBox(const ilTile& box, float scale) {
    const auto low = [&](std::int32_t value) {
        return static_cast<std::int32_t>(std::floor(static_cast<float>(value) * scale));
    };
    const auto high = [&](std::int32_t value) {
        return static_cast<std::int32_t>(std::ceil(static_cast<float>(value) * scale));
    };
    return flatTile(low(box.x), low(box.y), std::max(1, high(box.endX()) - low(box.x)),
                    std::max(1, high(box.endY()) - low(box.y)));
}

}  // namespace

Ref<ilImage> Layer::thumbnailSource() {
    return effectiveImage(nullptr, nullptr, true, true);
}

bool Layer::isThumbnailCurrent(const ilTile* box, std::int32_t x, std::int32_t y) const {
    return !thumbnail_.dirty && thumbnail_.image && thumbnail_.bounds == shownBox(box) &&
           thumbnail_.offsetX == x && thumbnail_.offsetY == y;
}

void Layer::setThumbnailSize(std::int32_t width, std::int32_t height) {
    width = std::clamp(width, Thumbnail::leastSize, Thumbnail::mostSize);
    height = std::clamp(height, Thumbnail::leastSize, Thumbnail::mostSize);
    if (width == thumbnail_.width && height == thumbnail_.height) return;
    thumbnail_.width = width;
    thumbnail_.height = height;
    thumbnail_.dirty = true;
    thumbnail_.image.reset();
}

ilSPMemoryImg* Layer::thumbnailImage(const ilTile* box, std::int32_t x, std::int32_t y) {
    if (isThumbnailCurrent(box, x, y)) return thumbnail_.image.get();
    if ((flags_ & FrozenThumbnail) != 0 && next && thumbnail_.image) return thumbnail_.image.get();
    thumbnail_.bounds = shownBox(box);
    thumbnail_.offsetX = x;
    thumbnail_.offsetY = y;
    thumbnail_.dirty = false;
    // One that a copy of the layer shows, too, isn't drawn over.
    if (!thumbnail_.image || thumbnail_.image->refCount() > 1)
        thumbnail_.image =
            Ref<ilSPMemoryImg>(new ilSPMemoryImg(thumbnail_.width, thumbnail_.height, 4));
    ilSPMemoryImg& picture = *thumbnail_.image;
    picture.fillRegion(picture.box(), ilPixel(TypeUChar, 4));
    ilImage* const color = colorImageRef();
    if (!color || color->channels() != 4) return &picture;
    tighten();

    // With the group's opacities only what is drawn afresh shows them.
    Ref<ilImage> source;
    const bool fromLevels = inheritedOpacity() >= opaqueEnough && !isPassThrough();
    if (fromLevels) {
        refreshViewLevels(0);
        source = view_.source;
    } else {
        source = thumbnailSource();
    }
    ilTile shown = boundsOf(source.get());
    if (shown.isEmpty()) shown = flatTile(shown.x, shown.y, 1, 1);
    const float scale =
        std::min({1.0f, static_cast<float>(thumbnail_.width) / static_cast<float>(shown.nx),
                  static_cast<float>(thumbnail_.height) / static_cast<float>(shown.ny)});
    const std::int32_t width = std::min(scaledSize(shown.nx, scale), thumbnail_.width);
    const std::int32_t height = std::min(scaledSize(shown.ny, scale), thumbnail_.height);
    if (fromLevels && scale <= 0.5f) {
        float levelScale = 1.0f;
        if (const Ref<ilSmartImage> level = view_.levels.level(scale, levelScale)) {
            source = level;
            shown = levelBox(shown, levelScale);
        }
    }
    const Ref<ilSPMemoryImg> small =
        source ? reduced(*source, shown, width, height) : Ref<ilSPMemoryImg>();
    if (small)
        picture.copyRegion(
            flatTile((thumbnail_.width - width) / 2, (thumbnail_.height - height) / 2,
                     small->sizeX(), small->sizeY()),
            *small, 0, 0, 0, nullptr, CopyDirection::FromOther);
    return &picture;
}

}  // namespace brushwork
