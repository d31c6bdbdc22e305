// How much memory the page cache allows itself on a machine.
#pragma once

#include <cstdint>

namespace brushwork {

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;
constexpr std::uint64_t leastCacheBytes = 32 * mebibyte;  // of a limit that is asked for
constexpr std::uint64_t mostCacheBytes = 1024 * mebibyte;

// Megabytes of the machine; 2048 where the system doesn't tell.
[[nodiscard]] std::uint64_t physicalMegabytes();
[[nodiscard]] std::uint64_t availableMegabytes();

// Megabytes for pages on a machine of so many: 16 to 1536.
[[nodiscard]] std::uint64_t budgetMegabytes(std::uint64_t physical);
// The limit in bytes, first and as it becomes when `bytes` are asked for.
[[nodiscard]] std::uint64_t firstCacheBytes(std::uint64_t budget);
[[nodiscard]] std::uint64_t boundedCacheBytes(std::uint64_t bytes, std::uint64_t budget);

}  // namespace brushwork
