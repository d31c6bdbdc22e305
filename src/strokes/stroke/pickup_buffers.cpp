#include "strokes/stroke/pickup_buffers.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "strokes/stamp/stamp_key.h"
#include "strokes/stroke/brush_mode.h"

namespace brushwork::npc {
namespace {

using Buffer = Ref<ilSPMemoryImg>;

constexpr float largestHalf = 4000.0f;  // three times the largest stamp with all its jitter
constexpr float farthest = 1.0e9f;

std::int32_t wholePixels(float value, float low, float high) {
    if (!(value > low)) value = std::isnan(value) ? 0.0f : low;
    return static_cast<std::int32_t>(std::min(value, high));
}

std::int32_t placeOf(float value) {
    return wholePixels(value, -farthest, farthest);
}

std::int32_t pickupHalf(const StrokeParameters& stroke, const BrushParameters& brush) {
    const float widest = std::ceil((stroke.radiusJitter / 20.0f + 1.0f) *
                                   std::max(brush.radiusLow, brush.radiusHigh));
    const float factor = brush.proceduralTip ? radiusCompensation(brush.solidShare()) : 1.0f;
    const float scaled = std::trunc(widest * stroke.pickupScale);
    return wholePixels(scaled * factor, 0.0f, largestHalf);
}

// Null without memory.
Buffer newBuffer(std::int32_t side) {
    Buffer buffer = makeRef<ilSPMemoryImg>(side, side, 4);
    if (!buffer->data()) buffer.reset();
    return buffer;
}

void fill(ilImage& image, std::uint32_t color) {
    std::uint8_t bytes[4];
    for (std::size_t n = 0; n < 4; ++n) bytes[n] = static_cast<std::uint8_t>(color >> (8 * n));
    image.fillRegion(image.box(), ilPixel(TypeUChar, 4, bytes));
}

Buffer filledBuffer(std::int32_t side, std::uint32_t color) {
    const Buffer buffer = newBuffer(side);
    if (buffer) fill(*buffer, color);
    return buffer;
}

// Places outside a canvas that has bounds read as its fill.
void fetch(ilImage* canvas, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
           ilSPMemoryImg& buffer) {
    const bool plain = canvas && canvas->channels() == 4 && canvas->dataType() == TypeUChar;
    if (!plain) return fill(buffer, 0);
    const ilTile frame = flatTile(x, y, buffer.sizeX(), buffer.sizeY());
    canvas->readRegion(intersection(frame, flatTile(x, y, width, height)), buffer.data(), frame);
}

Buffer canvasBuffer(const StampRenderer& renderer, std::int32_t side, float x, float y) {
    const Buffer buffer = newBuffer(side);
    const auto half = static_cast<float>((side - 2) / 2);
    if (buffer)
        fetch(renderer.highTarget().get(), placeOf(x - half + 0.5f), placeOf(y - half + 0.5f), side,
              side, *buffer);
    return buffer;
}

void carry(StampRenderer& renderer, const Buffer& high, const Buffer& low) {
    renderer.setCarriedSource(high.get(), low.get());
}

// Both or none.
void carryBoth(StampRenderer& renderer, const Buffer& high, const Buffer& low) {
    if (high && low)
        carry(renderer, high, low);
    else
        carry(renderer, {}, {});
}

// 0 to 1
float meanAlpha(ilSPMemoryImg& buffer) {
    const std::uint64_t pixels = buffer.byteSize() / 4;
    std::uint64_t sum = 0;
    for (std::uint64_t n = 0; n < pixels; ++n) sum += buffer.data()[4 * n + 3];
    return static_cast<float>(sum / pixels & 0xFF) / 255.0f;
}

// A stick on bare paper begins with less of its colour.
std::uint32_t dustColor(const BrushParameters& brush, float paperAlpha) {
    const auto c = static_cast<float>(std::pow(static_cast<double>(brush.mixRate2), 0.1));
    const float part = (1.0f - (1.0f - c)) * paperAlpha + (1.0f - c);
    std::array<float, 4> color = brush.color;
    for (float& channel : color) {
        channel *= part;
        if (channel < 0.0001f) channel = 0.0f;
        if (channel > 0.9999f) channel = 1.0f;
    }
    return packedColor(color);
}

void prepareSmudge(StampRenderer& renderer, std::int32_t side, const StrokeParameters& stroke,
                   float x, float y) {
    const bool ofColor = stroke.brushKind == static_cast<std::int32_t>(BrushKind::SmudgeColor);
    const Buffer high = ofColor ? filledBuffer(side, packedColor(renderer.parameters().color))
                                : canvasBuffer(renderer, side, x, y);
    carryBoth(renderer, high, filledBuffer(side, 0));
}

void preparePastel(StampRenderer& renderer, std::int32_t side, float x, float y) {
    const Buffer high = canvasBuffer(renderer, side, x, y);
    if (high) fill(*high, dustColor(renderer.parameters(), meanAlpha(*high)));
    carryBoth(renderer, high, filledBuffer(side, 0));
}

// Wet felt stays wet from stroke to stroke, if the stroke allows it.
void prepareColorless(StampRenderer& renderer, std::int32_t side, bool clear) {
    const StampSource source = renderer.source();
    const auto isEnough = [side](const Ref<ilImage>& image) {
        return image && image->sizeX() >= side && image->sizeY() >= side;
    };
    if (!isEnough(source.high) || !isEnough(source.low))
        return carryBoth(renderer, filledBuffer(side, 0), filledBuffer(side, 0));
    if (clear) {
        fill(*source.high, 0);
        fill(*source.low, 0);
    }
    renderer.setCarriedSource(source.high.get(), source.low.get());
}

}  // namespace

std::int32_t pickupSide(const StrokeParameters& stroke, const BrushParameters& brush) {
    return 2 * pickupHalf(stroke, brush) + 2;
}

void preparePickupBuffers(StampRenderer& renderer, BlendModeId mode, const StrokeParameters& stroke,
                          float x, float y) {
    const BrushParameters& brush = renderer.parameters();
    const std::int32_t side = pickupSide(stroke, brush);
    switch (mode) {
        case BlendModeId::Smudge: prepareSmudge(renderer, side, stroke, x, y); break;
        case BlendModeId::Pastel: preparePastel(renderer, side, x, y); break;
        case BlendModeId::GlowBrush:
            carry(renderer, filledBuffer(side, packedColor(brush.color)), {});
            break;
        case BlendModeId::MarkerColorless:
            prepareColorless(renderer, side, stroke.clearPickupBuffers);
            break;
        default:
            // Filled for each stamp, from its corner on.
            if (brush.smearEnabled)
                renderer.setSource(filledBuffer(side, 0).get(), nullptr, false, 0, 0);
    }
}

void fetchDraggedCanvas(StampRenderer& renderer, const StampPoint& stamp, float tangentX,
                        float tangentY) {
    auto* const buffer = dynamic_cast<ilSPMemoryImg*>(renderer.source().high.get());
    if (!buffer || !buffer->data()) return;
    const std::int32_t across = wholePixels(std::ceil(2.0f * stamp.radius), 0.0f, largestHalf);
    const auto half = static_cast<float>((across + 2) >> 1);
    const std::int32_t size = across + 3;
    fetch(renderer.highTarget().get(), placeOf(std::floor(stamp.x - half - tangentX)),
          placeOf(std::floor(stamp.y - half - tangentY)), size, size, *buffer);
}

}  // namespace brushwork::npc
