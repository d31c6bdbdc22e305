#include "image/chain/coord_space.h"

#include <array>
#include <cstddef>

namespace brushwork {
namespace {

struct Space {
    const char* name;
    bool bottom, left, transposed;
    std::int32_t flippedX, flippedY, transpose;
};

// Index 0 stands for all that is no space.
constexpr Space spaces[] = {
    {"", true, true, false, 3, 1, 8},
    {"upper-left (X varies fastest)", false, true, false, 2, 4, 5},
    {"upper-right (X varies fastest)", false, false, false, 1, 3, 6},
    {"lower-right (X varies fastest)", true, false, false, 4, 2, 7},
    {"lower-left (X varies fastest)", true, true, false, 3, 1, 8},
    {"left-upper (Y varies fastest)", false, true, true, 8, 6, 1},
    {"right-upper (Y varies fastest)", false, false, true, 7, 5, 2},
    {"right-lower (Y varies fastest)", true, false, true, 6, 8, 3},
    {"left-lower (Y varies fastest)", true, true, true, 5, 7, 4},
};
constexpr std::size_t spaceCount = std::size(spaces);

bool isSpace(std::int32_t space) {
    return space >= SpaceUpperLeft && space <= SpaceLeftLower;
}

std::size_t indexOf(std::int32_t space) {
    return isSpace(space) ? static_cast<std::size_t>(space) : 0;
}

const Space& spaceOf(std::int32_t space) {
    return spaces[indexOf(space)];
}

struct Turn {
    bool swap = false, flipX = false, flipY = false;
};

// A transposed target has its x axis along the columns, so there the vertical flags turn x.
Turn turnBetween(std::int32_t from, std::int32_t to) {
    if (!isSpace(from) || !isSpace(to)) return {};
    const Space& a = spaceOf(from);
    const Space& b = spaceOf(to);
    const bool across = a.left != b.left;
    const bool upright = a.bottom != b.bottom;
    return {a.transposed != b.transposed, b.transposed ? upright : across,
            b.transposed ? across : upright};
}

SpaceMap measureMap(std::int32_t from, std::int32_t to) {
    const auto image = [&](std::int32_t x, std::int32_t y) {
        return mapPoint<std::int32_t>({x, y}, from, to, {2, 2});
    };
    const auto origin = image(0, 0);
    const auto alongX = image(1, 0);
    const auto alongY = image(0, 1);
    return {alongX.x - origin.x,
            alongY.x - origin.x,
            alongX.y - origin.y,
            alongY.y - origin.y,
            origin.x,
            origin.y};
}

using MapTable = std::array<std::array<SpaceMap, spaceCount>, spaceCount>;

MapTable measureMaps() {
    MapTable table;
    for (std::size_t from = 0; from < spaceCount; ++from) {
        for (std::size_t to = 0; to < spaceCount; ++to) {
            table[from][to] =
                measureMap(static_cast<std::int32_t>(from), static_cast<std::int32_t>(to));
        }
    }
    return table;
}

}  // namespace

const char* coordSpaceName(std::int32_t space) {
    return spaceOf(space).name;
}

bool originAtBottom(std::int32_t space) {
    return spaceOf(space).bottom;
}

bool originAtLeft(std::int32_t space) {
    return spaceOf(space).left;
}

bool isTransposed(std::int32_t space) {
    return spaceOf(space).transposed;
}

std::int32_t flippedX(std::int32_t space) {
    return spaceOf(space).flippedX;
}

std::int32_t flippedY(std::int32_t space) {
    return spaceOf(space).flippedY;
}

std::int32_t transposed(std::int32_t space) {
    return spaceOf(space).transpose;
}

template <class T>
Rect<T> mapRect(Rect<T> rect, std::int32_t from, std::int32_t to, Extent<T> size) {
    const Turn turn = turnBetween(from, to);
    if (turn.swap) rect = {rect.y, rect.x, rect.h, rect.w};
    if (turn.flipX) rect.x = size.x - rect.w - rect.x;
    if (turn.flipY) rect.y = size.y - rect.h - rect.y;
    return rect;
}

template <class T>
Extent<T> mapPoint(Extent<T> point, std::int32_t from, std::int32_t to, Extent<T> size) {
    const Turn turn = turnBetween(from, to);
    if (turn.swap) point = {point.y, point.x};
    if (turn.flipX) point.x = size.x - point.x - T{1};
    if (turn.flipY) point.y = size.y - point.y - T{1};
    return point;
}

template <class T>
Extent<T> mapVector(Extent<T> vector, std::int32_t from, std::int32_t to) {
    const Turn turn = turnBetween(from, to);
    if (turn.swap) vector = {vector.y, vector.x};
    if (turn.flipX) vector.x = -vector.x;
    if (turn.flipY) vector.y = -vector.y;
    return vector;
}

template Rect<std::int32_t> mapRect(Rect<std::int32_t>, std::int32_t, std::int32_t,
                                    Extent<std::int32_t>);
template Rect<float> mapRect(Rect<float>, std::int32_t, std::int32_t, Extent<float>);
template Extent<std::int32_t> mapPoint(Extent<std::int32_t>, std::int32_t, std::int32_t,
                                       Extent<std::int32_t>);
template Extent<float> mapPoint(Extent<float>, std::int32_t, std::int32_t, Extent<float>);
template Extent<std::int32_t> mapVector(Extent<std::int32_t>, std::int32_t, std::int32_t);
template Extent<float> mapVector(Extent<float>, std::int32_t, std::int32_t);

const SpaceMap& spaceMap(std::int32_t from, std::int32_t to) {
    static const MapTable table = measureMaps();
    return table[indexOf(from)][indexOf(to)];
}

}  // namespace brushwork
