// brushwork_stroke_sheet PEN-EVENTS OUT.png: a recorded pen session, painted with one brush of
// every medium, a picture each. Lines of the events: seconds, x, y, pressure.

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "blending/modes/blender_registry.h"
#include "digits.h"
#include "foundation/services/random_source.h"
#include "image/smart/il_smart_image.h"
#include "photograph.h"
#include "strokes/stroke/brush_mode.h"
#include "strokes/stroke/stroke_replay.h"

namespace {

using namespace brushwork;
using Image = Ref<ilSPMemoryImg>;
using Pen = std::vector<std::vector<StrokePointData>>;

constexpr std::int32_t cellX = 960, cellY = 680;
constexpr std::int32_t margin = 8;
constexpr std::int32_t across = 3;
constexpr std::uint8_t paper = 0xF4;
constexpr float hardestPress = 0.55f;  // of the recording; brushes get all of 0 to 1

struct Brush {
    const char* name;
    npc::BrushKind kind;
    std::int32_t tipPreset;
    float radius;
    enum class Tip { Round, Shape, Picture } tip = Tip::Round;
    float opacity = 0.8f;
    float spacing = 1.0f;  // hard edges that are carried along need a small one
};
constexpr auto plainKind = npc::BrushKind{};
constexpr Brush brushes[] = {
    {"hard", plainKind, 8, 8.0f},
    {"soft", plainKind, 0, 22.0f},
    {"marker", npc::BrushKind::Marker, 2, 16.0f},
    {"colourless marker", npc::BrushKind::MarkerColorless, 4, 22.0f},
    {"smudge", npc::BrushKind::SmudgeCanvas, 0, 24.0f, Brush::Tip::Round, 0.8f, 0.2f},
    {"pastel", npc::BrushKind::Pastel, 2, 16.0f, Brush::Tip::Shape},
    {"glow", npc::BrushKind::GlowBrush, 0, 20.0f, Brush::Tip::Round, 0.1f},
    {"image tip", plainKind, 8, 16.0f, Brush::Tip::Shape},
    {"colour tip", plainKind, 8, 16.0f, Brush::Tip::Picture},
    {"eraser", npc::BrushKind::Eraser, 4, 18.0f},
};
constexpr auto brushCount = static_cast<std::int32_t>(std::size(brushes));

Pen readPen(const char* path) {
    Pen pen;
    std::ifstream file(path);
    float time = 0.0f, x = 0.0f, y = 0.0f, pressure = 0.0f;
    bool down = false;
    while (file >> time >> x >> y >> pressure) {
        if (pressure > 0.0f && !down) pen.emplace_back();
        down = pressure > 0.0f;
        if (down)
            pen.back().emplace_back(x, static_cast<float>(cellY) - y, pressure / hardestPress);
    }
    return pen;
}

// A disc with holes, which tells how a tip is turned.
Ref<ImagePaintObj> tipImage(std::int32_t channels) {
    constexpr std::int32_t side = 64;
    const Image image(new ilSPMemoryImg(side, side, channels));
    std::uint8_t* byte = image->data();
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) {
            const bool disc = (x - 32) * (x - 32) + (y - 32) * (y - 32) < 28 * 28;
            const bool on = disc && (x * 7 + y * 13 + x * y / 5) % 11 > 4;
            const std::uint8_t colors[] = {static_cast<std::uint8_t>(x * 4),
                                           static_cast<std::uint8_t>(y * 3), 90, 255};
            for (std::int32_t c = 0; c < channels; ++c)
                *byte++ = !on ? std::uint8_t{0} : channels == 1 ? std::uint8_t{230} : colors[c];
        }
    return Ref<ImagePaintObj>(new ImagePaintObj(image, ImagePaintObj::Levels::Reduced));
}

BrushParameters parametersOf(const Brush& from) {
    BrushParameters brush = BrushParameters::defaults();
    brush.color = {0.75f, 0.2f, 0.12f, 1.0f};
    brush.tipPreset = from.tipPreset;
    brush.radiusLow = 0.1f * from.radius;
    brush.radiusHigh = from.radius;
    brush.opacityLow = 0.05f * from.opacity;
    brush.opacityHigh = from.opacity;
    brush.markerStrength = 0.5f;
    brush.mixRate0 = brush.mixRate1 = brush.mixRate2 = 0.4f;
    brush.proceduralTip = from.tip == Brush::Tip::Round;
    if (from.tip == Brush::Tip::Shape) brush.shapeObject = tipImage(1);
    if (from.tip == Brush::Tip::Picture) brush.colorObject = tipImage(4);
    return brush;
}

// Bars to smudge, erase and shine on.
void drawBars(ilSmartImage& layer) {
    for (std::int32_t n = 0; n < 8; ++n) {
        const std::uint8_t tone[] = {static_cast<std::uint8_t>(30 + 25 * n), 90,
                                     static_cast<std::uint8_t>(200 - 20 * n), 255};
        layer.fillRegion(flatTile(60 + 110 * n, 0, 60, cellY), ilPixel(TypeUChar, 4, tone));
    }
}

Ref<ilSmartImage> emptyPlane() {
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 4)));
}

void paint(const Brush& with, const Pen& pen, ilSmartImage& high, ilSmartImage& low) {
    const BrushParameters brush = parametersOf(with);
    StrokeParameters stroke;
    stroke.spacing = with.spacing;
    stroke.brushKind = static_cast<std::int32_t>(with.kind);
    stroke.isMarker = with.kind == npc::BrushKind::Marker;
    stroke.followDirection = with.tip != Brush::Tip::Round;
    seedRandom(1);
    npc::StrokeRenderer renderer(&high, &low);
    renderer.setParameters(stroke, &brush);
    for (const auto& points : pen) {
        renderer.beginStroke(false);
        for (const StrokePointData& point : points)
            renderer.addPoint(npc::replayedPoint(point, brush, {}));
        renderer.endStroke();
    }
}

void lay(ilSPMemoryImg& target, ilSmartImage& layer, BlendModeId mode) {
    const auto blender = npc::createBlender(mode);
    blender->setDestination(&target, 0, 0);
    blender->setSource(&layer, 0, 0, false);
    blender->run(target.box());
}

Image paintedPicture(const Brush& with, const Pen& pen) {
    const Image picture(new ilSPMemoryImg(cellX, cellY, 4));
    const std::uint8_t white[] = {paper, paper, paper, 255};
    picture->fillRegion(picture->box(), ilPixel(TypeUChar, 4, white));
    const auto high = emptyPlane(), low = emptyPlane();
    const bool erases = with.kind == npc::BrushKind::Eraser;
    if (erases) {
        // The eraser paints coverage, which is then taken out of the layer.
        const auto layer = emptyPlane();
        drawBars(*layer);
        paint(with, pen, *high, *low);
        const Image cleared(new ilSPMemoryImg(cellX, cellY, 4));
        layer->readRegion(cleared->box(), cleared->data(), cleared->box());
        lay(*cleared, *high, BlendModeId::Clear);
        const auto blender = npc::createBlender(BlendModeId::Normal);
        blender->setDestination(picture.get(), 0, 0);
        blender->setSource(cleared.get(), 0, 0, false);
        blender->run(picture->box());
        return picture;
    }
    drawBars(*high);
    paint(with, pen, *high, *low);
    lay(*picture, *high, BlendModeId::Normal);
    return picture;
}

Image sheetOf(const Pen& pen) {
    constexpr std::int32_t down = (brushCount + across - 1) / across;
    Image sheet(
        new ilSPMemoryImg(across * (cellX + margin) + margin, down * (cellY + margin) + margin, 4));
    const std::uint8_t gray[] = {0x38, 0x38, 0x38, 255};
    sheet->fillRegion(sheet->box(), ilPixel(TypeUChar, 4, gray));
    for (std::int32_t n = 0; n < brushCount; ++n) {
        const std::int32_t x = margin + n % across * (cellX + margin);
        const std::int32_t y = margin + (down - 1 - n / across) * (cellY + margin);
        const Image picture = paintedPicture(brushes[n], pen);
        sheet->copyRegion(flatTile(x, y, cellX, cellY), *picture, 0, 0, 0, nullptr,
                          CopyDirection::FromOther);
        sheet::drawNumber(*sheet, x, y, n + 1);
        std::printf("%3d  %s\n", n + 1, brushes[n].name);
    }
    return sheet;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s PEN-EVENTS OUT.png\n", argv[0]);
        return 2;
    }
    const Pen pen = readPen(argv[1]);
    if (pen.empty()) {
        std::fprintf(stderr, "%s: no pen events\n", argv[1]);
        return 3;
    }
    const Image sheet = sheetOf(pen);
    std::string trouble;
    if (!sheet::savePhotograph(argv[2], *sheet, trouble)) {
        std::fprintf(stderr, "%s: %s\n", argv[2], trouble.c_str());
        return 4;
    }
    return 0;
}
