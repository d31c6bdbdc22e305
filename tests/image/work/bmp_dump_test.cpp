#include "image/work/bmp_dump.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "support/scratch_directory.h"

namespace brushwork {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::uint32_t number(const Bytes& bytes, std::size_t at, int count = 4) {
    std::uint32_t value = 0;
    for (int n = count; n-- > 0;) value = value << 8 | bytes[at + static_cast<std::size_t>(n)];
    return value;
}

TEST(BmpDump, GreyHasAPaletteAndPaddedRows) {
    const ScratchDirectory folder;
    const std::filesystem::path path = folder / "grey.bmp";
    const std::uint8_t pixels[6] = {10, 20, 30, 40, 50, 60};
    ASSERT_TRUE(writeBmp(path.u16string(), pixels, 3, 2, 1));
    const Bytes file = contentsOf(path);
    ASSERT_EQ(file.size(), 1078u + 8u);
    EXPECT_EQ(file[0], 'B');
    EXPECT_EQ(file[1], 'M');
    EXPECT_EQ(number(file, 2), file.size());
    EXPECT_EQ(number(file, 10), 1078u);
    EXPECT_EQ(number(file, 14), 40u);
    EXPECT_EQ(number(file, 18), 3u);
    EXPECT_EQ(number(file, 22), 2u);
    EXPECT_EQ(number(file, 26, 2), 1u);
    EXPECT_EQ(number(file, 28, 2), 8u);
    EXPECT_EQ(number(file, 30), 0u);
    for (std::uint32_t grey = 0; grey < 256; ++grey)
        ASSERT_EQ(number(file, 54 + grey * 4), grey * 0x010101u);
    EXPECT_EQ(Bytes(file.begin() + 1078, file.end()), (Bytes{10, 20, 30, 0, 40, 50, 60, 0}));
}

TEST(BmpDump, ColourIsBlueGreenRedAlpha) {
    const ScratchDirectory folder;
    const std::filesystem::path path = folder / "colour.bmp";
    const std::uint8_t pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_TRUE(writeBmp(path.u16string(), pixels, 1, 2, 4));
    const Bytes file = contentsOf(path);
    ASSERT_EQ(file.size(), 54u + 8u);
    EXPECT_EQ(number(file, 10), 54u);
    EXPECT_EQ(number(file, 28, 2), 32u);
    EXPECT_EQ(Bytes(file.begin() + 54, file.end()), (Bytes{3, 2, 1, 4, 7, 6, 5, 8}));
}

TEST(BmpDump, RefusesWhatNoFileCanHold) {
    const ScratchDirectory folder;
    const std::filesystem::path path = folder / "none.bmp";
    const std::uint8_t pixels[4] = {};
    EXPECT_FALSE(writeBmp(path.u16string(), pixels, 1, 1, 3));
    EXPECT_FALSE(writeBmp(path.u16string(), pixels, 0, 1, 4));
    EXPECT_FALSE(writeBmp(path.u16string(), pixels, 2000000000, 2000000000, 4));
    EXPECT_FALSE(writeBmp(path.u16string(), nullptr, 1, 1, 4));
    EXPECT_FALSE(writeBmp((folder / "no/such/folder.bmp").u16string(), pixels, 1, 1, 4));
    EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace brushwork
