#include "blending/rows/image_blend.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <vector>

#include "blending/modes/byte_recipe.h"
#include "blending/modes/mode_oracle.h"
#include "blending/rows/image_blend_brush.h"
#include "blending/rows/image_blend_cache.h"

namespace brushwork::test {
namespace {

using blender::ImageBlendKind;
using Words = std::vector<std::uint32_t>;

Channels channelsOf(std::uint32_t pixel) {
    return {pixel & 255, pixel >> 8 & 255, pixel >> 16 & 255, pixel >> 24};
}

std::uint32_t pixelOf(const Channels& c) {
    std::uint32_t pixel = 0;
    for (std::size_t i = 4; i-- > 0;) pixel = pixel << 8 | static_cast<std::uint32_t>(c[i]);
    return pixel;
}

// Runs of empty, of opaque and of other pixels.
Words picture(std::size_t count, Random& random) {
    Words words(count);
    std::uint32_t kind = 0;
    for (std::uint32_t& word : words) {
        if (random() % 7 == 0) kind = static_cast<std::uint32_t>(random() % 5);
        for (int c = 0; c < 4; ++c) word = word << 8 | edgyByte(random);
        if (kind == 0) word = 0;
        if (kind == 1) word |= 0xFF000000;
        if (kind == 2) word &= 0x00FFFFFF;
    }
    return words;
}

const std::map<ImageBlendKind, BlendModeId> modeOf = {
    {ImageBlendKind::Multiply, BlendModeId::Multiply},
    {ImageBlendKind::Screen, BlendModeId::Screen},
    {ImageBlendKind::Add, BlendModeId::Add},
    {ImageBlendKind::Lighten, BlendModeId::Lighten},
    {ImageBlendKind::Darken, BlendModeId::Darken},
    {ImageBlendKind::ColorDodge, BlendModeId::ColorDodge},
    {ImageBlendKind::LinearBurn, BlendModeId::LinearBurn},
    {ImageBlendKind::ColorBurn, BlendModeId::ColorBurn},
    {ImageBlendKind::Overlay, BlendModeId::Overlay},
    {ImageBlendKind::HardLight, BlendModeId::HardLight},
    {ImageBlendKind::SoftLight, BlendModeId::SoftLight},
    {ImageBlendKind::Luminosity, BlendModeId::Luminosity},
    {ImageBlendKind::Hue, BlendModeId::Hue},
    {ImageBlendKind::Color, BlendModeId::Color},
    {ImageBlendKind::Saturation, BlendModeId::Saturation},
    {ImageBlendKind::Glow, BlendModeId::Glow},
    {ImageBlendKind::SoftGlow, BlendModeId::SoftGlow}};

// Multiplies red with blue and green with alpha, two channels in a word.
std::uint32_t over(std::uint32_t s, std::uint32_t d) {
    const std::uint32_t e = ~(s >> 24) & 255;
    const std::uint32_t redBlue = ((d & 0x00FF00FF) * e >> 8) & 0x00FF00FF;
    const std::uint32_t greenAlpha = ((d >> 8 & 0x00FF00FF) * e) & 0xFF00FF00;
    const Channels below = channelsOf(redBlue | greenAlpha);
    Channels sum = channelsOf(s);
    for (std::size_t c = 0; c < 4; ++c) sum[c] = std::min<std::int64_t>(sum[c] + below[c], 255);
    return pixelOf(sum);
}

std::uint32_t expected(ImageBlendKind kind, std::uint32_t s, std::uint32_t d, bool constant) {
    if (kind != ImageBlendKind::Normal)
        return pixelOf(blendedPlain(modeOf.at(kind), channelsOf(s), channelsOf(d)));
    const bool empty = constant ? s == 0 : s >> 24 == 0;
    return empty ? d : over(s, d);
}

class ImageBlend : public ::testing::TestWithParam<int> {};

// Strides with and without gaps, constant sources, blending in place; bytes between rows stay.
TEST_P(ImageBlend, RowsOfPictures) {
    const auto kind = static_cast<ImageBlendKind>(GetParam());
    Random random(static_cast<unsigned>(GetParam()));
    for (int round = 0; round < 60; ++round) {
        const auto w = static_cast<std::uint32_t>(1 + random() % 60);
        const auto h = static_cast<std::uint32_t>(1 + random() % 6);
        const auto gap = static_cast<std::uint32_t>(random() % 3 * 5);
        const auto sourceGap = static_cast<std::uint32_t>(random() % 2 * 9);
        const bool constant = round % 4 == 1;
        const bool inPlace = round % 4 == 2;
        Words target = picture((w + gap) * h, random);
        Words source = picture((w + sourceGap) * h, random);
        const auto object = blender::makeImageBlend(kind);
        object->width = w;
        object->height = h;
        object->destination = target.data();
        object->destinationStride = static_cast<std::int32_t>(w + gap);
        object->source = inPlace ? target.data() : source.data();
        object->sourceStride = static_cast<std::int32_t>(w + (inPlace ? gap : sourceGap));
        object->constantSource = constant;
        object->constantPixel = source[0];
        Words want = target;
        for (std::uint32_t y = 0; y < h; ++y) {
            for (std::uint32_t x = 0; x < w; ++x) {
                std::uint32_t& pixel = want[y * (w + gap) + x];
                const std::uint32_t s = constant  ? source[0]
                                        : inPlace ? pixel
                                                  : source[y * (w + sourceGap) + x];
                pixel = expected(kind, s, pixel, constant);
            }
        }
        const Words before = target;
        for (const VectorLevel level : allLevels()) {
            const AtLevel forced(level);
            std::copy(before.begin(), before.end(), target.begin());
            object->blend();
            ASSERT_EQ(target, want) << vectorLevelName(level) << ", round " << round;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, ImageBlend,
                         ::testing::Range(0, static_cast<int>(ImageBlendKind::BrushNormal)));

TEST(ImageBlendRows, NothingToDo) {
    std::uint32_t target[2] = {0x80402010, 7};
    const std::uint32_t source[2] = {0xFF112233, 0xFF112233};
    for (int kind = 0; kind <= static_cast<int>(ImageBlendKind::BrushSmudge); ++kind) {
        const auto object = blender::makeImageBlend(static_cast<ImageBlendKind>(kind));
        object->blendRow(target, source, 0);
        object->width = object->height = 1;
        object->blend();
        object->destination = target;
        object->blend();
        object->constantSource = true;
        object->constantPixel = 0xFF445566;
        object->height = 0;
        object->blend();
        object->height = 1;
        object->width = 0;
        object->blend();
        EXPECT_EQ(target[0], 0x80402010U) << kind;
    }
}

struct Layer {
    Words hi, lo, source, sourceLo;
    std::vector<std::uint8_t> mask;
    std::uint32_t w, h, stride;

    Layer(std::uint32_t width, std::uint32_t height, std::uint32_t gap, Random& random)
        : hi(picture((width + gap) * height, random)),
          lo(picture((width + gap) * height, random)),
          source(picture((width + gap) * height, random)),
          sourceLo(picture((width + gap) * height, random)),
          mask((width + gap) * height),
          w(width),
          h(height),
          stride(width + gap) {
        for (std::uint8_t& byte : mask) byte = edgyByte(random);
    }
    void bind(blender::BrushBase<>& brush) {
        brush.width = w;
        brush.height = h;
        brush.destination = hi.data();
        brush.secondDestination = lo.data();
        brush.source = source.data();
        brush.mask = mask.data();
        brush.destinationStride = brush.secondDestinationStride = static_cast<std::int32_t>(stride);
        brush.sourceStride = brush.maskStride = static_cast<std::int32_t>(stride);
    }
};

TEST(ImageBlendBrush, NormalAndEraserOnOnePlane) {
    Random random(11);
    const auto normal = makeRef<blender::BrushNormal<>>();
    const auto eraser = makeRef<blender::BrushEraser<>>();
    for (int round = 0; round < 40; ++round) {
        for (const bool erases : {false, true}) {
            Layer layer(1 + static_cast<std::uint32_t>(random() % 40), 4,
                        static_cast<std::uint32_t>(round % 3 * 2), random);
            blender::BrushBase<>* brush = normal.get();
            if (erases) brush = eraser.get();
            layer.bind(*brush);
            brush->opacity = 0.1F * static_cast<float>(round % 11);
            const bool unmasked = round % 5 == 4;
            if (unmasked) brush->mask = nullptr;
            const auto opacity = static_cast<std::int64_t>(
                static_cast<std::uint32_t>(std::min(brush->opacity, 1.0F) * 65535.0F));
            Words want = layer.hi;
            for (std::uint32_t i = 0; i < layer.stride * 4 && opacity != 0; ++i) {
                if (i % layer.stride >= layer.w) continue;
                want[i] = pixelOf(blendedMasked(erases ? BlendModeId::Clear : BlendModeId::Normal,
                                                channelsOf(layer.source[i]), channelsOf(want[i]),
                                                unmasked ? 255 : layer.mask[i], opacity));
            }
            const Words low = layer.lo;
            brush->blend();
            ASSERT_EQ(layer.hi, want) << round << " " << erases;
            ASSERT_EQ(layer.lo, low);
        }
    }
}

// The dual rows are those of the kernels with the same parameters.
TEST(ImageBlendBrush, DualRowsAreTheKernels) {
    Random random(12);
    for (const auto& [kind, mode] : {std::pair{ImageBlendKind::BrushNormal, BlendModeId::Normal},
                                     std::pair{ImageBlendKind::BrushEraser, BlendModeId::Clear},
                                     std::pair{ImageBlendKind::BrushSmudge, BlendModeId::Smudge}}) {
        Layer mine(33, 3, 4, random);
        Layer theirs = mine;
        const auto object = blender::makeImageBlend(kind);
        auto& brush = dynamic_cast<blender::BrushBase<>&>(*object);
        mine.bind(brush);
        brush.dualPlane = true;
        brush.opacity = 0.7F;
        if (auto* smudge = dynamic_cast<blender::BrushSmudge<>*>(&brush)) {
            smudge->secondSource = mine.sourceLo.data();
            smudge->secondSourceStride = static_cast<std::int32_t>(mine.stride);
        }
        const auto kernelOwner = npc::createBlender(mode);
        kernelOwner->setOpacity(0.7F);
        for (std::uint32_t y = 0; y < 3; ++y) {
            const std::size_t at = std::size_t{y} * theirs.stride;
            npc::KernelRow row;
            row.hi = reinterpret_cast<std::uint8_t*>(&theirs.hi[at]);
            row.lo = reinterpret_cast<std::uint8_t*>(&theirs.lo[at]);
            row.source = reinterpret_cast<std::uint8_t*>(&theirs.source[at]);
            row.source2 = reinterpret_cast<std::uint8_t*>(&theirs.sourceLo[at]);
            row.mask = &theirs.mask[at];
            row.sourceStride = row.maskStride = 1;
            row.count = 33;
            kernelOwner->kernels().dualPlaneMasked(*kernelOwner, row);
        }
        const Words before = mine.hi;
        brush.blend();
        EXPECT_NE(mine.hi, before);
        EXPECT_EQ(mine.hi, theirs.hi) << blendModeName(mode);
        EXPECT_EQ(mine.lo, theirs.lo) << blendModeName(mode);
        EXPECT_EQ(mine.source, theirs.source) << blendModeName(mode);
        EXPECT_EQ(mine.sourceLo, theirs.sourceLo) << blendModeName(mode);
    }
}

TEST(ImageBlendBrush, ConstantStroke) {
    Random random(13);
    Layer layer(29, 2, 0, random);
    const auto brush = makeRef<blender::BrushNormal<>>();
    layer.bind(*brush);
    brush->source = nullptr;
    EXPECT_FALSE(brush->prepare());
    brush->constantSource = true;
    brush->constantPixel = 0xC0307010;
    Words want = layer.hi;
    for (std::size_t i = 0; i < want.size(); ++i) {
        want[i] = pixelOf(blendedMasked(BlendModeId::Normal, channelsOf(0xC0307010),
                                        channelsOf(want[i]), layer.mask[i], 65535));
    }
    brush->blend();
    EXPECT_EQ(layer.hi, want);
}

TEST(ImageBlendCache, KeepsTen) {
    blender::ImageBlendCache cache;
    const auto first = cache.get(ImageBlendKind::Normal);
    EXPECT_NE(dynamic_cast<blender::Base<>*>(first.get()), nullptr);
    EXPECT_TRUE(cache.get(ImageBlendKind::Normal) == first);
    for (int kind = 1; kind < 10; ++kind) (void)cache.get(static_cast<ImageBlendKind>(kind));
    EXPECT_EQ(cache.size(), 10U);
    const auto second = cache.get(ImageBlendKind::Multiply);
    EXPECT_TRUE(cache.get(ImageBlendKind::Normal) == first);
    // The eleventh takes the place of Screen, which was asked for longest ago.
    const auto screen = cache.get(ImageBlendKind::Screen);
    (void)cache.get(ImageBlendKind::Normal);
    (void)cache.get(ImageBlendKind::SoftGlow);
    EXPECT_EQ(cache.size(), 10U);
    EXPECT_TRUE(cache.get(ImageBlendKind::Normal) == first);
    EXPECT_TRUE(cache.get(ImageBlendKind::Multiply) == second);
    EXPECT_TRUE(cache.get(ImageBlendKind::Screen) == screen);
    EXPECT_EQ(first->refCount(), 2U);
    for (int kind = 10; kind < 20; ++kind) (void)cache.get(static_cast<ImageBlendKind>(kind));
    EXPECT_EQ(first->refCount(), 1U);
    EXPECT_FALSE(cache.get(ImageBlendKind::Normal) == first);
}

}  // namespace
}  // namespace brushwork::test
