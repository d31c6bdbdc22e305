// Mapping of rows to a palette, with the error carried on to the pixels around.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/gif_palette.h"

namespace brushwork::platform {

// Finds the nearest colour of a palette by Euclidean distance, the first one among equals. For each
// small cube of colours the few that can be the nearest are listed when it is first asked for.
class NearestColour {
  public:
    // `palette` has 1 to 256 colours.
    explicit NearestColour(const std::vector<std::uint32_t>& palette);

    // Channels 0 to 255.
    [[nodiscard]] std::size_t find(int red, int green, int blue);
    [[nodiscard]] const std::array<int, 3>& colour(std::size_t index) const {
        return palette_[index];
    }

  private:
    struct Candidate {
        std::uint8_t red = 0;
        std::uint8_t green = 0;
        std::uint8_t blue = 0;
        std::uint8_t index = 0;
    };
    struct Range {
        std::uint32_t first = 0;
        std::uint32_t count = 0;  // 0 while nobody has asked
    };
    [[nodiscard]] Range list(const std::array<int, 3>& low);

    static constexpr int cubeSide = 8;
    static constexpr int cubesPerSide = 256 / cubeSide;
    std::vector<std::array<int, 3>> palette_;  // red, green, blue
    std::vector<Range> cubes_;
    std::vector<Candidate> candidates_;
};

// Error diffusion after R. W. Floyd and L. Steinberg, "An Adaptive Algorithm for Spatial Greyscale"
// (1976), with rows taken in alternating directions.
class ErrorDiffuser {
  public:
    // Rows come from the top. A pixel below half opacity becomes `transparentIndex` and passes no
    // error on.
    ErrorDiffuser(std::size_t width, const std::vector<std::uint32_t>& palette,
                  std::uint8_t transparentIndex);

    void mapRow(const std::uint8_t* bgra, std::uint8_t* indices);

  private:
    using Error = std::array<int, 3>;  // in sixteenths

    std::size_t width_;
    std::uint8_t transparentIndex_;
    NearestColour nearest_;
    bool backwards_ = false;
    std::vector<Error> here_;   // of this row; one more at either end
    std::vector<Error> below_;  // of the next
};

}  // namespace brushwork::platform
