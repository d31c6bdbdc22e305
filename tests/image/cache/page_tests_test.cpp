#include "image/cache/page_tests.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "../filter/kernel_recipe.h"
#include "image/cache/page_kernels.h"

namespace brushwork {
namespace {

using test::AtLevel;
using test::Random;

// Every length, start and place of one odd pixel, against the plain kernels; the buffer ends where
// the pixels do, so that a sanitizer sees a wide read beyond them.
TEST(PageKernels, AgreeWithThePlainForm) {
    Random random(20);
    for (const VectorLevel level : test::vectorLevels()) {
        const PageKernels& kernels = pageKernels(level);
        for (std::size_t count = 0; count < 600; count += count < 80 ? 1 : 37) {
            for (std::size_t skip = 0; skip < 9; ++skip) {
                const std::uint32_t value = test::edgyByte(random) * 0x01010101U;
                std::vector<std::uint32_t> words(skip + count, value);
                std::vector<std::uint8_t> bytes(skip + count, static_cast<std::uint8_t>(value));
                if (count > 0 && random() % 4 != 0) {
                    const std::size_t odd = skip + random() % count;
                    words[odd] ^= 1U << random() % 32;
                    bytes[odd] = static_cast<std::uint8_t>(bytes[odd] ^ (1U << random() % 8));
                }
                const auto alpha = static_cast<std::uint8_t>(value);
                const auto told = ::testing::Message() << vectorLevelName(level) << " count "
                                                       << count << " skip " << skip;
                const std::uint32_t* const w = words.data() + skip;
                const std::uint8_t* const b = bytes.data() + skip;
                const bool word = pageKernelsScalar.uniform32(w, count);
                const bool byte = pageKernelsScalar.uniform8(b, count);
                const bool top = pageKernelsScalar.alphaIs(w, count, alpha);
                EXPECT_EQ(kernels.uniform32(w, count), word) << told;
                EXPECT_EQ(kernels.uniform8(b, count), byte) << told;
                EXPECT_EQ(kernels.alphaIs(w, count, alpha), top) << told;
                EXPECT_EQ(lastKernelForm(), level);
            }
        }
    }
}

// A few odd words in an empty or nearly full page.
TEST(PageKernels, FindWhichCellsAreFilled) {
    Random random(23);
    std::vector<std::uint32_t> words(pagePixels);
    for (const VectorLevel level : test::vectorLevels()) {
        for (int round = 0; round < 60; ++round) {
            std::fill(words.begin(), words.end(), 0U);
            std::uint64_t wanted = 0;
            for (auto n = random() % 40; n > 0; --n) {
                const std::size_t at = random() % words.size();
                words[at] = 1U << random() % 32;
                wanted |= std::uint64_t{1} << (at % 128 / 16 + at / 128 / 16 * 8);
            }
            EXPECT_EQ(pageKernels(level).filledCells(words.data()), wanted)
                << vectorLevelName(level) << " round " << round;
            EXPECT_EQ(lastKernelForm(), level);
        }
    }
}

struct Holder {
    explicit Holder(std::uint8_t channels) : pixels(std::size_t{pagePixels} * channels / 4 + 1) {
        page.channels = channels;
        page.shift = channels == 1 ? 0 : 2;
        page.state = PageState::InMemory;
        page.data = reinterpret_cast<std::uint8_t*>(pixels.data());
    }
    [[nodiscard]] std::uint32_t at(int x, int y) const {
        const int i = y * pageSide + x;
        return page.channels == 1 ? page.data[i] : pixels[static_cast<std::size_t>(i)];
    }
    SmartPage page;
    std::vector<std::uint32_t> pixels;
};

// Boxes inside, across and outside the page against a look at each pixel.
TEST(PageTests, PartsOfAPage) {
    Random random(21);
    for (const std::uint8_t channels : {std::uint8_t{1}, std::uint8_t{4}}) {
        Holder holder(channels);
        std::fill(holder.pixels.begin(), holder.pixels.end(), 0xFFFFFFFFU);
        for (int i = 0; i < 40; ++i)
            holder.page.data[random() % holder.page.bytes()] = test::edgyByte(random);
        int uniformOnes = 0, opaqueOnes = 0;
        for (int round = 0; round < 2000; ++round) {
            const auto x = static_cast<std::int32_t>(random() % 140) - 6;
            const auto y = static_cast<std::int32_t>(random() % 140) - 6;
            const auto nx = static_cast<std::int32_t>(random() % 24) - 1;
            const auto ny = static_cast<std::int32_t>(random() % 24) - 1;
            bool empty = true, uniform = true, opaque = true, clear = true;
            std::uint32_t first = 0;
            for (int py = std::max(y, 0); py < std::min(y + ny, pageSide); ++py)
                for (int px = std::max(x, 0); px < std::min(x + nx, pageSide); ++px) {
                    const std::uint32_t pixel = holder.at(px, py);
                    if (empty) first = pixel;
                    empty = false;
                    uniform = uniform && pixel == first;
                    opaque = opaque && pixel >> 24 == 255;
                    clear = clear && pixel >> 24 == 0;
                }
            std::uint32_t value = 0;
            EXPECT_EQ(isUniformPart(holder.page, x, y, nx, ny, value), !empty && uniform)
                << x << ' ' << y << ' ' << nx << ' ' << ny;
            EXPECT_EQ(value, !empty && uniform ? first : 0);
            AlphaClass expected = AlphaClass::Mixed;
            if (channels == 4 && !empty && opaque) expected = AlphaClass::Opaque;
            if (channels == 4 && !empty && clear) expected = AlphaClass::Clear;
            EXPECT_EQ(alphaClassOfPart(holder.page, x, y, nx, ny), expected);
            uniformOnes += !empty && uniform ? 1 : 0;
            opaqueOnes += expected == AlphaClass::Opaque ? 1 : 0;
        }
        EXPECT_GT(uniformOnes, 100);
        EXPECT_GT(opaqueOnes, channels == 4 ? 100 : -1);
    }
}

TEST(PageTests, WholePagesAndStates) {
    Holder holder(4);
    std::fill(holder.pixels.begin(), holder.pixels.end(), 0x00112233U);
    std::uint32_t value = 0;
    EXPECT_TRUE(isUniformPage(holder.page, value));
    EXPECT_EQ(value, 0x00112233U);
    EXPECT_EQ(alphaClassOfPage(holder.page), AlphaClass::Clear);
    holder.pixels[pagePixels - 2] = 0xFF112233U;  // none of the places that are probed first
    EXPECT_FALSE(isUniformPage(holder.page, value));
    EXPECT_EQ(alphaClassOfPage(holder.page), AlphaClass::Mixed);
    holder.page.state = PageState::Swapped;
    EXPECT_FALSE(isUniformPage(holder.page, value));
    holder.page.state = PageState::Solid;
    holder.page.solid = 0xFF000001U;
    EXPECT_TRUE(isUniformPage(holder.page, value));
    EXPECT_EQ(value, 0xFF000001U);
    EXPECT_EQ(alphaClassOfPage(holder.page), AlphaClass::Opaque);
    EXPECT_EQ(alphaClassOfPart(holder.page, 0, 0, 0, 5), AlphaClass::Mixed);
}

}  // namespace
}  // namespace brushwork
