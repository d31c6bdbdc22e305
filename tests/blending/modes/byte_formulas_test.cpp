// The 4-channel kernels beside their independent rendering.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "blending/modes/byte_recipe.h"
#include "blending/modes/mode_oracle.h"

namespace brushwork::test {
namespace {

using Pixels = std::vector<std::uint8_t>;

Channels channelsOf(const Pixels& pixels, std::size_t i) {
    return {pixels[4 * i], pixels[4 * i + 1], pixels[4 * i + 2], pixels[4 * i + 3]};
}

std::string textOf(const Channels& p) {
    std::string text;
    for (const std::int64_t channel : p) text += std::to_string(channel) + " ";
    return text;
}

// A source and a target, the result by the oracle, and all forms of the kernel beside it. Without
// masks the rows are blended plainly.
class Comparison {
  public:
    Comparison(BlendModeId mode, int opacity)
        : mode_(mode), opacity_(opacity), blender_(blenderWith(mode, opacity)) {}

    ::testing::AssertionResult compare(Pixels& source, const Pixels& target,
                                       const std::vector<std::uint8_t>& masks) const {
        const std::size_t count = target.size() / 4;
        Pixels want(target.size());
        for (std::size_t i = 0; i < count; ++i) {
            const Channels s = channelsOf(source, i), d = channelsOf(target, i);
            const Channels out = masks.empty() ? blendedPlain(mode_, s, d)
                                               : blendedMasked(mode_, s, d, masks[i], opacity_);
            for (std::size_t c = 0; c < 4; ++c) want[4 * i + c] = static_cast<std::uint8_t>(out[c]);
        }
        for (const VectorLevel level : allLevels()) {
            const AtLevel forced(level);
            Pixels got = target;
            npc::KernelRow row;
            row.hi = got.data();
            row.source = source.data();
            row.sourceStride = 1;
            row.mask = masks.empty() ? nullptr : masks.data();
            row.maskStride = 1;
            row.count = count;
            kernel(level, !masks.empty())(*blender_, row);
            if (got == want) continue;
            return difference(source, target, masks, want, got) << ", " << vectorLevelName(level);
        }
        return ::testing::AssertionSuccess();
    }

  private:
    [[nodiscard]] npc::Kernel kernel(VectorLevel level, bool masked) const {
        const npc::KernelTable& table = blender_->kernels();
        if (level == VectorLevel::Scalar) return masked ? table.rgbaMasked : table.rgba;
        return masked ? table.rgbaMaskedVector : table.rgbaVector;
    }
    [[nodiscard]] ::testing::AssertionResult difference(const Pixels& source, const Pixels& target,
                                                        const std::vector<std::uint8_t>& masks,
                                                        const Pixels& want,
                                                        const Pixels& got) const {
        std::size_t i = 0;
        while (std::memcmp(&want[4 * i], &got[4 * i], 4) == 0) ++i;
        return ::testing::AssertionFailure()
               << blendModeName(mode_) << ": source " << textOf(channelsOf(source, i)) << "target "
               << textOf(channelsOf(target, i)) << "mask "
               << (masks.empty() ? "none" : std::to_string(masks[i])) << " opacity " << opacity_
               << ": " << textOf(channelsOf(got, i)) << "instead of "
               << textOf(channelsOf(want, i));
    }

    BlendModeId mode_;
    int opacity_;
    std::shared_ptr<npc::GenericBlender> blender_;
};

constexpr std::uint8_t alphaEdges[] = {0, 1, 2, 3, 63, 64, 126, 127, 128, 129, 200, 253, 254, 255};
constexpr std::uint8_t maskEdges[] = {0, 1, 2, 127, 128, 200, 254, 255};
constexpr int opacityEdges[] = {0,     1,     255,   256,   257,   32767,
                                32768, 50000, 65279, 65280, 65534, 65535};

// Every pair of a source and a target colour, spread over the three channels of 21846 pixels.
struct AllPairs {
    static constexpr std::size_t count = 65536 / 3 + 1;
    Pixels source = Pixels(4 * count), target = Pixels(4 * count);

    AllPairs() {
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t c = 0; c < 3; ++c) {
                const std::size_t pair = c * count + i;
                source[4 * i + c] = static_cast<std::uint8_t>(pair);
                target[4 * i + c] = static_cast<std::uint8_t>(pair >> 8);
            }
        }
    }
    void setAlphas(std::uint8_t a, std::uint8_t b) {
        for (std::size_t i = 3; i < source.size(); i += 4) {
            source[i] = a;
            target[i] = b;
        }
    }
};

bool isFullCross() {
    return std::getenv("BRUSHWORK_FULL_BLEND_CROSS") != nullptr;
}

// How many random pixels each float mode is tried with, in each of three ways.
std::size_t randomPixels() {
    const char* const text = std::getenv("BRUSHWORK_BLEND_PIXELS");
    if (text && *text) return static_cast<std::size_t>(std::strtoull(text, nullptr, 10));
    return isFullCross() ? 4915200 : 163840;
}

class EveryPair : public ::testing::TestWithParam<BlendModeId> {};

TEST_P(EveryPair, Plain) {
    AllPairs pairs;
    const Comparison comparison(GetParam(), 65535);
    const int step = isFullCross() ? 1 : 15;
    for (int a = 0; a < 256; a += step) {
        for (int b = a % 3; b < 256; b += isFullCross() ? 1 : 83) {
            pairs.setAlphas(static_cast<std::uint8_t>(a), static_cast<std::uint8_t>(b));
            ASSERT_TRUE(comparison.compare(pairs.source, pairs.target, {}));
        }
    }
    for (const std::uint8_t a : alphaEdges) {
        for (const int b : {0, 1, 127, 128, 254, 255}) {
            pairs.setAlphas(a, static_cast<std::uint8_t>(b));
            ASSERT_TRUE(comparison.compare(pairs.source, pairs.target, {}));
        }
    }
}

TEST_P(EveryPair, Masked) {
    AllPairs pairs;
    std::size_t turn = 0;
    for (const int opacity : opacityEdges) {
        const Comparison comparison(GetParam(), opacity);
        for (const std::uint8_t mask : maskEdges) {
            const std::vector<std::uint8_t> masks(AllPairs::count, mask);
            const std::size_t rounds = isFullCross() ? 196 : 1;
            for (std::size_t round = 0; round < rounds; ++round, turn += 5) {
                pairs.setAlphas(alphaEdges[turn % 14], alphaEdges[turn / 14 % 14]);
                ASSERT_TRUE(comparison.compare(pairs.source, pairs.target, masks));
            }
        }
    }
}

class AnyPixels : public ::testing::TestWithParam<BlendModeId> {};

// Masks and opacities in between, alphas of all kinds.
TEST_P(AnyPixels, RandomWeights) {
    Random random(static_cast<unsigned>(GetParam()));
    for (int round = 0; round < 24; ++round) {
        const int opacity = static_cast<int>(random() % 65536);
        Pixels source(4 * 8192), target(4 * 8192);
        std::vector<std::uint8_t> masks(8192);
        for (std::uint8_t& byte : source) byte = edgyByte(random);
        for (std::uint8_t& byte : target) byte = edgyByte(random);
        for (std::uint8_t& byte : masks) byte = edgyByte(random);
        // Empty sources, empty targets and colours without alpha among them.
        for (std::size_t i = 0; i < masks.size(); ++i) {
            const auto kind = random() % 16;
            if (kind < 3) std::memset(&source[4 * i], 0, 4);
            if (kind > 1 && kind < 5) std::memset(&target[4 * i], 0, 4);
            if (kind > 7 && kind < 10) source[4 * i + 3] = 0;
            if (kind > 8 && kind < 12) target[4 * i + 3] = 0;
            if (kind > 12) masks[i] = 0;
            if (kind == 1 || kind == 14) target[4 * i + 3] = 0;
        }
        ASSERT_TRUE(Comparison(GetParam(), opacity).compare(source, target, masks));
        ASSERT_TRUE(Comparison(GetParam(), 65535).compare(source, target, {}));
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, AnyPixels, ::testing::ValuesIn(byteModes()), nameOfMode);

INSTANTIATE_TEST_SUITE_P(Modes, EveryPair, ::testing::ValuesIn(separableModes), nameOfMode);

// Pixels of the four modes that see the whole colour, and of the float modes: valid ones, ones
// whose colours lie one above alpha, and any bytes at all.
class RandomPixels : public ::testing::TestWithParam<BlendModeId> {
  protected:
    static void fill(Pixels& pixels, int kind, Random& random) {
        for (std::size_t i = 0; i < pixels.size(); i += 4) {
            const auto alpha = edgyByte(random);
            const bool isGray = random() % 8 == 0;
            const auto first = edgyByte(random);
            for (std::size_t c = 0; c < 3; ++c) {
                const int color = isGray ? first : edgyByte(random);
                pixels[i + c] = static_cast<std::uint8_t>(
                    kind == 2 ? color : std::min(255, (color * alpha + 127) / 255 + kind));
            }
            pixels[i + 3] = alpha;
        }
    }
};

TEST_P(RandomPixels, AllForms) {
    constexpr std::size_t count = 16384;
    Random random(77 + static_cast<unsigned>(GetParam()));
    const std::size_t rounds = (randomPixels() + count - 1) / count;
    for (std::size_t round = 0; round < rounds; ++round) {
        Pixels source(4 * count), target(4 * count);
        fill(source, static_cast<int>(round % 3), random);
        fill(target, static_cast<int>(round / 3 % 3), random);
        std::vector<std::uint8_t> masks(count);
        for (std::uint8_t& mask : masks) mask = edgyByte(random);
        const int opacity = opacityEdges[round % 12];
        ASSERT_TRUE(Comparison(GetParam(), 65535).compare(source, target, {})) << round;
        ASSERT_TRUE(Comparison(GetParam(), opacity).compare(source, target, masks)) << round;
        ASSERT_TRUE(Comparison(GetParam(), 65535).compare(source, target, masks)) << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, RandomPixels,
                         ::testing::Values(BlendModeId::Hue, BlendModeId::Saturation,
                                           BlendModeId::Color, BlendModeId::Luminosity,
                                           BlendModeId::SoftLight, BlendModeId::ColorBurn,
                                           BlendModeId::ColorDodge, BlendModeId::Glow),
                         nameOfMode);

// What the vector forms take for granted: a quotient in float, cut off, is that of the integers,
// for all divisors and all quotients that a channel can show.
TEST(FloatQuotient, IsExact) {
    for (int divisor = 1; divisor <= 65536; ++divisor) {
        for (int whole = 1; whole <= 257; ++whole) {
            const int exact = divisor * whole;
            if (exact >= 1 << 24) break;
            const auto quotient = [&](int dividend) {
                return static_cast<int>(static_cast<float>(dividend) / static_cast<float>(divisor));
            };
            if (quotient(exact) != whole || quotient(exact - 1) != whole - 1)
                FAIL() << exact << " / " << divisor;
        }
    }
}

Channels blendedByKernel(BlendModeId mode, const Channels& source, const Channels& target) {
    std::uint8_t s[4], d[4];
    for (std::size_t c = 0; c < 4; ++c) {
        s[c] = static_cast<std::uint8_t>(source[c]);
        d[c] = static_cast<std::uint8_t>(target[c]);
    }
    const auto blender = npc::createBlender(mode);
    npc::KernelRow row;
    row.hi = d;
    row.source = s;
    row.sourceStride = 1;
    row.count = 1;
    blender->kernels().rgba(*blender, row);
    return {d[0], d[1], d[2], d[3]};
}

TEST(ByteFormulas, KnownPixels) {
    const Channels pale{10, 20, 30, 40}, solid{90, 120, 7, 255}, other{1, 200, 77, 255};
    EXPECT_EQ(blendedByKernel(BlendModeId::Normal, pale, {}), pale);
    EXPECT_EQ(blendedByKernel(BlendModeId::Normal, solid, other), solid);
    EXPECT_EQ(blendedByKernel(BlendModeId::Multiply, {255, 255, 255, 255}, other), other);
    EXPECT_EQ(blendedByKernel(BlendModeId::Clear, solid, other), Channels{});
    for (const BlendModeId mode : byteModes()) {
        if (mode == BlendModeId::Replace || mode == BlendModeId::MaskMultiply) continue;
        EXPECT_EQ(blendedByKernel(mode, {}, other), other) << blendModeName(mode);
        if (mode == BlendModeId::Clear) continue;
        EXPECT_EQ(blendedByKernel(mode, pale, {}), pale) << blendModeName(mode);
    }
    // A gray source takes the colour and leaves the luminance, within what 256ths of it cost.
    const Channels gray = blendedByKernel(BlendModeId::Hue, {50, 50, 50, 255}, {200, 100, 0, 255});
    EXPECT_NEAR(static_cast<double>(gray[0]), static_cast<double>(gray[1]), 1);
    EXPECT_NEAR(static_cast<double>(gray[1]), static_cast<double>(gray[2]), 1);
    EXPECT_NEAR(static_cast<double>(gray[0]), 0.299 * 200 + 0.587 * 100, 2);
}

// No two modes are the same.
TEST(ByteFormulas, ModesDiffer) {
    Random random(5);
    std::vector<std::string> seen;
    Pixels source(4 * 512), target(4 * 512);
    for (std::uint8_t& byte : source) byte = edgyByte(random);
    for (std::uint8_t& byte : target) byte = edgyByte(random);
    std::vector<std::uint8_t> masks(512);
    for (std::uint8_t& byte : masks) byte = edgyByte(random);
    for (const BlendModeId mode : byteModes()) {
        const auto blender = blenderWith(mode, 40000);
        Pixels out = target;
        npc::KernelRow row;
        row.hi = out.data();
        row.source = source.data();
        row.mask = masks.data();
        row.sourceStride = row.maskStride = 1;
        row.count = 512;
        blender->kernels().rgbaMasked(*blender, row);
        seen.emplace_back(out.begin(), out.end());
    }
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(std::adjacent_find(seen.begin(), seen.end()), seen.end());
}

}  // namespace
}  // namespace brushwork::test
