#include "facade/stroke_coverage.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "strokes/stroke/brush_mode.h"

namespace brushwork {
namespace {

constexpr std::uint8_t painted = 255, erased = 0;

std::uint32_t byteProduct(std::uint32_t a, std::uint32_t b) {
    return (a * b + 127) / 255;
}

std::uint8_t laid(std::uint8_t ground, std::uint8_t value, std::uint32_t share) {
    return static_cast<std::uint8_t>((ground * (255 - share) + value * share + 127) / 255);
}

}  // namespace

ilSmartImage* openCoverage(FacadeState& state, LayerStack& stack, Layer& layer,
                           ilSmartImage& target) {
    LiveStroke& stroke = state.stroke;
    const BrushState& brush = state.brush;
    const auto kind = static_cast<npc::BrushKind>(npc::strokeKind(brush.stroke));
    GrayStroke gray;
    gray.target = Ref<ilSmartImage>(&target);
    gray.ground = target.clone();
    gray.coverage = Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
    gray.value = kind == npc::BrushKind::Eraser ? erased : painted;
    const float opacity = brush.wetBlendFactor * brush.stroke.strokeBufferOpacity;
    gray.opacity = opacity >= 0.0f
                       ? static_cast<std::uint32_t>(std::lround(std::min(opacity, 1.0f) * 255.0f))
                       : 0;
    // What is selected may be painted on everywhere.
    if (&layer != stack.selectionLayer()) gray.mask = Ref<ilImage>(stack.paintMask());
    gray.maskX = layer.offsetXInt();
    gray.maskY = layer.offsetYInt();
    stroke.gray = gray;
    return stroke.gray.coverage.get();
}

void layCoverage(LiveStroke& stroke, const ilTile& touched) {
    const GrayStroke& gray = stroke.gray;
    if (!gray.coverage || touched.isEmpty()) return;
    // Some rows at a time: large stamps need no large buffers.
    constexpr std::int32_t rows = 64;
    std::vector<std::uint32_t> paint;
    std::vector<std::uint8_t> bytes, free;
    for (std::int32_t y = touched.y; y < touched.endY(); y += rows) {
        const ilTile band = flatTile(touched.x, y, touched.nx, std::min(rows, touched.endY() - y));
        const auto count = static_cast<std::size_t>(band.nx) * static_cast<std::size_t>(band.ny);
        paint.assign(count, 0);
        bytes.assign(count, 0);
        gray.coverage->readRegion(band, paint.data(), band);
        gray.ground->readRegion(band, bytes.data(), band);
        if (gray.mask) {
            free.assign(count, 0);
            const ilTile placed =
                flatTile(band.x + gray.maskX, band.y + gray.maskY, band.nx, band.ny);
            gray.mask->readRegion(placed, free.data(), placed);
        }
        for (std::size_t n = 0; n < count; ++n) {
            std::uint32_t share = byteProduct(paint[n] >> 24, gray.opacity);
            if (gray.mask) share = byteProduct(share, free[n]);
            bytes[n] = laid(bytes[n], gray.value, share);
        }
        gray.target->writeRegion(band, bytes.data(), band);
    }
}

}  // namespace brushwork
