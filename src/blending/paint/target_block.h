// TargetBlock: pixels of a target that are changed in place: the memory of a memory image, the
// locked page of a smart one, a copy of any other that is written back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "brushwork/il_tile.h"
#include "image/chain/il_image.h"

namespace brushwork {

class TargetBlock {
  public:
    static constexpr std::int32_t side = 128;  // of the grid in which blocks lie

    // Borrows the image.
    explicit TargetBlock(ilImage& image);
    TargetBlock(const TargetBlock&) = delete;
    TargetBlock& operator=(const TargetBlock&) = delete;
    ~TargetBlock();  // closes

    // Whether the image has bytes of 1 or 4 channels, interleaved.
    [[nodiscard]] static bool canOpen(ilImage& image);
    // Whether a box may reach over the grid.
    [[nodiscard]] bool isWhole() const { return memory_ != nullptr; }
    // A box of the image, inside one cell of the grid unless isWhole(). False: it can't be had.
    [[nodiscard]] bool open(const ilTile& box);
    // False if the pixels didn't reach the image.
    bool close();

    [[nodiscard]] std::uint8_t* pixels() const { return pixels_; }
    [[nodiscard]] std::size_t rowBytes() const { return rowBytes_; }

  private:
    ilImage& image_;
    std::size_t channels_;
    std::uint8_t* memory_ = nullptr;
    bool isSmart_ = false;
    ilTile box_;
    std::uint8_t* pixels_ = nullptr;
    std::size_t rowBytes_ = 0;
    PageLockRequest request_;
    std::vector<std::uint8_t> copy_;
};

}  // namespace brushwork
