// ilTile: a box of pixels.
#pragma once

#include <algorithm>
#include <cstdint>

namespace brushwork {

// A corner and an extent on three axes, in pixels. Empty when an extent is below 1. Same layout as
// HostBox. Coordinates and ends must fit 32 bits.
struct ilTile {
    std::int32_t x = 0, y = 0, z = 0;
    std::int32_t nx = 0, ny = 0, nz = 0;

    [[nodiscard]] constexpr bool isEmpty() const { return nx < 1 || ny < 1 || nz < 1; }
    // One behind the last pixel.
    [[nodiscard]] constexpr std::int32_t endX() const { return x + nx; }
    [[nodiscard]] constexpr std::int32_t endY() const { return y + ny; }
    [[nodiscard]] constexpr std::int32_t endZ() const { return z + nz; }

    // Per axis the larger start and the smaller end; empty operands give an empty box, and so do
    // boxes that don't meet: their extent is then 0 or negative.
    [[nodiscard]] friend constexpr ilTile intersection(const ilTile& a, const ilTile& b) {
        ilTile r{std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z), 0, 0, 0};
        r.nx = std::min(a.endX(), b.endX()) - r.x;
        r.ny = std::min(a.endY(), b.endY()) - r.y;
        r.nz = std::min(a.endZ(), b.endZ()) - r.z;
        return r;
    }
    // Per axis the smallest span holding both. An operand that is empty on an axis yields the
    // other's span there.
    [[nodiscard]] friend constexpr ilTile unionOf(const ilTile& a, const ilTile& b) {
        ilTile r;
        joinSpans(a.x, a.nx, b.x, b.nx, r.x, r.nx);
        joinSpans(a.y, a.ny, b.y, b.ny, r.y, r.ny);
        joinSpans(a.z, a.nz, b.z, b.nz, r.z, r.nz);
        return r;
    }
    // True if `inner` lies in this box; edges may touch.
    [[nodiscard]] constexpr bool contains(const ilTile& inner) const {
        return inner.x >= x && inner.y >= y && inner.z >= z && inner.endX() <= endX() &&
               inner.endY() <= endY() && inner.endZ() <= endZ();
    }
    friend constexpr bool operator==(const ilTile&, const ilTile&) = default;

  private:
    static constexpr void joinSpans(std::int32_t a, std::int32_t na, std::int32_t b,
                                    std::int32_t nb, std::int32_t& start, std::int32_t& extent) {
        if (na < 1) {
            start = b;
            extent = nb;
        } else if (nb < 1) {
            start = a;
            extent = na;
        } else {
            start = std::min(a, b);
            extent = std::max(a + na, b + nb) - start;
        }
    }
};

// A flat box, one plane deep.
[[nodiscard]] constexpr ilTile flatTile(std::int32_t x, std::int32_t y, std::int32_t nx,
                                        std::int32_t ny) {
    return {x, y, 0, nx, ny, 1};
}

}  // namespace brushwork
