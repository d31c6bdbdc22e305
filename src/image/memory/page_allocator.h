// Page buffers of one size, 65536 or 16384 bytes, from the blocks of the table.
//
// A block is taken from the unused ones and cut when pages run short, and goes back to them with
// its last page. A reserve of cut blocks can be held ready beside the others. The image lock is
// held around each call.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "image/memory/block_list.h"
#include "image/memory/block_table.h"

namespace brushwork {

class PageAllocator {
  public:
    static constexpr std::uint32_t bigBytes = 65536;
    static constexpr std::uint32_t smallBytes = 16384;
    // So many blocks of 2 MiB let pages take new blocks of the larger classes first.
    static constexpr std::uint32_t manyBlocks = 200;
    static constexpr std::uint32_t manyBlocksForReserve = 100;

    enum class Size { Small, Big };

    // `runtime` is the last resort; `bypass` and `scopes` count open scopes of allocation for the
    // manager itself and of reservation. All but `runtime` outlive it.
    PageAllocator(BlockTable& table, Size size, const platform::AllocRoutes& runtime,
                  std::atomic<std::int32_t>& bypass, const std::uint32_t& scopes);
    PageAllocator(const PageAllocator&) = delete;
    PageAllocator& operator=(const PageAllocator&) = delete;

    // A page. Without leave to evict null when no block has or can give one; otherwise the page
    // cache is asked, and then the C runtime, so null means that the system has no memory.
    [[nodiscard]] void* allocate(bool mayEvict);
    // The same out of the reserve, which may grow by emptying other blocks.
    [[nodiscard]] void* allocateReserved(bool mayEvict);
    // `block` is this allocator's. False: no page in use.
    bool release(BworkMemBlockAllocator& block, void* page);

    // Sees to it that the reserve has that many bytes free, as far as blocks can be had.
    void fillReserve(std::size_t bytes);
    // Empty blocks of the reserve have no use any more.
    void dropEmptyReserve();

    [[nodiscard]] bool isBig() const { return size_ == Size::Big; }
    [[nodiscard]] std::uint32_t pageBytes() const { return isBig() ? bigBytes : smallBytes; }
    [[nodiscard]] std::uint64_t reserveFree() const;  // pages

  private:
    void* takeFrom(BworkMemBlockAllocator& block);
    void* walk(const BlockList& list);
    BworkMemBlockAllocator& adopt(BworkMemBlockAllocator& block, bool reserved);
    void* adoptAndTake(BworkMemBlockAllocator* block, bool reserved);
    void retire(BworkMemBlockAllocator& block);
    void releaseReserved(BworkMemBlockAllocator& block);
    [[nodiscard]] void* evict() const;

    BlockTable& table_;
    Size size_;
    platform::AllocRoutes runtime_;
    std::atomic<std::int32_t>& bypass_;
    const std::uint32_t& scopes_;
    BworkMemBlockAllocator* current_ = nullptr;
    BlockList partial_;  // blocks with free pages, none of the reserve
    BlockList reserve_;  // blocks of the reserve with free pages
};

}  // namespace brushwork
