#include "image/work/il_sp_memory_img.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "brushwork/host_call_table.h"
#include "foundation/services/log.h"
#include "image/work/corner_warp_solver.h"
#include "image/work/perspective_warp_solver.h"
#include "image/work/warp_loops.h"
#include "support/temp_folder.h"

namespace brushwork {
namespace {

using Bytes = std::vector<std::uint8_t>;

Ref<ilSPMemoryImg> noise(std::int32_t width, std::int32_t height, std::int32_t channels,
                         std::uint32_t seed = 1) {
    std::mt19937 random(seed);
    auto image = makeRef<ilSPMemoryImg>(width, height, channels);
    for (std::size_t n = 0; n < image->byteSize(); ++n)
        image->data()[n] = static_cast<std::uint8_t>(random());
    return image;
}

Bytes bytesOf(ilSPMemoryImg& image) {
    return {image.data(), image.data() + image.byteSize()};
}

Ref<ilSPMemoryImg> filled(std::int32_t width, std::int32_t height, std::int32_t channels,
                          int value) {
    auto image = makeRef<ilSPMemoryImg>(width, height, channels);
    std::memset(image->data(), value, image->byteSize());
    return image;
}

class ilSPMemoryImgLog : public ::testing::Test {
  protected:
    void SetUp() override {
        setLogSink([this](std::string_view line) { lines_.emplace_back(line); });
        hostCallTable().debugLevel = [] { return level_; };
        level_ = 8111;
    }
    void TearDown() override {
        setLogSink({});
        clearHostCallTable();
    }
    static inline std::int32_t level_ = 0;
    std::vector<std::string> lines_;
};

TEST_F(ilSPMemoryImgLog, CountsAndTellsOfItsImages) {
    const int before = ilSPMemoryImg::liveCount();
    const auto line = [before](const char* what, int more) {
        return std::string(what) + " ilSPMemoryImg, Count = " + std::to_string(before + more) +
               "\n";
    };
    Bytes memory(4);
    {
        const auto sized = makeRef<ilSPMemoryImg>(2, 2, 4);
        const auto linked = makeRef<ilSPMemoryImg>(sized.get());
        const auto empty = makeRef<ilSPMemoryImg>();
        EXPECT_EQ(ilSPMemoryImg::liveCount(), before + 3);
        EXPECT_EQ(lines_, (std::vector<std::string>{line("Creating", 1), line("Creating", 2),
                                                    line("Creating", 3)}));
        lines_.clear();
    }
    EXPECT_EQ(lines_, (std::vector<std::string>{line("Destroying", 2), line("Destroying", 1),
                                                line("Destroying", 0)}));
    const auto wrapLines = [&](std::int32_t width, std::int32_t height) {
        lines_.clear();
        Bytes pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        static_cast<void>(makeRef<ilSPMemoryImg>(pixels.data(), width, height, 1, 1, TypeUChar,
                                                 OrderInterleaved));
        return lines_;
    };
    const std::vector<std::string> both{line("Creating", 1), line("Destroying", 0)};
    const std::vector<std::string> last{line("Destroying", 0)};
    EXPECT_EQ(wrapLines(2001, 2001), both);
    EXPECT_EQ(wrapLines(2001, 2000), last);
    EXPECT_EQ(wrapLines(2000, 2001), last);
    level_ = 0x2016;
    EXPECT_TRUE(wrapLines(2001, 2001).empty());
    EXPECT_EQ(ilSPMemoryImg::liveCount(), before);
}

TEST(ilSPMemoryImg, BeginsWithZeroFillAndThatModel) {
    const auto image = makeRef<ilSPMemoryImg>(3, 2, 4);
    EXPECT_STREQ(image->className(), "SP Memory");
    EXPECT_EQ(image->coordSpace(), SpaceLowerLeft);
    EXPECT_EQ(image->colorModel(), ColorABGR);
    EXPECT_EQ(image->fill(), ilPixel());
    EXPECT_EQ(image->cachedIndex(), -1);
    EXPECT_EQ(image->sampleModeX(), SampleMode::Nearest);
    EXPECT_TRUE(image->isKindOf(ilMemoryImg::descriptor));
    Bytes around(5 * 4 * 4, 99);
    std::memset(image->data(), 7, image->byteSize());
    EXPECT_EQ(image->readRegion(flatTile(-1, -1, 5, 4), around.data(), flatTile(-1, -1, 5, 4)),
              ImageOk);
    EXPECT_EQ(std::count(around.begin(), around.end(), 7), 3 * 2 * 4);
    EXPECT_EQ(std::count(around.begin(), around.end(), 0), (5 * 4 - 3 * 2) * 4);
}

TEST(ilSPMemoryImg, ScalesRegionsAsPartsOfTheWhole) {
    for (const std::int32_t channels : {1, 4})
        for (const float scale : {0.37f, 1.0f, 1.6f}) {
            const auto image = noise(50, 40, channels);
            image->setScale(scale, scale);
            image->setSampleModes(SampleMode::Bicubic, SampleMode::Bilinear);
            const std::int32_t width = SamplingTables::scaledSize(50, scale);
            const std::int32_t height = SamplingTables::scaledSize(40, scale);
            const auto whole = filled(width, height, channels, 0);
            ASSERT_EQ(image->scaleAllInto(whole->scaledTarget()), ImageOk);

            const auto part = filled(9, 8, channels, 99);
            ASSERT_EQ(image->scaleBoxInto(10.0f, 5.0f, 12.0f, 100.0f, part.get()), ImageOk);
            const std::int32_t left = static_cast<std::int32_t>(std::lround(10.0f * scale));
            const std::int32_t right = static_cast<std::int32_t>(std::lround(22.0f * scale));
            const std::int32_t bottom = static_cast<std::int32_t>(std::lround(5.0f * scale));
            for (std::int32_t y = 0; y < 8; ++y)
                for (std::int32_t x = 0; x < 9; ++x)
                    for (std::int32_t c = 0; c < channels; ++c) {
                        const bool inside =
                            left + x < std::min(right, width) && bottom + y < height;
                        const int expected =
                            inside ? whole->data()[((bottom + y) * width + left + x) * channels + c]
                                   : 99;
                        ASSERT_EQ(part->data()[(y * 9 + x) * channels + c], expected)
                            << scale << ": " << x << ' ' << y;
                    }
        }
}

TEST(ilSPMemoryImg, ScaleBoxIntoMindsItsArguments) {
    const auto image = noise(8, 8, 4);
    const auto dest = filled(4, 4, 4, 99);
    const Bytes before = bytesOf(*dest);
    const float nothing = std::nanf("");
    EXPECT_EQ(image->scaleBoxInto(0, 0, 4, 4, nullptr), ImageUnusable);
    EXPECT_EQ(image->status(), ImageUnusable);
    EXPECT_EQ(image->scaleBoxInto(0, 0, -3, 4, dest.get()), ImageOk);
    EXPECT_EQ(image->scaleBoxInto(0, 0, 4, 0, dest.get()), ImageOk);
    EXPECT_EQ(image->status(), ImageOk);
    EXPECT_EQ(image->scaleBoxInto(1e30f, -1e30f, 1e38f, 1e38f, dest.get()), ImageOk);
    EXPECT_EQ(image->scaleBoxInto(nothing, 0, nothing, 4, dest.get()), ImageOk);
    EXPECT_EQ(bytesOf(*dest), before);
    EXPECT_EQ(image->scaleBoxInto(0, 0, 4, 4, filled(4, 4, 1, 0).get()), ImageNotAllowed);
    EXPECT_EQ(image->scaleAllInto(ScaledTarget{}), ImageUnusable);
}

TEST(ilSPMemoryImg, WarpsThroughTheSolverOfTheQuad) {
    QuadCorners straight{{{5.3f, 3.1f}, {40.7f, 13.9f}, {30.3f, 48.4f}, {}}};
    straight[3] = {straight[0].x + (straight[2].x - straight[1].x),
                   straight[0].y + (straight[2].y - straight[1].y)};
    const QuadCorners bent{{{5, 3}, {60, 10}, {48, 55}, {2, 30}}};
    int differences = 0;
    for (const std::int32_t channels : {1, 4})
        for (const auto mode : {SampleMode::Nearest, SampleMode::Bilinear, SampleMode::Bicubic}) {
            const auto image = noise(31, 27, channels);
            image->setSampleModes(mode, SampleMode::Nearest);
            const SampleSource source{image->data(), 31, 27, 31 * channels, {}};
            const auto drawnBy = [&](const QuadSolver& solver) {
                const auto target = filled(64, 60, channels, 99);
                EXPECT_TRUE(warpPixels(solver, source, mode, channels,
                                       {target->data(), 64, 60, 64 * channels, 0, 0}));
                return bytesOf(*target);
            };
            const auto warped = [&](const QuadCorners& corners, WarpKind kind) {
                const auto target = filled(64, 60, channels, 99);
                EXPECT_EQ(image->warpInto(corners, target.get(), kind), ImageOk);
                return bytesOf(*target);
            };
            const auto map = quadToSquare(straight);
            ASSERT_TRUE(map);
            const PerspectiveWarpSolver flat(straight, 31, 27, *map);
            const CornerWarpSolver corners(bent, 31, 27);
            EXPECT_EQ(warped(straight, WarpKind::Automatic), drawnBy(flat));
            EXPECT_EQ(warped(bent, WarpKind::Automatic), drawnBy(corners));
            EXPECT_EQ(warped(bent, WarpKind::Corners), drawnBy(corners));
            const CornerWarpSolver bilinear(straight, 31, 27);
            EXPECT_EQ(warped(straight, WarpKind::Corners), drawnBy(bilinear));
            differences += drawnBy(bilinear) != drawnBy(flat);
        }
    EXPECT_GT(differences, 0) << "the two solvers can't be told apart here";
}

TEST(ilSPMemoryImg, AQuadWithoutAreaDrawsNothing) {
    const auto image = noise(8, 8, 4);
    const auto target = filled(8, 8, 4, 99);
    const Bytes before = bytesOf(*target);
    const float nothing = std::nanf("");
    EXPECT_EQ(image->warpInto({}, target.get()), ImageOk);
    EXPECT_EQ(image->warpInto({{{0, 0}, {4, 4}, {8, 8}, {4, 4}}}, target.get()), ImageOk);
    EXPECT_EQ(image->warpInto({{{nothing, 0}, {4, 4}, {8, 8}, {0, 4}}}, target.get()), ImageOk);
    EXPECT_EQ(bytesOf(*target), before);
    const QuadCorners whole{{{0, 0}, {8, 0}, {8, 8}, {0, 8}}};
    EXPECT_EQ(image->warpInto(whole, nullptr), ImageUnusable);
    EXPECT_EQ(image->warpInto(whole, image.get()), ImageUnusable);
    EXPECT_EQ(image->warpInto(whole, target.get()), ImageOk);
    EXPECT_EQ(bytesOf(*target), bytesOf(*image));
}

TEST(ilSPMemoryImg, DownsamplesByTheBlockOfTheScale) {
    const auto image = noise(75, 53, 4);
    const struct {
        float scale;
        std::int32_t block;
    } cases[] = {{0.00002f, 16}, {0.0625f, 16}, {0.063f, 8}, {0.125f, 8},
                 {0.13f, 4},     {0.25f, 4},    {0.26f, 2},  {0.5f, 2}};
    for (const auto& [scale, block] : cases) {
        const auto small = image->downsampled(scale);
        ASSERT_TRUE(small);
        const auto sizeOf = [block = block](double size) {
            return static_cast<std::int32_t>(std::floor(size / block + 0.5));
        };
        ASSERT_EQ(small->sizeX(), sizeOf(75)) << scale;
        ASSERT_EQ(small->sizeY(), sizeOf(53)) << scale;
        for (std::int32_t y = 0; y < small->sizeY(); ++y)
            for (std::int32_t x = 0; x < small->sizeX(); ++x)
                for (std::int32_t c = 0; c < 4; ++c) {
                    int sum = 0;
                    const bool whole = (x + 1) * block <= 75 && (y + 1) * block <= 53;
                    for (std::int32_t j = 0; whole && j < block; ++j)
                        for (std::int32_t i = 0; i < block; ++i)
                            sum += image->data()[((y * block + j) * 75 + x * block + i) * 4 + c];
                    ASSERT_EQ(small->data()[(y * small->sizeX() + x) * 4 + c],
                              sum / (block * block))
                        << scale << ": " << x << ' ' << y;
                }
    }
    for (const float scale : {0.51f, 0.9999f}) {
        const auto same = image->downsampled(scale);
        ASSERT_TRUE(same);
        EXPECT_EQ(bytesOf(*same), bytesOf(*image));
        EXPECT_EQ(same->sizeX(), 75);
    }
    for (const float scale : {0.0f, 0.00001f, 1.0f, 2.0f, -0.5f, std::nanf("")})
        EXPECT_FALSE(image->downsampled(scale)) << scale;
    EXPECT_FALSE(noise(32, 32, 1)->downsampled(0.5f));
    EXPECT_FALSE(noise(3, 3, 4)->downsampled(0.01f));  // nothing is left
}

TEST(ilSPMemoryImg, ScaleIntoHalvesFirst) {
    const auto image = noise(100, 90, 4);
    const struct {
        std::int32_t width, height;
        int halvings;
    } cases[] = {{100, 90, 0}, {50, 45, 0}, {49, 44, 1}, {25, 22, 1}, {24, 21, 2},
                 {12, 44, 1},  {50, 40, 0}, {40, 45, 0}, {3, 2, 4},   {200, 10, 0}};
    for (const auto& [width, height, halvings] : cases) {
        const auto dest = filled(width, height, 4, 99);
        ASSERT_TRUE(image->scaleInto(dest.get()));
        EXPECT_EQ(image->scaleX(), std::ldexp(1.0f, -halvings)) << width << " by " << height;
        EXPECT_EQ(image->sampleModeX(), SampleMode::Bilinear);

        const auto halved = filled(100 >> halvings, 90 >> halvings, 4, 0);
        image->scaleAllInto(halved->scaledTarget());
        const float scale =
            std::min(static_cast<float>(width) / static_cast<float>(halved->sizeX()),
                     static_cast<float>(height) / static_cast<float>(halved->sizeY()));
        halved->setScale(scale, scale);
        halved->setSampleModes(SampleMode::Bicubic, SampleMode::Bicubic);
        const auto expected = filled(width, height, 4, 99);
        halved->scaleAllInto(expected->scaledTarget());
        EXPECT_EQ(bytesOf(*dest), bytesOf(*expected)) << width << " by " << height;
    }
    const auto even = filled(80, 60, 1, 123);
    const auto small = filled(9, 9, 1, 0);
    EXPECT_TRUE(even->scaleInto(small.get()));
    EXPECT_EQ(bytesOf(*small), [] {
        Bytes rows(81, 0);
        std::fill_n(rows.begin(), 63, std::uint8_t{123});  // 9 by 7 of it: proportions are kept
        return rows;
    }());
    EXPECT_FALSE(even->scaleInto(nullptr));
    EXPECT_FALSE(even->scaleInto(even.get()));
    EXPECT_FALSE(even->scaleInto(image.get()));
}

TEST(ilSPMemoryImg, Box4x4) {
    const auto image = noise(23, 10, 1);
    Bytes dest(5 * 2 + 1, 99);
    ASSERT_EQ(image->box4x4Into(dest.data()), ImageOk);
    for (std::int32_t n = 0; n < 10; ++n) {
        int sum = 0;
        for (std::int32_t k = 0; k < 16; ++k)
            sum += image->data()[(n / 5 * 4 + k / 4) * 23 + n % 5 * 4 + k % 4];
        EXPECT_EQ(dest[static_cast<std::size_t>(n)], sum >> 4);
    }
    EXPECT_EQ(dest[10], 99);
    EXPECT_EQ(image->box4x4Into(nullptr), ImageUnusable);
    EXPECT_EQ(noise(8, 8, 4)->box4x4Into(dest.data()), ImageNotAllowed);
}

TEST(ilSPMemoryImg, TurnsInPlaceInOwnedAndWrappedBuffers) {
    for (const bool wrapped : {false, true})
        for (const std::int32_t channels : {1, 4})
            for (const auto& [width, height] : {std::pair{13, 7}, {128, 128}, {1, 9}}) {
                const auto original = noise(width, height, channels);
                Bytes memory = bytesOf(*original);
                const auto image =
                    wrapped ? makeRef<ilSPMemoryImg>(memory.data(), width, height, 1, channels,
                                                     TypeUChar, OrderInterleaved)
                            : noise(width, height, channels);
                PageLockRequest request;
                ASSERT_EQ(image->lockPages({&request, 1}, LockRead), ImageOk);
                ASSERT_EQ(image->rotate90(), ImageOk);
                ASSERT_EQ(image->sizeX(), height);
                ASSERT_EQ(image->sizeY(), width);
                EXPECT_EQ(image->ownsBuffer(), !wrapped);
                EXPECT_EQ(request.page->data(), image->data());
                EXPECT_EQ(request.page->x, height);
                EXPECT_EQ(image->pageSize().x, height);
                const auto channelBytes = static_cast<std::size_t>(channels);
                for (std::int32_t y = 0; y < height; ++y)
                    for (std::int32_t x = 0; x < width; ++x)
                        ASSERT_EQ(std::memcmp(
                                      image->data() + (x * height + height - 1 - y) * channels,
                                      original->data() + (y * width + x) * channels, channelBytes),
                                  0);
                ASSERT_EQ(image->rotateMinus90(), ImageOk);
                EXPECT_EQ(bytesOf(*image), bytesOf(*original));
                // Two mirrors make half a turn, and so do two quarters.
                image->mirrorX();
                EXPECT_EQ(width == 1, bytesOf(*image) == bytesOf(*original));
                image->flipY();
                const Bytes half = bytesOf(*image);
                image->mirrorX();
                image->flipY();
                image->rotate90();
                image->rotate90();
                EXPECT_EQ(bytesOf(*image), half);
            }
}

TEST(ilSPMemoryImg, Tones) {
    const auto four = makeRef<ilSPMemoryImg>(2, 1, 4);
    const std::uint8_t pixels[] = {255, 0, 100, 255, 0, 0, 0, 0};
    std::memcpy(four->data(), pixels, sizeof pixels);
    EXPECT_EQ(four->invert(), ImageOk);
    EXPECT_EQ(bytesOf(*four), (Bytes{0, 255, 155, 255, 0, 0, 0, 0}));
    EXPECT_EQ(four->brightnessContrast(0, 0), ImageNotAllowed);
    const auto one = makeRef<ilSPMemoryImg>(3, 1, 1);
    const std::uint8_t values[] = {0, 100, 255};
    std::memcpy(one->data(), values, sizeof values);
    EXPECT_EQ(one->invert(), ImageOk);
    EXPECT_EQ(bytesOf(*one), (Bytes{255, 155, 0}));
    EXPECT_EQ(one->brightnessContrast(10.0f, 0.0f), ImageOk);
    EXPECT_EQ(bytesOf(*one), (Bytes{255, 165, 10}));
}

TEST(ilSPMemoryImg, OnlyBytesOfOneOrFourChannels) {
    const Ref<ilSPMemoryImg> others[] = {
        makeRef<ilSPMemoryImg>(4, 4, 3),
        makeRef<ilSPMemoryImg>(4, 4, 1, 4, TypeUShort, OrderInterleaved),
        makeRef<ilSPMemoryImg>(4, 4, 1, 4, TypeUChar, OrderSeparate)};
    const auto good = filled(4, 4, 4, 1);
    for (const auto& image : others) {
        std::memset(image->data(), 5, image->byteSize());
        const Bytes before = bytesOf(*image);
        EXPECT_EQ(image->invert(), ImageNotAllowed);
        EXPECT_EQ(image->rotate90(), ImageNotAllowed);
        EXPECT_EQ(image->mirrorX(), ImageNotAllowed);
        EXPECT_EQ(image->flipY(), ImageNotAllowed);
        EXPECT_EQ(image->scaleAllInto(good->scaledTarget()), ImageNotAllowed);
        EXPECT_EQ(good->warpInto({{{0, 0}, {4, 0}, {4, 4}, {0, 4}}}, image.get()), ImageNotAllowed);
        EXPECT_EQ(image->scaledTarget().pixels, nullptr);
        EXPECT_FALSE(image->downsampled(0.5f));
        EXPECT_FALSE(image->scaleInto(good.get()));
        EXPECT_FALSE(good->scaleInto(image.get()));
        EXPECT_FALSE(image->writeBmp(u"/nowhere/at/all.bmp"));
        EXPECT_EQ(bytesOf(*image), before);
    }
    EXPECT_EQ(makeRef<ilSPMemoryImg>()->invert(), ImageUnusable);
}

TEST(ilSPMemoryImg, WritesABitmap) {
    const test::TempFolder folder;
    const std::string path = folder.file("grey.bmp");
    EXPECT_TRUE(noise(5, 3, 1)->writeBmp(std::u16string(path.begin(), path.end())));
    const Bytes file = test::readBytes(path);
    ASSERT_EQ(file.size(), 1078u + 8 * 3);
    EXPECT_EQ(file[0], 'B');
    EXPECT_EQ(file[1078], noise(5, 3, 1)->data()[0]);
    EXPECT_FALSE(noise(5, 3, 1)->writeBmp(u"/nowhere/at/all.bmp"));
}

TEST(ilSPMemoryImg, OutsideIsZeroOrTheFillInWhateverFormItCame) {
    const auto parent = makeRef<ilMemoryImg>(4, 4, 1, 4, TypeUChar, OrderInterleaved);
    const auto linked = makeRef<ilSPMemoryImg>(parent.get());
    std::array<std::uint8_t, 4> pixel{9, 9, 9, 9};
    const ilTile outside = flatTile(-1, 0, 1, 1);
    ASSERT_EQ(linked->readRegion(outside, pixel.data(), outside), ImageOk);
    EXPECT_EQ(pixel, (std::array<std::uint8_t, 4>{}));

    // A fill in another type is the same colour to a warp as to a read.
    const auto image = makeRef<ilSPMemoryImg>(4, 4, 4);
    std::fill_n(image->data(), image->byteSize(), std::uint8_t{50});
    ilPixel fill(TypeDouble, 4);
    for (int c = 0; c < 4; ++c) fill.setChannel(c, 200 + c);
    ASSERT_EQ(image->setFill(fill), ImageOk);
    const auto target = makeRef<ilSPMemoryImg>(6, 6, 4);
    std::fill_n(target->data(), target->byteSize(), std::uint8_t{1});
    image->setSampleModes(SampleMode::Nearest, SampleMode::Nearest);
    image->warpInto({{{0.5f, 0.5f}, {4.5f, 0.5f}, {4.5f, 4.5f}, {0.5f, 4.5f}}}, target.get());
    ASSERT_EQ(image->readRegion(outside, pixel.data(), outside), ImageOk);
    EXPECT_EQ(pixel, (std::array<std::uint8_t, 4>{200, 201, 202, 203}));
    // Whatever a warp reads is a pixel of the image or the fill.
    for (std::size_t i = 0; i < 36; ++i) {
        const std::uint8_t* at = target->data() + i * 4;
        const bool known = at[0] == 1 || at[0] == 50 || std::equal(at, at + 4, pixel.begin());
        EXPECT_TRUE(known) << i << ": " << int{at[0]} << " " << int{at[1]};
    }
}

}  // namespace
}  // namespace brushwork
