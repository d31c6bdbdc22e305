#include "image/swap/swap_record.h"

#include <algorithm>
#include <deque>
#include <new>
#include <utility>

namespace brushwork {
namespace {

struct Pool {
    std::deque<SwapRecord> records;
    SwapRecord* spare = nullptr;
    std::uint32_t lastId = 0;
    std::uint32_t inUse = 0;
};

Pool& pool() {
    static Pool instance;
    return instance;
}

}  // namespace

SwapRecord* takeSwapRecord() {
    Pool& from = pool();
    SwapRecord* record = from.spare;
    if (record) {
        from.spare = record->nextFree;
        *record = SwapRecord{};
    } else {
        try {
            record = &from.records.emplace_back();
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }
    record->id = ++from.lastId;
    ++from.inUse;
    return record;
}

void giveSwapRecord(SwapRecord* record) {
    Pool& to = pool();
    record->nextFree = std::exchange(to.spare, record);
    --to.inUse;
}

std::uint32_t swapRecordsInUse() {
    return pool().inUse;
}

SwapFreeLists::SwapFreeLists(std::uint32_t granularity) : granularity_(granularity) {
    pool();  // must outlive every list
}

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
