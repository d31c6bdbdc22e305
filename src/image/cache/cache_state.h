// CacheState: what the page cache knows: the lists, the counts, the limits and both swap files.
// The rooms behind it are its operations. All run under the image lock.
#pragma once

#include <cstdint>

#include "image/cache/page_lists.h"
#include "image/cache/smart_page.h"
#include "image/swap/swap_file.h"

namespace brushwork {

// A page is on one of big, small, locked and swapped, or, solid, on none; which one follows from
// its state, its hard locks and its channels. A page on the scan list is in memory.
struct CacheState {
    // Reads settings and the machine's memory.
    CacheState();

    std::uint32_t magic = liveSignature;
    bool idleWork = false;  // the scan list has entries
    bool checking = false;
    // A page is being written. The swap file's buffers are taken, and an allocation for its record
    // may ask for pages: until it is done no other page goes out.
    bool writing = false;

    PageList big;    // 4 channels, in memory; latest use at the head
    PageList small;  // 1 channel
    PageList locked;
    PageList swapped;
    ScanList scan;

    std::uint64_t budget = 0;    // megabytes
    std::uint64_t limit = 0;     // bytes; as asked for, within the budget
    std::uint64_t ceiling = 0;   // bytes; of the host, 0: none
    std::uint64_t maxBytes = 0;  // bytes; the lower of the two
    std::uint64_t usedBytes = 0;

    SwapFile bigSwap;
    SwapFile smallSwap;

    std::uint32_t nextStamp = 2;  // the one before was never given: fresh pages carry 0
    std::uint32_t hits = 0, misses = 0;
    std::int32_t images = 0;
    std::uint64_t allocated = 0, cloned = 0, swapWrites = 0, swapReads = 0;

    [[nodiscard]] PageList& listOf(std::uint8_t channels) { return channels == 1 ? small : big; }
    [[nodiscard]] SwapFile& swapOf(const SmartPage& page) {
        return page.channels == 1 ? smallSwap : bigSwap;
    }
    // The list that the page belongs on; null: none.
    [[nodiscard]] PageList* homeOf(const SmartPage& page);

    // Onto its list, at the head, and off it; nothing if it is there, or isn't, already.
    void enter(SmartPage& page);
    void leave(SmartPage& page);
    // To the head of the list that it is on.
    void promote(SmartPage& page);
    // Onto the scan list: a page in memory that isn't on it. Off it.
    void enterScan(SmartPage& page);
    void leaveScan(SmartPage& page);

    // Gives the buffer of a page of so many channels back to its allocator; null is ignored.
    void freeBuffer(std::uint8_t channels, std::uint8_t* buffer) const;
    // Marks a buffer at four places, so that one that was never written shows in a dump; with
    // checking on the rest is filled too.
    void markFresh(const SmartPage& page, std::uint8_t* buffer) const;

    // Whether lists, counts and pages agree; a mismatch sets the failure flag. False while that is
    // set.
    bool checkLists() const;

  private:
    void check() const {
        if (checking) checkLists();
    }
};

}  // namespace brushwork
