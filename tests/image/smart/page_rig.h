// Pages for tests of what lies below the smart image: pages of known pixels, pages pushed out on
// cue, a stand-in for the image around a page table, and a shortage of memory.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "foundation/services/log.h"
#include "image/cache/smart_image_cache.h"
#include "image/memory/memory_manager.h"
#include "image/memory/memory_rig.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_source.h"

namespace brushwork::test {

// One value a pixel, whatever the channels.
using Pixels = std::vector<std::uint32_t>;

inline Pixels pattern(std::int32_t channels, std::uint32_t seed) {
    Pixels pixels(pagePixels);
    for (std::uint32_t& pixel : pixels) {
        seed = seed * 1664525U + 1013904223U;
        pixel = channels == 1 ? seed >> 24 : seed;
    }
    return pixels;
}

inline Pixels uniform(std::int32_t channels, std::uint32_t value) {
    return Pixels(pagePixels, channels == 1 ? value & 0xFF : value);
}

inline std::uint32_t pixelOf(const SmartPage& page, std::size_t index) {
    if (page.isSolid()) return page.solid;
    if (page.channels == 1) return page.data[index];
    std::uint32_t word;
    std::memcpy(&word, page.data + index * 4, sizeof word);
    return word;
}

inline void storePixel(SmartPage& page, std::size_t index, std::uint32_t value) {
    if (page.channels == 1)
        page.data[index] = static_cast<std::uint8_t>(value);
    else
        std::memcpy(page.data + index * 4, &value, sizeof value);
}

// Empty if the page can't be had.
inline Pixels pixelsOf(SmartPageRef& slot) {
    if (!realizePage(slot, RealizeMode::Read)) return {};
    Pixels pixels(pagePixels);
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = pixelOf(*slot, i);
    return pixels;
}

inline bool writePixels(SmartPageRef& slot, const Pixels& pixels) {
    if (!realizePage(slot, RealizeMode::Overwrite)) return false;
    for (std::size_t i = 0; i < pixels.size(); ++i) storePixel(*slot, i, pixels[i]);
    notePageWritten(*slot);
    return true;
}

inline SmartPageRef solidPage(std::uint8_t channels, std::uint32_t value) {
    return SmartPageRef(makeSmartPage(channels, value));
}

inline SmartPageRef pageOf(std::uint8_t channels, const Pixels& pixels) {
    SmartPageRef page = solidPage(channels, 0);
    if (page && !writePixels(page, pixels)) page = SmartPageRef();
    return page;
}

// Evicts pages of its kind until this one has left. A page of one value turns solid.
inline bool pushOut(SmartPage& page) {
    SmartImageCache& cache = SmartImageCache::instance();
    while (page.inMemory()) {
        void* const buffer = page.channels == 1 ? cache.evictForSmall() : cache.evictForBig();
        if (!buffer) return false;
        BworkMemory::instance().releaseBig(buffer);
    }
    return true;
}

// While it lives no page buffer can be had but by eviction. The failure that was noted goes with
// it.
class Shortage {
  public:
    Shortage() {
        runtimeCounts().fails = true;
        runtimeCounts().blocksFail = true;
        BworkMemory& memory = BworkMemory::instance();
        while (void* const page = memory.allocateBig(false)) taken_.push_back(page);
        while (void* const page = memory.allocateSmall(false)) taken_.push_back(page);
    }
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;
    ~Shortage() {
        for (void* page : taken_) BworkMemory::instance().releaseBig(page);
        runtimeCounts().fails = false;
        runtimeCounts().blocksFail = false;
        clearImageFailure();
    }

  private:
    std::vector<void*> taken_;
};

// The image around a table: with or without a parent, whose pages are what `give` answers.
class FakeSource : public PageSource {
  public:
    [[nodiscard]] bool hasParent() override { return static_cast<bool>(give); }
    [[nodiscard]] const ilTile& initialBounds() const override { return initial; }
    [[nodiscard]] SmartPageRef parentPage(std::int32_t x, std::int32_t y) override {
        ++asked;
        return give(x, y);
    }

    std::function<SmartPageRef(std::int32_t, std::int32_t)> give;
    ilTile initial;
    int asked = 0;
};

// With the memory manager on, or off. Ends with nothing left behind.
class PageTest : public ::testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        resetRuntimeCounts();
        clearImageFailure();
        ASSERT_TRUE(BworkMemory::instance().reset(smallSources(64)));
        BworkMemory::instance().enable(GetParam());
        ASSERT_TRUE(SmartImageCache::reset());
        recordsBefore_ = smartPageCount();
        setLogSink([this](std::string_view text) { logged += text; });
    }
    void TearDown() override {
        EXPECT_EQ(imageFailure(), 0);
        EXPECT_EQ(smartPageCount(), recordsBefore_);
        const SmartImageCache::Counts counts = cache().counts();
        EXPECT_EQ(counts.usedBytes, 0u);
        EXPECT_EQ(counts.big + counts.small + counts.locked + counts.swapped + counts.scan, 0);
        EXPECT_EQ(counts.bigSwapRecords + counts.smallSwapRecords, 0u);
        EXPECT_TRUE(cache().isConsistent());
        setLogSink({});
        clearImageFailure();
        BworkMemory::instance().enable(false);
        resetRuntimeCounts();
        EXPECT_TRUE(BworkMemory::instance().reset());
    }
    [[nodiscard]] static SmartImageCache& cache() { return SmartImageCache::instance(); }

    std::string logged;

  private:
    std::uint32_t recordsBefore_ = 0;
};

inline std::string managerName(const ::testing::TestParamInfo<bool>& info) {
    return info.param ? "ManagerOn" : "ManagerOff";
}

}  // namespace brushwork::test
