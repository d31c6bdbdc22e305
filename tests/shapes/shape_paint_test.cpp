// Fill and stroke as they reach a layer.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "shapes/image_gntr_controller.h"
#include "shapes/shape.h"
#include "shapes/shape_rig.h"

namespace brushwork {
namespace {

using test::bytesOf;
using test::circle;
using test::ShapeHost;
using test::TestOwner;
using test::TestShape;

constexpr ilTile box = flatTile(-16, -16, 128, 96);

Ref<ilSmartImage> layer(std::int32_t channels = 4) {
    return makeRef<ilSmartImage>(ilPixel(TypeUChar, channels));
}

struct Pixel {
    int red, green, blue, alpha;
    friend bool operator==(const Pixel&, const Pixel&) = default;
};
Pixel pixelAt(ilSmartImage& image, int x, int y) {
    const std::uint32_t word = image.getPixel(x, y);
    const auto byte = [word](int n) { return static_cast<int>(word >> 8 * n & 255); };
    return {byte(0), byte(1), byte(2), byte(3)};
}

class ShapePaint : public testing::Test {
  protected:
    [[nodiscard]] Ref<Shape> shapeOf(TestShape& outline) {
        return makeRef<Shape>(&owner, &outline, nullptr, parms);
    }
    void strokeOnly(float width) {
        parms->fillActive = false;
        parms->strokeActive = true;
        parms->stroke.width = width;
    }

    ShapeHost host;
    TestOwner owner;
    Ref<ShapeImageParms> parms = makeRef<ShapeImageParms>();
};

TEST_F(ShapePaint, AFillIsItsColourThroughTheMask) {
    TestShape ring;
    ring.ring(circle(40, 30, 24.3, 50)).ring(circle(40, 30, 9.7, 40));
    parms->fillColor = {1.0f, 0.5f, 0.0f, 0.8f};
    parms->opacity = 0.7f;
    const Ref<ilSmartImage> target = layer();
    target->fillRegion(flatTile(40, -16, 40, 96), ilPixel(TypeUChar, 4, "\x10\x20\x30\xff"));
    const auto before = bytesOf(*target, box);
    const Ref<Shape> shape = shapeOf(ring);
    shape->draw(target.get());
    const auto after = bytesOf(*target, box);
    const auto mask = bytesOf(*parms->fillMask(), box);
    EXPECT_EQ(*std::max_element(mask.begin(), mask.end()), (255 * 179) >> 8);
    int covered = 0;
    for (std::size_t i = 0; i < mask.size(); ++i) {
        const double k = mask[i] / 255.0 * 0.8;
        const double color[] = {255, 127.5, 0, 255};
        covered += mask[i] != 0;
        for (std::size_t c = 0; c < 4; ++c) {
            const double expected = color[c] * k + before[i * 4 + c] * (1 - k);
            ASSERT_NEAR(after[i * 4 + c], expected, 3.0) << i << " " << c;
        }
    }
    EXPECT_GT(covered, 1400);
    EXPECT_EQ(pixelAt(*target, 40, 30), (Pixel{16, 32, 48, 255}));  // the hole
}

TEST_F(ShapePaint, AClipAndOneChannelTargets) {
    TestShape disc;
    disc.ring(circle(40, 30, 20.3, 50));
    const Ref<ilSmartImage> mask = layer(1);
    const ilTile clip = flatTile(30, 0, 10, 30);
    shapeOf(disc)->draw(mask.get(), &clip);
    EXPECT_EQ(mask->getPixel(39, 29), 255u);
    EXPECT_EQ(mask->getPixel(40, 29), 0u);
    EXPECT_EQ(mask->getPixel(39, 30), 0u);
}

TEST_F(ShapePaint, ShapesMayShareTheirParameters) {
    TestShape left, right;
    left.ring(circle(10, 30, 8.3, 30));
    right.ring(circle(70, 30, 8.3, 30));
    parms->strokeActive = true;
    const Ref<Shape> first = shapeOf(left), second = shapeOf(right);
    first->draw(layer().get());
    second->draw(layer().get());
    const Ref<ilSmartImage> target = layer();
    first->draw(target.get());
    EXPECT_EQ(pixelAt(*target, 10, 30), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*target, 70, 30), (Pixel{0, 0, 0, 0}));
}

// Red to the left of x = 40, green from there on.
class TwoHalves final : public ImageGenerator {
  public:
    [[nodiscard]] const char* name() const override { return "TwoHalves"; }
    [[nodiscard]] Paint paint(const Request& request) override {
        const Ref<ilSmartImage> image =
            makeRef<ilSmartImage>(ilPixel(TypeUChar, 4, "\xff\0\0\xff"));
        const ilTile& b = request.box;
        image->fillRegion(flatTile(40, b.y, std::max(b.endX() - 40, 0), b.ny),
                          ilPixel(TypeUChar, 4, "\0\xff\0\xff"));
        return {{}, image};
    }
    [[nodiscard]] std::unique_ptr<ImageGenerator> clone() const override {
        return std::make_unique<TwoHalves>(*this);
    }
};

TEST_F(ShapePaint, GeneratorsComeByName) {
    EXPECT_STREQ(parms->fillGeneratorName(), "ImageGeneratorSolid");
    EXPECT_FALSE(parms->setFillGenerator("TwoHalves"));
    const auto make = [] { return std::make_unique<TwoHalves>(); };
    EXPECT_TRUE(registerImageGenerator("TwoHalves", make));
    EXPECT_FALSE(registerImageGenerator("TwoHalves", make));
    EXPECT_FALSE(registerImageGenerator("", make));
    ASSERT_TRUE(parms->setFillGenerator("TwoHalves"));
    EXPECT_STREQ(parms->strokeGeneratorName(), "ImageGeneratorSolid");
    unregisterImageGenerator("TwoHalves");
    EXPECT_STREQ(parms->copy()->fillGeneratorName(), "TwoHalves");
    unregisterImageGenerator(solidGeneratorName);
    EXPECT_TRUE(parms->setStrokeGenerator(solidGeneratorName));

    TestShape disc;
    disc.ring(circle(40, 30, 20.3, 50));
    const Ref<ilSmartImage> target = layer();
    shapeOf(disc)->draw(target.get());
    EXPECT_EQ(pixelAt(*target, 39, 30), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*target, 40, 30), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(pixelAt(*target, 70, 30), (Pixel{0, 0, 0, 0}));
    parms->reset();
    EXPECT_STREQ(parms->fillGeneratorName(), "ImageGeneratorSolid");
    EXPECT_EQ(parms->fillMask(), nullptr);
    EXPECT_EQ(parms->stroke.width, 40.0f);
}

TEST_F(ShapePaint, AGradientLiesStillInTheLayer) {
    ShapeGradient gradient;
    gradient.startX = 20.0f;
    gradient.endX = 60.0f;
    gradient.stops = {{0.0f, {1.0f, 0.0f, 0.0f, 1.0f}}, {1.0f, {0.0f, 0.0f, 1.0f, 1.0f}}};
    parms->setFillGradient(gradient);
    EXPECT_STREQ(parms->fillGeneratorName(), "ImageGeneratorGradient");
    TestShape tall;
    tall.ring({{10.1, -60.1}, {70.1, -60.1}, {70.1, 200.1}, {10.1, 200.1}});
    const Ref<ilSmartImage> target = layer();
    shapeOf(tall)->draw(target.get());
    for (const int y : {-50, 10, 70, 190}) {
        EXPECT_EQ(pixelAt(*target, 15, y), (Pixel{255, 0, 0, 255}));
        EXPECT_EQ(pixelAt(*target, 65, y), (Pixel{0, 0, 255, 255}));
        EXPECT_NEAR(pixelAt(*target, 30, y).blue, 64, 4);
        EXPECT_NEAR(pixelAt(*target, 50, y).blue, 191, 4);
    }
    // By its name alone it has no stops yet.
    ASSERT_TRUE(parms->setFillGenerator("ImageGeneratorGradient"));
    shapeOf(tall)->draw(target.get());
    EXPECT_EQ(pixelAt(*target, 65, 10), (Pixel{0, 0, 0, 255}));
}

double distanceTo(const std::vector<HostSegment>& pieces, double x, double y) {
    double least = 1e9;
    for (const HostSegment& s : pieces) {
        const double dx = static_cast<double>(s.dx), dy = static_cast<double>(s.dy);
        const double px = x - static_cast<double>(s.x), py = y - static_cast<double>(s.y);
        const double part = std::clamp((px * dx + py * dy) / (dx * dx + dy * dy), 0.0, 1.0);
        least = std::min(least, std::hypot(px - part * dx, py - part * dy));
    }
    return least;
}

TEST_F(ShapePaint, AStrokeCoversWhatIsNearTheOutline) {
    TestShape wave;
    test::Places places;
    for (int n = 0; n <= 60; ++n) places.push_back({8.3 + n, 30 + 14 * std::sin(n * 0.11)});
    wave.line(places).ring(circle(80, 50, 12.4, 40));
    strokeOnly(16.0f);
    parms->opacity = 0.6f;
    const Ref<Shape> shape = shapeOf(wave);
    shape->draw(layer().get());
    std::vector<HostSegment> pieces = wave.curves[0].segments();
    const auto more = wave.curves[1].segments();
    pieces.insert(pieces.end(), more.begin(), more.end());
    ilTile bounds;
    ASSERT_TRUE(shape->bounds(bounds));
    const auto mask = bytesOf(*parms->strokeMask(), box);
    int solid = 0;
    for (int y = 0; y < box.ny; ++y) {
        for (int x = 0; x < box.nx; ++x) {
            const int value = mask[static_cast<std::size_t>(y * box.nx + x)];
            const double off = distanceTo(pieces, box.x + x + 0.5, box.y + y + 0.5);
            // Overlaps and crossings don't exceed the opacity.
            const bool inside = off <= 5.0;  // a brush's rim is soft
            const bool outside = off >= 8.0;
            ASSERT_TRUE(!inside || value == 153) << x << " " << y << " " << value << " " << off;
            ASSERT_TRUE(!outside || value == 0) << x << " " << y << " " << value << " " << off;
            ASSERT_TRUE(value == 0 || bounds.contains(flatTile(box.x + x, box.y + y, 1, 1)));
            solid += inside;
        }
    }
    EXPECT_GT(solid, 600);
}

TEST_F(ShapePaint, AStrokeIsClippedToTheOriginOrToTheShape) {
    TestShape line;
    line.line({{4060, 20}, {4140, 20}});
    strokeOnly(6.0f);
    const Ref<Shape> shape = shapeOf(line);
    shape->draw(layer().get());
    EXPECT_EQ(parms->strokeMask()->getPixel(4095, 20), 255u);
    EXPECT_EQ(parms->strokeMask()->getPixel(4096, 20), 0u);
    parms->clipStroke = true;
    shape->changed();
    shape->draw(layer().get());
    EXPECT_EQ(parms->strokeMask()->getPixel(4130, 20), 255u);
}

TEST_F(ShapePaint, TheHostsTipIsTaken) {
    TestShape line;
    line.line({{10, 20}, {60, 20}});
    line.tipWidth = line.tipHeight = 8;
    line.tip.assign(64, 0);
    for (std::size_t i = 32; i < 64; ++i) line.tip[i] = 255;  // the upper half
    strokeOnly(16.0f);
    shapeOf(line)->draw(layer().get());
    EXPECT_EQ(parms->strokeMask()->getPixel(35, 24), 255u);
    EXPECT_EQ(parms->strokeMask()->getPixel(35, 15), 0u);
}

TEST_F(ShapePaint, WithoutCurvesAMaskStaysDirty) {
    TestShape nothing;
    parms->strokeActive = true;
    const Ref<Shape> shape = shapeOf(nothing);
    const Ref<ilSmartImage> target = layer();
    shape->draw(target.get());
    EXPECT_TRUE(shape->fillRenderer().maskDirty());
    EXPECT_TRUE(shape->strokeRenderer().maskDirty());
    EXPECT_EQ(parms->fillMask(), nullptr);
    nothing.ring(circle(30, 30, 9.0, 20));
    shape->draw(target.get());
    EXPECT_FALSE(shape->fillRenderer().maskDirty());
    EXPECT_EQ(pixelAt(*target, 30, 30), (Pixel{0, 0, 0, 255}));
    parms->strokeActive = false;
    // Far too large for a mask: only what the document shows is made.
    TestShape huge;
    huge.ring({{-90000.3, -90000.3}, {90000.3, -90000.3}, {90000.3, 90000.3}, {-90000.3, 90000.3}});
    const Ref<Shape> other = shapeOf(huge);
    other->draw(target.get());
    EXPECT_EQ(pixelAt(*target, 90, 30), (Pixel{0, 0, 0, 0}));
    EXPECT_TRUE(other->fillRenderer().maskDirty() || !parms->fillMask()->getPixel(90, 30));
    owner.document = flatTile(0, 0, 200, 100);
    other->changed();
    other->draw(target.get());
    EXPECT_EQ(pixelAt(*target, 199, 0), (Pixel{0, 0, 0, 255}));
}

}  // namespace
}  // namespace brushwork
