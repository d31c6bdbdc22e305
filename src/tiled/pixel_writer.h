// PixelWriter: single pixels of an image, to be stored.
//
//     TypedPixelWriter<znImage::Byte4> writer(*image, rect);
//     if (writer.isComplete()) *writer.at(x, y) = pixel;
//
// Construction makes every cell of the rectangle a filled one that no other image holds, so that
// each pixel has its place. Ask only for places in rect(). Needs exclusive use of those cells; the
// image outlives it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "brushwork/reference_count.h"
#include "tiled/tile_access.h"

namespace brushwork::znTiledImage {

class PixelWriter : public zn::ReferenceCount {
  public:
    // The place of one pixel.
    [[nodiscard]] virtual void* pixelAt(std::int32_t x, std::int32_t y) const = 0;

    // What was asked for, cut to the image's grid.
    [[nodiscard]] const PixelRect& rect() const { return rect_; }
    // False: there was no memory for a cell, or the image has other pixels; then no pixel may be
    // asked for.
    [[nodiscard]] bool isComplete() const { return complete_; }

  protected:
    PixelWriter(Image& image, const PixelRect& rect);
    ~PixelWriter() override;

    PixelRect rect_;
    CellRect cells_;
    std::deque<TileNodeWriter> writers_;
    bool complete_ = true;
};

// For the image's pixel type: unsigned char or znImage::Byte4.
template <class T>
class TypedPixelWriter final : public PixelWriter {
  public:
    TypedPixelWriter(Image& image, const PixelRect& rect);
    ~TypedPixelWriter() override = default;

    [[nodiscard]] void* pixelAt(std::int32_t x, std::int32_t y) const override { return at(x, y); }
    [[nodiscard]] T* at(std::int32_t x, std::int32_t y) const {
        const std::int32_t column = (x - originX_) >> tileShift;
        const std::int32_t row = (y - originY_) >> tileShift;
        return table_[static_cast<std::size_t>(row) * tableWidth_ +
                      static_cast<std::size_t>(column)] +
               (((y & tileMask) << tileShift) + (x & tileMask));
    }

  private:
    std::int32_t originX_ = 0, originY_ = 0;
    std::size_t tableWidth_ = 0;
    std::vector<T*> table_;
};

extern template class TypedPixelWriter<unsigned char>;
extern template class TypedPixelWriter<znImage::Byte4>;

}  // namespace brushwork::znTiledImage
