// The memory manager: large blocks of address space that it keeps for the whole run, small sizes,
// pages and whole blocks out of them, and the C runtime behind it all.
//
//     BworkMemory& memory = BworkMemory::instance();
//     memory.enable(true);
//     void* page = memory.allocateBig(true, false);
//     memory.releaseBig(page);
//
// While it is off, all allocation falls through to the runtime; what it gave out before still comes
// back to it. Out of memory is a null, after blocks, page cache and runtime were all asked. Any
// thread; pages and blocks under the image lock, small sizes under the lock of their size.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "image/memory/block_source.h"
#include "image/memory/block_table.h"
#include "image/memory/page_allocator.h"
#include "image/memory/tiny_block_allocator.h"

namespace brushwork {

class BworkMemory : public BlockSource {
  public:
    static constexpr std::size_t tinyThreshold = 262144;
    static constexpr std::size_t largestBlock = 0xC800000;
    static constexpr std::array<std::uint32_t, 8> tinySizes{32,   128,   512,   1024,
                                                            4096, 16384, 65536, 262144};

    // The one of the process, made on first use, never destroyed. General allocation of the
    // process goes through it once it was enabled.
    [[nodiscard]] static BworkMemory& instance();

    // One of its own, for tests; it changes no routes.
    explicit BworkMemory(const MemorySources& sources = {});
    ~BworkMemory() override;

    // The first switching on makes the tables and the first blocks; no memory for the tables
    // leaves it off.
    void enable(bool on);
    [[nodiscard]] bool isEnabled() const { return enabled_.load(std::memory_order_acquire); }
    // For tests: off, blocks given back, routes as at first, and from now on these sources.
    // False, and nothing changes, while anything is in use. No other thread may be in here.
    bool reset(const MemorySources& sources = {});

    [[nodiscard]] void* allocate(std::size_t bytes);
    // A null pointer allocates. Null: no memory, and `pointer` stays.
    [[nodiscard]] void* reallocate(void* pointer, std::size_t bytes);
    // Null is ignored. `mode` is the caller's own note and changes nothing.
    void release(void* pointer, int mode = 0);
    // Bytes behind a pointer of the manager's; 0 for one from elsewhere.
    [[nodiscard]] std::size_t capacityOf(const void* pointer) const;

    // Buffers of 65536 and 16384 bytes. Without leave to evict null once the blocks are used up.
    [[nodiscard]] void* allocateBig(bool mayEvict, bool reserved = false);
    [[nodiscard]] void* allocateSmall(bool mayEvict, bool reserved = false);
    // Either takes any page, since a small request may have got a big buffer; the page's block
    // knows whether it is in the reserve, so `reserved` changes nothing.
    void releaseBig(void* page, bool reserved = false);
    void releaseSmall(void* page);

    // Scopes nest. The outermost one with bytes holds that many ready for reserved big pages.
    void reserve(std::size_t bytes);
    void endReservation();

    [[nodiscard]] std::uint64_t usedBytes() const;  // of cut elements
    // Empties each block of pages through the page cache; false if one stays occupied.
    bool compact();
    // Whether so many blocks for requests of this size can be had; true while it is off.
    [[nodiscard]] bool canAllocate(std::size_t bytes, std::uint32_t count) const;
    // Logs the state of all blocks; ends with a compact().
    void dump();

    // A block for a tiny allocator.
    [[nodiscard]] void* takeBlock() override;
    void giveBlock(void* block) override;

    [[nodiscard]] std::uint32_t megabytes() const;  // of blocks made

  private:
    enum class Routing { Own, Process };
    enum class Back { Done, Unknown, Damaged };
    // What exists once it was enabled.
    struct State {
        State(BworkMemory& memory, const MemorySources& sources);
        BlockTable table;
        PageAllocator big;
        PageAllocator small;
        std::array<std::unique_ptr<BworkTinyBlockAllocator>, tinySizes.size()> tiny;
    };

    BworkMemory(const MemorySources& sources, Routing routing);

    [[nodiscard]] State* state() const { return state_.load(std::memory_order_acquire); }
    void initialise();
    void discard();
    [[nodiscard]] static bool isIdle(const State& state);
    [[nodiscard]] static void* allocateTiny(State& state, std::size_t bytes);
    [[nodiscard]] void* allocateLarge(State& state, std::size_t bytes);
    [[nodiscard]] static Back releaseInBlocks(State& state, void* pointer);
    void releasePage(void* page);
    void dumpBlocks(State& state) const;
    static void dumpTiny(State& state);

    MemorySources sources_;
    Routing routing_ = Routing::Own;
    std::unique_ptr<State> owned_;
    std::atomic<State*> state_{nullptr};  // null until first enabled
    std::atomic<bool> enabled_{false};
    std::atomic<std::int32_t> bypass_{0};
    std::uint32_t scopes_ = 0;
    bool reserveHeld_ = false;  // by the outermost scope with bytes
};

}  // namespace brushwork
