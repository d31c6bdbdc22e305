// Where a page lies in a swap file, and the places that were freed and wait for another page.
#pragma once

#include <array>
#include <cstdint>

namespace brushwork {

// One place in a swap file. A record that was freed keeps its place, so it is what a page of about
// the same stored size gets next.
struct SwapRecord {
    std::uint32_t id = 0;            // no other record taken in this process had it, until 2^32
    std::uint32_t objectSize = 0;    // bytes of the page
    std::uint32_t storedSize = 0;    // bytes in the file, at most objectSize
    std::int32_t sizeClass = -1;     // -1 until it is freed first
    SwapRecord* nextFree = nullptr;  // in its free list or in the pool
    alignas(8) std::uint64_t offset = 0;  // in the file
};
static_assert(sizeof(SwapRecord) == 32);

// Records of the process, in their first state but for a new id. They stay where they are in
// memory; a record that is given back is handed out again. Null without memory. The caller holds
// the lock of the image library.
[[nodiscard]] SwapRecord* takeSwapRecord();
void giveSwapRecord(SwapRecord* record);
// How many are taken.
[[nodiscard]] std::uint32_t swapRecordsInUse();

// The freed records of one file, by size class. A class counts units of the file's granularity.
// A request is rounded up and a freed record down, so whatever a class offers is large enough.
class SwapFreeLists {
  public:
    static constexpr std::int32_t largestClass = 1024;

    explicit SwapFreeLists(std::uint32_t granularity);
    SwapFreeLists(const SwapFreeLists&) = delete;
    SwapFreeLists& operator=(const SwapFreeLists&) = delete;
    ~SwapFreeLists() { clear(); }

    // A record with room for `bytes`, of the wanted class or one of the two above it, the latest
    // freed first. Null if there is none.
    [[nodiscard]] SwapRecord* take(std::uint32_t bytes);
    // Takes the record over. One freed for the first time gets the class of what it stores; if that
    // is below one unit its place is given up until the file starts anew.
    void put(SwapRecord* record);
    // All records go back to the pool.
    void clear();

  private:
    std::uint32_t granularity_;  // bytes
    std::array<SwapRecord*, largestClass + 1> heads_{};
};

}  // namespace brushwork
