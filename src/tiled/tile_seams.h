// TileSeams: copies of the pixels along the borders of tiles, so that a block of pixels across a
// border stands in one piece, too.
//
//     if (const std::uint8_t* pixels = seams.upright(reader, cellX, cellY)) ...
//
// Rows of a copy are as far apart as those of a tile. Of a border between two tiles a copy has the
// whole length. It is made when the border is asked for a second time, with no other that stands in
// its place used in between: few rows of a target would cost more with copies than without.
// Copies are those of one reader until they are forgotten, and live until another one is asked for.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

#include "tiled/byte4.h"
#include "tiled/pixel_reader.h"
#include "tiled/sample_chunk.h"

namespace brushwork {

class TileSeams {
  public:
    using Reader = znTiledImage::TypedPixelReader<znImage::Byte4>;

    // Blocks reach this many pixels over a border.
    static constexpr std::int32_t reach = 3;
    // Pixels before the border in a row of an upright copy.
    static constexpr std::int32_t before = 4;

    void forget();
    // All rows of the border between a cell and the one right of it, from `before` pixels before it
    // on. Null: not copied. Both cells are the reader's.
    [[nodiscard]] const std::uint8_t* upright(const Reader& reader, std::int32_t cellX,
                                              std::int32_t cellY);
    // Rows from `reach` below the border between a cell and the one above to `reach` over it.
    [[nodiscard]] const std::uint8_t* level(const Reader& reader, std::int32_t cellX,
                                            std::int32_t cellY);

  private:
    using Key = std::int64_t;
    static constexpr Key none = std::numeric_limits<Key>::min();
    static constexpr std::size_t places = 16;
    struct Place {
        Key held = none;
        Key asked = none;  // since the held one was used last
    };
    struct Copies {
        std::uint8_t upright[znTiledImage::tileSide * blockStride];  // side by side
        std::uint8_t level[places][2 * reach * blockStride];
    };
    static_assert(places * 2 * before * sizeof(znImage::Byte4) == blockStride);

    enum class Use { Held, Make, Skip };
    [[nodiscard]] Use use(Place& place, Key key);
    static Key keyOf(std::int32_t cellX, std::int32_t cellY) {
        return Key{cellX} * (Key{1} << 32) + cellY;
    }
    // Neighbours get different places.
    static std::size_t numberOf(std::int32_t cellX, std::int32_t cellY) {
        return static_cast<std::size_t>((cellX & 3) + (cellY & 3) * 4);
    }

    std::array<Place, places> upright_{};
    std::array<Place, places> level_{};
    std::unique_ptr<Copies> copies_;
};

}  // namespace brushwork
