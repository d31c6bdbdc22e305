// Every vector form of the 4-channel and gray kernels beside the definition: row lengths,
// alignments, masks, sources in place and constant ones.
#include <gtest/gtest.h>

#include <sstream>

#include "blending/modes/byte_recipe.h"

namespace brushwork::test {
namespace {

struct Shape {
    std::size_t count = 1;
    std::size_t targetOffset = 0, sourceOffset = 0, maskOffset = 0;
    bool masked = false, inPlace = false, constantSource = false, constantMask = false;
    // Runs of empty and opaque pixels, empty masks.
    bool runs = false;
    int opacity = 65535;
    unsigned seed = 0;

    [[nodiscard]] std::string text() const {
        std::ostringstream out;
        out << "count " << count << ", offsets " << targetOffset << " " << sourceOffset << " "
            << maskOffset << ", masked " << masked << ", in place " << inPlace
            << ", constant source " << constantSource << ", constant mask " << constantMask
            << ", runs " << runs << ", opacity " << opacity << ", seed " << seed;
        return out.str();
    }
};

// Runs of about 11 pixels get the same bytes.
void addRuns(GuardedBytes& bytes, std::size_t channels, Random& random) {
    std::uint32_t kind = 0;
    for (std::size_t i = 0; i < bytes.size(); i += channels) {
        if (random() % 11 == 0 || i == 0) kind = static_cast<std::uint32_t>(random() % 4);
        for (std::size_t c = 0; c < channels && kind < 2; ++c) {
            if (kind == 0) bytes.data()[i + c] = 0;
            if (kind == 1 && c + 1 == channels) bytes.data()[i + c] = 255;
        }
    }
}

struct Outcome {
    std::vector<std::uint8_t> bytes;
    bool guarded = false;
    VectorLevel form = VectorLevel::Scalar;
};

Outcome blended(const npc::GenericBlender& blender, npc::Kernel kernel, const Shape& shape,
                std::size_t channels) {
    Random random(shape.seed);
    GuardedBytes target(shape.count * channels, shape.targetOffset);
    GuardedBytes source((shape.constantSource ? 8 : shape.count) * channels, shape.sourceOffset);
    GuardedBytes mask(shape.constantMask ? 8 : shape.count, shape.maskOffset);
    for (GuardedBytes* bytes : {&target, &source, &mask}) {
        bytes->fill(random);
        if (shape.runs) addRuns(*bytes, bytes == &mask ? 1 : channels, random);
    }
    if (shape.constantSource)
        for (std::size_t i = channels; i < source.size(); ++i)
            source.data()[i] = source.data()[i - channels];
    if (shape.constantMask)
        for (std::size_t i = 1; i < 8; ++i) mask.data()[i] = mask.data()[0];

    npc::KernelRow row;
    row.hi = target.data();
    row.source = shape.inPlace ? target.data() : source.data();
    row.sourceStride = shape.constantSource ? 0 : 1;
    row.mask = shape.masked ? mask.data() : nullptr;
    row.maskStride = shape.constantMask ? 0 : 1;
    row.count = shape.count;
    const std::vector<std::uint8_t> sourceBefore = source.bytes();
    kernel(blender, row);
    return {target.bytes(),
            target.guardsIntact() && source.guardsIntact() && mask.guardsIntact() &&
                source.bytes() == sourceBefore,
            lastKernelForm()};
}

Shape shapeOf(unsigned turn, std::size_t count, std::size_t offset) {
    Shape shape;
    shape.seed = turn;
    shape.count = count;
    shape.targetOffset = offset;
    shape.sourceOffset = (offset * 7 + turn) % 32;
    shape.maskOffset = (offset * 3 + turn / 2) % 32;
    shape.constantSource = turn % 5 == 1;
    shape.inPlace = turn % 5 == 2;
    shape.constantMask = turn % 3 == 1;
    shape.runs = turn % 4 >= 2;
    shape.opacity = turn % 7 < 3 ? 65535 : static_cast<int>(turn * 7919 % 65536);
    return shape;
}

class ByteWidths : public ::testing::TestWithParam<BlendModeId> {};

TEST_P(ByteWidths, EqualTheDefinition) {
    // Copies have one form.
    const bool copies =
        GetParam() == BlendModeId::Replace || GetParam() == BlendModeId::MaskMultiply;
    unsigned turn = 0;
    for (std::size_t count = 0; count <= 70; ++count) {
        for (std::size_t offset = 0; offset < 32; ++offset) {
            Shape shape = shapeOf(++turn, count, offset);
            const auto blender = blenderWith(GetParam(), shape.opacity);
            const npc::KernelTable& table = blender->kernels();
            for (const bool masked : {false, true}) {
                shape.masked = masked;
                const Outcome want =
                    blended(*blender, masked ? table.rgbaMasked : table.rgba, shape, 4);
                for (const VectorLevel level : vectorLevels()) {
                    const AtLevel forced(level);
                    noteKernelForm(VectorLevel::Scalar);
                    const Outcome got = blended(
                        *blender, masked ? table.rgbaMaskedVector : table.rgbaVector, shape, 4);
                    if (masked || !copies) {
                        ASSERT_EQ(got.form, level) << shape.text();
                    }
                    ASSERT_TRUE(got.guarded) << vectorLevelName(level) << ", " << shape.text();
                    ASSERT_EQ(got.bytes, want.bytes)
                        << vectorLevelName(level) << ", " << shape.text();
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, ByteWidths, ::testing::ValuesIn(byteModes()), nameOfMode);

// The target after one gray kernel, by the formula in wide integers.
std::int64_t grayOracle(BlendModeId mode, std::int64_t s, std::int64_t d, std::int64_t m,
                        std::int64_t v, bool masked) {
    if (mode == BlendModeId::Multiply) return ((255 - s) * (255 - v) / 256 + s) * d / 256;
    return masked ? (m * v / 256 + 255 - v) * s / 256 : s;
}

TEST(GrayKernels, FormulaInAllForms) {
    for (const BlendModeId mode : {BlendModeId::Multiply, BlendModeId::MaskMultiply}) {
        for (const int opacity : {0, 255, 256, 32768, 50000, 65279, 65535}) {
            const auto blender = blenderWith(mode, opacity);
            for (const bool masked : {false, true}) {
                if (masked && mode == BlendModeId::Multiply) continue;
                for (const VectorLevel level : allLevels()) {
                    const AtLevel forced(level);
                    const npc::KernelTable& table = blender->kernels();
                    const npc::Kernel kernel =
                        level == VectorLevel::Scalar
                            ? (masked ? table.grayMasked : table.gray)
                            : (masked ? table.grayMaskedVector : table.grayVector);
                    std::vector<std::uint8_t> source(65536), target(65536), mask(65536);
                    for (std::size_t i = 0; i < 65536; ++i) {
                        source[i] = static_cast<std::uint8_t>(i);
                        mask[i] = target[i] = static_cast<std::uint8_t>(i >> 8);
                    }
                    const auto before = target;
                    npc::KernelRow row;
                    row.hi = target.data();
                    row.source = source.data();
                    row.mask = masked ? mask.data() : nullptr;
                    row.sourceStride = row.maskStride = 1;
                    row.count = 65536;
                    kernel(*blender, row);
                    for (std::size_t i = 0; i < 65536; ++i) {
                        ASSERT_EQ(target[i], grayOracle(mode, source[i], before[i], mask[i],
                                                        opacity >> 8, masked))
                            << blendModeName(mode) << " " << int(source[i]) << " " << int(before[i])
                            << " opacity " << opacity << " " << vectorLevelName(level);
                    }
                }
            }
        }
    }
}

TEST(GrayKernels, WidthsEqualTheDefinition) {
    unsigned turn = 0;
    for (std::size_t count = 0; count <= 140; ++count) {
        for (std::size_t offset = 0; offset < 32; offset += 3) {
            Shape shape = shapeOf(++turn, count, offset);
            for (const bool masked : {false, true}) {
                shape.masked = masked;
                const auto mode = masked ? BlendModeId::MaskMultiply : BlendModeId::Multiply;
                const auto blender = blenderWith(mode, shape.opacity);
                const npc::KernelTable& table = blender->kernels();
                const Outcome want =
                    blended(*blender, masked ? table.grayMasked : table.gray, shape, 1);
                for (const VectorLevel level : vectorLevels()) {
                    const AtLevel forced(level);
                    const Outcome got = blended(
                        *blender, masked ? table.grayMaskedVector : table.grayVector, shape, 1);
                    ASSERT_EQ(got.form, level);
                    ASSERT_TRUE(got.guarded) << shape.text();
                    ASSERT_EQ(got.bytes, want.bytes)
                        << vectorLevelName(level) << ", " << shape.text();
                }
            }
        }
    }
}

// Where a mode has no gray kernel, nothing happens.
TEST(GrayKernels, OthersDoNothing) {
    for (const BlendModeId mode : byteModes()) {
        if (mode == BlendModeId::MaskMultiply) continue;
        const auto blender = npc::createBlender(mode);
        std::uint8_t target[3] = {9, 99, 200}, source[3] = {255, 3, 70}, mask[3] = {255, 255, 255};
        npc::KernelRow row;
        row.hi = target;
        row.source = source;
        row.sourceStride = row.maskStride = 1;
        row.count = 3;
        if (mode != BlendModeId::Multiply) blender->kernels().grayVector(*blender, row);
        row.mask = mask;
        blender->kernels().grayMasked(*blender, row);
        blender->kernels().grayMaskedVector(*blender, row);
        EXPECT_EQ(target[0], 9) << blendModeName(mode);
        EXPECT_EQ(target[2], 200) << blendModeName(mode);
    }
}

}  // namespace
}  // namespace brushwork::test
