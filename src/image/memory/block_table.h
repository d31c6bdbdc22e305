// All large blocks of the memory manager: seven classes of sizes, the table of blocks by class, the
// table by address, and the blocks that have no use at present.
//
//     BlockTable table(sources);
//     table.initialise();
//     BworkMemBlockAllocator* block = table.find(address);  // null: none of ours
//
// The image lock is held around each call.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "image/memory/block_list.h"
#include "image/memory/mem_block_allocator.h"
#include "platform/alloc_routes.h"
#include "platform/page_memory.h"

namespace brushwork {

// Where the manager's memory comes from; tests put in what fails on cue.
struct MemorySources {
    platform::AllocRoutes runtime = platform::runtimeRoutes();
    void* (*takeBlock)(std::size_t bytes) noexcept = &platform::takePageMemory;
    void (*giveBlock)(void* block, std::size_t bytes) noexcept = &platform::givePageMemory;
    std::uint32_t limitMegabytes = 1228;  // of blocks; the table has half as many entries
};

class BlockTable {
  public:
    static constexpr std::uint32_t classCount = 7;
    static constexpr std::uint32_t smallestClass = 6;  // blocks of 2 MiB
    static constexpr std::array<std::uint32_t, classCount> classBytes{
        209715200, 104857600, 52428800, 26214400, 10485760, 5242880, 2097152};

    enum class Waste { Refuse, Allow };

    explicit BlockTable(const MemorySources& sources);
    BlockTable(const BlockTable&) = delete;
    BlockTable& operator=(const BlockTable&) = delete;
    // Gives all blocks back to the system.
    ~BlockTable();

    // Makes the tables and the first block of each class. False: no memory for the tables.
    [[nodiscard]] bool initialise();

    // A new unused block. Null if the megabytes have reached the limit, the class is full, or the
    // system has no memory.
    BworkMemBlockAllocator* make(std::uint32_t blockClass = smallestClass);
    // For pages: of the first of the big classes that can grow, once there are `manySmall` blocks
    // of 2 MiB; otherwise, and if that fails, one of 2 MiB.
    BworkMemBlockAllocator* makeForPages(std::uint32_t manySmall);

    // The block around an address.
    [[nodiscard]] BworkMemBlockAllocator* find(const void* address) const;
    // The unused block that became so first, neither frozen nor fixed.
    [[nodiscard]] BworkMemBlockAllocator* oldestUnused() const;
    // What an allocator of pages takes next: the block that it emptied last, while nobody has had
    // it, since that memory is warm and mapped; otherwise the oldest.
    [[nodiscard]] BworkMemBlockAllocator* unusedFor(const PageAllocator& pages) const;
    // The latest unused block of 2 MiB, or a new one.
    BworkMemBlockAllocator* unusedSmallest();

    // A block of the class without an element in use, got by growing or evacuating if need be.
    BworkMemBlockAllocator* pickBlock(std::uint32_t blockClass);
    // Gives a block away whole; null: none. With Waste::Refuse none above five times the request,
    // unless it is of 2 MiB.
    BworkMemBlockAllocator* allocateFromClass(std::size_t bytes, Waste waste);
    void giveAway(BworkMemBlockAllocator& block);
    // No use any more: uncut, thawed, at the head of the unused.
    void retire(BworkMemBlockAllocator& block);

    // Empties a block through the page cache; it gives out nothing meanwhile. True: no element is
    // in use.
    static bool evacuate(BworkMemBlockAllocator& block);
    // The first block of pages, none of a reserve, that can be emptied. With `askFirst` no page is
    // moved unless all of its block can be.
    BworkMemBlockAllocator* evacuateAny(bool askFirst);

    // How many more blocks for a request of this size there are, counting those that growth and
    // evacuation would give, up to `enough`.
    [[nodiscard]] std::uint32_t countAvailable(std::size_t bytes, std::uint32_t enough) const;

    [[nodiscard]] BlockList& unused() { return unused_; }
    [[nodiscard]] std::size_t slotCount() const { return slots_.size(); }
    [[nodiscard]] BworkMemBlockAllocator* slot(std::size_t index) const {
        return slots_[index].get();  // null: no block made there yet
    }
    [[nodiscard]] std::uint32_t classOfSlot(std::size_t index) const;
    [[nodiscard]] std::uint32_t madeCount(std::uint32_t blockClass) const {
        return made_[blockClass];
    }
    [[nodiscard]] std::size_t blockCount() const { return byAddress_.size(); }
    [[nodiscard]] std::uint32_t megabytes() const { return megabytes_; }
    // Bit k: class k can grow.
    [[nodiscard]] std::uint32_t growMask() const { return mask_; }

  private:
    struct Entry {
        std::uintptr_t base;
        BworkMemBlockAllocator* block;
    };

    [[nodiscard]] static bool isIdle(const BworkMemBlockAllocator& block);
    [[nodiscard]] static bool canEvacuate(const BworkMemBlockAllocator& block);
    void enter(BworkMemBlockAllocator& block);
    BworkMemBlockAllocator* leastUsed(std::uint32_t blockClass) const;
    BworkMemBlockAllocator* anyEvacuated(std::uint32_t blockClass) const;

    MemorySources sources_;
    std::vector<std::unique_ptr<BworkMemBlockAllocator>> slots_;  // by class, then by age
    std::vector<Entry> byAddress_;
    std::array<std::uint32_t, classCount + 1> classStart_{};  // into slots_
    std::array<std::uint32_t, classCount> made_{};
    std::uint32_t mask_ = 0;
    std::uint32_t megabytes_ = 0;
    BlockList unused_;  // latest at the head
};

}  // namespace brushwork
