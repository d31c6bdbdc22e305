// What the tests of the page cache share: a cache as first made, swap files in a directory of their
// own, what was logged, and the memory manager on or off.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "foundation/services/log.h"
#include "image/cache/page_tests.h"
#include "image/cache/smart_image_cache.h"
#include "image/memory/allocation_gate.h"
#include "image/memory/memory_manager.h"
#include "platform/environment.h"
#include "platform/file_calls.h"
#include "platform/memory_figures.h"

namespace brushwork::test {

enum class Manager { Off, On };

inline platform::MemoryFigures& machineFigures() {
    static platform::MemoryFigures figures;
    return figures;
}
inline void setMachine(std::uint64_t physicalMegabytes, std::uint64_t availableMegabytes) {
    machineFigures() = {physicalMegabytes << 10, availableMegabytes << 10};
}

// Blocks of 10, 5 and 2 megabytes, no more than `limitMegabytes` in all.
inline MemorySources limitedSources(std::uint32_t limitMegabytes) {
    MemorySources sources;
    sources.limitMegabytes = limitMegabytes;
    sources.takeBlock = [](std::size_t bytes) noexcept -> void* {
        return bytes > (std::size_t{10} << 20) ? nullptr : platform::takePageMemory(bytes);
    };
    return sources;
}

class CacheRig {
  public:
    explicit CacheRig(Manager manager, std::uint32_t limitMegabytes = 64) {
        setMachine(8192, 80);  // neither scarce nor plenty
        platform::setMemoryFiguresSource(+[]() noexcept { return machineFigures(); });
        setLogSink([this](std::string_view text) { texts.emplace_back(text); });
        root = std::filesystem::temp_directory_path() /
               ("page_cache_test" + std::to_string(platform::processId()));
        std::filesystem::create_directories(root);
        for (Variable& variable : directories_)
            variable.former = platform::environmentVariable(variable.name);
        platform::setEnvironmentText("ZENON_TEMP_DIR", root.u16string());
        clearImageFailure();
        EXPECT_TRUE(SmartImageCache::reset());
        EXPECT_TRUE(BworkMemory::instance().reset(limitedSources(limitMegabytes)));
        if (manager == Manager::On) BworkMemory::instance().enable(true);
    }
    CacheRig(const CacheRig&) = delete;
    CacheRig& operator=(const CacheRig&) = delete;
    ~CacheRig() {
        setAllocationRefusal(nullptr);
        clearImageFailure();
        EXPECT_TRUE(cache.isConsistent());
        drop();
        EXPECT_EQ(cache.counts().usedBytes, 0U);
        EXPECT_EQ(cache.swapBytes(), 0U);
        EXPECT_EQ(smartPageCount(), 0U);
        for (const auto& name : variables_) platform::unsetEnvironmentVariable(name.c_str());
        EXPECT_TRUE(SmartImageCache::reset());
        EXPECT_TRUE(BworkMemory::instance().reset());
        platform::setMemoryFiguresSource(nullptr);
        setLogSink({});
        for (const Variable& variable : directories_) {
            if (variable.former)
                platform::setEnvironmentVariable(variable.name, *variable.former);
            else
                platform::unsetEnvironmentVariable(variable.name);
        }
        std::filesystem::remove_all(root);
    }

    // For the rest of the rig's life, and the cache made anew with it.
    void set(const std::string& variable) {
        platform::setEnvironmentVariable(variable.c_str(), "1");
        variables_.push_back(variable);
        EXPECT_TRUE(SmartImageCache::reset());
    }

    SmartPage& make(std::uint8_t channels, std::uint32_t solid = 0) {
        SmartPage* const page = makeSmartPage(channels, solid);
        EXPECT_NE(page, nullptr);
        pages.push_back(page);
        return *page;
    }
    // In memory, with pixels that no other seed has, packable or not by the seed.
    SmartPage& draw(std::uint8_t channels, std::uint32_t seed) {
        SmartPage& page = make(channels);
        EXPECT_TRUE(cache.allocatePage(page));
        const std::vector<std::uint8_t> bytes = pixels(channels, seed);
        std::memcpy(page.data, bytes.data(), bytes.size());
        return page;
    }
    static std::vector<std::uint8_t> pixels(std::uint8_t channels, std::uint32_t seed) {
        const std::size_t size = std::size_t{pagePixels} * channels;
        std::vector<std::uint8_t> bytes(size, static_cast<std::uint8_t>(seed));
        std::mt19937 random(seed);
        const std::size_t noisy = seed % 3 == 0 ? size : size / 8;
        for (std::size_t i = 0; i < noisy; ++i) bytes[i] = static_cast<std::uint8_t>(random() >> 8);
        std::memcpy(bytes.data(), &seed, sizeof seed);
        return bytes;
    }
    [[nodiscard]] static bool holds(const SmartPage& page, std::uint32_t seed) {
        const std::vector<std::uint8_t> bytes = pixels(page.channels, seed);
        return page.inMemory() && std::memcmp(page.data, bytes.data(), bytes.size()) == 0;
    }
    // Solid in the usual way.
    static void fill(SmartPage& page, std::uint8_t byte) {
        std::memset(page.data, byte, page.bytes());
    }
    void release(SmartPage& page) {
        while (page.cacheLocks > 0) cache.hardUnlock(page);
        cache.releasePage(page);
        destroySmartPage(&page);
        std::erase(pages, &page);
    }
    void drop() {
        while (!pages.empty()) release(*pages.back());
    }
    [[nodiscard]] std::size_t swapFiles() const {
        const std::filesystem::directory_iterator all(root);
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    std::vector<std::string> texts;
    std::filesystem::path root;
    std::vector<SmartPage*> pages;
    SmartImageCache& cache = SmartImageCache::instance();

  private:
    std::vector<std::string> variables_;
    struct Variable {
        const char* name;
        std::optional<std::string> former;
    };
    // The search for a directory sets the second one.
    Variable directories_[2] = {{"ZENON_TEMP_DIR", {}}, {"TMP", {}}};
};

}  // namespace brushwork::test
