#include "foundation/tasks/processor_count.h"

#include <atomic>
#include <charconv>

#include "platform/environment.h"
#include "platform/processor.h"

namespace brushwork {

namespace {

// 0 until they are asked for. Threads that ask first at the same time find the same number.
std::atomic<int> logicalCount{0};
std::atomic<int> physicalCount{0};

int keptCount(std::atomic<int>& kept, int (*machineCount)() noexcept, const char* variable) {
    int count = kept.load(std::memory_order_relaxed);
    if (count == 0) {
        count = loweredCount(machineCount(), platform::environmentVariable(variable));
        kept.store(count, std::memory_order_relaxed);
    }
    return count;
}

}  // namespace

int loweredCount(int count, std::optional<std::string_view> variable) noexcept {
    if (!variable) return count;
    int value = 0;
    const char* end = variable->data() + variable->size();
    const auto [stop, error] = std::from_chars(variable->data(), end, value);
    const bool isNumber = error == std::errc() && stop == end;
    return isNumber && value > 0 && value < count ? value : count;
}

int processorCount() {
    return keptCount(logicalCount, platform::logicalProcessorCount, "ZN_NUM_CPUS");
}

int physicalProcessorCount() {
    return keptCount(physicalCount, platform::physicalProcessorCount, "ZN_NUM_PHYS_CPUS");
}

void resetProcessorCounts() noexcept {
    logicalCount = 0;
    physicalCount = 0;
}

}  // namespace brushwork
