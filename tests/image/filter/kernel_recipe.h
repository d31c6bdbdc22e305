// What the kernel tests of this folder share: pixels biased to the edges of a byte, and buffers
// with guard bytes around them.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "foundation/services/vector_level.h"

namespace brushwork::test {

using Random = std::mt19937;

inline std::uint8_t edgyByte(Random& random) {
    static constexpr std::uint8_t edges[] = {0, 1, 0x7F, 0x80, 0xFE, 0xFF};
    const auto draw = static_cast<std::uint32_t>(random());
    return draw % 3 == 0 ? edges[(draw >> 8) % 6] : static_cast<std::uint8_t>(draw >> 16);
}

// A buffer that starts `misalignment` bytes off a 64-byte boundary, filled with a sentinel and
// fenced by guard bytes on both sides.
class GuardedBytes {
  public:
    GuardedBytes(std::size_t size, std::size_t misalignment)
        : memory_(size + 3 * guard, sentinel), size_(size) {
        const auto base = reinterpret_cast<std::uintptr_t>(memory_.data());
        offset_ = guard + (64 - base % 64) % 64 + misalignment;
    }
    [[nodiscard]] std::uint8_t* data() { return memory_.data() + offset_; }
    [[nodiscard]] std::size_t size() const { return size_; }
    void fill(Random& random) {
        for (std::size_t i = 0; i < size_; ++i) data()[i] = edgyByte(random);
    }
    [[nodiscard]] std::vector<std::uint8_t> bytes() { return {data(), data() + size_}; }
    [[nodiscard]] bool guardsIntact() const {
        for (std::size_t i = 0; i < memory_.size(); ++i) {
            const bool inside = i >= offset_ && i < offset_ + size_;
            if (!inside && memory_[i] != sentinel) return false;
        }
        return true;
    }

    static constexpr std::uint8_t sentinel = 0xA5;

  private:
    static constexpr std::size_t guard = 128;
    std::vector<std::uint8_t> memory_;
    std::size_t size_;
    std::size_t offset_ = 0;
};

// Forces a level for a scope.
class AtLevel {
  public:
    explicit AtLevel(VectorLevel level) { forceVectorLevel(level); }
    ~AtLevel() { forceVectorLevel(VectorLevel::Avx2); }
    AtLevel(const AtLevel&) = delete;
    AtLevel& operator=(const AtLevel&) = delete;
};

// The vector levels that this processor has.
inline std::vector<VectorLevel> vectorLevels() {
    std::vector<VectorLevel> levels;
    forceVectorLevel(VectorLevel::Avx2);
    const VectorLevel widest = vectorLevel();
    if (widest >= VectorLevel::Sse2) levels.push_back(VectorLevel::Sse2);
    if (widest >= VectorLevel::Avx2) levels.push_back(VectorLevel::Avx2);
    return levels;
}

}  // namespace brushwork::test
