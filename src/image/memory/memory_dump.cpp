// The printed state of the memory manager.
#include <mutex>
#include <new>

#include "foundation/services/log.h"
#include "image/memory/image_lock.h"
#include "image/memory/memory_manager.h"
#include "image/memory/page_reclaimer.h"

namespace brushwork {
namespace {

double percentOf(std::uint64_t part, std::uint64_t whole) {
    return whole == 0 ? 0.0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

long asLong(std::uint64_t figure) {
    return static_cast<long>(figure);
}

struct PageFigures {
    std::uint64_t used = 0;  // pages
    std::uint64_t free = 0;
};

struct BlockFigures {
    PageFigures big;
    PageFigures small;
    std::uint64_t fixedBigFree = 0;
    std::uint64_t unusedBlocks = 0;
    int fixedBlocks = 0;
    std::uint64_t totalBytes = 0;
    std::uint64_t usedBytes = 0;  // of pages, and of blocks given away whole

    void add(const BworkMemBlockAllocator& block);
};

void BlockFigures::add(const BworkMemBlockAllocator& block) {
    totalBytes += block.blockSize();
    if (block.isFixed()) ++fixedBlocks;
    if (block.isFrozen()) {
        usedBytes += block.blockSize();
        return;
    }
    if (!block.owner()) {
        ++unusedBlocks;
        return;
    }
    const auto used = static_cast<std::uint64_t>(block.usedCount());
    const auto free = static_cast<std::uint64_t>(block.freeCount());
    PageFigures& pages = block.owner()->isBig() ? big : small;
    pages.used += used;
    pages.free += free;
    if (block.isFixed() && block.owner()->isBig()) fixedBigFree += free;
    usedBytes += used * block.elementSize();
}

// One line a block. "Frozen" is a block given away to a caller, "frozenAlloc" one given to a tiny
// allocator. The last form leaves its line open, as it always has.
void dumpBlock(int index, const BworkMemBlockAllocator& block) {
    log("%d: %ldM-", index, asLong(block.blockSize() >> 20));
    if (block.isFrozen())
        log(block.isTiny() ? "*frozenAlloc\n" : "*Frozen\n");
    else if (block.isFixed())
        log("#Fixed-%ld\n", asLong(block.elementSize()));
    else if (block.freeCount() == 0 && block.usedCount() > 0)
        log("%ld-(Free=0)\n", asLong(block.elementSize()));
    else
        log("%ld-%d/%d", asLong(block.elementSize()), static_cast<int>(block.usedCount()),
            static_cast<int>(block.elementCount()));
}

// Megabytes of use, or kilobytes below the first megabyte.
void dumpTotals(const BlockFigures& figures) {
    log("---Big Allocators is %ld/%ld(bigPage/free).\n", asLong(figures.big.used),
        asLong(figures.big.free));
    log("---Small Allocators is %ld/%ld(smallPage/free).\n", asLong(figures.small.used),
        asLong(figures.small.free));
    log("---Fixed Big Free Allocators is %ld.\n", asLong(figures.fixedBigFree));
    log("---Empty Big Allocators is %ld.\n", asLong(figures.unusedBlocks));
    const double percent = percentOf(figures.usedBytes, figures.totalBytes);
    const long total = asLong(figures.totalBytes >> 20);
    if (figures.usedBytes >> 20 != 0)
        log("---------------Big Total Size = %ldM, Used = %ldM "
            "(%.2f%%)---------------------------------\n",
            total, asLong(figures.usedBytes >> 20), percent);
    else
        log("---------------Big Total Size = %ldM, Used = %ldK "
            "(%.2f%%)---------------------------------\n",
            total, asLong(figures.usedBytes >> 10), percent);
}

void dumpTinyChild(const BworkTinyBlockAllocator::ChildFigures& child, std::uint32_t elementSize) {
    const long megabytes = asLong(child.blockSize >> 20);
    const double percent =
        percentOf(static_cast<std::uint64_t>(child.usedCount), child.elementCount);
    if (elementSize >= 1024)
        log("\t\t->%ld-%ldK-%u(%.2f%%)", megabytes, asLong(elementSize >> 10),
            static_cast<unsigned>(child.usedCount), percent);
    else
        log("\t\t->%ld-%ld-%d(%.2f%%)", megabytes, asLong(elementSize),
            static_cast<int>(child.usedCount), percent);
    if (child.base != 0)
        log("\t0x%lx\n", static_cast<unsigned long>(child.base));
    else
        log("@(DataPtr is NULL)\n");
}

}  // namespace

void BworkMemory::dumpBlocks(State& state) const {
    const BlockTable& table = state.table;
    log("\n------------------------------------------------\n");
    log("Allocator count: %d.\n", static_cast<int>(table.blockCount()));
    log("#: TSize-ESize-ACount\n");
    BlockFigures figures;
    for (std::size_t i = 0; i < table.slotCount(); ++i) {
        const int index = static_cast<int>(i);
        if (const BworkMemBlockAllocator* const block = table.slot(i)) {
            dumpBlock(index, *block);
            figures.add(*block);
        } else {
            const std::uint32_t bytes = BlockTable::classBytes[table.classOfSlot(i)];
            log("%d: %uM------\n", index, static_cast<unsigned>(bytes >> 20));
        }
    }
    dumpTotals(figures);
    dumpTiny(state);
    PageReclaimer* const reclaimer = pageReclaimer();
    const auto cache = reclaimer ? reclaimer->figures() : PageReclaimer::Figures{};
    log("In Memory Page Count = %d.\n", static_cast<int>(cache.inMemoryPages));
    log("Swap object count = %d.\n", static_cast<int>(cache.swapObjects));
    log("------------------------*****----------------------\n");
    log("There are %d fixed allocator(s).\n", figures.fixedBlocks);
    log("PageData count is %d.\n", static_cast<int>(cache.pageRecords));
}

// Kilobytes and megabytes, or bytes and kilobytes while less than a megabyte is in use.
void BworkMemory::dumpTiny(State& state) {
    log("Tiny allocator count: %d.\n", static_cast<int>(state.tiny.size()));
    log("#: TSize(M)-ESize-ACount\n");
    std::uint64_t total = 0;
    std::uint64_t used = 0;
    for (const auto& allocator : state.tiny) {
        const std::uint32_t size = allocator->elementSize();
        const auto children = allocator->figures();
        if (size >= 1024)
            log("\t->%ldK (x%d)\n", asLong(size >> 10), static_cast<int>(children.size()));
        else
            log("\t->%ld (x%d)\n", asLong(size), static_cast<int>(children.size()));
        for (const auto& child : children) {
            dumpTinyChild(child, size);
            if (child.base != 0) total += child.blockSize;
            used += static_cast<std::uint64_t>(child.usedCount) * size;
        }
    }
    const double percent = percentOf(used, total);
    if (used >> 20 != 0)
        log("---------------Tiny Size = %ldK, Used = %ldM(%.2f%%) "
            "---------------------------------\n",
            asLong(total >> 10), asLong(used >> 20), percent);
    else
        log("---------------Tiny Size = %ldB, Used = %ldK(%.2f%%) "
            "---------------------------------\n",
            asLong(total), asLong(used >> 10), percent);
}

void BworkMemory::dump() try {
    if (!isEnabled()) return log("\nBrushwork Memory Manager is not enabled!\n");
    const std::lock_guard guard(imageLock());
    dumpBlocks(*state());
    if (compact()) log("Succeeded to page out all blocks!\n");
} catch (const std::bad_alloc&) {
    // The rest of the report is left out.
}

}  // namespace brushwork
