// PixelReader: single pixels of an image, for kernels that read many in a small neighbourhood.
//
//     TypedPixelReader<znImage::Byte4> reader(*image, {x0 - 2, y0 - 2, w + 4, h + 4});
//     const znImage::Byte4& pixel = *reader.at(x, y);
//
// A reader looks the cells of its rectangle up once. Ask only for places in the rectangle: the
// table isn't checked. Where the image has no cell the pixel is the fill. The image outlives the
// reader and isn't written meanwhile; several readers, or threads on one, may read at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "brushwork/reference_count.h"
#include "tiled/tile_access.h"

namespace brushwork::znTiledImage {

class PixelReader : public zn::ReferenceCount {
  public:
    // One pixel; its address lives as long as the reader. All pixels of an empty or solid cell have
    // the same one.
    [[nodiscard]] virtual const void* pixelAt(std::int32_t x, std::int32_t y) const = 0;

    [[nodiscard]] const Image& image() const { return image_; }
    [[nodiscard]] const PixelRect& rect() const { return rect_; }
    [[nodiscard]] bool covers(std::int32_t x0, std::int32_t y0, std::int32_t x1,
                              std::int32_t y1) const;

  protected:
    PixelReader(const Image& image, const PixelRect& rect);
    ~PixelReader() override;

    const Image& image_;
    PixelRect rect_;
    CellRect cells_;                      // of the table: all cells of the rectangle
    std::deque<TileNodeReader> readers_;  // of those that the image has
};

// For the image's pixel type: unsigned char or znImage::Byte4. With any other the pixels are those
// of an empty image.
template <class T>
class TypedPixelReader final : public PixelReader {
  public:
    // A rectangle of more cells than a grid can have is cut to the image's grid.
    TypedPixelReader(const Image& image, const PixelRect& rect);
    ~TypedPixelReader() override = default;

    [[nodiscard]] const void* pixelAt(std::int32_t x, std::int32_t y) const override {
        return at(x, y);
    }
    [[nodiscard]] const T* at(std::int32_t x, std::int32_t y) const {
        const Cell& cell = cellAt(x, y);
        return cell.pixels + (indexIn(x, y) & cell.mask);
    }
    // The first of `w` by `h` pixels that lie in one filled cell, in rows of 128 pixels; null if
    // they don't.
    [[nodiscard]] const T* blockAt(std::int32_t x, std::int32_t y, std::int32_t w,
                                   std::int32_t h) const {
        if ((x & tileMask) > tileSide - w || (y & tileMask) > tileSide - h) return nullptr;
        const Cell& cell = cellAt(x, y);
        return cell.mask ? cell.pixels + indexIn(x, y) : nullptr;
    }

  private:
    struct Cell {
        const T* pixels;
        std::uint32_t mask;  // of the index: 0 where one pixel stands for all
    };
    [[nodiscard]] static std::uint32_t indexIn(std::int32_t x, std::int32_t y) {
        return static_cast<std::uint32_t>(((y & tileMask) << tileShift) + (x & tileMask));
    }
    [[nodiscard]] const Cell& cellAt(std::int32_t x, std::int32_t y) const {
        const std::int32_t column = (x - originX_) >> tileShift;
        const std::int32_t row = (y - originY_) >> tileShift;
        return table_[static_cast<std::size_t>(row) * tableWidth_ +
                      static_cast<std::size_t>(column)];
    }

    T fill_{};
    std::int32_t originX_ = 0, originY_ = 0;  // the corner of the first cell
    std::size_t tableWidth_ = 0;
    std::vector<Cell> table_;
};

extern template class TypedPixelReader<unsigned char>;
extern template class TypedPixelReader<znImage::Byte4>;

// For the image's pixel type.
[[nodiscard]] Ref<PixelReader> makePixelReader(const Image& image, const PixelRect& rect);

}  // namespace brushwork::znTiledImage
