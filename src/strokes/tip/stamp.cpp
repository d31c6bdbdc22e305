#include "strokes/tip/stamp.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/profiles/poly_1d.h"
#include "image/work/il_const_img.h"
#include "strokes/path/stamp_ranges.h"

namespace brushwork {
namespace {

constexpr float smallestRadius = 0.01f;
constexpr float largestRadius = 511.0f;
constexpr float radiusSteps = 16.0f;  // a pixel
constexpr float shareSteps = 256.0f;

// Not-a-number counts as 0.
float shareOf(float value) {
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

// To the nearest step, halves upward. Values are 0 and more.
float stepped(float value, float steps) {
    const float scaled = value * steps;
    const float whole = floorOf(scaled);
    return (scaled - whole >= 0.5f ? whole + 1.0f : whole) / steps;
}

template <class T>
bool replaced(T& held, T value) {
    const T old = std::exchange(held, value);
    return old != value;
}

Ref<GenericFunction> smoothFallOff() {
    return makeRef<Poly1D>(Poly1D::Coefficients{1.0f, 0.0f, 1.42525f, -7.01f, 4.587f});
}

Ref<ImagePaintObj> onePixel(const std::array<std::uint8_t, 4>& bytes) {
    return makeRef<ImagePaintObj>(makeRef<ilConstImg>(ilPixel(TypeUChar, 4, bytes.data())),
                                  ImagePaintObj::Levels::Reduced);
}

Ref<ImagePaintObj> onePixel(const std::array<float, 4>& shares, float rounding) {
    std::array<std::uint8_t, 4> bytes;
    for (std::size_t i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(shares[i] * 255.0f + rounding);
    return onePixel(bytes);
}

}  // namespace

Stamp::Stamp() {
    values_.fallOff = smoothFallOff();
    values_.colorObject = onePixel({});
    observeSources();
}

Stamp::Stamp(const Stamp& other)
    : Resource(), Observable(other), Observer(other), values_(other.values_) {
    observeSources();
}

Stamp::Stamp(const StampArguments& arguments) {
    values_.radius = heldRadius(arguments.radius);
    values_.colorObject = arguments.colorObject;
    values_.modeValue = arguments.modeValue;
    values_.fallOff = arguments.fallOff;
    values_.fallOffValue = arguments.fallOffValue;
    values_.shapeObject = arguments.shapeObject;
    values_.opacity = heldShare(arguments.opacity);
    values_.flow = 0.0f;
    values_.sampleValue = arguments.sampleValue;
    const float strength = arguments.strength;
    values_.strength = std::isnan(strength) ? 0.0f : std::clamp(strength, -1.0f, 1.0f);
    values_.value2 = arguments.value2;
    values_.flagA = arguments.flagA;
    values_.flagB = arguments.flagB;
    observeSources();
}

Stamp::~Stamp() {
    replaceSource(values_.colorObject, {});
    replaceSource(values_.secondColorObject, {});
    replaceSource(values_.shapeObject, {});
}

void Stamp::observeSources() {
    for (const auto* source :
         {&values_.colorObject, &values_.secondColorObject, &values_.shapeObject})
        if (*source) (*source)->addObserver(this);
}

float Stamp::heldRadius(float radius) const {
    const float positive = radius > 0.0f ? radius : smallestRadius;
    return values_.quantize ? stepped(std::min(positive, largestRadius), radiusSteps) : positive;
}

float Stamp::heldShare(float share) const {
    const float clamped = shareOf(share);
    return values_.quantize ? stepped(clamped, shareSteps) : clamped;
}

void Stamp::change(StampChange change) {
    if (batchDepth_ > 0) {
        ++batchedChanges_;
        return;
    }
    lastChange_ = change;
    notifyObservers();
}

void Stamp::beginChanges() {
    ++batchDepth_;
}

void Stamp::endChanges() {
    --batchDepth_;
    if (batchDepth_ > 0) return;
    const bool wasOpen = std::exchange(batchDepth_, 0) == 0;
    batchedChanges_ = 0;
    if (wasOpen) change(StampChange::All);
}

void Stamp::observableChanged(Observable& source) {
    const auto is = [&source](const Ref<ImagePaintObj>& object) {
        return static_cast<Observable*>(object.get()) == &source;
    };
    if (is(values_.colorObject))
        change(StampChange::ColorObject);
    else if (is(values_.secondColorObject))
        change(StampChange::SecondColorObject);
    else if (is(values_.shapeObject))
        change(StampChange::ShapeObject);
}

void Stamp::setRadius(float radius) {
    if (replaced(values_.radius, heldRadius(radius))) change(StampChange::Radius);
}

void Stamp::setFallOff(const Ref<GenericFunction>& fallOff) {
    if (values_.fallOff == fallOff) return;
    values_.fallOff = fallOff;
    change(StampChange::FallOff);
}

bool Stamp::replaceSource(Ref<ImagePaintObj>& source, const Ref<ImagePaintObj>& object) {
    if (source == object) return false;
    const Ref<ImagePaintObj> old = std::exchange(source, object);
    if (old) old->removeObserver(this);
    if (source) source->addObserver(this);
    return true;
}

void Stamp::setSource(Ref<ImagePaintObj>& source, const Ref<ImagePaintObj>& object,
                      StampChange code) {
    if (replaceSource(source, object)) change(code);
}

void Stamp::setColorObject(const Ref<ImagePaintObj>& object) {
    setSource(values_.colorObject, object, StampChange::ColorObject);
}

void Stamp::setSecondColorObject(const Ref<ImagePaintObj>& object) {
    setSource(values_.secondColorObject, object, StampChange::SecondColorObject);
}

void Stamp::setShapeObject(const Ref<ImagePaintObj>& object) {
    setSource(values_.shapeObject, object, StampChange::ShapeObject);
}

void Stamp::setColor(float a, float b, float c, float d) {
    const std::array<float, 4> shares{shareOf(a), shareOf(b), shareOf(c), shareOf(d)};
    std::reverse_copy(shares.begin(), shares.end(), values_.color.begin());
    setColorObject(onePixel(shares, 0.5f));
}

void Stamp::setSecondColor(float a, float b, float c, float d) {
    setSecondColorObject(onePixel({shareOf(a), shareOf(b), shareOf(c), shareOf(d)}, 0.0f));
}

void Stamp::setModeValue(std::int32_t value) {
    if (replaced(values_.modeValue, value)) change(StampChange::ModeValue);
}

void Stamp::setOpacity(float opacity) {
    setOpacityFlow(opacity, values_.flow, false);
}

void Stamp::setOpacityFlow(float opacity, float flow, bool link) {
    const bool otherOpacity = replaced(values_.opacity, heldShare(opacity));
    const bool otherFlow = replaced(values_.flow, heldShare(flow));
    const bool otherLink = replaced(values_.opacityLink, link);
    if (otherOpacity || otherFlow || otherLink) change(StampChange::Opacity);
}

void Stamp::setRadiusAndOpacity(float radius, float opacity) {
    beginChanges();
    setRadius(radius);
    setOpacity(opacity);
    endChanges();
}

void Stamp::resetMatrix() {
    values_.matrix = Values{}.matrix;
    change(StampChange::Matrix);
}

void Stamp::assign(const Stamp& other) {
    const Values taken = other.values_;
    replaceSource(values_.shapeObject, taken.shapeObject);
    replaceSource(values_.colorObject, taken.colorObject);
    replaceSource(values_.secondColorObject, taken.secondColorObject);
    values_ = taken;
    if (values_.quantize) {
        values_.radius = stepped(values_.radius, radiusSteps);
        values_.opacity = stepped(values_.opacity, shareSteps);
        values_.flow = stepped(values_.flow, shareSteps);
    }
    change(StampChange::All);
}

}  // namespace brushwork
