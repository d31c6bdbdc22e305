// Lets a test refuse single allocations of pages and pooled records.
//
//     setAllocationRefusal(+[]() noexcept { return --left == 0; });
//
// With none set a question costs one load. Any thread; setting is for tests, on one.
#pragma once

#include <atomic>

namespace brushwork {

// True: the allocation that asks fails.
using AllocationRefusal = bool (*)() noexcept;

inline std::atomic<AllocationRefusal>& allocationRefusal() noexcept {
    static constinit std::atomic<AllocationRefusal> refusal{nullptr};
    return refusal;
}

// Null: every allocation may succeed again.
inline void setAllocationRefusal(AllocationRefusal refusal) noexcept {
    allocationRefusal() = refusal;
}

// Asked once by each allocation before it looks for memory.
[[nodiscard]] inline bool allocationRefused() noexcept {
    const AllocationRefusal refusal = allocationRefusal().load(std::memory_order_relaxed);
    return refusal && refusal();
}

}  // namespace brushwork
