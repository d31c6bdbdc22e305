// How much memory the machine has, and how much of it can still be had.
#pragma once

#include <cstdint>

namespace brushwork::platform {

// Kilobytes; 0 where the system doesn't tell.
struct MemoryFigures {
    std::uint64_t physical = 0;
    std::uint64_t available = 0;  // without driving other programs out
};

// As of now. Any thread.
[[nodiscard]] MemoryFigures memoryFigures() noexcept;

using MemoryFiguresSource = MemoryFigures (*)() noexcept;
// For tests: what answers from now on; null takes the system back.
void setMemoryFiguresSource(MemoryFiguresSource source) noexcept;

// The system's answer.
[[nodiscard]] MemoryFigures systemMemoryFigures() noexcept;

}  // namespace brushwork::platform
