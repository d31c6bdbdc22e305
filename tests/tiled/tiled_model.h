// A plain picture of what a tiled image should hold: every pixel of its grid, and the fill around.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "tiled/tile_cells.h"
#include "tiled/tiled_image.h"

namespace brushwork::test {

// 32 bits a draw, on every system.
class Random {
  public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}
    std::uint32_t operator()() { return static_cast<std::uint32_t>(engine_()); }

  private:
    std::mt19937 engine_;
};

using znTiledImage::PixelRect;

inline std::int32_t draw(Random& random, std::int32_t low, std::int32_t high) {
    const auto span = static_cast<std::uint32_t>(high - low + 1);
    return low + static_cast<std::int32_t>(random() % span);
}

class TiledModel {
  public:
    using Pixel = std::array<std::uint8_t, 4>;  // one channel: the first byte
    using Bytes = std::vector<std::uint8_t>;

    TiledModel(const PixelRect& rect, std::size_t pixelBytes, const Pixel& fill)
        : grid_(znTiledImage::pixelsOfCells(znTiledImage::cellsOf(rect))),
          bytes_(pixelBytes),
          fill_(fill),
          pixels_(
              rowOf(fill, static_cast<std::size_t>(grid_.w) * static_cast<std::size_t>(grid_.h))) {}

    [[nodiscard]] const PixelRect& grid() const { return grid_; }
    [[nodiscard]] std::size_t pixelBytes() const { return bytes_; }
    [[nodiscard]] const Pixel& fill() const { return fill_; }
    // What lies outside the grid is the fill.
    [[nodiscard]] Bytes read(const PixelRect& rect) const {
        Bytes bytes =
            rowOf(fill_, static_cast<std::size_t>(rect.w) * static_cast<std::size_t>(rect.h));
        eachRow(rect, [&](std::size_t mine, std::size_t theirs, std::size_t count) {
            std::memcpy(&bytes[theirs], &pixels_[mine], count);
        });
        return bytes;
    }
    // What lies outside the grid is lost.
    void write(const PixelRect& rect, const Bytes& bytes) {
        eachRow(rect, [&](std::size_t mine, std::size_t theirs, std::size_t count) {
            std::memcpy(&pixels_[mine], &bytes[theirs], count);
        });
    }
    void fillRect(const PixelRect& rect, const Pixel& pixel) {
        write(rect,
              rowOf(pixel, static_cast<std::size_t>(rect.w) * static_cast<std::size_t>(rect.h)));
    }

  private:
    [[nodiscard]] Bytes rowOf(const Pixel& pixel, std::size_t pixels) const {
        if (bytes_ == 1) return Bytes(pixels, pixel[0]);
        Bytes row(pixels * 4);
        for (std::size_t i = 0; i < row.size(); i += 4) std::memcpy(&row[i], pixel.data(), 4);
        return row;
    }
    template <class Copy>
    void eachRow(const PixelRect& rect, const Copy& copy) const {
        const PixelRect part = znTiledImage::common(rect, grid_);
        for (std::int32_t y = part.y; y < part.y + part.h; ++y)
            copy(placeIn(grid_, part.x, y), placeIn(rect, part.x, y),
                 static_cast<std::size_t>(part.w) * bytes_);
    }
    [[nodiscard]] std::size_t placeIn(const PixelRect& rect, std::int32_t x, std::int32_t y) const {
        return (static_cast<std::size_t>(y - rect.y) * static_cast<std::size_t>(rect.w) +
                static_cast<std::size_t>(x - rect.x)) *
               bytes_;
    }

    PixelRect grid_;
    std::size_t bytes_;
    Pixel fill_;
    Bytes pixels_;
};

// Few values, so that cells become uniform now and then.
inline TiledModel::Pixel drawPixel(Random& random, std::size_t pixelBytes) {
    TiledModel::Pixel pixel{};
    for (std::size_t c = 0; c < pixelBytes; ++c)
        pixel[c] = static_cast<std::uint8_t>(random() % 3 * 100);
    return pixel;
}

// All of one value now and then, otherwise noise.
inline std::vector<std::uint8_t> drawPixels(Random& random, const PixelRect& rect,
                                            std::size_t pixelBytes) {
    const std::size_t count =
        static_cast<std::size_t>(rect.w) * static_cast<std::size_t>(rect.h) * pixelBytes;
    std::vector<std::uint8_t> bytes(count);
    const TiledModel::Pixel pixel = drawPixel(random, pixelBytes);
    const bool uniform = random() % 3 == 0;
    std::minstd_rand noise(random());
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = uniform ? pixel[i % pixelBytes] : static_cast<std::uint8_t>(noise() >> 8);
    return bytes;
}

// Cell edges are hit often.
inline PixelRect drawRect(Random& random, const PixelRect& within, std::int32_t margin,
                          std::int32_t most) {
    const auto place = [&](std::int32_t low, std::int32_t high) {
        const std::int32_t free = draw(random, low, high);
        return random() % 3 == 0 ? free & ~znTiledImage::tileMask : free;
    };
    PixelRect rect{place(within.x - margin, within.x + within.w),
                   place(within.y - margin, within.y + within.h), draw(random, 1, most),
                   draw(random, 1, most)};
    if (random() % 4 == 0) rect.w = rect.h = 256;
    return rect;
}

// How many nodes of all these images hold each tile must be its count.
inline void expectCounted(const std::vector<Ref<znTiledImage::Image>>& images) {
    std::vector<const znTiledImage::Tile*> tiles;
    for (const auto& image : images)
        for (std::size_t i = 0; i < image->constContainer().nodeCount(); ++i)
            if (const auto* tile = image->constContainer().constNodeAt(i)->tile.get())
                tiles.push_back(tile);
    for (const auto* tile : tiles) {
        std::uint32_t holders = 0;
        for (const auto* other : tiles) holders += other == tile ? 1 : 0;
        ASSERT_EQ(tile->refCount(), holders);
    }
}

}  // namespace brushwork::test
