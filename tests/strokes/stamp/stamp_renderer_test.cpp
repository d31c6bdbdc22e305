#include "strokes/stamp/stamp_renderer.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "foundation/tasks/task_pool.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/smart_page_table.h"
#include "support/test_seed.h"

namespace brushwork::npc {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr ilTile box = flatTile(-96, -96, 320, 320);

// Noise, also in pixels without alpha; a part of the pages is absent.
Ref<ilSmartImage> noise(unsigned seed) {
    std::mt19937 random(seed);
    Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    Bytes bytes(static_cast<std::size_t>(box.nx * box.ny) * 4);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    for (std::size_t n = 3; n < bytes.size(); n += 4)
        if (random() % 3 == 0) bytes[n] = 0;
    const ilTile part = flatTile(box.x, box.y, box.nx, 160);
    image->writeRegion(part, bytes.data(), part);
    return image;
}

struct Planes {
    Ref<ilSmartImage> high = noise(1), low = noise(2);

    [[nodiscard]] Bytes bytes() const {
        const auto size = static_cast<std::size_t>(box.nx * box.ny) * 4;
        Bytes all(2 * size);
        EXPECT_EQ(high->readRegion(box, all.data(), box), ImageOk);
        EXPECT_EQ(low->readRegion(box, all.data() + size, box), ImageOk);
        return all;
    }
    [[nodiscard]] int pages() const {
        int count = 0;
        high->pages().eachPage([&](std::int32_t, std::int32_t, SmartPageRef&) { ++count; });
        return count;
    }
};

// What colours a stamp.
Ref<ImagePaintObj> picture() {
    const auto image = makeRef<ilSPMemoryImg>(61, 47, 4);
    for (std::size_t n = 0; n < image->byteSize(); ++n)
        image->data()[n] = static_cast<std::uint8_t>(n * n * 7 + n);
    return makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
}

// Stamps in a row keep the pages of the one before, fill whole vectors around small masks and are
// laid together where they are large; a stamp alone does none of it.
TEST(StampRenderer, StampsInARowAreThoseOfStampsAlone) {
    const unsigned seed = test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (const BlendModeId mode :
         {BlendModeId::Normal, BlendModeId::Replace, BlendModeId::Marker, BlendModeId::Paint,
          BlendModeId::SolidColorPaint, BlendModeId::Multiply, BlendModeId::Smudge})
        for (const bool twoPlanes : {true, false})
            for (const int rest : {0, 1, 2, 3}) {
                const bool lockAlpha = rest % 2 != 0, coloured = rest / 2 != 0;
                TaskPool::setDefaultSize(coloured ? 8 : 2 - rest % 2);
                Planes alone, row;
                BrushParameters brush = BrushParameters::defaults();
                brush.color = {0.6f, 0.3f, 0.1f, 0.8f};
                brush.tipPreset = 2;
                brush.mixRate0 = 0.5f;
                if (coloured) brush.colorObject = picture();
                const auto rendererOn = [&](const Planes& planes) {
                    auto renderer = std::make_unique<StampRenderer>(
                        planes.high.get(), twoPlanes ? planes.low.get() : nullptr);
                    renderer->setParameters(&brush);
                    renderer->setLockAlpha(lockAlpha);
                    return renderer;
                };
                const auto first = rendererOn(alone), second = rendererOn(row);
                std::mt19937 random(seed);
                const auto between = [&](float low, float high) {
                    return low + (high - low) * static_cast<float>(random() % 4096) / 4096.0f;
                };
                second->begin(mode);
                StampPoint point;
                for (int n = 0; n < 250; ++n) {
                    if (n % 8 == 0) point.x = between(-60.0f, 190.0f);
                    if (n % 8 == 0) point.y = between(-60.0f, 190.0f);
                    point.x += between(-2.0f, 3.0f);
                    point.y += between(-2.0f, 3.0f);
                    point.radius = n % 16 == 15 ? 30.0f : between(0.25f, 9.0f);
                    if (n % 64 >= 52) point.radius = between(25.0f, 60.0f);
                    point.opacity = between(0.2f, 1.1f);
                    point.flow = 0.9f;
                    point.scaleY = between(0.3f, 1.0f);
                    point.angle = between(0.0f, 90.0f);
                    first->begin(mode);
                    ASSERT_EQ(first->renderPoint(point), second->renderPoint(point));
                    first->end();
                }
                second->end();
                ASSERT_TRUE(alone.bytes() == row.bytes())
                    << "mode " << static_cast<int>(mode) << ", " << (twoPlanes ? 2 : 1)
                    << " planes, locked alpha " << lockAlpha << ", coloured " << coloured;
                EXPECT_EQ(alone.pages(), row.pages());
            }
    TaskPool::setDefaultSize(0);
}

// Nothing is laid behind the last place of a smart image, nor are pages asked for there.
TEST(StampRenderer, LargeStampsAcrossTheLastPlaces) {
    const ilTile corner = flatTile(coordinateLimit - 128, -coordinateLimit, 128, 128);
    const auto paint = [&](bool together) {
        const Ref<ilSmartImage> high(new ilSmartImage(ilPixel(TypeUChar, 4)));
        const Ref<ilSmartImage> low(new ilSmartImage(ilPixel(TypeUChar, 4)));
        StampRenderer renderer(high.get(), low.get());
        BrushParameters brush = BrushParameters::defaults();
        brush.color = {0.6f, 0.3f, 0.1f, 0.8f};
        renderer.setParameters(&brush);
        StampPoint point;
        point.radius = 50.0f;
        renderer.begin(BlendModeId::Normal);
        for (int n = 0; n < 6; ++n) {
            point.x = static_cast<float>(coordinateLimit - 40 + 30 * n);
            point.y = static_cast<float>(10 * n - coordinateLimit - 20);
            static_cast<void>(renderer.renderPoint(point));
            if (together) continue;
            renderer.end();
            renderer.begin(BlendModeId::Normal);
        }
        renderer.end();
        Bytes bytes(std::size_t{128} * 128 * 4);
        EXPECT_EQ(high->readRegion(corner, bytes.data(), corner), ImageOk);
        int pages = 0;
        high->pages().eachPage([&](std::int32_t, std::int32_t, SmartPageRef&) { ++pages; });
        EXPECT_EQ(pages, 1);
        return bytes;
    };
    const Bytes alone = paint(false);
    EXPECT_NE(alone, Bytes(alone.size()));
    EXPECT_TRUE(paint(true) == alone);
}

}  // namespace
}  // namespace brushwork::npc
