#include "strokes/tip/texture_generator.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

#include "brushwork/brush_parameters.h"
#include "foundation/services/random_source.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_pattern_img.h"
#include "strokes/stamp/stamp_renderer.h"
#include "strokes/tip/preview_texture_generator.h"

namespace brushwork {
namespace {

using Image = Ref<ilSPMemoryImg>;
using Parameters = Ref<BrushTextureParameters>;

Image noise(std::int32_t width, std::int32_t height, unsigned seed) {
    std::mt19937 random(seed);
    const auto image = makeRef<ilSPMemoryImg>(width, height, 1);
    for (std::size_t n = 0; n < image->byteSize(); ++n)
        image->data()[n] = static_cast<std::uint8_t>(random());
    return image;
}

// A wave that has its steepest slope where the tile meets itself.
double wave(double x, double y) {
    return 127.5 + 60.0 * std::sin(2.0 * std::numbers::pi * x) +
           60.0 * std::sin(2.0 * std::numbers::pi * (y + 2.0 * x));
}

Image waves(std::int32_t width, std::int32_t height) {
    const auto image = makeRef<ilSPMemoryImg>(width, height, 1);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            image->data()[y * width + x] =
                static_cast<std::uint8_t>(std::lround(wave((x + 0.5) / width, (y + 0.5) / height)));
    return image;
}

Parameters textureOf(const Ref<ilImage>& image, float scaleX = 1.0f, float scaleY = 1.0f) {
    const auto parameters = makeRef<BrushTextureParameters>();
    parameters->image = image;
    parameters->scaleX = scaleX;
    parameters->scaleY = scaleY;
    return parameters;
}

// A pixel of an endless pattern.
int patternAt(ilImage& pattern, std::int32_t x, std::int32_t y) {
    std::array<PageLockRequest, 1> request{};
    request[0].x = x;
    request[0].y = y;
    EXPECT_EQ(pattern.lockPages(request, LockRead), ImageOk);
    const ilPage& page = *request[0].page;
    const int value = page.data()[(y - page.y) * ilPatternPage::side + (x - page.x)];
    pattern.unlockPages(request);
    return value;
}

TEST(TextureGenerator, TilesWithoutASeamAtAnyScale) {
    for (const std::array<int, 2> size :
         {std::array{40, 40}, std::array{37, 64}, std::array{150, 23}})
        for (const float scaleX : {1.0f, 2.0f, 0.73f, 3.37f, 0.31f, 0.5f, 1.013f})
            for (const float scaleY : {1.0f, 1.61f, 0.42f}) {
                const auto generator =
                    makeRef<TextureGenerator>(textureOf(waves(size[0], size[1]), scaleX, scaleY));
                const Ref<ilImage> image = generator->getImage();
                auto* const pattern = dynamic_cast<ilPatternImg*>(image.get());
                ASSERT_NE(pattern, nullptr);
                const ilTile tile = pattern->extent();
                EXPECT_EQ(tile.nx, std::lround(static_cast<float>(size[0]) * scaleX));
                EXPECT_EQ(tile.ny, std::lround(static_cast<float>(size[1]) * scaleY));
                // Around all four edges as inside.
                double worst = 0.0;
                for (std::int32_t y = -3; y < tile.ny + 3; ++y)
                    for (std::int32_t x = -tile.nx - 3; x < 3; ++x)
                        worst = std::max(worst,
                                         std::fabs(patternAt(*pattern, x, y) -
                                                   wave((x + 0.5) / tile.nx, (y + 0.5) / tile.ny)));
                EXPECT_LT(worst, 4.5) << scaleX << ", " << scaleY;
            }
}

TEST(TextureGenerator, TheBaseIsShiftedAndInvertedButNotTheSource) {
    const Image image = noise(37, 20, 1);
    const std::vector<std::uint8_t> before(image->data(), image->data() + image->byteSize());
    for (const float shift : {0.0f, 0.9f, -0.9f, 1.0f, -1.5f, 36.0f, 100.7f, -1.0e9f, 3.0e38f})
        for (const bool invert : {false, true}) {
            const Parameters parameters = textureOf(image);
            parameters->shiftX = shift;
            parameters->shiftY = -shift;
            parameters->setInvert(invert);
            const auto generator = makeRef<TextureGenerator>(parameters);
            const Ref<ilImage> pattern = generator->getImage();
            const auto right =
                static_cast<std::int32_t>(std::fmod(std::trunc(double{shift}), 37.0));
            const auto down = static_cast<std::int32_t>(std::fmod(std::trunc(double{shift}), 20.0));
            for (std::int32_t y = 0; y < 20; ++y)
                for (std::int32_t x = 0; x < 37; ++x) {
                    const auto value = before[static_cast<std::size_t>(y * 37 + x)];
                    ASSERT_EQ(patternAt(*pattern, x + right, y - down),
                              invert ? 255 - value : value)
                        << shift;
                }
        }
    EXPECT_EQ(std::memcmp(image->data(), before.data(), before.size()), 0);
}

TEST(TextureGenerator, IsMadeAnewOnlyWhenMarked) {
    const Image image = noise(16, 16, 2);
    const Parameters parameters = textureOf(image);
    const auto generator = makeRef<TextureGenerator>(parameters);
    const Ref<ilImage> first = generator->getImage();
    EXPECT_FALSE(parameters->dirty);
    parameters->setInvert(false);
    EXPECT_FALSE(parameters->dirty);
    EXPECT_EQ(generator->getImage(), first);
    parameters->setInvert(true);
    EXPECT_TRUE(parameters->dirty);
    const Ref<ilImage> second = generator->getImage();
    EXPECT_NE(second, first);
    EXPECT_EQ(patternAt(*second, 5, 5), 255 - patternAt(*first, 5, 5));
    // Another texture, though it isn't marked.
    const Parameters other = textureOf(noise(16, 16, 3));
    other->dirty = false;
    generator->setSource(other);
    EXPECT_NE(generator->getImage(), second);
    generator->setSource({});
    EXPECT_FALSE(generator->getImage());
}

TEST(TextureGenerator, WhatCantBeMadeIsNoImage) {
    const Image image = noise(16, 16, 2);
    constexpr float inf = std::numeric_limits<float>::infinity();
    for (const float scale : {0.0f, 0.01f, -2.0f, inf, -inf, std::nanf(""), 1.0e9f, 3.0e8f})
        EXPECT_FALSE(makeRef<TextureGenerator>(textureOf(image, scale, 1.0f))->getImage()) << scale;
    EXPECT_FALSE(makeRef<TextureGenerator>(textureOf({}))->getImage());
    EXPECT_FALSE(makeRef<TextureGenerator>()->getImage());
}

TEST(BrushTextureParameters, ASeedGivesTheSameOffsetsWithinThePattern) {
    const Parameters parameters = textureOf(noise(50, 30, 4), 1.5f, 0.5f);
    parameters->offsetX = 3;
    parameters->drawOffset();
    EXPECT_EQ(parameters->offsetX, 3);  // not random
    parameters->setRandomOffset(true);
    std::vector<std::array<std::int32_t, 2>> drawn[2];
    for (auto& offsets : drawn) {
        seedRandom(12);
        for (int n = 0; n < 400; ++n) {
            parameters->drawOffset();
            offsets.push_back({parameters->offsetX, parameters->offsetY});
        }
    }
    EXPECT_EQ(drawn[0], drawn[1]);
    std::int32_t mostX = 0, mostY = 0;
    for (const auto& [x, y] : drawn[0]) {
        ASSERT_TRUE(x >= 0 && y >= 0);
        mostX = std::max(mostX, x);
        mostY = std::max(mostY, y);
    }
    EXPECT_TRUE(mostX > 65 && mostX < 75) << mostX;
    EXPECT_EQ(mostY, 14);
    seedRandom(12);
    const int first = randomValue(), second = randomValue();
    EXPECT_EQ(drawn[0][0][0], first % 75);
    EXPECT_EQ(drawn[0][0][1], second % 15);
    for (const float scale : {0.0f, -5.0f, std::nanf("")}) {
        parameters->scaleX = parameters->scaleY = scale;
        parameters->drawOffset();
        EXPECT_EQ(parameters->offsetX, 0);
        EXPECT_EQ(parameters->offsetY, 0);
    }
    parameters->offsetX = parameters->offsetY = 9;
    parameters->setRandomOffset(false);
    EXPECT_EQ(parameters->offsetX, 0);
    EXPECT_EQ(parameters->offsetY, 0);
}

TEST(PreviewTextureGenerator, ShowsWhatIsPaintedWith) {
    const Image grain = noise(45, 33, 5);
    for (const float scale : {1.0f, 0.4f, 2.3f, 40.0f})
        for (const std::int32_t channels : {1, 4})
            for (const std::array<int, 2> size : {std::array{20, 70}, std::array{200, 160}}) {
                const Parameters parameters = textureOf(grain, scale, scale);
                parameters->setInvert(true);
                const auto target = makeRef<ilSPMemoryImg>(size[0], size[1], channels);
                const auto preview =
                    makeRef<PreviewTextureGenerator>(parameters, Ref<ilImage>(target));
                EXPECT_EQ(preview->getImage(), target.get());
                EXPECT_TRUE(parameters->dirty);
                const auto generator = makeRef<TextureGenerator>(parameters);
                const Ref<ilImage> pattern = generator->getImage();
                ASSERT_TRUE(pattern);
                for (std::int32_t y = 0; y < size[1]; ++y)
                    for (std::int32_t x = 0; x < size[0]; ++x)
                        ASSERT_EQ(target->data()[(y * size[0] + x) * channels],
                                  patternAt(*pattern, x, y))
                            << scale << " at " << x << ", " << y;
                for (std::size_t n = 0; channels == 4 && n < target->byteSize(); n += 4) {
                    const std::uint8_t* const pixel = target->data() + n;
                    ASSERT_TRUE(pixel[1] == pixel[0] && pixel[2] == pixel[0] && pixel[3] == 255);
                }
            }
    const auto target = noise(10, 10, 6);
    const auto alone = makeRef<PreviewTextureGenerator>(Parameters(), Ref<ilImage>(target));
    EXPECT_EQ(alone->getImage(), target.get());
    EXPECT_EQ(std::memcmp(target->data(), noise(10, 10, 6)->data(), 100), 0);
}

// Stamps over several tiles take the grain of their place, whatever the offset.
TEST(TextureGenerator, StampsShowThePatternWhereTheyLie) {
    for (const float scale : {1.0f, 1.7f}) {
        const Parameters parameters = textureOf(noise(61, 45, 7), scale, scale);
        const auto generator = makeRef<TextureGenerator>(parameters);
        BrushParameters brush = BrushParameters::defaults();
        brush.textureEnabled = true;
        brush.texture = parameters;
        brush.textureImage = generator->getImage();
        for (const std::array<int, 2> offset :
             {std::array{0, 0}, std::array{13, 44}, std::array{-1000, 77}, std::array{60, -45}}) {
            parameters->offsetX = offset[0];
            parameters->offsetY = offset[1];
            const auto high = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
            npc::StampRenderer renderer(high.get(), nullptr);
            renderer.setParameters(&brush);
            renderer.begin(BlendModeId::Normal);
            renderer.renderPoint({-31.0f, 25.0f, 150.0f});
            renderer.end();
            for (std::int32_t y = -70; y < 120; ++y)
                for (std::int32_t x = -130; x < 70; ++x)
                    ASSERT_NEAR(high->getPixel(x, y) >> 24,
                                patternAt(*brush.textureImage, x + offset[0], y + offset[1]), 2)
                        << x << ", " << y;
        }
    }
}

}  // namespace
}  // namespace brushwork
