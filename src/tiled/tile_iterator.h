// TypedTileIteratorRect<Type>: the walk over the cells of a pixel rectangle.
//
//     for (TypedTileIteratorRect<Image> cell(image, rect); cell.valid(); cell.next())
//         if (cell.isWhole()) cell.node().tile.reset();
#pragma once

#include <cstdint>
#include <type_traits>

#include "tiled/tiled_image.h"

namespace brushwork::znTiledImage {

// Type: Image, or const Image for nodes that are only read. Goes row by row from the lower left
// over those of the rectangle's cells that the image has. The image's grid stays as it is
// meanwhile.
template <class Type>
class TypedTileIteratorRect {
  public:
    using Node = std::conditional_t<std::is_const_v<Type>, const TileNode, TileNode>;

    TypedTileIteratorRect(Type& image, const PixelRect& rect)
        : image_(image),
          rect_(rect),
          cells_(common(cellsOf(rect), image.constContainer().cells())),
          x_(cells_.x),
          y_(cells_.y) {}

    [[nodiscard]] bool valid() const { return !isEmpty(cells_) && y_ - cells_.y < cells_.h; }
    void next() {
        if (++x_ - cells_.x < cells_.w) return;
        x_ = cells_.x;
        ++y_;
    }

    // While valid.
    [[nodiscard]] std::int32_t cellX() const { return x_; }
    [[nodiscard]] std::int32_t cellY() const { return y_; }
    [[nodiscard]] Node& node() const {
        if constexpr (std::is_const_v<Type>)
            return *image_.constContainer().constNodeOfCell(x_, y_);
        else
            return *image_.container().nodeOfCell(x_, y_);
    }
    // In the first or last row or column of the walk: the rectangle may end within the cell. Any
    // other cell is covered wholly.
    [[nodiscard]] bool onBorder() const {
        return x_ == cells_.x || y_ == cells_.y || x_ - cells_.x == cells_.w - 1 ||
               y_ - cells_.y == cells_.h - 1;
    }
    // The cell's pixels, and those of them that lie in the rectangle.
    [[nodiscard]] PixelRect cell() const { return pixelsOfCell(x_, y_); }
    [[nodiscard]] PixelRect part() const { return common(cell(), rect_); }
    [[nodiscard]] bool isWhole() const { return !onBorder() || part() == cell(); }

  private:
    Type& image_;
    PixelRect rect_;
    CellRect cells_;
    std::int32_t x_, y_;
};

}  // namespace brushwork::znTiledImage
