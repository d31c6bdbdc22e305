// Layer: the picture resampled by a record, or into a quadrilateral.
#include <algorithm>
#include <cmath>
#include <optional>

#include "document/layer/changed_area.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"
#include "document/layer/placed_copy.h"

namespace brushwork {
namespace {

// What is resampled, and where its pixel (0, 0) lies in the document.
struct Original {
    ilSmartImage* color = nullptr;
    ilSmartImage* stencil = nullptr;
    ilTile content;
    float x = 0.0f, y = 0.0f;
};

struct Resampled {
    Ref<ilSmartImage> color, stencil;
    float x = 0.0f, y = 0.0f;
    std::int32_t deltaX = 0, deltaY = 0;
};

Original originalOf(ilImage* color, ilImage* stencil, float x, float y) {
    Original original{ilSmartImage::from(color), ilSmartImage::from(stencil), {}, x, y};
    if (!original.color) return original;
    original.color->shrinkBounds();
    original.content = boundsOf(color);
    return original;
}

// Outward to whole multiples, so that a picture that is being dragged keeps its pages.
ilTile roundedOutward(const ilTile& box) {
    constexpr std::int32_t low = 255;
    const std::int32_t x = box.x & ~low;
    const std::int32_t y = box.y & ~low;
    return flatTile(x, y, ((box.endX() + low) & ~low) - x, ((box.endY() + low) & ~low) - y);
}

// The picture's corner becomes its pixel (0, 0). The offset keeps the fraction that a record leads
// to, so that moves don't lose it; cut off toward zero it is the corner's place.
float placeFor(double exact, std::int32_t corner, std::int32_t& delta) {
    const double whole = corner >= 0 ? std::floor(exact) : std::ceil(exact);
    const double shift = corner - whole;
    delta = static_cast<std::int32_t>(std::clamp(shift, -1e9, 1e9));
    const auto place = static_cast<float>(exact + shift);
    return std::trunc(place) == static_cast<float>(corner) ? place : static_cast<float>(corner);
}

enum class Edges { Exact, Rounded };

// (exactX, exactY): where the old pixel (0, 0) comes to lie.
std::optional<Resampled> resampled(const Original& original, const Placing& placing,
                                   SampleMode quality, double exactX, double exactY, Edges edges) {
    ilTile held;
    if (original.stencil) {
        original.stencil->shrinkBounds(true);
        held = boundsOf(original.stencil);
    }
    ilTile box = placedBox(placing, quality);
    // Beyond the picture a stencil has only that to attenuate which covers all.
    if (coversGround(*original.color))
        box = unionOf(box, placedBox(placingOf(placing, held), quality));
    if (edges == Edges::Rounded) box = roundedOutward(box);
    Resampled result;
    result.color = placedCopy(*original.color, placing, quality, box);
    if (!result.color) return std::nullopt;
    if (edges == Edges::Rounded)
        result.color->setBounds(flatTile(0, 0, box.nx, box.ny));
    else
        result.color->shrinkBounds();
    if (original.stencil) {
        if (held.isEmpty())
            result.stencil = Ref<ilSmartImage>(new ilSmartImage(original.stencil->fill()));
        else
            result.stencil = placedCopy(*original.stencil, placingOf(placing, held), quality, box);
        if (!result.stencil) return std::nullopt;
        result.stencil->shrinkBounds(true);
    }
    result.x = placeFor(exactX, box.x, result.deltaX);
    result.y = placeFor(exactY, box.y, result.deltaY);
    return result;
}

// An offset under a record about a pivot.
double movedOffset(float offset, float pivot, float scale, float move) {
    const auto about = static_cast<double>(pivot);
    return about - (about - static_cast<double>(offset)) * static_cast<double>(scale) +
           static_cast<double>(move);
}

std::optional<Resampled> resampledBy(const Original& original, const TransformRecord& record,
                                     SampleMode quality, Edges edges) {
    const auto placing =
        placingByRecord(record, original.content, truncated(original.x), truncated(original.y));
    if (!placing) return std::nullopt;
    return resampled(original, *placing, quality,
                     movedOffset(original.x, record.pivotX, record.scaleX, record.x),
                     movedOffset(original.y, record.pivotY, record.scaleY, record.y), edges);
}

std::optional<Resampled> resampledInto(const Original& original, const QuadCorners& corners,
                                       SampleMode quality, Edges edges) {
    const auto placing = placingByCorners(corners, original.content);
    if (!placing) return std::nullopt;
    return resampled(original, *placing, quality, static_cast<double>(original.x),
                     static_cast<double>(original.y), edges);
}

}  // namespace

// Closes an open floating transform for as long as it lives, and opens it again.
class LayerAccess {
  public:
    explicit LayerAccess(Layer& layer) : layer_(layer), wasOpen_(layer.inTransform()) {
        if (wasOpen_) layer_.endTransform(true);
    }
    LayerAccess(const LayerAccess&) = delete;
    LayerAccess& operator=(const LayerAccess&) = delete;
    ~LayerAccess() {
        if (wasOpen_) layer_.beginTransform(layer_.transform_.mode, layer_.transform_.arg, true);
    }

    [[nodiscard]] Original original() const {
        return originalOf(layer_.colorImageRef(), layer_.images_.stencil.get(),
                          layer_.place_.offsetX, layer_.place_.offsetY);
    }
    [[nodiscard]] static Original kept(Layer& layer) {
        const FloatingTransform& transform = layer.transform_;
        return originalOf(transform.color.get(), transform.stencil.get(), transform.offsetX,
                          transform.offsetY);
    }
    static bool commit(Layer& layer, const std::optional<Resampled>& result) {
        if (!result) return false;
        ChangedArea area(layer);
        layer.setColorImage(result->color.get());
        if (result->stencil) layer.setStencilImage(result->stencil.get());
        layer.place_.offsetX = result->x;
        layer.place_.offsetY = result->y;
        layer.markClipDirty(true);
        area.mark();
        return true;
    }
    static bool show(Layer& layer, const std::optional<Resampled>& result) {
        if (!commit(layer, result)) return false;
        FloatingTransform& transform = layer.transform_;
        transform.deltaX = result->deltaX;
        transform.deltaY = result->deltaY;
        if (transform.mode == 0) return true;
        transform.previewColor = result->color;
        transform.previewStencil = result->stencil;
        return true;
    }

  private:
    Layer& layer_;
    bool wasOpen_;
};

bool Layer::affineResample(const TransformRecord& record, SampleMode quality) {
    if (record.isIdentity()) return true;
    const LayerAccess closed(*this);
    TransformRecord placed = record;
    pivot(&placed.pivotX, &placed.pivotY);
    const Original original = closed.original();
    if (!original.color) return false;
    if (original.content.isEmpty()) return true;
    return LayerAccess::commit(*this, resampledBy(original, placed, quality, Edges::Exact));
}

bool Layer::scaleBy(float scale, SampleMode mode) {
    TransformRecord record;
    record.scaleX = scale;
    record.scaleY = scale;
    const bool hadPivot = pivotSet();
    float x = 0.0f;
    float y = 0.0f;
    pivot(&x, &y);
    setPivot(0.0f, 0.0f, true);
    const bool done = affineResample(record, mode);
    setPivot(x * scale, y * scale, hadPivot);
    return done;
}

bool Layer::perspectiveWarp(const QuadCorners& corners, SampleMode quality) {
    const LayerAccess closed(*this);
    const Original original = closed.original();
    if (!original.color) return false;
    return LayerAccess::commit(*this, resampledInto(original, corners, quality, Edges::Exact));
}

bool Layer::previewAffine(const TransformRecord& record, SampleMode quality) {
    if (!transform_.open) return false;
    TransformRecord placed = record;
    pivot(&placed.pivotX, &placed.pivotY);
    const Original original = LayerAccess::kept(*this);
    if (!original.color) return false;
    if (original.content.isEmpty()) return true;
    return LayerAccess::show(*this, resampledBy(original, placed, quality, Edges::Rounded));
}

bool Layer::previewPerspective(const QuadCorners& corners, SampleMode quality) {
    if (!transform_.open) return false;
    const Original original = LayerAccess::kept(*this);
    if (!original.color) return false;
    return LayerAccess::show(*this, resampledInto(original, corners, quality, Edges::Rounded));
}

Ref<ilSmartImage> Layer::applyTransformRecord(ilSmartImage& source, const TransformRecord& record,
                                              float* x, float* y, bool preferReduced) {
    const double fromX = x ? truncated(*x) : 0;
    const double fromY = y ? truncated(*y) : 0;
    if (record.isIdentity()) {
        if (x) *x = static_cast<float>(fromX);
        if (y) *y = static_cast<float>(fromY);
        return source.clone();
    }
    // Corners are the picture's, however far a stencil reaches beyond it.
    const ilTile content = boundsOf(record.movesCorners() ? colorImageRef() : &source);
    if (content.isEmpty()) return source.clone();
    const auto placing = placingByRecord(record, content, fromX, fromY);
    if (!placing) return {};
    const SampleMode mode = preferReduced ? SampleMode::Bilinear : SampleMode::Bicubic;
    const ilTile box = placedBox(*placing, mode);
    if (x) *x = static_cast<float>(box.x);
    if (y) *y = static_cast<float>(box.y);
    // Moved corners may stretch parts of what the scale shrinks: a level would be too coarse there.
    const float scale = mostScale(*placing);
    if (preferReduced && scale <= 0.5f && !placing->folded && opacity_ >= opaqueEnough &&
        view_.levels.isCurrent(&source, view_.changeCount)) {
        float levelScale = 1.0f;
        if (const Ref<ilSmartImage> level = view_.levels.level(scale, levelScale)) {
            const auto block = static_cast<std::int32_t>(std::lround(1.0f / levelScale));
            return placedCopy(*level, placingOfLevel(*placing, *level, block), mode, box);
        }
    }
    return placedCopy(source, *placing, mode, box);
}

}  // namespace brushwork
