#include "strokes/stroke/symmetry_stroke_renderer.h"

#include <utility>

#include "foundation/services/random_source.h"
#include "strokes/path/stroke_switches.h"

namespace brushwork::npc {
namespace {

std::uint64_t freshSeed() {
    std::uint64_t seed = 0;
    for (int part = 0; part < 3; ++part)
        seed = seed << 15 | static_cast<std::uint64_t>(randomValue());
    return seed;
}

}  // namespace

SymmetryStrokeRenderer::~SymmetryStrokeRenderer() = default;

std::shared_ptr<StrokeRenderer> SymmetryStrokeRenderer::clone() const {
    auto copy = std::make_shared<SymmetryStrokeRenderer>(getStampRenderer());
    copySettingsTo(*copy);
    copy->setup_ = setup_;
    copy->replica_ = replica_;
    copy->separateRenderers_ = separateRenderers_;
    return copy;
}

void SymmetryStrokeRenderer::setSymmetry(const SymmetrySetup& setup) {
    const SymmetrySetup usable = usableSymmetry(setup);
    if (usable == setup_) return;
    setup_ = usable;
    needsRebuild_ = true;
}

void SymmetryStrokeRenderer::setSymmetry(bool rotationOnly, std::int32_t sectors, float centerX,
                                         float centerY, float axisX, float axisY,
                                         bool pinToSector) {
    setSymmetry({rotationOnly, sectors, centerX, centerY, axisX, axisY, pinToSector});
}

void SymmetryStrokeRenderer::setReplica(std::int32_t replica) {
    replica_ = replica;
}

bool SymmetryStrokeRenderer::setStampRenderer(const std::shared_ptr<StampRenderer>& stampRenderer) {
    StrokeRenderer::setStampRenderer(stampRenderer);
    for (std::size_t n = 0; n < children_.size(); ++n) {
        const auto stamps = stampsOf(n, childrenSeparate_);
        children_[n]->setStampRenderer(stamps);
        interpolators_[n]->setStampRenderer(stamps);
    }
    return true;
}

void SymmetryStrokeRenderer::setParameters(const StrokeParameters& stroke,
                                           const BrushParameters* brush) {
    StrokeRenderer::setParameters(stroke, brush);
    // A single child shares the stamp renderer, which has the brush by now.
    for (const auto& child : children_)
        child->setParameters(stroke, childrenSeparate_ ? brush : nullptr);
}

void SymmetryStrokeRenderer::resetParameters() {
    StrokeRenderer::resetParameters();
    for (const auto& child : children_) child->resetParameters();
}

// Copies that carry paint would mix what they pick up if they shared it.
bool SymmetryStrokeRenderer::separates() const {
    const bool one = replica_ >= 0 && replica_ < setup_.sectors;
    return !one && getStampRenderer() && (separateRenderers_ || carriesPaint(blendMode()));
}

void SymmetryStrokeRenderer::resizeChildren(std::size_t count, bool separate) {
    if (needsRebuild_ || separate != childrenSeparate_ || builtFlipMode_ != yFlipMode()) {
        children_.clear();
        interpolators_.clear();
    }
    needsRebuild_ = false;
    childrenSeparate_ = separate;
    builtFlipMode_ = yFlipMode();
    children_.resize(count);
    interpolators_.resize(count);
    for (auto& interpolator : interpolators_)
        if (!interpolator) interpolator = std::make_shared<SymmetryStrokeInterpolator>(setup_);
}

// The one a child has, or will have, on the present targets and with the present brush.
std::shared_ptr<StampRenderer> SymmetryStrokeRenderer::stampsOf(std::size_t child,
                                                                bool separate) const {
    const std::shared_ptr<StampRenderer> own = getStampRenderer();
    if (!separate || !own) return own;
    std::shared_ptr<StampRenderer> stamps;
    if (children_[child]) stamps = children_[child]->getStampRenderer();
    if (!stamps) stamps = std::make_shared<StampRenderer>(nullptr, nullptr);
    bindStamps(*stamps);
    return stamps;
}

void SymmetryStrokeRenderer::bindStamps(StampRenderer& stamps) const {
    const std::shared_ptr<StampRenderer> own = getStampRenderer();
    stamps.setTargets(own->highTarget().get(), own->lowTarget().get());
    stamps.setCache(own->cache());
    stamps.setCacheEnabled(own->cacheEnabled());
    stamps.setLockAlpha(own->lockAlpha());
    stamps.setParameters(&own->parameters());
    if (carriesPaint(blendMode())) return;
    const StampSource& source = own->source();
    stamps.setSource(source.high.get(), source.low.get(), source.place == StampSource::Place::Layer,
                     source.x, source.y);
}

void SymmetryStrokeRenderer::prepareInterpolator() {
    const bool separate = separates();
    resizeChildren(separate ? static_cast<std::size_t>(setup_.sectors) : 1, separate);
    for (std::size_t n = 0; n < children_.size(); ++n) {
        const auto stamps = stampsOf(n, separate);
        const auto& interpolator = interpolators_[n];
        interpolator->setReplica(separate ? static_cast<std::int32_t>(n) : replica_);
        interpolator->setStampRenderer(stamps);
        const auto child = StrokeRenderer::clone();
        child->setStampRenderer(stamps);
        child->setInterpolator(interpolator);
        // This renderer's timer serves all.
        child->setHoldDelay(0);
        child->setTileCallback([this](const ilTile& touched) { report(touched); });
        child->beginStroke(getFlagAtBegin());
        children_[n] = child;
    }
}

// Random changes belong to the stroke, not to a copy: all children draw the same ones.
bool SymmetryStrokeRenderer::drawSegment(StampPoint& point) {
    const std::uint64_t seed = children_.size() > 1 ? freshSeed() : 0;
    bool laid = true;
    for (const auto& child : children_) {
        if (children_.size() > 1) seedRandom(seed);
        if (!child->addPoint(point)) laid = false;
    }
    return laid;
}

bool SymmetryStrokeRenderer::layBeside(const StampPoint& point) {
    for (const auto& child : children_) child->addPointNoSmoothing(point);
    return !children_.empty();
}

void SymmetryStrokeRenderer::strokeEnded() {
    for (const auto& child : children_) child->endStroke();
}

}  // namespace brushwork::npc
