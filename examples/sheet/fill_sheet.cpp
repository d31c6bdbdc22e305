// brushwork_fill_sheet PICTURES OUT.png: the climbing fill beside the soft one, on photographs of
// the folder and on drawings, a seed a row, at two tolerances; then a dark ramp with and without
// dither, as it is and with its contrast raised.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "blending/modes/blender_registry.h"
#include "digits.h"
#include "fill/doodle_flood_fill_operation.h"
#include "fill/fill_algorithm.h"
#include "fill/smart_image_flood_fill_alg.h"
#include "foundation/services/log.h"
#include "image/smart/il_smart_image.h"
#include "photograph.h"
#include "strokes/stroke/brush_mode.h"
#include "strokes/stroke/stroke_replay.h"

namespace {

using namespace brushwork;
using Image = Ref<ilSPMemoryImg>;

constexpr std::int32_t cellX = 450, cellY = 300;
constexpr std::int32_t margin = 8;
constexpr std::int32_t across = 5;
constexpr ilTile cellBox = flatTile(0, 0, cellX, cellY);
constexpr int tolerances[] = {16, 48};

std::uint8_t* pixelAt(ilSPMemoryImg& image, std::int32_t x, std::int32_t y) {
    return image.data() +
           4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.sizeX()) +
                static_cast<std::size_t>(x));
}

Image paper(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    auto picture = makeRef<ilSPMemoryImg>(cellX, cellY, 4);
    const std::uint8_t color[] = {red, green, blue, 255};
    picture->fillRegion(picture->box(), ilPixel(TypeUChar, 4, color));
    return picture;
}

// A pen with a hard or a soft tip, drawing on paper.
class Pen {
  public:
    Pen(float radius, std::int32_t tipPreset) : brush_(BrushParameters::defaults()) {
        brush_.color = {0.1f, 0.1f, 0.15f, 1.0f};
        brush_.tipPreset = tipPreset;
        brush_.proceduralTip = true;
        brush_.radiusLow = 0.4f * radius;
        brush_.radiusHigh = radius;
        brush_.opacityLow = 0.5f;
        brush_.opacityHigh = 1.0f;
        const ilPixel clear(TypeUChar, 4);
        high_->fillRegion(cellBox, clear);
        low_->fillRegion(cellBox, clear);
        renderer_.setParameters({}, &brush_);
    }
    // An arc of an ellipse, in turns counted from the right; what it leaves open is a gap.
    void arc(float x, float y, float radiusX, float radiusY, float from, float to) {
        constexpr int steps = 64;
        renderer_.beginStroke(false);
        for (int n = 0; n <= steps; ++n) {
            const float part = static_cast<float>(n) / steps;
            const float angle = 2.0f * std::numbers::pi_v<float> * (from + (to - from) * part);
            const float pressure = 0.6f + 0.4f * std::sin(std::numbers::pi_v<float> * part);
            const StrokePointData point(x + radiusX * std::cos(angle),
                                        y + radiusY * std::sin(angle), pressure);
            renderer_.addPoint(npc::replayedPoint(point, brush_, {}));
        }
        renderer_.endStroke();
    }
    [[nodiscard]] Image drawing() {
        auto picture = paper(0xF4, 0xF4, 0xF0);
        const auto blender = npc::createBlender(BlendModeId::Normal);
        blender->setDestination(picture.get(), 0, 0);
        blender->setSource(high_.get(), 0, 0, false);
        blender->run(picture->box());
        return picture;
    }

  private:
    BrushParameters brush_;
    Image high_ = makeRef<ilSPMemoryImg>(cellX, cellY, 4);
    Image low_ = makeRef<ilSPMemoryImg>(cellX, cellY, 4);
    npc::StrokeRenderer renderer_{high_.get(), low_.get()};
};

// A fish; its outline, its eye and its fins are open for a few pixels.
Image fish(float radius, std::int32_t tipPreset) {
    Pen pen(radius, tipPreset);
    pen.arc(200.0f, 150.0f, 150.0f, 95.0f, 0.03f, 0.497f);
    pen.arc(200.0f, 150.0f, 150.0f, 95.0f, 0.505f, 0.97f);
    pen.arc(112.0f, 180.0f, 26.0f, 26.0f, 0.0f, 0.96f);
    pen.arc(112.0f, 180.0f, 9.0f, 9.0f, 0.0f, 1.0f);
    pen.arc(150.0f, 150.0f, 40.0f, 85.0f, -0.2f, 0.2f);
    for (int scale = 0; scale < 5; ++scale)
        pen.arc(225.0f + 22.0f * static_cast<float>(scale), 150.0f, 12.0f, 40.0f, -0.25f, 0.25f);
    pen.arc(400.0f, 175.0f, 55.0f, 60.0f, 0.22f, 0.75f);
    pen.arc(400.0f, 125.0f, 55.0f, 60.0f, 0.25f, 0.78f);
    pen.arc(405.0f, 150.0f, 25.0f, 80.0f, -0.25f, 0.25f);
    return pen.drawing();
}

// The part of a picture with its lower left corner at (x, y).
Image photograph(const std::string& path, std::int32_t x, std::int32_t y) {
    std::string trouble;
    const auto whole = sheet::openPhotograph(path, 0xFF, trouble);
    if (!whole) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), trouble.c_str());
        return {};
    }
    auto part = paper(0, 0, 0);
    part->copyRegion(cellBox, *whole, x, y, 0, nullptr, CopyDirection::FromOther);
    return part;
}

using Mask = std::vector<std::uint8_t>;

Mask maskOf(ilSmartImage& mask) {
    Mask bytes(std::size_t{cellX} * cellY);
    mask.readRegion(cellBox, bytes.data(), cellBox);
    return bytes;
}

Ref<ilSmartImage> smartOf(ilSPMemoryImg& picture) {
    const Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    image->writeRegion(cellBox, picture.data(), cellBox);
    return image;
}

Mask climbingFill(ilSPMemoryImg& picture, std::int32_t x, std::int32_t y, int tolerance,
                  bool& reverted) {
    reverted = false;
    setLogSink([&](std::string_view) { reverted = true; });
    DoodleFloodFillOperation fill(cellBox, cellBox);
    fill.run(x, y, static_cast<float>(tolerance) / 255.0f, *smartOf(picture));
    setLogSink({});
    return maskOf(*fill.mask());
}

Mask softFill(ilSPMemoryImg& picture, std::int32_t x, std::int32_t y, int tolerance) {
    const auto image = smartOf(picture);
    const Ref<ilSmartImage> mask(new ilSmartImage(ilPixel(TypeUChar, 1)));
    SmartImageFloodFillAlg fill;
    fill.setImages(*image, *mask);
    fill.setTolerance(static_cast<std::uint8_t>(tolerance));
    fill.setSeed(x, y);
    fill.run();
    return maskOf(*mask);
}

// The picture in grey and pale, red where the mask is, with a cross at the seed.
Image tinted(ilSPMemoryImg& picture, const Mask& mask, std::int32_t seedX, std::int32_t seedY) {
    auto shown = makeRef<ilSPMemoryImg>(cellX, cellY, 4);
    for (std::size_t n = 0; n < mask.size(); ++n) {
        const std::uint8_t* const from = picture.data() + 4 * n;
        std::uint8_t* const to = shown->data() + 4 * n;
        const int grey = 64 + (from[0] + from[1] + from[2]) / 4;
        const int rest = grey * (255 - mask[n]) / 255;
        to[0] = static_cast<std::uint8_t>(std::max(grey, rest + mask[n] * 230 / 255));
        to[1] = static_cast<std::uint8_t>(rest + grey * mask[n] / 1020);
        to[2] = to[1];
        to[3] = 255;
    }
    for (std::int32_t i = -5; i <= 5; ++i)
        for (std::uint8_t* const dot :
             {pixelAt(*shown, seedX + i, seedY), pixelAt(*shown, seedX, seedY + i)}) {
            dot[0] = 0;
            dot[1] = dot[2] = 255;
        }
    return shown;
}

Image ramp(bool dither, bool raised) {
    constexpr std::int32_t length = 2048, height = 40;
    auto image = makeRef<ilSPMemoryImg>(length, height, 4);
    GradientStops stops;
    stops.add(0.0f, {0.16f, 0.16f, 0.20f, 1.0f});
    stops.add(1.0f, {0.22f, 0.20f, 0.24f, 1.0f});
    FillParameters parameters;
    parameters.kind = FillKind::Linear;
    parameters.endX = static_cast<float>(length);
    parameters.right = length;
    parameters.bottom = height;
    parameters.dither = dither;
    parameters.stops = &stops;
    FillAlgorithm fill;
    fill.setup(&parameters, image);
    fill.run();
    for (std::size_t n = 0; raised && n < image->byteSize(); ++n)
        if (n % 4 != 3)
            image->data()[n] = static_cast<std::uint8_t>(std::max(image->data()[n] - 36, 0) * 8);
    return image;
}

struct Row {
    const char* name;
    Image picture;
    std::int32_t seedX, seedY;
};

class Sheet {
  public:
    explicit Sheet(std::int32_t rows)
        : top_(rows * (cellY + margin) + 4 * (40 + margin)),
          image_(makeRef<ilSPMemoryImg>(across * (cellX + margin) + margin, top_ + margin, 4)) {
        const std::uint8_t grey[] = {0x38, 0x38, 0x38, 255};
        image_->fillRegion(image_->box(), ilPixel(TypeUChar, 4, grey));
    }
    void add(ilSPMemoryImg& picture, std::int32_t column, const std::string& name) {
        const std::int32_t x = margin + column * (cellX + margin);
        const std::int32_t y = top_ - picture.sizeY();
        image_->copyRegion(flatTile(x, y, picture.sizeX(), picture.sizeY()), picture, 0, 0, 0,
                           nullptr, CopyDirection::FromOther);
        sheet::drawNumber(*image_, x, y, ++count_);
        std::printf("%3d  %s\n", count_, name.c_str());
    }
    void nextRow(std::int32_t height) { top_ -= height + margin; }
    [[nodiscard]] ilSPMemoryImg& image() { return *image_; }

  private:
    std::int32_t top_;  // of the row that is being filled; rows go down
    int count_ = 0;
    Image image_;
};

void addRow(Sheet& all, const Row& row) {
    all.add(*row.picture, 0, row.name);
    std::int32_t column = 1;
    for (const int tolerance : tolerances) {
        const std::string at = ", tolerance " + std::to_string(tolerance);
        bool reverted = false;
        const Mask climbing = climbingFill(*row.picture, row.seedX, row.seedY, tolerance, reverted);
        all.add(*tinted(*row.picture, climbing, row.seedX, row.seedY), column++,
                "climbing fill" + at + (reverted ? ", taken for noise" : ""));
        const Mask soft = softFill(*row.picture, row.seedX, row.seedY, tolerance);
        all.add(*tinted(*row.picture, soft, row.seedX, row.seedY), column++, "soft fill" + at);
    }
    all.nextRow(cellY);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s PICTURES OUT.png\n", argv[0]);
        return 2;
    }
    const std::string folder = std::string(argv[1]) + "/";
    const Row rows[] = {
        {"a cat, from its iris", photograph(folder + "chelsea.png", 0, 0), 152, 200},
        {"a cat, from what lies behind it", photograph(folder + "chelsea.png", 0, 0), 415, 130},
        {"a rocket, from the sky", photograph(folder + "rocket.jpg", 100, 60), 110, 210},
        {"a cameraman, from his coat", photograph(folder + "camera.png", 20, 100), 110, 100},
        {"a fish in ink, from its body", fish(3.0f, 8), 200, 100},
        {"a fish in soft pencil, from its body", fish(7.0f, 0), 200, 100},
    };
    Sheet all(static_cast<std::int32_t>(std::size(rows)));
    for (const Row& row : rows) {
        if (!row.picture) return 3;
        addRow(all, row);
    }
    for (const bool raised : {false, true})
        for (const bool dither : {false, true}) {
            all.add(*ramp(dither, raised), 0,
                    std::string("a ramp of 2048 pixels") + (dither ? ", dithered" : "") +
                        (raised ? ", contrast raised" : ""));
            all.nextRow(40);
        }
    std::string trouble;
    if (!sheet::savePhotograph(argv[2], all.image(), trouble)) {
        std::fprintf(stderr, "%s: %s\n", argv[2], trouble.c_str());
        return 4;
    }
    return 0;
}
