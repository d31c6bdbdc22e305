// The eight coordinate spaces: where the origin lies and which axis runs fastest.
#pragma once

#include <cstdint>

namespace brushwork {

enum CoordSpace : std::int32_t {
    SpaceUpperLeft = 1,
    SpaceUpperRight = 2,
    SpaceLowerRight = 3,
    SpaceLowerLeft = 4,  // every image that the engine makes
    SpaceLeftUpper = 5,  // from here on y varies fastest
    SpaceRightUpper = 6,
    SpaceRightLower = 7,
    SpaceLeftLower = 8,
};

// "upper-left (X varies fastest)", ...; empty for other values.
[[nodiscard]] const char* coordSpaceName(std::int32_t space);
[[nodiscard]] bool originAtBottom(std::int32_t space);
[[nodiscard]] bool originAtLeft(std::int32_t space);
[[nodiscard]] bool isTransposed(std::int32_t space);

// On a transposed space x runs along the columns: flips and sizes go with the space's own axes.

// The space reached by turning an axis round or by exchanging the axes. Of 0, which isn't a space,
// and of other values what the lower-left one would give.
[[nodiscard]] std::int32_t flippedX(std::int32_t space);
[[nodiscard]] std::int32_t flippedY(std::int32_t space);
[[nodiscard]] std::int32_t transposed(std::int32_t space);

// Sizes of an image.
template <class T>
struct Extent {
    T x{}, y{};
    friend bool operator==(const Extent&, const Extent&) = default;
};
template <class T>
struct Rect {
    T x{}, y{}, w{}, h{};
    friend bool operator==(const Rect&, const Rect&) = default;
};

// From one space to another: first the axes change places, then flips follow on the target's axes.
// `size` is that of the image as the target space sees it. T is std::int32_t or float. A value that
// is no space maps as the identity.
//
// A rectangle is flipped by size - start - extent, a point (the index of a pixel) by
// size - value - 1; of a vector only the sign changes.
template <class T>
[[nodiscard]] Rect<T> mapRect(Rect<T> rect, std::int32_t from, std::int32_t to, Extent<T> size);
template <class T>
[[nodiscard]] Extent<T> mapPoint(Extent<T> point, std::int32_t from, std::int32_t to,
                                 Extent<T> size);
template <class T>
[[nodiscard]] Extent<T> mapVector(Extent<T> vector, std::int32_t from, std::int32_t to);

// x' = xx * x + xy * y + x0, y' = yx * x + yy * y + y0, with x0 and y0 = size - 1 on an axis that
// is flipped, else 0.
struct SpaceMap {
    std::int32_t xx = 1, xy = 0, yx = 0, yy = 1;
    std::int32_t flipX = 0, flipY = 0;  // 1: the target axis runs the other way
    template <class T>
    [[nodiscard]] Extent<T> apply(Extent<T> p, Extent<T> size) const {
        return {
            static_cast<T>(xx) * p.x + static_cast<T>(xy) * p.y + (flipX ? size.x - T{1} : T{0}),
            static_cast<T>(yx) * p.x + static_cast<T>(yy) * p.y + (flipY ? size.y - T{1} : T{0})};
    }
};
// The map of points between two spaces, from a table made on first use; for many points.
[[nodiscard]] const SpaceMap& spaceMap(std::int32_t from, std::int32_t to);

}  // namespace brushwork
