#include "bridge/raw_pixel_file.h"

#include <gtest/gtest.h>

#include <random>

#include "bridge_run.h"

namespace brushwork {
namespace {

using test::readBytes;
using test::TempFolder;
using test::writeBytes;

std::u16string path16(const std::string& path) {
    return platform::fromUtf8(path);
}

std::vector<std::uint8_t> randomBytes(std::size_t count, std::mt19937& random) {
    std::vector<std::uint8_t> bytes(count);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

// Rows in random blocks and random order; some are never handed over.
TEST(RawPixelFile, WriterTurnsRowsOverWhateverTheirOrder) {
    std::mt19937 random(20240);
    TempFolder folder;
    for (int round = 0; round < 60; ++round) {
        const int width = 1 + static_cast<int>(random() % 40000) / (round % 3 == 0 ? 1 : 500);
        const int height = 1 + static_cast<int>(random() % 50);
        const std::size_t rowBytes = static_cast<std::size_t>(width) * 4;
        const auto picture = randomBytes(rowBytes * static_cast<std::size_t>(height), random);
        std::vector<std::uint8_t> expected(picture.size(), 0);

        std::vector<std::pair<int, int>> blocks;
        for (int y = 0; y < height;) {
            const int count = 1 + static_cast<int>(random() % 9);
            blocks.emplace_back(y, std::min(count, height - y));
            y += count;
        }
        if (round % 2 == 1) std::shuffle(blocks.begin(), blocks.end(), random);
        if (round % 5 == 4) blocks.pop_back();

        const std::string name = folder.file("pixels");
        RawPixelWriter writer;
        ASSERT_TRUE(writer.create(path16(name), width, height));
        for (const auto& [y, count] : blocks) {
            ASSERT_TRUE(writer.putRows(y, count, &picture[rowBytes * static_cast<std::size_t>(y)]));
            for (int row = y; row < y + count; ++row)
                std::copy_n(picture.begin() + long(rowBytes) * row, rowBytes,
                            expected.begin() + long(rowBytes) * (height - 1 - row));
        }
        ASSERT_TRUE(writer.finish());
        ASSERT_EQ(readBytes(name), expected) << "round " << round << " " << width << "x" << height;

        // And back: with four channels the reader gives the picture's rows again.
        RawPixelReader reader;
        ASSERT_TRUE(reader.open(path16(name), width, height, 4));
        std::vector<std::uint8_t> row(rowBytes);
        for (int i = 0; i < height; ++i) {
            const int y = round % 2 == 0 ? i : static_cast<int>(random() % unsigned(height));
            ASSERT_TRUE(reader.getRow(y, row.data()));
            ASSERT_TRUE(std::equal(row.begin(), row.end(),
                                   expected.begin() + long(rowBytes) * (height - 1 - y)));
        }
        std::filesystem::remove(name);
    }
}

TEST(RawPixelFile, WriterRemovesWhatWasNotFinishedAndSparesWhatWasThere) {
    TempFolder folder;
    {
        RawPixelWriter writer;
        ASSERT_TRUE(writer.create(path16(folder.file("pixels")), 3, 3));
        EXPECT_TRUE(std::filesystem::exists(folder.file("pixels")));
    }
    EXPECT_FALSE(std::filesystem::exists(folder.file("pixels")));
    writeBytes(folder.file("mine"), {1, 2, 3});
    {
        RawPixelWriter writer;
        EXPECT_FALSE(writer.create(path16(folder.file("mine")), 3, 3));
    }
    EXPECT_EQ(readBytes(folder.file("mine")), (std::vector<std::uint8_t>{1, 2, 3}));
}

// The oracle lays the packed rows out in a whole 32-bit bitmap, as the pitch rule says.
TEST(RawPixelFile, FewerChannelsLieAtTheirOwnPitch) {
    std::mt19937 random(77);
    TempFolder folder;
    for (int round = 0; round < 100; ++round) {
        const int width = 1 + static_cast<int>(random() % 30);
        const int height = 1 + static_cast<int>(random() % 30);
        const int channels = 1 + static_cast<int>(random() % 4);
        const auto row = static_cast<std::size_t>(width * channels);
        const auto file = randomBytes(row * static_cast<std::size_t>(height), random);
        writeBytes(folder.file("pixels"), file);
        std::vector<std::uint8_t> bitmap(static_cast<std::size_t>(width * height) * 4, 0);
        for (int y = 0; y < height; ++y)
            std::copy_n(file.begin() + long(row) * y, row,
                        bitmap.begin() + long(row) * (height - 1 - y));
        RawPixelReader reader;
        ASSERT_TRUE(reader.open(path16(folder.file("pixels")), width, height, channels));
        std::vector<std::uint8_t> got(static_cast<std::size_t>(width) * 4);
        for (int y = 0; y < height; ++y) {
            ASSERT_TRUE(reader.getRow(y, got.data()));
            ASSERT_TRUE(std::equal(got.begin(), got.end(), bitmap.begin() + long(got.size()) * y))
                << "round " << round << ": " << width << "x" << height << "x" << channels << " row "
                << y;
        }
    }
}

TEST(RawPixelFile, SizesAreCheckedBeforeTheyAreMultiplied) {
    EXPECT_EQ(pixelFileBytes(3, 5, 4), 60U);
    EXPECT_FALSE(pixelFileBytes(0, 5, 4));
    EXPECT_FALSE(pixelFileBytes(3, -5, 4));
    EXPECT_FALSE(pixelFileBytes(3, 5, 0));
    EXPECT_EQ(pixelFileBytes(INT32_MAX, INT32_MAX, 2), 2ULL * INT32_MAX * INT32_MAX);
    EXPECT_FALSE(pixelFileBytes(INT32_MAX, INT32_MAX, 4));

    TempFolder folder;
    writeBytes(folder.file("pixels"), std::vector<std::uint8_t>(60));
    RawPixelReader reader;
    EXPECT_TRUE(reader.open(path16(folder.file("pixels")), 3, 5, 4));
    EXPECT_FALSE(reader.open(path16(folder.file("pixels")), 3, 5, 5));
    EXPECT_FALSE(reader.open(path16(folder.file("pixels")), 4, 5, 4)) << "one row too few";
    EXPECT_FALSE(reader.open(path16(folder.file("pixels")), INT32_MAX, INT32_MAX, 4));
    EXPECT_FALSE(reader.open(path16(folder.temporary().string()), 1, 1, 1)) << "a folder";
}

}  // namespace
}  // namespace brushwork
