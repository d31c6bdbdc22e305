// Between the engine's pixel word and other channel orders. Bytes count from the word's lowest,
// which comes first in memory.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

[[nodiscard]] constexpr std::uint32_t swapBytes13(std::uint32_t word) {
    return (word & 0x00FF00FFu) | ((word & 0x0000FF00u) << 16) | ((word >> 16) & 0x0000FF00u);
}
[[nodiscard]] constexpr std::uint32_t reverseBytes(std::uint32_t word) {
    return (word << 24) | ((word & 0x0000FF00u) << 8) | ((word >> 8) & 0x0000FF00u) | (word >> 24);
}
[[nodiscard]] constexpr std::uint32_t swapBytes02(std::uint32_t word) {
    return (word & 0xFF00FF00u) | ((word & 0x000000FFu) << 16) | ((word >> 16) & 0x000000FFu);
}

// The same for `count` words; source and target are equal or apart, and need no alignment.
void swapBytes13(const void* source, void* target, std::size_t count);
void reverseBytes(const void* source, void* target, std::size_t count);
void swapBytes02(const void* source, void* target, std::size_t count);

}  // namespace brushwork
