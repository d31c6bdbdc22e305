#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "blending/core/blend_layout.h"
#include "blending/core/page_image.h"
#include "blending/core/recording_blender.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {
namespace {

using test::PageImage;
using test::RecordingBlender;

Ref<ilSPMemoryImg> noise(std::int32_t w, std::int32_t h, std::int32_t channels, unsigned seed) {
    std::mt19937 random(seed);
    auto image = makeRef<ilSPMemoryImg>(w, h, channels);
    for (std::int32_t n = 0; n < w * h * channels; ++n)
        image->data()[n] = static_cast<std::uint8_t>(random());
    return image;
}

struct Target {
    Ref<PageImage> high, low;
    Target() : high(makeRef<PageImage>(4, &content)), low(makeRef<PageImage>(4, &content)) {}
    static std::uint8_t content(std::int32_t x, std::int32_t y, std::int32_t c) {
        return test::contentOf(5, x, y, c);
    }
};

// Small runs with masks that change, other targets now and then, and a source that comes and goes.
// What holds pages and takes plain masks gives the bytes of what does neither.
TEST(HeldPages, DontShowInThePixels) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](int end) {
            return static_cast<std::int32_t>(random() % static_cast<unsigned>(end));
        };
        Target plainTargets[2], heldTargets[2];
        RecordingBlender plain, held;
        for (RecordingBlender* each : {&plain, &held}) {
            each->setOpacity(0.5F);
            each->setThreaded(seed % 2 == 0);
        }
        held.holdPages();
        const auto source = noise(70, 50, 4, seed);
        const auto bind = [&](int n) {
            plain.setDestination(plainTargets[n].high.get(), 0, 0);
            plain.setSecondDestination(plainTargets[n].low.get(), 0, 0);
            held.setDestination(heldTargets[n].high.get(), 0, 0);
            held.setSecondDestination(heldTargets[n].low.get(), 0, 0);
        };
        bind(0);
        int most = 0;
        for (int turn = 0; turn < 300; ++turn) {
            const auto mask = noise(16 * (1 + below(3)), 1 + below(40), 1, seed + 100);
            const std::int32_t x = below(300) - 150, y = below(300) - 150;
            plain.setMask(mask.get(), x, y, false);
            if (below(3) == 0)
                held.setMask(mask.get(), x, y, false);
            else
                held.setPlainMask(mask->data(), mask->sizeX(), x, y);
            if (below(20) == 0) bind(below(2));
            const bool sourced = below(4) == 0;
            for (RecordingBlender* each : {&plain, &held})
                each->setSource(sourced ? source.get() : nullptr, x - 3, y - 2, false);
            const ilTile box =
                flatTile(x + below(2), y, 1 + below(mask->sizeX() - 1), 1 + below(mask->sizeY()));
            plain.run(box);
            held.run(box);
            most = std::max(most, heldTargets[0].high->openLocks + heldTargets[1].high->openLocks);
        }
        EXPECT_GT(most, 1);   // kept from run to run
        EXPECT_LE(most, 80);  // but not for ever
        EXPECT_LT(heldTargets[0].high->locks, plainTargets[0].high->locks);
        held.releasePages();
        for (int n = 0; n < 2; ++n) {
            EXPECT_EQ(heldTargets[n].high->openLocks + heldTargets[n].low->openLocks, 0);
            for (std::int32_t y = -155; y < 200; ++y)
                for (std::int32_t x = -155; x < 200; ++x)
                    for (std::int32_t c = 0; c < 4; ++c) {
                        ASSERT_EQ(heldTargets[n].high->at(x, y, c),
                                  plainTargets[n].high->at(x, y, c))
                            << "seed " << seed << " at " << x << ", " << y;
                        ASSERT_EQ(heldTargets[n].low->at(x, y, c),
                                  plainTargets[n].low->at(x, y, c));
                    }
        }
    }
}

// A blender that goes, or is reset, gives back what it held; so does one whose image is exchanged.
TEST(HeldPages, AreGivenBackHoweverItEnds) {
    Target target;
    {
        RecordingBlender blender;
        blender.holdPages();
        blender.setDestination(target.high.get(), 0, 0);
        blender.run(flatTile(0, 0, 300, 10));
        EXPECT_EQ(target.high->openLocks, 3);
        const auto other = makeRef<PageImage>(4, &Target::content);
        blender.setDestination(other.get(), 0, 0);
        blender.run(flatTile(0, 0, 10, 10));
        EXPECT_EQ(target.high->openLocks, 0);
        EXPECT_EQ(other->openLocks, 1);
        blender.reset();
        EXPECT_EQ(other->openLocks, 0);
        blender.setDestination(target.high.get(), 0, 0);
        blender.holdPages();
        blender.run(flatTile(0, 0, 10, 10));
        EXPECT_EQ(target.high->openLocks, 1);
    }
    EXPECT_EQ(target.high->openLocks, 0);
}

}  // namespace
}  // namespace brushwork
