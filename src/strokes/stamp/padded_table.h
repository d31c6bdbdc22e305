// PaddedTable: an image laid out so that one read yields the four pixels around a place, with a rim
// that reads as transparent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "brushwork/ref.h"
#include "image/chain/il_image.h"
#include "image/memory/image_buffer.h"

namespace brushwork::npc {

// What a sampler needs of a table; borrowed.
struct TableView {
    const std::uint8_t* cells = nullptr;
    std::int32_t width = 0, height = 0;  // of the image; the table has one cell more each way
    [[nodiscard]] std::int32_t cellsPerRow() const { return width + 1; }
};

// Cell (X, Y) holds, in this order, the pixels (X - 1, Y - 1), (X, Y - 1), (X - 1, Y), (X, Y),
// those outside the image as 0; 4 bytes for an image of one channel, 16 for one of four.
class PaddedTable {
  public:
    // Makes the table of an image of 1 or 4 channels, read as bytes. Does nothing if it is the
    // present one's and of the same size. False, with no table, if it can't be made.
    bool build(const Ref<ilImage>& image);
    void clear();

    [[nodiscard]] TableView view() const {
        return {cells_ ? cells_->data() : nullptr, width_, height_};
    }

  private:
    bool reserve(std::size_t bytes);

    Ref<ilImage> image_;
    std::unique_ptr<ImageBuffer> cells_;
    std::int32_t width_ = 0, height_ = 0;
};

}  // namespace brushwork::npc
