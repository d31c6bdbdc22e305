// brushwork_symmetry_sheet PEN-EVENTS OUT.png: a recorded pen session under eight symmetries, and
// three papers under four brushes. Lines of the events: seconds, x, y, pressure.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

#include "blending/modes/blender_registry.h"
#include "brushwork/brush_texture_parameters.h"
#include "digits.h"
#include "foundation/services/random_source.h"
#include "image/smart/il_smart_image.h"
#include "photograph.h"
#include "strokes/stroke/brush_mode.h"
#include "strokes/stroke/stroke_replay.h"
#include "strokes/stroke/symmetry_stroke_renderer.h"
#include "strokes/tip/texture_generator.h"

namespace {

using namespace brushwork;
using Image = Ref<ilSPMemoryImg>;
using PenStroke = std::vector<StrokePointData>;
using Pen = std::vector<PenStroke>;

constexpr std::int32_t cell = 480;
constexpr std::int32_t margin = 8;
constexpr std::int32_t across = 4;
constexpr float middle = 0.5f * cell;
constexpr float hardestPress = 0.55f;  // of the recording; brushes get all of 0 to 1

Pen readPen(const char* path) {
    Pen pen;
    std::ifstream file(path);
    float time = 0.0f, x = 0.0f, y = 0.0f, pressure = 0.0f;
    bool down = false;
    while (file >> time >> x >> y >> pressure) {
        if (pressure > 0.0f && !down) pen.emplace_back();
        down = pressure > 0.0f;
        if (down) pen.back().emplace_back(x, -y, pressure / hardestPress);
    }
    return pen;
}

// The session, small, with its middle at a place of the cell.
Pen placed(const Pen& pen, float x, float y, float width) {
    float left = 1e9f, right = -1e9f, bottom = 1e9f, top = -1e9f;
    for (const PenStroke& stroke : pen)
        for (const StrokePointData& point : stroke) {
            left = std::min(left, point.x);
            right = std::max(right, point.x);
            bottom = std::min(bottom, point.y);
            top = std::max(top, point.y);
        }
    const float scale = width / std::max(right - left, 1.0f);
    Pen moved = pen;
    for (PenStroke& stroke : moved)
        for (StrokePointData& point : stroke) {
            point.x = x + scale * (point.x - 0.5f * (left + right));
            point.y = y + scale * (point.y - 0.5f * (bottom + top));
        }
    return moved;
}

// An F, which tells how a tip is turned and mirrored.
Ref<ImagePaintObj> letterTip() {
    constexpr std::int32_t side = 64;
    const auto image = makeRef<ilSPMemoryImg>(side, side, 1);
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) {
            const bool stem = x >= 16 && x < 28 && y >= 6 && y < 58;
            const bool arms =
                x >= 16 && ((y >= 46 && y < 58 && x < 50) || (y >= 26 && y < 36 && x < 42));
            image->data()[y * side + x] = stem || arms ? 255 : 0;
        }
    return makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
}

Ref<ImagePaintObj> dustTip() {
    constexpr std::int32_t side = 64;
    const auto image = makeRef<ilSPMemoryImg>(side, side, 1);
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) {
            const bool disc = (x - 32) * (x - 32) + (y - 32) * (y - 32) < 28 * 28;
            const bool on = disc && (x * 7 + y * 13 + x * y / 5) % 11 > 4;
            image->data()[y * side + x] = on ? 230 : 0;
        }
    return makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
}

struct Brush {
    const char* name;
    npc::BrushKind kind{};
    std::int32_t tipPreset = 8;
    float radius = 6.0f;
    enum class Tip { Round, Dust, Letter } tip = Tip::Round;
    float opacity = 0.9f;
    float spacing = 1.0f;
};

BrushParameters parametersOf(const Brush& from, const std::array<float, 4>& color) {
    BrushParameters brush = BrushParameters::defaults();
    brush.color = color;
    brush.tipPreset = from.tipPreset;
    brush.radiusLow = 0.3f * from.radius;
    brush.radiusHigh = from.radius;
    brush.opacityLow = 0.2f * from.opacity;
    brush.opacityHigh = from.opacity;
    brush.markerStrength = 0.5f;
    brush.mixRate0 = brush.mixRate1 = brush.mixRate2 = 0.4f;
    brush.proceduralTip = from.tip == Brush::Tip::Round;
    if (from.tip == Brush::Tip::Dust) brush.shapeObject = dustTip();
    if (from.tip == Brush::Tip::Letter) brush.shapeObject = letterTip();
    return brush;
}

StrokeParameters strokeOf(const Brush& from) {
    StrokeParameters stroke;
    stroke.spacing = from.spacing;
    stroke.brushKind = static_cast<std::int32_t>(from.kind);
    stroke.isMarker = from.kind == npc::BrushKind::Marker;
    stroke.followDirection = from.tip == Brush::Tip::Letter;
    return stroke;
}

Image emptyCell() {
    auto picture = makeRef<ilSPMemoryImg>(cell, cell, 4);
    picture->fillRegion(picture->box(), ilPixel(TypeUChar, 4));
    return picture;
}

Image onPaper(ilSPMemoryImg& painted) {
    auto picture = emptyCell();
    const std::uint8_t white[] = {0xF4, 0xF4, 0xF0, 255};
    picture->fillRegion(picture->box(), ilPixel(TypeUChar, 4, white));
    const auto blender = npc::createBlender(BlendModeId::Normal);
    blender->setDestination(picture.get(), 0, 0);
    blender->setSource(&painted, 0, 0, false);
    blender->run(picture->box());
    return picture;
}

struct Pattern {
    const char* name;
    bool mirrorX, mirrorY, rotateOnly, radial;
    std::int32_t sectors;
    float angle;
    bool pinned;
    Brush brush;
};
constexpr float third = std::numbers::pi_v<float> / 3.0f;
const Pattern patterns[] = {
    {"mirror across x, letters",
     true,
     false,
     false,
     false,
     2,
     0.0f,
     false,
     {"", {}, 8, 13.0f, Brush::Tip::Letter, 0.9f, 9.0f}},
    {"mirror across y, soft", false, true, false, false, 2, 0.0f, false, {"", {}, 0, 12.0f}},
    {"both mirrors, letters",
     true,
     true,
     false,
     false,
     4,
     0.0f,
     false,
     {"", {}, 8, 13.0f, Brush::Tip::Letter, 0.9f, 9.0f}},
    {"turned 3, letters",
     false,
     false,
     true,
     false,
     3,
     0.2f,
     false,
     {"", {}, 8, 13.0f, Brush::Tip::Letter, 0.9f, 9.0f}},
    {"turned 12, hard", false, false, true, false, 12, 0.0f, false, {"", {}, 8, 3.0f}},
    {"radial 3, smudge",
     false,
     false,
     false,
     true,
     3,
     0.0f,
     false,
     {"", npc::BrushKind::SmudgeCanvas, 0, 16.0f, Brush::Tip::Round, 0.9f, 0.2f}},
    {"radial 16, pastel",
     false,
     false,
     false,
     true,
     16,
     0.3f,
     false,
     {"", npc::BrushKind::Pastel, 2, 6.0f, Brush::Tip::Dust}},
    {"radial 3, pinned, hard", false, false, false, true, 3, third / 2.0f, true, {"", {}, 8, 4.0f}},
};

// Bands to smudge, alike in every sector.
void drawBands(ilSPMemoryImg& layer) {
    for (std::int32_t y = 0; y < cell; ++y)
        for (std::int32_t x = 0; x < cell; ++x) {
            const auto reach =
                static_cast<std::int32_t>(std::hypot(x + 0.5 - middle, y + 0.5 - middle));
            if (reach / 14 % 2 == 0 || reach > 230) continue;
            const std::uint8_t color[] = {static_cast<std::uint8_t>(reach), 90,
                                          static_cast<std::uint8_t>(240 - reach), 255};
            std::copy_n(color, 4, layer.data() + 4 * (y * cell + x));
        }
}

Image patternPicture(const Pattern& pattern, const Pen& pen) {
    const auto symmetry = makeRef<Symmetry>();
    symmetry->setMirrorX(pattern.mirrorX);
    symmetry->setMirrorY(pattern.mirrorY);
    symmetry->setRotateOnly(pattern.rotateOnly);
    symmetry->setRadial(pattern.radial);
    symmetry->setSectorCount(pattern.sectors);
    symmetry->setRadialAngle(pattern.angle);
    symmetry->setPinToSector(pattern.pinned);
    symmetry->setCenter(middle, middle);

    const BrushParameters brush = parametersOf(pattern.brush, {0.7f, 0.16f, 0.12f, 1.0f});
    const auto high = emptyCell(), low = emptyCell();
    if (pattern.brush.kind == npc::BrushKind::SmudgeCanvas) drawBands(*high);
    npc::SymmetryStrokeRenderer renderer(high.get(), low.get());
    renderer.setSymmetry(symmetrySetup(*symmetry, middle, middle).value());
    renderer.setParameters(strokeOf(pattern.brush), &brush);
    const bool isMirrored = pattern.mirrorX || pattern.mirrorY;
    const float width = isMirrored ? 230.0f : pattern.pinned ? 190.0f : 150.0f;
    for (const PenStroke& points : placed(pen, middle + 100.0f, middle + 95.0f, width)) {
        renderer.beginStroke(false);
        for (const StrokePointData& point : points)
            renderer.addPoint(npc::replayedPoint(point, brush, {}));
        renderer.endStroke();
    }
    return onPaper(*high);
}

// Grains, each a tile that meets itself.
Image paperGrain(std::int32_t which) {
    constexpr std::int32_t side = 128;
    auto grain = makeRef<ilSPMemoryImg>(side, side, 1);
    std::vector<float> height(side * side);
    const auto at = [&](std::int32_t x, std::int32_t y) -> float& {
        return height[static_cast<std::size_t>((y & (side - 1)) * side + (x & (side - 1)))];
    };
    for (float& value : height)
        value = static_cast<float>(randomValue()) / static_cast<float>(randomMaximum) - 0.5f;
    const std::int32_t passes = which == 0 ? 5 : 1;
    for (std::int32_t pass = 0; pass < passes; ++pass) {
        const std::vector<float> before = height;
        const auto old = [&](std::int32_t x, std::int32_t y) {
            return before[static_cast<std::size_t>((y & (side - 1)) * side + (x & (side - 1)))];
        };
        for (std::int32_t y = 0; y < side; ++y)
            for (std::int32_t x = 0; x < side; ++x)
                at(x, y) = 0.32f * (old(x, y) + old(x - 1, y) + old(x + 1, y) + old(x, y - 1) +
                                    old(x, y + 1));
    }
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) {
            const auto wave = [](std::int32_t place, std::int32_t length) {
                return std::sin(2.0f * std::numbers::pi_v<float> * static_cast<float>(place) /
                                static_cast<float>(length));
            };
            float value = 0.5f;
            if (which == 0) value += 0.55f * at(x, y);
            if (which == 1)
                value +=
                    ((x / 8 + y / 8) % 2 ? wave(x, 16) * wave(x, 16) : wave(y, 16) * wave(y, 16)) *
                        0.5f -
                    0.2f + 0.15f * at(x, y);
            if (which == 2) value += 0.35f * wave(y, 8) + 0.1f * wave(x, 64) + 0.3f * at(x, y);
            grain->data()[y * side + x] =
                static_cast<std::uint8_t>(std::clamp(value, 0.0f, 1.0f) * 255.0f);
        }
    return grain;
}

struct Paper {
    const char* name;
    float scaleX, scaleY;
    bool invert;
};
constexpr Paper papers[] = {
    {"cold pressed, 1.4", 1.4f, 1.4f, false},
    {"canvas, 1.3", 1.3f, 1.3f, false},
    {"laid, 1 by 1.3, inverted, a new place for each stroke", 1.0f, 1.3f, true}};
const Brush paperBrushes[] = {{"hard", {}, 8, 26.0f, Brush::Tip::Round, 1.0f},
                              {"soft", {}, 0, 34.0f, Brush::Tip::Round, 0.5f},
                              {"marker", npc::BrushKind::Marker, 2, 26.0f},
                              {"dust", {}, 8, 26.0f, Brush::Tip::Dust, 0.6f}};

Image paperPicture(std::int32_t paper, const Brush& with) {
    const auto texture = makeRef<BrushTextureParameters>();
    seedRandom(static_cast<std::uint64_t>(paper) + 1);
    texture->image = paperGrain(paper);
    texture->scaleX = papers[paper].scaleX;
    texture->scaleY = papers[paper].scaleY;
    texture->setInvert(papers[paper].invert);
    texture->setRandomOffset(paper == 2);
    const auto generator = makeRef<TextureGenerator>(texture);

    BrushParameters brush = parametersOf(with, {0.1f, 0.2f, 0.5f, 1.0f});
    brush.textureEnabled = true;
    brush.texture = texture;
    brush.textureImage = generator->getImage();
    const auto high = emptyCell(), low = emptyCell();
    npc::StrokeRenderer renderer(high.get(), low.get());
    renderer.setParameters(strokeOf(with), &brush);
    for (std::int32_t row = 0; row < 6; ++row) {
        texture->drawOffset();
        renderer.beginStroke(false);
        for (std::int32_t n = 0; n <= 24; ++n) {
            const float part = static_cast<float>(n) / 24.0f;
            const StrokePointData point(
                30.0f + 420.0f * part,
                50.0f + 76.0f * static_cast<float>(row) + 12.0f * std::sin(9.0f * part),
                row % 2 ? part : 1.0f);
            renderer.addPoint(npc::replayedPoint(point, brush, {}));
        }
        renderer.endStroke();
    }
    return onPaper(*high);
}

class Sheet {
  public:
    explicit Sheet(std::int32_t rows)
        : rows_(rows),
          image_(makeRef<ilSPMemoryImg>(across * (cell + margin) + margin,
                                        rows * (cell + margin) + margin, 4)) {
        const std::uint8_t gray[] = {0x38, 0x38, 0x38, 255};
        image_->fillRegion(image_->box(), ilPixel(TypeUChar, 4, gray));
    }
    void add(ilSPMemoryImg& picture, const std::string& name) {
        const std::int32_t x = margin + count_ % across * (cell + margin);
        const std::int32_t y = margin + (rows_ - 1 - count_ / across) * (cell + margin);
        image_->copyRegion(flatTile(x, y, cell, cell), picture, 0, 0, 0, nullptr,
                           CopyDirection::FromOther);
        sheet::drawNumber(*image_, x, y, ++count_);
        std::printf("%3d  %s\n", count_, name.c_str());
    }
    [[nodiscard]] ilSPMemoryImg& image() { return *image_; }

  private:
    std::int32_t rows_, count_ = 0;
    Image image_;
};

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
    Sheet all(5);
    for (const Pattern& pattern : patterns) all.add(*patternPicture(pattern, pen), pattern.name);
    for (std::int32_t paper = 0; paper < 3; ++paper)
        for (const Brush& brush : paperBrushes)
            all.add(*paperPicture(paper, brush),
                    std::string(papers[paper].name) + ", " + brush.name);
    std::string trouble;
    if (!sheet::savePhotograph(argv[2], all.image(), trouble)) {
        std::fprintf(stderr, "%s: %s\n", argv[2], trouble.c_str());
        return 4;
    }
    return 0;
}
