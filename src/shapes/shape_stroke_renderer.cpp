#include "shapes/shape_stroke_renderer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "blending/paint/soft_paint_ops.h"
#include "brushwork/brush_parameters.h"
#include "foundation/host/host_calls.h"
#include "foundation/services/log.h"
#include "image/work/il_sp_memory_img.h"
#include "shapes/host_outline.h"
#include "shapes/image_gntr_controller.h"
#include "shapes/outline_raster.h"
#include "shapes/shape_timing.h"
#include "strokes/path/stamp_ranges.h"
#include "strokes/stroke/stroke_replay.h"
#include "strokes/tip/image_paint_obj.h"

namespace brushwork {
namespace {

constexpr std::int32_t largestTip = 4096;  // pixels of a side

float shareOf(float value) {
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

float radiusOf(const ShapeStroke& stroke) {
    return clampedStampRadius(stroke.width * 0.5f);
}

// The host's tip, or null.
Ref<ImagePaintObj> hostTip(HostShape shape) {
    std::int32_t width = 0, height = 0;
    const std::uint8_t* const rows = hostShapeStamp(shape, &width, &height);
    if (!rows || width > largestTip || height > largestTip) return {};
    const Ref<ilSPMemoryImg> image = makeRef<ilSPMemoryImg>(width, height, 1);
    if (!image->data()) return {};
    std::copy_n(rows, static_cast<std::size_t>(width) * static_cast<std::size_t>(height),
                image->data());
    return makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Single);
}

BrushParameters brushOf(const ShapeStroke& stroke, HostShape shape) {
    BrushParameters brush = BrushParameters::defaults();
    brush.color = {1.0f, 1.0f, 1.0f, 1.0f};
    brush.radiusLow = brush.radiusHigh = radiusOf(stroke);
    brush.opacityLow = brush.opacityHigh = shareOf(stroke.flow);
    brush.tipPreset = BrushParameters::ownHardness;
    brush.hardness = shareOf(stroke.hardness);
    brush.shapeObject = hostTip(shape);
    brush.proceduralTip = !brush.shapeObject;
    return brush;
}

struct Replayed {
    int points = 0;
    int curves = 0;
};

// Straight from point to point, each chain of pieces a stroke of its own.
Replayed strokeAlong(const std::vector<HostCurve>& curves, const BrushParameters& brush,
                     const ShapeImageParms& parms, ilImage& paper) {
    npc::StrokeRenderer renderer(&paper, nullptr);
    StrokeParameters values;
    values.interpolationKind = 0;
    values.spacing = std::max(parms.stroke.spacing, 0.1f);
    values.paintFactor0 = 0.0f;  // paint that builds up to a level
    renderer.setParameters(values, &brush);
    Replayed all;
    for (const HostCurve curve : curves) {
        const std::vector<HostSegment> pieces = curvePieces(curve);
        for (const OutlineChain chain : outlineChains(pieces)) {
            const std::vector<StrokePointData> points = chainPoints(chain);
            npc::replayStroke(renderer, points);
            all.points += static_cast<int>(points.size());
        }
        ++all.curves;
    }
    return all;
}

// Paint of the brush's kind settles at 254, which stands for all of it here.
void toCoverage(std::span<const std::uint8_t> pixels, std::span<std::uint8_t> mask) {
    for (std::size_t i = 0; i < mask.size(); ++i) {
        const int alpha = pixels[i * 4 + 3];
        mask[i] = static_cast<std::uint8_t>(std::min(alpha + (alpha >> 7), 255));
    }
}

// Tile by tile; most of a stroke's box is bare.
void takeCoverage(ilSmartImage& paper, ilSmartImage& mask, const ilTile& clip, float opacity) {
    constexpr std::int32_t side = 128;
    ilTile box;
    paper.bounds(box);
    std::vector<std::uint8_t> pixels(side * side * 4), coverage(side * side);
    const Ref<SoftPaintOps> ops = makeRef<SoftPaintOps>(&mask);
    ops->setBlendFactors(FactorOne, FactorZero);
    ops->setBounds(clip);
    for (std::int32_t y = box.y & -side; y < box.endY(); y += side) {
        for (std::int32_t x = box.x & -side; x < box.endX(); x += side) {
            const ilTile tile = flatTile(x, y, side, side);
            std::uint32_t value = 0;
            if (intersection(tile, clip).isEmpty()) continue;
            if (paper.isSolid(tile, value, false) && value == 0) continue;
            paper.readRegion(tile, pixels.data(), tile);
            toCoverage(pixels, coverage);
            applyOpacity(coverage, opacity);
            PaintFormat format;
            format.channels = 1;
            ops->rect_copy(x, y, side, side, PaintSource::of(coverage.data()), format, 0, 1.0f,
                           1.0f);
        }
    }
    mask.shrinkBounds();
}

}  // namespace

ilTile ShapeStrokeRenderer::boundingBox(const ShapeSource& shape) {
    const auto extent = outlineExtent(shape.curves());
    if (!extent) return {};
    // A host's tip may be turned: its corner lies further out than a round one's rim.
    const double margin = static_cast<double>(radiusOf(shape.parms().stroke)) * std::sqrt(2.0);
    return filledBox(extent->grown(margin));
}

void ShapeStrokeRenderer::render(ShapeSource& shape) {
    if (!maskDirty_) return;
    const std::vector<HostCurve> curves = shape.curves();
    if (curves.empty()) return;
    const ShapeTiming timing;
    ShapeImageParms& parms = shape.parms();
    const Ref<ilSmartImage> mask = makeRef<ilSmartImage>();
    parms.setStrokeMask(mask);
    mask_ = mask;
    maskDirty_ = false;
    if (!parms.strokeActive) return;

    const Ref<ilSmartImage> paper = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
    const Replayed replayed =
        strokeAlong(curves, brushOf(parms.stroke, shape.hostShape()), parms, *paper);
    ilTile clip = widestClip;
    if (parms.clipStroke) (void)shape.bounds(clip);
    takeCoverage(*paper, *mask, clip, parms.opacity);
    if (timing.isActive())
        log("SID: Rendering Stroke mask Performance -- Pts = %d, NumSplines = %d time: %f\n",
            replayed.points, replayed.curves, timing.seconds());
}

void ShapeStrokeRenderer::apply(ShapeSource& shape, const ilTile* clip) {
    ShapeImageParms& parms = shape.parms();
    if (!parms.strokeActive) return;
    if (parms.strokeMask() != mask_.get()) {  // parameters that several shapes share
        markDirty();
        render(shape);
    }
    if (maskDirty_) return;
    paintThrough(parms.strokeMask(), parms.strokeGenerator().generator(), parms.stroke.color, clip);
}

}  // namespace brushwork
