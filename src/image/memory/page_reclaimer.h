// What the allocators may ask of the page cache, which stands above them and registers itself when
// it is built. With none registered there is nothing to give, and the allocators go on without.
// All calls run under the image lock, also those of the reclaimer back into the allocators.
#pragma once

#include <cstdint>

namespace brushwork {

class PageReclaimer {
  public:
    // The lists of pages that an evacuation walks.
    static constexpr std::uint32_t smallPages = 1;
    static constexpr std::uint32_t bigPages = 2;

    struct Figures {
        std::int32_t inMemoryPages = 0;
        std::int32_t swapObjects = 0;
        std::int32_t pageRecords = 0;
    };

    virtual ~PageReclaimer() = default;

    // A buffer of 65536 bytes, which now belongs to the caller; null: none can be spared.
    virtual void* evictForBig() = 0;
    // A buffer of 16384 or 65536 bytes.
    virtual void* evictForSmall() = 0;
    // Moves up to `count` pages of `lists` out of the addresses from `low` up to, not including,
    // `high`, into other buffers or to the swap file.
    virtual void evacuate(const void* low, const void* high, std::int32_t count,
                          std::uint32_t lists) = 0;
    // Whether evacuate would find `count` pages, moving none; `listsOut` gets the lists they are
    // on.
    virtual bool canEvacuate(const void* low, const void* high, std::int32_t count,
                             std::uint32_t& listsOut) = 0;
    [[nodiscard]] virtual Figures figures() const = 0;
};

// The registered one, or null.
[[nodiscard]] PageReclaimer* pageReclaimer() noexcept;
// Not owned; null takes it back. It must outlive its registration.
void setPageReclaimer(PageReclaimer* reclaimer) noexcept;

}  // namespace brushwork
