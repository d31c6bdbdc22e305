// Memory sources that count and fail on cue, and a page cache of the simplest kind.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <list>

#include "image/memory/memory_manager.h"
#include "image/memory/page_reclaimer.h"

namespace brushwork::test {

struct RuntimeCounts {
    std::atomic<int> allocated{0};
    std::atomic<int> released{0};
    std::atomic<bool> fails{false};
    std::atomic<bool> blocksFail{false};
};

inline RuntimeCounts& runtimeCounts() {
    static RuntimeCounts counts;
    return counts;
}

inline void resetRuntimeCounts() {
    runtimeCounts().allocated = runtimeCounts().released = 0;
    runtimeCounts().fails = runtimeCounts().blocksFail = false;
}

inline platform::AllocRoutes countedRuntime() {
    return {[](std::size_t bytes) -> void* {
                if (runtimeCounts().fails) return nullptr;
                ++runtimeCounts().allocated;
                return std::malloc(bytes);
            },
            [](void* pointer, std::size_t bytes) -> void* { return std::realloc(pointer, bytes); },
            [](void* pointer) {
                ++runtimeCounts().released;
                std::free(pointer);
            }};
}

// The three smallest classes alone: 10, 5 and 2 megabytes.
inline MemorySources smallSources(std::uint32_t limitMegabytes) {
    MemorySources sources;
    sources.runtime = countedRuntime();
    sources.limitMegabytes = limitMegabytes;
    sources.takeBlock = [](std::size_t bytes) noexcept -> void* {
        if (bytes > (std::size_t{10} << 20) || runtimeCounts().blocksFail) return nullptr;
        return platform::takePageMemory(bytes);
    };
    return sources;
}

// Pages that may move or leave. The content of a page is one value in its first and last word.
class ToyCache : public PageReclaimer {
  public:
    struct Page {
        std::uint8_t* data = nullptr;  // null: out
        std::uint32_t bytes = 0;
        std::uint32_t value = 0;
        bool pinned = false;
    };

    explicit ToyCache(BworkMemory& memory) : memory_(memory) { setPageReclaimer(this); }
    ToyCache(const ToyCache&) = delete;
    ToyCache& operator=(const ToyCache&) = delete;
    ~ToyCache() override { setPageReclaimer(nullptr); }

    static void write(const Page& page) {
        std::memcpy(page.data, &page.value, 4);
        std::memcpy(page.data + page.bytes - 4, &page.value, 4);
    }
    static bool isWhole(const Page& page) {
        return std::memcmp(page.data, &page.value, 4) == 0 &&
               std::memcmp(page.data + page.bytes - 4, &page.value, 4) == 0;
    }

    void* evictForBig() override { return evict(PageAllocator::bigBytes); }
    void* evictForSmall() override {
        void* const small = evict(PageAllocator::smallBytes);
        return small ? small : evictForBig();
    }
    void evacuate(const void* low, const void* high, std::int32_t count, std::uint32_t) override {
        for (Page& page : pages) {
            if (count == 0 || !isMovable(page, low, high)) continue;
            --count;
            void* const old = page.data;
            const bool big = page.bytes == PageAllocator::bigBytes;
            page.data = static_cast<std::uint8_t*>(big ? memory_.allocateBig(false)
                                                       : memory_.allocateSmall(false));
            ++(page.data ? moved : pagedOut);
            if (page.data) std::memcpy(page.data, old, page.bytes);
            memory_.releaseBig(old);
        }
    }
    bool canEvacuate(const void* low, const void* high, std::int32_t count,
                     std::uint32_t& listsOut) override {
        listsOut = smallPages | bigPages;
        for (const Page& page : pages) count -= isMovable(page, low, high) ? 1 : 0;
        return count <= 0;
    }
    [[nodiscard]] Figures figures() const override { return {11, 22, 33}; }

    std::list<Page> pages;
    int moved = 0;
    int pagedOut = 0;

  private:
    void* evict(std::uint32_t bytes) {
        for (Page& page : pages) {
            if (!page.data || page.pinned || page.bytes != bytes) continue;
            ++pagedOut;
            void* const data = page.data;
            page.data = nullptr;
            return data;
        }
        return nullptr;
    }
    static bool isMovable(const Page& page, const void* low, const void* high) {
        return page.data && !page.pinned && page.data >= low && page.data < high;
    }

    BworkMemory& memory_;
};

}  // namespace brushwork::test
