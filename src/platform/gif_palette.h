// The colours of a picture, counted, and a palette of at most 256 for them.
//
//     ColourCensus census;
//     for each row: census.add(row, width);
//     census.isExact() ? census.exactColours() : fitPalette(census, 256);
//
// Colours are 0xrrggbb. Pixels below half opacity count as transparent and not as a colour.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork::platform {

inline constexpr std::size_t maxGifColours = 256;
inline constexpr std::uint8_t opaqueFrom = 128;  // lowest alpha that stays visible

[[nodiscard]] inline std::uint32_t colourOf(const std::uint8_t* bgra) {
    return static_cast<std::uint32_t>(bgra[2] << 16 | bgra[1] << 8 | bgra[0]);
}

// At most 256 colours and their numbers, in the order in which they came.
class ColourTable {
  public:
    // The number of a colour, given to it now if it is new; -1 if the table is full.
    [[nodiscard]] int add(std::uint32_t colour);
    [[nodiscard]] int find(std::uint32_t colour) const;
    [[nodiscard]] const std::vector<std::uint32_t>& colours() const { return colours_; }

  private:
    static constexpr std::size_t slots = 1024;
    [[nodiscard]] std::size_t slotOf(std::uint32_t colour) const;

    std::array<std::int16_t, slots> numbers_{};  // 0 for free, else one more than the number
    std::vector<std::uint32_t> colours_;
};

// Sums over pixels: how many, their channels, their squared lengths.
struct ColourSums {
    std::int64_t count = 0;
    std::int64_t red = 0;
    std::int64_t green = 0;
    std::int64_t blue = 0;
    std::int64_t squares = 0;

    ColourSums& operator+=(const ColourSums& other);
    ColourSums& operator-=(const ColourSums& other);
};

// Five bits a channel; 1.5 MiB, whatever the picture.
class ColourCensus {
  public:
    static constexpr std::size_t side =
        33;  // cells 1 to 32; 0 is the border of the sums over boxes

    ColourCensus() : cells_(side * side * side) {}

    void add(const std::uint8_t* bgra, std::size_t width);

    // No more colours than fit into a palette, the transparent one included.
    [[nodiscard]] bool isExact() const;
    [[nodiscard]] const ColourTable& exactColours() const { return exact_; }
    [[nodiscard]] bool hasTransparency() const { return transparent_; }
    [[nodiscard]] const std::vector<ColourSums>& cells() const { return cells_; }

    [[nodiscard]] static std::size_t cellAt(std::size_t red, std::size_t green, std::size_t blue) {
        return (red * side + green) * side + blue;
    }

  private:
    std::vector<ColourSums> cells_;
    ColourTable exact_;
    bool overflown_ = false;
    bool transparent_ = false;
};

// Between 1 and `limit` colours that stay close to those counted: boxes of least variance after
// X. Wu, "Efficient Statistical Computations for Optimal Color Quantization" (Graphics Gems II,
// 1991), moved to the nearest local optimum by Lloyd's iteration.
[[nodiscard]] std::vector<std::uint32_t> fitPalette(const ColourCensus& census, std::size_t limit);

}  // namespace brushwork::platform
