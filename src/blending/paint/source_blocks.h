// SourceBlocks: brings what a painter draws as bytes, block by block of the target: channels in
// their place, stretched, scaled and biased.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "blending/paint/paint_source.h"
#include "blending/paint/paint_state.h"
#include "brushwork/ref.h"
#include "image/chain/il_image.h"

namespace brushwork {

// How pixels of the target lead to pixels of the source: a target place p, taken at its middle,
// lies at ((p + 0.5) / zoom - corner) / stretch + origin.
struct SourceAxis {
    double zoom = 1.0;
    double corner = 0.0;   // of the rectangle, before the zoom
    double stretch = 1.0;  // of the call
    std::int32_t origin = 0;
    std::int32_t extent = 0;  // source pixels that the rectangle shows; what lies around isn't read

    [[nodiscard]] bool isPlain() const { return zoom == 1.0 && stretch == 1.0; }
    [[nodiscard]] double at(std::int32_t place) const {
        return ((place + 0.5) / zoom - corner) / stretch + origin;
    }
};

// Pixels of a block, rows of the target's order.
struct SourceBlock {
    const std::uint8_t* pixels = nullptr;  // null: they could not be read
    std::size_t rowBytes = 0;
    bool constant = false;  // one pixel stands for all
};

class SourceBlocks {
  public:
    struct Setup {
        PaintSource source;
        PaintFormat format;
        std::size_t rows = 0;          // bytes between rows of memory
        std::int32_t memoryWidth = 0;  // pixels of a row of memory, without padding
        std::int32_t memoryHeight = 0;
        std::int32_t targetChannels = 0;
        std::int32_t coordSpace = 0;
        SourceAxis x, y;
        bool nearest = true;  // when stretched; else bilinear
        ScaleBias scaleBias;
    };

    // False if the source can't be brought as bytes of 1 or 4 channels.
    [[nodiscard]] bool begin(const Setup& setup);
    // Of the blocks: 1 or 4.
    [[nodiscard]] std::int32_t channels() const { return channels_; }
    // The image that is read: the source's, or one around its memory. Null before begin.
    [[nodiscard]] ilImage* image() const { return image_.get(); }
    // Whether blocks are handed out where they lie.
    [[nodiscard]] bool isDirect() const { return direct_ != nullptr; }
    // A box of the target. The block lasts until the next call.
    [[nodiscard]] SourceBlock block(const ilTile& box);

  private:
    [[nodiscard]] bool wrapMemory();
    void findDirect();
    [[nodiscard]] bool findConstant(const ilTile& box);
    [[nodiscard]] bool read(const ilTile& box, std::vector<std::uint8_t>& pixels);
    [[nodiscard]] bool stretched(const ilTile& box);
    void scaleBytes(std::uint8_t* pixels, std::size_t count) const;

    Setup setup_;
    Ref<ilImage> image_;
    std::int32_t channels_ = 0;
    std::array<std::int32_t, 4> list_{};
    bool mapped_ = false;
    const std::uint8_t* direct_ = nullptr;
    std::vector<std::uint8_t> raw_;
    std::vector<std::uint8_t> pixels_;
    std::array<std::uint8_t, 4> constant_{};
};

}  // namespace brushwork
