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
    for (const auto& child : children_) child->setStampRenderer(stampRenderer);
    for (const auto& interpolator : interpolators_) interpolator->setStampRenderer(stampRenderer);
    return true;
}

void SymmetryStrokeRenderer::setParameters(const StrokeParameters& stroke,
                                           const BrushParameters* brush) {
    StrokeRenderer::setParameters(stroke, brush);
    // The stamp renderer has the brush by now.
    for (const auto& child : children_) child->setParameters(stroke, nullptr);
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
        carried_.clear();
    }
    needsRebuild_ = false;
    childrenSeparate_ = separate;
    builtFlipMode_ = yFlipMode();
    children_.resize(count);
    interpolators_.resize(count);
    carried_.resize(count);
    for (auto& interpolator : interpolators_)
        if (!interpolator) interpolator = std::make_shared<SymmetryStrokeInterpolator>(setup_);
}

// Calls work(n) for each child, with what it carries in the stamp renderer.
template <class Work>
void SymmetryStrokeRenderer::inTurn(const Work& work) {
    const std::shared_ptr<StampRenderer> stamps = getStampRenderer();
    const bool carries = childrenSeparate_ && stamps &&
                         (carriesPaint(blendMode()) || stamps->parameters().smearEnabled);
    for (std::size_t n = 0; n < children_.size(); ++n) {
        if (!carries) {
            work(n);
            continue;
        }
        StampSource own = stamps->exchangeSource(std::move(carried_[n]));
        work(n);
        carried_[n] = stamps->exchangeSource(std::move(own));
    }
}

void SymmetryStrokeRenderer::prepareInterpolator() {
    const bool separate = separates();
    resizeChildren(separate ? static_cast<std::size_t>(setup_.sectors) : 1, separate);
    inTurn([&](std::size_t n) {
        const auto& interpolator = interpolators_[n];
        interpolator->setReplica(separate ? static_cast<std::int32_t>(n) : replica_);
        interpolator->setStampRenderer(getStampRenderer());
        const auto child = StrokeRenderer::clone();
        child->setInterpolator(interpolator);
        // This renderer's timer serves all.
        child->setHoldDelay(0);
        child->setTileCallback([this](const ilTile& touched) { report(touched); });
        child->beginStroke(getFlagAtBegin());
        children_[n] = child;
    });
}

// Random changes belong to the stroke, not to a copy: all children draw the same ones.
bool SymmetryStrokeRenderer::drawSegment(StampPoint& point) {
    const std::uint64_t seed = children_.size() > 1 ? freshSeed() : 0;
    bool laid = true;
    inTurn([&](std::size_t n) {
        if (children_.size() > 1) seedRandom(seed);
        if (!children_[n]->addPoint(point)) laid = false;
    });
    return laid;
}

bool SymmetryStrokeRenderer::layBeside(const StampPoint& point) {
    inTurn([&](std::size_t n) { children_[n]->addPointNoSmoothing(point); });
    return !children_.empty();
}

void SymmetryStrokeRenderer::strokeEnded() {
    inTurn([&](std::size_t n) { children_[n]->endStroke(); });
}

}  // namespace brushwork::npc
