// The engine's plain pixel buffers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

// Aligned to 64 bytes, so that vector kernels may load whole lines; not cleared. Null for 0 bytes
// and when there is no memory. Any thread.
[[nodiscard]] std::uint8_t* imageAllocate(std::size_t bytes);
// Takes back what imageAllocate gave, with the same count; null is ignored.
void imageFree(std::uint8_t* buffer, std::size_t bytes);

// One such buffer for the length of a scope.
class ImageBuffer {
  public:
    explicit ImageBuffer(std::size_t bytes) : data_(imageAllocate(bytes)), bytes_(bytes) {}
    ImageBuffer(const ImageBuffer&) = delete;
    ImageBuffer& operator=(const ImageBuffer&) = delete;
    ~ImageBuffer() { imageFree(data_, bytes_); }

    [[nodiscard]] std::uint8_t* data() const { return data_; }  // null: no memory
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

  private:
    std::uint8_t* data_;
    std::size_t bytes_;
};

}  // namespace brushwork
