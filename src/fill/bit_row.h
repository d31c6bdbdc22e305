// BitRow: one bit for each pixel of a page's row or column.
#pragma once

#include <bit>
#include <cstdint>

namespace brushwork {

// 128 bits; bit 0 is the pixel of the lowest coordinate.
struct BitRow {
    std::uint64_t low = 0, high = 0;

    // Bits from `begin` up to but not `end`, both 0 to 128.
    [[nodiscard]] static constexpr BitRow range(std::int32_t begin, std::int32_t end) {
        return firstBits(end) & ~firstBits(begin);
    }
    [[nodiscard]] constexpr bool any() const { return (low | high) != 0; }
    [[nodiscard]] constexpr bool test(std::int32_t bit) const {
        return (bit < 64 ? low >> bit & 1 : high >> (bit - 64) & 1) != 0;
    }
    constexpr void set(std::int32_t bit) {
        (bit < 64 ? low : high) |= std::uint64_t{1} << (bit & 63);
    }
    constexpr void clear(std::int32_t bit) {
        (bit < 64 ? low : high) &= ~(std::uint64_t{1} << (bit & 63));
    }
    // Moved one pixel up or down the coordinate; what leaves is lost.
    [[nodiscard]] constexpr BitRow up() const { return {low << 1, high << 1 | low >> 63}; }
    [[nodiscard]] constexpr BitRow down(unsigned by = 1) const {  // by 1 to 63
        return {low >> by | high << (64 - by), high >> by};
    }
    // Both at once: the pixels beside those set.
    [[nodiscard]] constexpr BitRow beside() const { return up() | down(); }

    // The first set bit at or above `from`, or 128; the last one at or below it, or -1.
    [[nodiscard]] constexpr std::int32_t next(std::int32_t from) const {
        if (from >= 128) return 128;
        const BitRow rest = *this & ~firstBits(from);
        if (rest.low != 0) return std::countr_zero(rest.low);
        return rest.high != 0 ? 64 + std::countr_zero(rest.high) : 128;
    }
    [[nodiscard]] constexpr std::int32_t previous(std::int32_t from) const {
        if (from < 0) return -1;
        const BitRow rest = *this & firstBits(from + 1);
        if (rest.high != 0) return 127 - std::countl_zero(rest.high);
        return rest.low != 0 ? 63 - std::countl_zero(rest.low) : -1;
    }

    friend constexpr BitRow operator&(BitRow a, BitRow b) {
        return {a.low & b.low, a.high & b.high};
    }
    friend constexpr BitRow operator|(BitRow a, BitRow b) {
        return {a.low | b.low, a.high | b.high};
    }
    // As numbers of 128 bits.
    friend constexpr BitRow sum(BitRow a, BitRow b) {
        const std::uint64_t below = a.low + b.low;
        return {below, a.high + b.high + (below < a.low ? 1U : 0U)};
    }
    friend constexpr BitRow operator~(BitRow a) { return {~a.low, ~a.high}; }
    constexpr BitRow& operator|=(BitRow other) { return *this = *this | other; }
    friend constexpr bool operator==(BitRow, BitRow) = default;

  private:
    [[nodiscard]] static constexpr BitRow firstBits(std::int32_t count) {
        const std::uint64_t all = ~std::uint64_t{0};
        if (count >= 128) return {all, all};
        if (count >= 64) return {all, (std::uint64_t{1} << (count - 64)) - 1};
        return {(std::uint64_t{1} << count) - 1, 0};
    }
};

// Of the runs of bits in `open` those that hold a seed, whole. Seeds lie in `open`.
//
// Upward the carry of an addition runs through a run of ones and clears what it passes. Downward
// the reach doubles with each step; a step that adds nothing is the last.
[[nodiscard]] constexpr BitRow spread(BitRow seeds, BitRow open) {
    BitRow filled = seeds | (open & ~sum(open, seeds));
    BitRow gate = open;
    for (unsigned step = 1; step < 64; step *= 2) {
        const BitRow wider = filled | (gate & filled.down(step));
        if (wider == filled) return filled;
        filled = wider;
        gate = gate & gate.down(step);
    }
    return filled | (gate & BitRow{filled.high, 0});
}

}  // namespace brushwork
