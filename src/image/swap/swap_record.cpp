#include "image/swap/swap_record.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "image/memory/object_pool.h"

namespace brushwork {
namespace {

// Never destroyed: files give records back while the process ends.
ObjectPool& pool() {
    static ObjectPool& instance = *std::make_unique<ObjectPool>(sizeof(SwapRecord)).release();
    return instance;
}

std::atomic<std::uint32_t> lastId{0};

}  // namespace

SwapRecord* takeSwapRecord() {
    void* const place = pool().allocate();
    if (!place) return nullptr;
    auto* const record = new (place) SwapRecord;
    record->id = ++lastId;
    return record;
}

void giveSwapRecord(SwapRecord* record) {
    static_assert(std::is_trivially_destructible_v<SwapRecord>);
    pool().release(record);
}

std::uint32_t swapRecordsInUse() {
    return static_cast<std::uint32_t>(pool().usedCount());
}

SwapFreeLists::SwapFreeLists(std::uint32_t granularity) : granularity_(granularity) {}

SwapRecord* SwapFreeLists::take(std::uint32_t bytes) {
    const std::uint64_t wanted = (std::uint64_t{bytes} + granularity_ - 1) / granularity_;
    if (wanted < 1 || wanted > largestClass) return nullptr;
    const auto last = std::min<std::uint64_t>(wanted + 2, largestClass);
    for (auto size = wanted; size <= last; ++size) {
        SwapRecord*& head = heads_[static_cast<std::size_t>(size)];
        if (head) {
            SwapRecord* record = head;
            head = std::exchange(record->nextFree, nullptr);
            return record;
        }
    }
    return nullptr;
}

void SwapFreeLists::put(SwapRecord* record) {
    if (record->sizeClass < 0)
        record->sizeClass = static_cast<std::int32_t>(record->storedSize / granularity_);
    if (record->sizeClass == 0 || record->sizeClass > largestClass) {
        giveSwapRecord(record);
        return;
    }
    SwapRecord*& head = heads_[static_cast<std::size_t>(record->sizeClass)];
    record->nextFree = std::exchange(head, record);
}

void SwapFreeLists::clear() {
    for (SwapRecord*& head : heads_)
        while (head) {
            SwapRecord* record = head;
            head = record->nextFree;
            giveSwapRecord(record);
        }
}

}  // namespace brushwork
