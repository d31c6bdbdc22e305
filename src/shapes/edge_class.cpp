#include "shapes/edge_class.h"

#include <cstddef>

namespace brushwork {
namespace {

bool isSharp(std::uint8_t a, std::uint8_t b) {
    return (a == 0 && b == 255) || (a == 255 && b == 0);
}

}  // namespace

int edgeClass(std::span<const std::uint8_t> mask, std::size_t index, std::size_t width) {
    if (index < width || index + width >= mask.size()) return 0;
    // An index below 0 wraps around and is outside, too.
    const auto at = [mask](std::size_t i) { return i < mask.size() ? mask[i] : std::uint8_t{0}; };
    const std::size_t below = index - width, above = index + width;
    const int across = isSharp(at(index - 1), at(index + 1)) ? 1 : 0;
    const int along = isSharp(at(below), at(above)) ? 2 : 0;
    if (across + along != 0) return across + along;
    const bool diagonal =
        isSharp(at(below - 1), at(above - 1)) || isSharp(at(below + 1), at(above + 1));
    return diagonal ? 2 : 0;
}

}  // namespace brushwork
