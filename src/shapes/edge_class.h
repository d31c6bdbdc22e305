// In which direction the edge of a filled outline runs through a pixel, told by its neighbours.
#pragma once

#include <cstdint>
#include <span>

namespace brushwork {

// Sharp means that of two pixels one is 0 and the other 255.
//
//     0: no edge, and always in the first and the last row
//     1: sharp between the left and the right neighbour
//     2: sharp between the lower and the upper neighbour; or, where neither is, within the left or
//        within the right pair of diagonal neighbours
//     3: sharp both ways
//
// Neighbours are counted along the mask's bytes, so beyond a row's ends lie those of the rows
// around it; outside the mask is 0. `index` lies in the mask, which has rows of `width` bytes.
[[nodiscard]] int edgeClass(std::span<const std::uint8_t> mask, std::size_t index,
                            std::size_t width);

}  // namespace brushwork
