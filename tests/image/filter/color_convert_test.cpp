#include "image/filter/color_convert.h"

#include <gtest/gtest.h>

#include "adjust_oracle.h"
#include "brushwork/color_adjust_parm.h"

namespace brushwork {
namespace {

TEST(ColorConvert, CornersAndTies) {
    const struct {
        RgbColor color;
        float hue;
    } corners[] = {{{255, 0, 0}, 0},     {{255, 255, 0}, 60}, {{0, 255, 0}, 120},
                   {{0, 255, 255}, 180}, {{0, 0, 255}, 240},  {{255, 0, 255}, 300}};
    for (const auto& corner : corners) {
        const HueColor hsv = rgbToHsv(corner.color), hsl = rgbToHsl(corner.color);
        EXPECT_EQ(hsv.hue, corner.hue);
        EXPECT_EQ(hsl.hue, corner.hue);
        EXPECT_EQ(hsv.saturation, 1.0f);
        EXPECT_EQ(hsv.level, 255.0f);
        EXPECT_EQ(hsl.saturation, 1.0f);
        EXPECT_EQ(hsl.level, 127.5f);
    }
    const RgbColor full = hsvToRgb({360.0f, 1.0f, 200.0f});
    EXPECT_EQ(full.red, 200.0f);
    EXPECT_EQ(full.green, 0.0f);
    EXPECT_EQ(full.blue, 0.0f);
    const RgbColor grey = hsvToRgb({123.4f, 0.0f, 77.7f});
    EXPECT_EQ(grey.red, 77.7f);
    EXPECT_EQ(grey.green, 77.7f);
    EXPECT_EQ(grey.blue, 77.7f);
}

TEST(ColorConvert, TextbookValuesAndBack) {
    double remembered = 12.0;
    rememberHue(12.0f);
    for (int r = 0; r <= 255; r += 15)
        for (int g = 0; g <= 255; g += 17)
            for (int b = 0; b <= 255; b += 5) {
                const RgbColor color{static_cast<float>(r), static_cast<float>(g),
                                     static_cast<float>(b)};
                const test::Triple exact{color.red, color.green, color.blue};
                const HueColor hsv = rgbToHsv(color), hsl = rgbToHsl(color);
                const test::Triple v = test::oracleToHsv(exact);
                const test::Triple l = test::oracleToHsl(exact, remembered);
                ASSERT_NEAR(hsv.hue, v.a, 1e-4);
                ASSERT_NEAR(hsv.saturation, v.b, 1e-6);
                ASSERT_EQ(hsv.level, v.c);
                ASSERT_NEAR(hsl.hue, l.a, 1e-4);
                ASSERT_NEAR(hsl.saturation, l.b, 1e-6);
                ASSERT_EQ(hsl.level, l.c);
                for (const RgbColor& back : {hsvToRgb(hsv), hslToRgb(hsl)}) {
                    ASSERT_NEAR(back.red, color.red, 2e-4);
                    ASSERT_NEAR(back.green, color.green, 2e-4);
                    ASSERT_NEAR(back.blue, color.blue, 2e-4);
                }
            }
}

TEST(ColorConvert, GreysAndTheRememberedHue) {
    rememberHue(0.0f);
    EXPECT_EQ(rgbToHsl({9, 9, 9}).hue, 0.0f);
    EXPECT_EQ(rgbToHsv({0, 0, 255}).hue, 240.0f);
    EXPECT_EQ(rgbToHsv({9, 9, 9}).hue, 0.0f);
    EXPECT_EQ(rgbToHsl({9, 9, 9}).hue, 240.0f);
    EXPECT_EQ(rgbToHsl({0, 0, 0}).saturation, 0.0f);
    EXPECT_EQ(rgbToHsl({255, 255, 255}).saturation, 0.0f);
    EXPECT_EQ(rgbToHsv({0, 0, 0}).saturation, 0.0f);

    const std::uint32_t pixels[] = {0xFF00FF00, 0x80404000, 0xFF777777, 0x00FF0000};
    EXPECT_TRUE(rememberLastHue(pixels, 4));
    EXPECT_EQ(rememberedHue(), 180.0f);
    EXPECT_FALSE(rememberLastHue(pixels + 2, 2));
    EXPECT_EQ(rememberedHue(), 180.0f);
}

TEST(ColorAdjustParm, SettersAndDefaults) {
    ColorAdjustParm parm;
    EXPECT_EQ(parm.kind, 7);
    EXPECT_EQ(parm.hslMode, 2);
    EXPECT_EQ(parm.hue, ColorAdjustPair(180.0f, 180.0f));
    EXPECT_EQ(parm.lightTarget, (ColorAdjustRange{0.4f, 0.45f, 0.55f, 0.6f}));
    parm.addToneBalance(3, 0.5f, -0.25f);
    parm.addToneBalance(2, 0.25f, 0.0f);
    EXPECT_EQ(parm.toneBrightness, (ColorAdjustTones{1.5f, 1.5f, 1.75f}));
    EXPECT_EQ(parm.toneSaturation, (ColorAdjustTones{0.75f, 0.75f, 0.75f}));
    parm.mixToneTint(1, 4, 0.5f);
    parm.mixToneTint(1, 2, 0.25f);
    EXPECT_EQ(parm.toneTint[1], (ColorAdjustTint{0, 0, 0.25f, 0, 0.375f, 0}));
    EXPECT_EQ(parm.toneTint[0], ColorAdjustTint{});
    EXPECT_EQ(parm.kind, AdjustTint);
    parm.addToneGain(4, 1.0f, 1.0f);
    parm.mixToneTint(-1, 0, 1.0f);
    parm.mixToneTint(0, 6, 1.0f);
    EXPECT_EQ(parm.kind, AdjustTint);
    EXPECT_EQ(parm.toneSatGain, (ColorAdjustTones{1, 1, 1}));
    EXPECT_EQ(parm.toneTint[0], ColorAdjustTint{});
    const ColorAdjustParm copy = parm;
    parm.reset(AdjustInvert);
    EXPECT_EQ(copy.toneTint[1][2], 0.25f);
    EXPECT_EQ(parm.toneTint[1], ColorAdjustTint{});
    EXPECT_EQ(parm.kind, 6);
}

}  // namespace
}  // namespace brushwork
