#include "blending/core/blender.h"

#include <gtest/gtest.h>

#include "blending/core/blend_layout.h"
#include "foundation/tasks/task_pool.h"
#include "support/allocation_count.h"

namespace brushwork {
namespace {

using test::PageImage;
using test::RecordingBlender;

std::uint8_t speckle(std::int32_t x, std::int32_t y, std::int32_t c) {
    return test::contentOf(77, x, y, c);
}

Ref<ilSPMemoryImg> speckled(std::int32_t w, std::int32_t h, std::int32_t channels) {
    auto result = makeRef<ilSPMemoryImg>(w, h, channels);
    for (std::int32_t n = 0; n < w * h * channels; ++n) result->data()[n] = speckle(n, w, h);
    return result;
}

// A pool of a size, put back to its usual one afterwards.
class WithWorkers {
  public:
    explicit WithWorkers(std::int32_t count) { restart(count); }
    ~WithWorkers() { restart(TaskPool::defaultSize()); }
    WithWorkers(const WithWorkers&) = delete;
    WithWorkers& operator=(const WithWorkers&) = delete;

  private:
    static void restart(std::int32_t count) {
        TaskPool::instance().stop();
        TaskPool::instance().start(count);
    }
};

// One memory image of a single page, cut into bands, over pages: several batches, many records.
std::vector<std::uint8_t> blended(bool threaded) {
    const auto target = speckled(1300, 603, 4);
    const auto source = makeRef<PageImage>(4, speckle);
    const auto mask = makeRef<PageImage>(1, speckle);
    RecordingBlender blender;
    blender.setThreaded(threaded);
    blender.setDestination(target.get(), 0, 0);
    blender.setSource(source.get(), 33, 12, false);
    blender.setMask(mask.get(), -7, 1, false);
    blender.run(flatTile(5, 7, 1290, 580));
    blender.setMask(nullptr, 0, 0, false);
    blender.setSource(nullptr, 0, 0, false);
    blender.run(flatTile(0, 0, 1300, 603));  // bands alone, the last one lower
    EXPECT_EQ(blender.pixelCount(), 1290u * 580u + 1300u * 603u);
    EXPECT_EQ(source->openLocks + mask->openLocks, 0);
    return {target->data(), target->data() + 1300 * 603 * 4};
}

TEST(Blender, ThreadsAndWorkersDontShowInThePixels) {
    const auto expected = blended(false);
    for (const int workers : {1, 2, 8}) {
        const WithWorkers scope(workers);
        for (int turn = 0; turn < 2; ++turn) EXPECT_TRUE(blended(true) == expected) << workers;
    }
    // Without workers the caller does all.
    const WithWorkers scope(2);
    TaskPool::instance().stop();
    EXPECT_TRUE(blended(true) == expected);
}

// Batches of a box, and boxes of any other cut, give the same pixels.
TEST(Blender, BatchesDontShowInThePixels) {
    const auto run = [](bool whole) {
        const auto target = speckled(5000, 150, 1);
        RecordingBlender blender;
        blender.setDestination(target.get(), -2000, -50);
        blender.setMask(makeRef<ilPatternImg>(speckled(61, 200, 1).get()).get(), 11, 13, false);
        if (whole) {
            blender.run(flatTile(-9000, -9000, 20000, 20000));
        } else {
            for (std::int32_t x = -2000; x < 3000; x += 17)
                blender.run(flatTile(x, -50, std::min(17, 3000 - x), 150));
        }
        return std::vector<std::uint8_t>(target->data(), target->data() + 5000 * 150);
    };
    EXPECT_TRUE(run(true) == run(false));
}

// A stamp blends thousands of times over the same few pages.
TEST(Blender, AWarmRunAllocatesNothing) {
    const auto taken = [](const auto& action) {
        const auto before = test::allocations();
        action();
        return test::allocations() - before;
    };
    const auto stamp = speckled(90, 90, 4);
    const auto memory = speckled(128, 128, 4);
    const auto pages = makeRef<PageImage>(4, speckle);
    const auto mask = makeRef<PageImage>(1, speckle);
    RecordingBlender blender;
    blender.setSource(stamp.get(), 10, 10, false);
    blender.setMask(mask.get(), 0, 0, false);
    blender.setLockAlpha(true);
    for (ilImage* target :
         {static_cast<ilImage*>(memory.get()), static_cast<ilImage*>(pages.get())})
        for (const bool threaded : {false, true}) {
            blender.setThreaded(threaded);
            blender.setDestination(target, 0, 0);
            blender.run(flatTile(0, 0, 128, 128));
            EXPECT_EQ(taken([&] {
                          blender.run(flatTile(3, 3, 110, 110));
                          blender.run(flatTile(0, 0, 128, 128));
                      }),
                      0u)
                << threaded;
        }
    // On a smart image no more than its own locks take.
    const auto layer = makeRef<ilSmartImage>(ilPixel(TypeUChar, 4));
    blender.setThreaded(false);
    blender.setDestination(layer.get(), 0, 0);
    blender.run(flatTile(0, 0, 128, 128));
    const auto byLock = taken([&] {
        PageLockRequest request;
        layer->lockPages({&request, 1}, LockWrite);
        layer->unlockPages({&request, 1});
    });
    EXPECT_EQ(taken([&] { blender.run(flatTile(3, 3, 110, 110)); }), byLock);
    // The count does count.
    int* volatile proof = nullptr;
    EXPECT_EQ(taken([&] { proof = std::make_unique<int>(1).release(); }), 1u);
    const std::unique_ptr<int> owner(proof);
}

}  // namespace
}  // namespace brushwork
