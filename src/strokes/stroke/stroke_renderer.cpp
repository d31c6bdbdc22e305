#include "strokes/stroke/stroke_renderer.h"

#include <cmath>
#include <utility>

#include "strokes/path/stamp_ranges.h"
#include "strokes/stroke/brush_mode.h"
#include "strokes/stroke/pickup_buffers.h"

namespace brushwork::npc {
namespace {

constexpr std::array<float, 4> opaqueWhite = {1.0f, 1.0f, 1.0f, 1.0f};

bool hasPlace(const StampPoint& point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

}  // namespace

StrokeRenderer::StrokeRenderer(ilImage* high, ilImage* low)
    : StrokeRenderer(std::make_shared<StampRenderer>(high, low)) {}

StrokeRenderer::StrokeRenderer(std::shared_ptr<StampRenderer> stampRenderer)
    : stampRenderer_(std::move(stampRenderer)),
      airbrush_([this] { addPointNoSmoothing(airbrush_.scattered(lastPoint_)); }) {}

StrokeRenderer::~StrokeRenderer() = default;

std::shared_ptr<StrokeRenderer> StrokeRenderer::clone() const {
    auto copy = std::make_shared<StrokeRenderer>(stampRenderer_);
    copySettingsTo(*copy);
    return copy;
}

void StrokeRenderer::copySettingsTo(StrokeRenderer& copy) const {
    copy.params_ = params_;
    copy.blendMode_ = blendMode_;
    copy.keepSource_ = keepSource_;
    copy.setHoldDelay(airbrush_.holdDelay);
    copy.setRepeatInterval(airbrush_.repeatInterval);
}

bool StrokeRenderer::setStampRenderer(const std::shared_ptr<StampRenderer>& stampRenderer) {
    stampRenderer_ = stampRenderer;
    return true;
}

std::shared_ptr<StampRenderer> StrokeRenderer::getStampRenderer() const {
    return stampRenderer_;
}

void StrokeRenderer::setParameters(const StrokeParameters& stroke, const BrushParameters* brush) {
    params_ = stroke;
    if (brush && stampRenderer_) stampRenderer_->setParameters(brush);
}

StrokeParameters* StrokeRenderer::parameters() {
    return &params_;
}

void StrokeRenderer::resetParameters() {
    params_ = {};
}

void StrokeRenderer::setTileCallback(TileCallback callback) {
    tileCallback_ = std::move(callback);
}

void StrokeRenderer::clearTileCallback() {
    setTileCallback({});
}

void StrokeRenderer::setInterpolator(std::shared_ptr<StrokeInterpolator> interpolator) {
    interpolator_ = interpolator ? std::move(interpolator) : std::make_shared<StrokeInterpolator>();
}

void StrokeRenderer::beginStroke(bool flag) {
    if (begun_) return;
    flagAtBegin_ = flag;
    begun_ = true;
    firstPoint_ = true;
    laidStamp_ = false;
    if (stampRenderer_) chooseMode();
    if (!interpolator_) setInterpolator({});
    prepareInterpolator();
}

void StrokeRenderer::chooseMode() {
    const BrushMode chosen = brushModeOf(params_, stampRenderer_->parameters());
    if (chosen.inWhite) stampRenderer_->setColor(opaqueWhite);
    const bool otherMode = hadStroke_ && blendMode_ != chosen.mode;
    if (!keepSource_ || otherMode) stampRenderer_->setSource(nullptr, nullptr, false, 0, 0);
    blendMode_ = chosen.mode;
    hadStroke_ = true;
}

void StrokeRenderer::prepareInterpolator() {
    interpolator_->begin(&params_);
    const float scale =
        stampRenderer_ ? spacingScaleOf(params_, stampRenderer_->parameters()) : params_.spacing;
    interpolator_->setSpacingScale(scale);
}

bool StrokeRenderer::addPoint(const StampPoint& point) {
    if (!stampRenderer_ || !hasPlace(point)) return false;
    StampPoint fed = point;
    fed.angle = wrappedDegrees(fed.angle);
    if (firstPoint_) {
        lastPoint_ = fed;
        firstPoint_ = false;
        pathBegan(fed);
    }
    const bool laid = drawSegment(fed);
    lastPoint_ = fed;
    airbrush_.resetCount();
    if (laid) laidStamp_ = true;
    if (laid && params_.airbrush && begun_) airbrush_.restart();
    return laid;
}

bool StrokeRenderer::addPoint(float x, float y, float radius, float opacity, float flow,
                              float angle, float scaleX, float scaleY, float textureStrength) {
    return addPoint({x, y, radius, opacity, flow, angle, scaleX, scaleY, textureStrength});
}

void StrokeRenderer::addPointNoSmoothing(const StampPoint& point) {
    if (!stampRenderer_ || !hasPlace(point)) return;
    if (layBeside(point)) laidStamp_ = true;
}

void StrokeRenderer::addPointNoSmoothing(float x, float y, float radius, float opacity, float flow,
                                         float angle, float scaleX, float scaleY,
                                         float textureStrength) {
    addPointNoSmoothing({x, y, radius, opacity, flow, angle, scaleX, scaleY, textureStrength});
}

bool StrokeRenderer::drawSegment(StampPoint& point) {
    if (!stampRenderer_ || !interpolator_) return false;
    const bool smearing = smears();
    if (smearing) {
        point = stampRenderer_->quantized(point);
        blendMode_ = BlendModeId::Replace;
    }
    interpolator_->addPoint(point);
    stampRenderer_->begin(blendMode_);
    bool laid = false;
    StampPoint stamp;
    while (interpolator_->nextStamp(stamp)) {
        if (smearing) {
            float x = 0.0f, y = 0.0f;
            interpolator_->stampTangent(x, y);
            fetchDraggedCanvas(*stampRenderer_, stamp, x, y);
        }
        layStamp(stamp);
        laid = true;
    }
    stampRenderer_->end();
    reportTouched();
    return laid;
}

// A brush that drags the canvas stands still here and lays what is there, not a hole.
bool StrokeRenderer::drawStamp(const StampPoint& point) {
    if (!stampRenderer_) return false;
    const bool smearing = smears();
    if (smearing) blendMode_ = BlendModeId::Replace;
    stampRenderer_->begin(blendMode_);
    StampPoint stamp;
    std::int32_t count = 0;
    for (; copyOf(point, count, stamp); ++count) {
        if (smearing) fetchDraggedCanvas(*stampRenderer_, stamp, 0.0f, 0.0f);
        layStamp(stamp);
    }
    stampRenderer_->end();
    reportTouched();
    return count > 0;
}

bool StrokeRenderer::copyOf(const StampPoint& point, std::int32_t n, StampPoint& copy) const {
    if (interpolator_) return interpolator_->copyOf(point, n, copy);
    copy = point;
    return n == 0;
}

void StrokeRenderer::layStamp(const StampPoint& stamp) {
    const ilTile touched = stampRenderer_->renderPoint(stamp);
    if (tileCallback_) touched_.push_back(touched);
}

// After the end of the stamps: who hears of them may look at the target, or share its pages.
void StrokeRenderer::reportTouched() {
    if (touched_.empty()) return;
    std::vector<ilTile> touched;
    touched.swap(touched_);  // a callback might paint, too
    for (const ilTile& tile : touched) report(tile);
    touched.clear();
    touched_.swap(touched);  // keeps the room
}

void StrokeRenderer::report(const ilTile& touched) const {
    if (tileCallback_ && !touched.isEmpty()) tileCallback_(touched);
}

// What a brush picks up at first it finds where it lays its first stamp.
void StrokeRenderer::pathBegan(const StampPoint& first) {
    StampPoint stamp;
    if (copyOf(first, 0, stamp)) preparePickup(stamp.x, stamp.y);
}

bool StrokeRenderer::layBeside(const StampPoint& point) {
    pathBegan(point);
    return drawStamp(point);
}

void StrokeRenderer::layDot(const StampPoint& last) {
    drawStamp(last);
}

void StrokeRenderer::preparePickup(float x, float y) {
    if (stampRenderer_) preparePickupBuffers(*stampRenderer_, blendMode_, params_, x, y);
}

void StrokeRenderer::endStroke() {
    if (!begun_) return;
    airbrush_.stop();
    if (!firstPoint_ && !laidStamp_) layDot(lastPoint_);
    strokeEnded();
    begun_ = false;
}

}  // namespace brushwork::npc
