// What the three commands do with real pictures. Decoded pixels are compared with an independent
// decoder in the corpus test; here the record, the orders and the round trips count.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "bridge/format_names.h"
#include "bridge/pixel_order.h"
#include "bridge_run.h"

namespace brushwork {
namespace {

using test::makeRequest;
using test::picture;
using test::readBytes;
using test::runRequest;
using test::takePixels;
using test::TempFolder;
using test::wide;
using test::writeBytes;
using Bytes = std::vector<std::uint8_t>;

struct Saving {
    int width = 0, height = 0, channels = 4;
    std::string format;
    Bytes pixels;
    int hasQuality = 0, quality = 0;
    int unit = 0;
    double x = 0.0, y = 0.0;
};

// The picture file as bytes; empty if the command failed.
Bytes save(const TempFolder& folder, const Saving& saving) {
    const std::string image = folder.file("saved");
    std::filesystem::remove(image);
    writeBytes(folder.file("pixels"), saving.pixels);
    auto request = makeRequest("SaveToFile", image, folder.file("answer"));
    request.setSize(saving.width, saving.height);
    request.setChannels(saving.channels);
    request.setQuality(saving.hasQuality != 0, saving.quality);
    request.setResolutionUnit(saving.unit);
    request.setResolution(saving.x, saving.y);
    EXPECT_TRUE(request.setFormat(wide(saving.format)));
    EXPECT_TRUE(request.setPixelsPath(wide(folder.file("pixels"))));
    const auto run = runRequest(folder, request);
    EXPECT_EQ(run.exitValue, run.response ? 1 : -1);
    EXPECT_EQ(readBytes(folder.file("pixels")), saving.pixels) << "the pixel file is the client's";
    EXPECT_TRUE(folder.leftovers().empty());
    if (!run.response) {
        EXPECT_FALSE(std::filesystem::exists(image)) << saving.format;
        return {};
    }
    EXPECT_EQ(run.response->params.width, saving.width);
    EXPECT_EQ(run.response->params.height, saving.height);
    EXPECT_EQ(run.response->params.channels, saving.channels);
    EXPECT_EQ(run.response->params.xResolution, 0.0);
    return readBytes(image);
}

struct Opened {
    RequestRecord response;
    Bytes pixels;
};

Opened open(const TempFolder& folder, const std::string& image) {
    const auto run = runRequest(folder, makeRequest("OpenFromFile", image, folder.file("answer")));
    EXPECT_EQ(run.exitValue, 1) << image;
    if (!run.response) return {};
    return {*run.response, takePixels(*run.response)};
}

// `colours` different pixels; opaque, or with some of alpha 0 and, for formats that can, any alpha.
enum class Alpha { Opaque, OnOff, Any };
Saving randomPicture(std::mt19937& random, const std::string& format, int width, int height,
                     unsigned colours, Alpha alpha) {
    Saving saving;
    saving.format = format;
    saving.width = width;
    saving.height = height;
    std::vector<std::array<std::uint8_t, 4>> palette(colours);
    for (auto& color : palette) {
        for (auto& channel : color) channel = static_cast<std::uint8_t>(random());
        if (alpha == Alpha::Opaque) color[3] = 255;
        if (alpha == Alpha::OnOff) color[3] = 255;
    }
    if (alpha != Alpha::Opaque) palette[0] = {0, 0, 0, 0};
    for (int i = 0; i < width * height; ++i) {
        const auto& color = palette[random() % colours];
        saving.pixels.insert(saving.pixels.end(), color.begin(), color.end());
    }
    return saving;
}

TEST(Commands, RoundTripsAreExact) {
    std::mt19937 random(11);
    TempFolder folder;
    struct Case {
        const char* format;
        unsigned colours;
        Alpha alpha;
    };
    const Case cases[] = {{"PNG", 4000, Alpha::Opaque},  {"PNG", 4000, Alpha::Any},
                          {"TIFF", 4000, Alpha::Opaque}, {"TIFF", 4000, Alpha::Any},
                          {"BMP", 4000, Alpha::Opaque},  {"BMP", 4000, Alpha::Any},
                          {"GIF", 256, Alpha::Opaque},   {"GIF", 256, Alpha::OnOff},
                          {"GIF", 2, Alpha::OnOff},      {"GIF", 1, Alpha::Opaque}};
    const int sizes[][2] = {{1, 1}, {1, 9}, {7, 1}, {5, 3}, {64, 64}, {300, 41}};
    for (const auto& each : cases) {
        for (const auto& [width, height] : sizes) {
            auto saving =
                randomPicture(random, each.format, width, height, each.colours, each.alpha);
            ASSERT_FALSE(save(folder, saving).empty()) << each.format;
            const auto opened = open(folder, folder.file("saved"));
            EXPECT_EQ(fieldText(opened.response.format), wide(each.format).view());
            EXPECT_EQ(opened.response.params.width, width);
            EXPECT_EQ(opened.response.params.height, height);
            // A PNG comes back premultiplied, by this formula.
            if (each.format == std::string("PNG"))
                for (std::size_t i = 0; i < saving.pixels.size(); ++i)
                    if (i % 4 != 3)
                        saving.pixels[i] = static_cast<std::uint8_t>(
                            (saving.pixels[i] * saving.pixels[i | 3] + 127) / 255);
            ASSERT_EQ(opened.pixels, saving.pixels)
                << each.format << " " << width << "x" << height << " " << each.colours;
        }
    }
}

TEST(Commands, PngIsPremultipliedAndTiffIsNot) {
    TempFolder folder;
    Saving saving{1, 1, 4, "PNG", {200, 100, 50, 128}};
    save(folder, saving);
    EXPECT_EQ(open(folder, folder.file("saved")).pixels, (Bytes{100, 50, 25, 128}));
    saving.format = "TIFF";
    save(folder, saving);
    EXPECT_EQ(open(folder, folder.file("saved")).pixels, saving.pixels);
}

TEST(Commands, FormatNamesHaveTheirCaseAndOnlyFive) {
    TempFolder folder;
    Saving saving{1, 1, 4, "", {1, 2, 3, 255}};
    for (const char* name : {"png", "Png", "", "JPG", "WEBP", "PNG "}) {
        saving.format = name;
        EXPECT_TRUE(save(folder, saving).empty()) << name;
    }
    platform::Guid encoder;
    EXPECT_GE(findEncoderByMimeType(u"image/tiff", encoder), 0);
    EXPECT_EQ(encoder.d1, 0x557cf405U);
    EXPECT_EQ(findEncoderByMimeType(u"image/TIFF", encoder), -1);
    EXPECT_EQ(formatName(platform::Guid{}), u"");
}

TEST(Commands, SavingRefusesBadSizesAndShortPixels) {
    TempFolder folder;
    const Bytes pixels(24, 9);
    const int bad[][3] = {{0, 1, 4},      {1, 0, 4},  {-1, 1, 4}, {2, 3, 0},
                          {2, 3, 5},      {2, 3, -4}, {7, 1, 4},  {INT32_MAX, INT32_MAX, 4},
                          {1 << 30, 1, 4}};
    for (const auto& [width, height, channels] : bad)
        EXPECT_TRUE(save(folder, {width, height, channels, "BMP", pixels}).empty())
            << width << "x" << height << "x" << channels;
    EXPECT_FALSE(save(folder, {2, 3, 4, "BMP", pixels}).empty());
    EXPECT_FALSE(save(folder, {2, 2, 4, "BMP", pixels}).empty()) << "a longer file passes";
    EXPECT_FALSE(save(folder, {8, 3, 1, "BMP", pixels}).empty());
}

TEST(Commands, SavingKeepsTheOldFileWhenItFails) {
    TempFolder folder;
    const Bytes before{1, 2, 3};
    for (const bool shortPixels : {false, true}) {
        writeBytes(folder.file("old.png"), before);
        writeBytes(folder.file("pixels"), Bytes(shortPixels ? 11 : 12, 200));
        auto request = makeRequest("SaveToFile", folder.file("old.png"), folder.file("answer"));
        request.setSize(1, 3);
        request.setChannels(4);
        ASSERT_TRUE(request.setFormat(wide("PNG")));
        ASSERT_TRUE(request.setPixelsPath(wide(folder.file("pixels"))));
        EXPECT_EQ(runRequest(folder, request).exitValue, shortPixels ? -1 : 1);
        EXPECT_EQ(readBytes(folder.file("old.png")) == before, shortPixels);
    }
}

TEST(Commands, QualityCountsOnlyWhereItIsGiven) {
    TempFolder folder;
    std::mt19937 random(5);
    auto saving = randomPicture(random, "JPEG", 40, 40, 900, Alpha::Opaque);
    const Bytes plain = save(folder, saving);
    saving.quality = 5;
    EXPECT_EQ(save(folder, saving), plain);
    saving.hasQuality = 1;
    const Bytes worst = save(folder, saving);
    saving.quality = 95;
    EXPECT_LT(worst.size(), plain.size());
    EXPECT_GT(save(folder, saving).size(), plain.size());
}

TEST(Commands, ResolutionFollowsItsUnit) {
    TempFolder folder;
    struct Case {
        int unit;
        double x, y, expectedX, expectedY;
    };
    const Case cases[] = {{2, 300.0, 150.0, 300.0, 150.0},      {3, 118.11, 118.11, 300.0, 300.0},
                          {2, 0.0, 300.0, 96.0, 96.0},          {2, 300.0, -1.0, 96.0, 96.0},
                          {0, 300.0, 300.0, 96.0, 96.0},        {4, 300.0, 300.0, 96.0, 96.0},
                          {2, std::nan(""), 300.0, 96.0, 96.0}, {2, 1e300, 1e300, 96.0, 96.0}};
    for (const char* format : {"PNG", "TIFF", "BMP", "JPEG", "GIF"}) {
        for (const auto& each : cases) {
            Saving saving{1, 1, 4, format, {1, 2, 3, 255}};
            saving.unit = each.unit;
            saving.x = each.x;
            saving.y = each.y;
            ASSERT_FALSE(save(folder, saving).empty()) << format;
            const auto opened = open(folder, folder.file("saved"));
            const bool gif = format == std::string("GIF");  // has no field for it
            EXPECT_NEAR(opened.response.params.xResolution, gif ? 96.0 : each.expectedX, 0.02)
                << format << " unit " << each.unit << " " << each.x;
            EXPECT_NEAR(opened.response.params.yResolution, gif ? 96.0 : each.expectedY, 0.02);
        }
    }
    const auto unequal = open(folder, picture("cup-dpi300x150.jpg"));
    EXPECT_EQ(unequal.response.params.xResolution, 300.0);
    EXPECT_EQ(unequal.response.params.yResolution, 150.0);
}

// Un-premultiplying against a search for the nearest value in whole numbers.
TEST(PixelOrder, UnpremultiplyTakesTheNearestValue) {
    for (unsigned alpha = 0; alpha < 256; ++alpha) {
        for (unsigned color = 0; color < 256; ++color) {
            std::uint8_t pixel[4] = {static_cast<std::uint8_t>(color), 0, 255,
                                     static_cast<std::uint8_t>(alpha)};
            unpremultiply(pixel, 1);
            EXPECT_EQ(pixel[3], alpha);
            if (alpha == 0) {
                EXPECT_EQ(pixel[0] | pixel[1] | pixel[2], 0);
                continue;
            }
            EXPECT_EQ(pixel[1], 0);
            const double exact = std::min(255.0, color * 255.0 / alpha);
            EXPECT_LE(std::abs(pixel[0] - exact), 0.5) << color << " " << alpha;
        }
    }
}

}  // namespace
}  // namespace brushwork
