#include "document/stack/stack_transform.h"

#include <cmath>
#include <vector>

#include "document/stack/stack_display.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_lookup.h"
#include "document/stack/stack_paint_mask.h"

namespace brushwork::stack {
namespace {

std::vector<Layer*> layersOf(const StackParts& stack) {
    std::vector<Layer*> layers;
    for (const std::int32_t id : stack.transform.ids)
        if (Layer* const layer = layerById(stack, id)) layers.push_back(layer);
    return layers;
}

// The whole group moves with its members.
template <class Visit>
void eachPlain(Layer& layer, const Visit& visit) {
    if (LayerGroup* const group = layer.asGroup())
        group->eachMember([&](Layer& member) { eachPlain(member, visit); });
    else
        visit(layer);
}

bool onlyMoves(const TransformRecord& record) {
    TransformRecord still = record;
    still.x = 0.0f;
    still.y = 0.0f;
    return still.isIdentity();
}

QuadCorners cornersOf(Layer& layer, const TransformRecord& record) {
    ilTile box;
    layer.contentBounds(box, true);
    const double angle = static_cast<double>(record.rotation) * 3.14159265358979323846 / 180.0;
    const auto cosine = static_cast<float>(std::cos(angle));
    const auto sine = static_cast<float>(std::sin(angle));
    const float xs[] = {static_cast<float>(box.x), static_cast<float>(box.endX())};
    const float ys[] = {static_cast<float>(box.y), static_cast<float>(box.endY())};
    constexpr int column[] = {0, 1, 1, 0};
    constexpr int row[] = {0, 0, 1, 1};
    QuadCorners corners;
    for (std::size_t n = 0; n < 4; ++n) {
        const float x = (xs[column[n]] - record.pivotX) * record.scaleX;
        const float y = (ys[row[n]] - record.pivotY) * record.scaleY;
        corners[n].x = x * cosine - y * sine + record.pivotX + record.x + record.corners[2 * n];
        corners[n].y = x * sine + y * cosine + record.pivotY + record.y + record.corners[2 * n + 1];
    }
    return corners;
}

// Shapes keep the place and the form that the host gives them: they are drawn anew.
void apply(Layer& layer, const TransformRecord& record) {
    if (layer.holdsShapes()) return;
    if (onlyMoves(record)) {
        float x = 0.0f;
        float y = 0.0f;
        layer.offset(&x, &y);
        layer.setOffset(x + record.x, y + record.y);
    } else if (record.movesCorners()) {
        layer.perspectiveWarp(cornersOf(layer, record), SampleMode::Bicubic);
    } else {
        const bool hadPivot = layer.pivotSet();
        float x = 0.0f;
        float y = 0.0f;
        layer.pivot(&x, &y);
        layer.setPivot(record.pivotX, record.pivotY, true);
        layer.affineResample(record, SampleMode::Bicubic);
        layer.setPivot(x, y, hadPivot);
    }
}

}  // namespace

bool beginTransform(StackParts& stack, std::span<const std::int32_t> ids, std::int32_t mode,
                    std::int32_t arg, bool keep) {
    closeTransform(stack);
    const std::vector<Layer*> layers = normalizeIds(stack, ids);
    if (layers.empty()) return false;
    MultiTransform& transform = stack.transform;
    transform.ids.clear();
    for (const Layer* layer : layers) transform.ids.push_back(layer->id());
    transform.record = TransformRecord();
    transform.keep = keep;
    for (Layer* layer : layers)
        eachPlain(*layer, [&](Layer& plain) { plain.beginTransform(mode, arg, false); });
    transform.open = true;
    transform.pivotSet = false;
    stack.scaled = ScaledPath();
    invalidateRect(stack, stack.plane.canvasBounds);
    return true;
}

void updateTransform(StackParts& stack, const TransformRecord& record) {
    if (!stack.transform.open) return;
    stack.transform.record = record;
    if (stack.transform.pivotSet) {
        stack.transform.record.pivotX = stack.transform.pivotX;
        stack.transform.record.pivotY = stack.transform.pivotY;
    }
    for (Layer* layer : layersOf(stack)) layer->setViewTransform(stack.transform.record);
    stack.scaled.result.reset();
    invalidateRect(stack, stack.plane.canvasBounds);
}

void endTransform(StackParts& stack, bool keep) {
    MultiTransform& transform = stack.transform;
    if (!transform.open) return;
    const std::vector<Layer*> layers = layersOf(stack);
    const TransformRecord record = transform.record;
    transform.open = false;
    for (Layer* layer : layers)
        eachPlain(*layer, [&](Layer& plain) {
            plain.endTransform(false);
            if (keep && !record.isIdentity()) apply(plain, record);
            plain.touch();
            plain.propagateChange(true);
        });
    for (Layer* layer : layers) {
        noteChange(stack, layer);
        layer->markClipDirty(true);
    }
    transform.ids.clear();
    transform.record = TransformRecord();
    stack.scaled = ScaledPath();
    staleBoth(stack);
    rebuildPaintMask(stack);
    refreshDisplay(stack, false);
}

void closeTransform(StackParts& stack) {
    endTransform(stack, true);
}

void setTransformPivot(StackParts& stack, float x, float y) {
    stack.transform.pivotX = x;
    stack.transform.pivotY = y;
    stack.transform.pivotSet = true;
}

}  // namespace brushwork::stack
