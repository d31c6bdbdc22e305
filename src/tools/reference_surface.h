// ReferenceSurface: a screen without glass: the pixels of one canvas, in memory.
//
// It is canvas and surface of the host table at once. The engine draws into the pixels and tells
// when they are worth showing; here that is counted.
#pragma once

#include <cstdint>
#include <vector>

namespace brushwork::tools {

class ReferenceSurface {
  public:
    // Transparent. Sizes of 1 to mostPixels; others give a surface without pixels.
    ReferenceSurface(std::int32_t width, std::int32_t height);

    [[nodiscard]] std::int32_t width() const { return width_; }
    [[nodiscard]] std::int32_t height() const { return height_; }
    // Four bytes a pixel, rows from below; null without pixels.
    [[nodiscard]] std::uint8_t* pixels() { return pixels_.empty() ? nullptr : pixels_.data(); }

    void show() { ++shown_; }
    [[nodiscard]] std::uint64_t shown() const { return shown_; }

    static constexpr std::int32_t mostPixels = 102400;  // a side

  private:
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    std::uint64_t shown_ = 0;
    std::vector<std::uint8_t> pixels_;
};

}  // namespace brushwork::tools
