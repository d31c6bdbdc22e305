// SmartImageCache: the one owner of page memory. It keeps every page that holds memory on one of
// its lists, counts the bytes, decides which pages go to the swap file, and turns pages that have
// become uniform back into solid ones.
//
// Made on first use, never destroyed; at process exit the swap files are removed. All calls run
// under the image lock (or, while that isn't engaged, on the one thread of the smart images).
//
// How much memory pages take is bounded in three ways:
// - The limit (setMaxBytes) is soft, and kept up with only while the memory manager is off: then an
//   allocation above three quarters of it looks at written pages, and one that finds it reached
//   adjusts it to the machine and evicts.
// - With the manager on its own shortage evicts: evictForBig, evictForSmall.
// - The host's ceiling (setCeiling) holds either way: an allocation that would pass it evicts
//   first, uniform pages without disk access before those used longest ago.
// Hard-locked pages never leave, pinned ones are never evicted, and no page leaves that the disk
// won't take; these may hold the sum above any bound. While the failure flag is set nothing leaves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/base/observable.h"
#include "image/cache/smart_page.h"
#include "image/memory/page_reclaimer.h"
#include "image/swap/swap_file.h"

namespace brushwork {

struct CacheState;

class SmartImageCache final : public PageReclaimer, public Observer {
  public:
    struct Counts {
        std::uint64_t maxBytes, usedBytes;  // the soft limit; held by pages in memory
        std::uint32_t hits, misses;
        std::int32_t scan, big, small, locked, swapped;  // pages on the lists
        std::uint32_t bigSwapRecords, smallSwapRecords;
        std::int32_t images;
        std::uint64_t allocated;  // page buffers ever allocated, for cost models
        std::uint64_t cloned;     // pages ever copied on write
        std::uint64_t swapWrites, swapReads, failedReads, failedWrites;  // pages; pages lost; tries
    };

    [[nodiscard]] static SmartImageCache& instance();
    // For tests: as first made, with the environment and the machine's memory read anew. False, and
    // nothing changes, while a smart image lives or a page is on a list.
    static bool reset();

    // Marks a use: the page goes to the head of its list, at most once in a row.
    void touch(SmartPage& page);
    void countHit();
    void countClone();

    // Gives a page memory (state 1), uninitialised but for its stamps. False if there is none to be
    // had even by eviction, which sets the failure flag; the page then stays as it was. A page in
    // memory is left alone. The swap record of a swapped page goes: its pixels aren't wanted.
    [[nodiscard]] bool allocatePage(SmartPage& page);
    // Takes memory or swap record away; a page that was in memory or swapped ends in state 7. With
    // `handback` the buffer goes to the caller, to be given back to BworkMemory.
    void releasePage(SmartPage& page, void** handback = nullptr);
    // Turns solid without disk access if uniform, else makes sure that it has a swap record. False
    // if the disk would not take it and somebody ended the wait: the page stays in memory. The
    // buffer stays valid and counted in usedBytes: detachBuffer follows.
    [[nodiscard]] bool pageOut(SmartPage& page);
    // The buffer that a page still has after pageOut, now the caller's; usedBytes falls.
    [[nodiscard]] void* detachBuffer(SmartPage& page);
    // State 2 to 1; the swap record stays, and a miss is counted. False without memory: the page
    // stays swapped.
    [[nodiscard]] bool pageIn(SmartPage& page);
    void dropSwapRecord(SmartPage& page);

    // Nest. A hard-locked page keeps its memory and address. Nothing else does both: a pinned page
    // isn't evicted or moved, but a scan step may find it uniform and turn it solid, and scan steps
    // run in allocatePage, idleStep and setMaxBytes.
    void hardLock(SmartPage& page);
    void hardUnlock(SmartPage& page);

    // Lists of in-memory pages by channels, of swapped ones, and of written ones to be scanned.
    void addPage(SmartPage& page);
    void removePage(SmartPage& page);
    void addSwapped(SmartPage& page);
    void removeSwapped(SmartPage& page);
    void addScan(SmartPage& page);
    void removeScan(SmartPage& page);

    // One step of idle work; whether more remains.
    bool idleStep();
    // Cut to the budget of this machine's memory, at least 32 MiB, at most 1 GiB. Pages leave until
    // the cache is below it, but of those of one channel a single one.
    void setMaxBytes(std::uint64_t bytes);
    // Moves the limit with the memory that the machine has left; while the manager is on it does
    // nothing. `spare` changes nothing.
    void adjustToMemory(bool mayShrink, bool spare, bool growALittle);
    // What the host allows at most, in bytes; 0: no limit but the one above. Pages of either kind
    // leave until the cache fits. It is meant for what pages take of the process: their records
    // count as well, from 32 MiB on a sixteenth of it or more. A ceiling below 32 MiB is taken as
    // it is, also by setMaxBytes, which doesn't move it.
    void setCeiling(std::uint64_t bytes);

    void report();
    [[nodiscard]] float hitRate() const;
    [[nodiscard]] std::uint64_t swapBytes() const;
    // Brings all pages back into memory, as far as there is room, drops their records and deletes
    // a swap file that is empty then. Sets the failure flag, so that nothing goes out any more.
    void prepareShutdown();
    [[nodiscard]] Counts counts() const;
    // Whether the lists agree with their pages and counts, and the counts with usedBytes; with
    // checking on each list operation asks the first. A mismatch sets the failure flag. False while
    // that is set.
    bool isConsistent();
    [[nodiscard]] bool checking() const;

    // Who is asked while the disk is full; see SwapFile::setQuestion.
    void setSwapQuestion(SwapQuestion question);
    // For tests and reports.
    [[nodiscard]] SwapFile& bigSwap();
    [[nodiscard]] SwapFile& smallSwap();

    // Live smart images.
    void imageMade();
    void imageGone();

    void* evictForBig() override;
    void* evictForSmall() override;
    void evacuate(const void* low, const void* high, std::int32_t count,
                  std::uint32_t lists) override;
    bool canEvacuate(const void* low, const void* high, std::int32_t count,
                     std::uint32_t& listsOut) override;
    [[nodiscard]] Figures figures() const override;

    ~SmartImageCache() override;

  private:
    SmartImageCache();

    std::unique_ptr<CacheState> state_;
};

}  // namespace brushwork
