// CoverageTable: what coverage a pixel gets for its distance from the colour of a flood.
//
// With soft edges coverage is whole up to the tolerance less the smaller of it and 32, and falls
// from there to 0 over that many steps and 128 more, or as many as lie between the tolerance and
// 255. Without, it is whole below the tolerance and nothing from it on.
//
// A tolerance of 0 fills exact matches: the stop test and the hard table take it for 1.
#pragma once

#include <array>
#include <cstdint>

namespace brushwork {

class CoverageTable {
  public:
    CoverageTable(std::uint8_t tolerance, bool smoothEdges);

    [[nodiscard]] std::uint8_t operator[](std::uint8_t distance) const { return table_[distance]; }
    // The least distance that stops a flood, 1 to 255.
    [[nodiscard]] std::uint32_t stop() const { return stop_; }
    // Below the first of these distances coverage is 255, from the second on it is 0; 0 to 256.
    [[nodiscard]] std::uint32_t endOfWhole() const { return endOfWhole_; }
    [[nodiscard]] std::uint32_t startOfNone() const { return startOfNone_; }

  private:
    std::array<std::uint8_t, 256> table_{};
    std::uint32_t stop_;
    std::uint32_t endOfWhole_ = 0;
    std::uint32_t startOfNone_ = 0;
};

}  // namespace brushwork
