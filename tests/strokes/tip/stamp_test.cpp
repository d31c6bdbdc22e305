#include "strokes/tip/stamp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

#include "brushwork/brush_parameters.h"
#include "foundation/profiles/linear_profile.h"
#include "image/work/il_const_img.h"

namespace brushwork {
namespace {

// What a stamp told, in order.
class Listener final : public Observer {
  public:
    explicit Listener(Stamp& stamp) : stamp_(stamp) { stamp.addObserver(this); }
    ~Listener() override { stamp_.removeObserver(this); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    void observableChanged(Observable&) override {
        codes_.push_back(static_cast<int>(stamp_.lastChange()));
    }
    std::vector<int> take() { return std::exchange(codes_, {}); }

  private:
    Stamp& stamp_;
    std::vector<int> codes_;
};

Ref<ImagePaintObj> onePixelObject() {
    return makeRef<ImagePaintObj>(makeRef<ilConstImg>(ilPixel(TypeUChar, 4)),
                                  ImagePaintObj::Levels::Single);
}

std::vector<int> bytesOf(const Ref<ImagePaintObj>& object) {
    std::vector<std::uint8_t> bytes(4);
    const ilTile box = flatTile(0, 0, 1, 1);
    EXPECT_EQ(object->imageAtSize(1, 1)->readRegion(box, bytes.data(), box), ImageOk);
    return {bytes.begin(), bytes.end()};
}

using Codes = std::vector<int>;

TEST(Stamp, DefaultsAreAVisibleRoundTip) {
    const auto stamp = makeRef<Stamp>();
    EXPECT_EQ(stamp->radius(), 5.0f);
    EXPECT_EQ(stamp->fallOff()->eval(0.0f), 1.0f);
    EXPECT_NEAR(stamp->fallOff()->eval(1.0f), 0.0, 0.003);
    EXPECT_EQ(stamp->sampleValue(), 40);
    EXPECT_EQ(stamp->opacity(), 1.0f);
    EXPECT_EQ(stamp->flow(), 1.0f);
    EXPECT_EQ(stamp->maxRadius(), 511.0f);
    EXPECT_TRUE(stamp->flagA() && !stamp->flagB() && stamp->quantize() && !stamp->opacityLink());
    EXPECT_TRUE(stamp->colorObject() && !stamp->secondColorObject() && !stamp->shapeObject());
    EXPECT_EQ(stamp->matrix(), (std::array<float, 4>{1, 0, 0, 1}));
    EXPECT_EQ(stamp->lastChange(), StampChange::None);
    StampArguments arguments;
    arguments.strength = -3.0f;
    arguments.opacity = 0.7501f;
    const auto made = makeRef<Stamp>(arguments);
    EXPECT_EQ(made->strength(), -1.0f);
    EXPECT_EQ(made->flow(), 0.0f);
    EXPECT_EQ(made->opacity(), 0.75f);
}

TEST(Stamp, HeldValuesLieOnSteps) {
    const auto stamp = makeRef<Stamp>();
    const struct {
        float given, held, free;
    } radii[] = {{0.0f, 0.0f, 0.01f},  {-2.0f, 0.0f, 0.01f},       {1.0f / 32, 0.0625f, 1.0f / 32},
                 {3.49f, 3.5f, 3.49f}, {511.02f, 511.0f, 511.02f}, {900.0f, 511.0f, 900.0f},
                 {NAN, 0.0f, 0.01f}};
    for (const auto& r : radii) {
        stamp->setQuantize(true);
        stamp->setRadius(r.given);
        EXPECT_EQ(stamp->radius(), r.held) << r.given;
        stamp->setQuantize(false);
        stamp->setRadius(r.given);
        EXPECT_EQ(stamp->radius(), r.free) << r.given;
    }
    stamp->setQuantize(true);
    stamp->setOpacityFlow(0.5f + 1.0f / 512, 7.0f, true);
    EXPECT_EQ(stamp->opacity(), 0.5f + 1.0f / 256);
    EXPECT_EQ(stamp->flow(), 1.0f);
    stamp->setOpacity(-1.0f);
    EXPECT_EQ(stamp->opacity(), 0.0f);
    EXPECT_FALSE(stamp->opacityLink());
}

TEST(Stamp, EachChangeHasItsCodeAndNoChangeNone) {
    const auto stamp = makeRef<Stamp>();
    Listener heard(*stamp);
    const auto object = onePixelObject();
    const auto profile = makeRef<LinearProfile>();
    for (int again = 0; again < 2; ++again) {
        stamp->setRadius(7.0f);
        stamp->setFallOff(profile);
        stamp->setColorObject(object);
        stamp->setSecondColorObject(object);
        stamp->setShapeObject(object);
        stamp->setModeValue(3);
        stamp->setOpacity(0.25f);
        EXPECT_EQ(heard.take(), again == 0 ? (Codes{1, 2, 3, 4, 5, 7, 8}) : Codes{});
    }
    stamp->setOpacityFlow(0.25f, 0.5f, false);
    stamp->setOpacityFlow(0.25f, 0.5f, true);
    stamp->resetMatrix();
    EXPECT_EQ(heard.take(), (Codes{8, 8, 11}));
}

TEST(Stamp, ABatchTellsOnceAndAlways) {
    const auto stamp = makeRef<Stamp>();
    Listener heard(*stamp);
    stamp->beginChanges();
    stamp->beginChanges();
    stamp->setRadius(9.0f);
    stamp->setOpacity(0.5f);
    stamp->setModeValue(1);
    EXPECT_EQ(stamp->batchedChanges(), 3);
    stamp->endChanges();
    EXPECT_EQ(heard.take(), Codes{});
    stamp->endChanges();
    EXPECT_EQ(heard.take(), Codes{13});
    stamp->endChanges();
    EXPECT_EQ(stamp->batchDepth(), 0);
    EXPECT_EQ(heard.take(), Codes{});
    stamp->beginChanges();
    stamp->endChanges();
    EXPECT_EQ(heard.take(), Codes{13});
    stamp->setRadius(1.0f);
    EXPECT_EQ(heard.take(), Codes{1});
}

TEST(Stamp, ColoursBecomeOnePixelImages) {
    const auto stamp = makeRef<Stamp>();
    Listener heard(*stamp);
    stamp->setColor(2.0f, 0.5f, -1.0f, 0.999f);
    EXPECT_EQ(stamp->color(), (std::array<float, 4>{0.999f, 0.0f, 0.5f, 1.0f}));
    EXPECT_EQ(bytesOf(stamp->colorObject()), (Codes{255, 128, 0, 255}));
    stamp->setSecondColor(2.0f, 0.5f, -1.0f, 0.999f);
    EXPECT_EQ(bytesOf(stamp->secondColorObject()), (Codes{255, 127, 0, 254}));
    EXPECT_EQ(stamp->color()[3], 1.0f);
    EXPECT_EQ(heard.take(), (Codes{3, 4}));
}

TEST(Stamp, PassesOnWhatItsSourcesTellAndLeavesThemInTime) {
    const auto color = onePixelObject(), second = onePixelObject(), shape = onePixelObject();
    const Ref<ilImage> other = makeRef<ilConstImg>(ilPixel(TypeUChar, 1));
    {
        const auto stamp = makeRef<Stamp>();
        stamp->setColorObject(color);
        stamp->setSecondColorObject(second);
        stamp->setShapeObject(shape);
        const auto copy = makeRef<Stamp>(*stamp);
        Listener heard(*stamp), copyHeard(*copy);
        for (const auto& source : {color, second, shape}) source->setSingleImage(other);
        EXPECT_EQ(heard.take(), (Codes{3, 4, 5}));
        EXPECT_EQ(copyHeard.take(), (Codes{3, 4, 5}));

        const auto plain = makeRef<Stamp>();
        stamp->assign(*plain);
        for (const auto& source : {color, second, shape}) source->setSingleImage(other);
        EXPECT_EQ(heard.take(), Codes{13});
        EXPECT_EQ(copyHeard.take(), (Codes{3, 4, 5}));
        EXPECT_EQ(stamp->colorObject(), plain->colorObject());
        plain->setQuantize(false);
        plain->setRadius(3.03f);
        stamp->assign(*plain);
        EXPECT_EQ(stamp->radius(), 3.03f) << "the other's rounding is taken over, too";
    }
    // The stamps are gone; nobody is left to be told.
    for (const auto& source : {color, second, shape}) source->setSingleImage({});
    EXPECT_EQ(color->refCount(), 1u);
}

TEST(BrushParameters, PresetsAndTheirInverse) {
    const struct {
        int preset;
        float hardness;
    } presets[] = {{0, 0.28f}, {1, 0.28f}, {2, 0.75f}, {3, 0.75f}, {4, 0.88f},
                   {5, 0.0f},  {7, 0.0f},  {8, 1.0f},  {9, 0.0f},  {-1, 0.0f}};
    for (const auto& p : presets) EXPECT_EQ(presetHardness(p.preset), p.hardness) << p.preset;
    for (const int preset : {0, 2, 4, 8}) EXPECT_EQ(hardnessPreset(presetHardness(preset)), preset);
    EXPECT_EQ(hardnessPreset(0.5f), 2);
    EXPECT_EQ(hardnessPreset(0.8801f), 8);

    BrushParameters brush = BrushParameters::defaults();
    EXPECT_EQ(brush.solidShare(), 1.0f);
    EXPECT_EQ(brush.cloneLayer, -1);
    EXPECT_TRUE(brush.proceduralTip);
    EXPECT_EQ(brush.radiusHigh, 10.0f);
    EXPECT_EQ(brush.radiusLow, 0.0f);
    brush.tipPreset = BrushParameters::ownHardness;
    brush.hardness = 0.4f;
    EXPECT_EQ(brush.solidShare(), 0.4f);
}

}  // namespace
}  // namespace brushwork
