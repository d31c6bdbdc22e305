// How many processors work is split for.
//
// Both counts are taken once and kept. An environment variable may lower each: a whole number above
// 0 and below the machine's count replaces it, anything else changes nothing. The drawing workers
// of TaskPool don't ask here; a host sets their number.
#pragma once

#include <optional>
#include <string_view>

namespace brushwork {

// Logical processors as the system reports them, or ZN_NUM_CPUS; at least 1. Any thread.
[[nodiscard]] int processorCount();
// Physical cores as the processor tells, or ZN_NUM_PHYS_CPUS; at least 1. Any thread.
[[nodiscard]] int physicalProcessorCount();

// The rule for the variables.
[[nodiscard]] int loweredCount(int count, std::optional<std::string_view> variable) noexcept;
// Forgets the counts, so that a test can set variables and ask again. Not while others ask.
void resetProcessorCounts() noexcept;

}  // namespace brushwork
