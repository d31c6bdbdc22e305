// What a desktop hands programs to pass pictures around: blocks of memory behind a handle (the
// clipboard's currency), named resources of a program, and bitmaps behind a handle.
//
// Where the system has none of these, plain structures of the same bytes stand behind the same
// handles: blocks and bitmaps work alike, and resources come from a table that the program fills.
// Handles are then good in this process only.
//
//     GlobalBlock block = GlobalBlock::allocate(bytes.size());
//     if (LockedBlock lock(block); !lock.bytes().empty()) fill(lock.bytes());
//     handToClipboard(block.release());
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

namespace brushwork::platform {

// Owns one block, or none.
class GlobalBlock {
  public:
    GlobalBlock() = default;
    // Takes the handle over; null makes none.
    explicit GlobalBlock(void* handle) : handle_(handle) {}
    GlobalBlock(GlobalBlock&& other) noexcept : handle_(other.release()) {}
    GlobalBlock& operator=(GlobalBlock&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~GlobalBlock();

    // Zeroed. None for 0 bytes or without memory.
    [[nodiscard]] static GlobalBlock allocate(std::size_t bytes);
    // None if the bytes are none.
    [[nodiscard]] static GlobalBlock holding(std::span<const std::uint8_t> bytes);

    explicit operator bool() const { return handle_ != nullptr; }
    [[nodiscard]] void* handle() const { return handle_; }
    // The handle becomes the caller's: to free by a GlobalBlock, or to give to the system.
    [[nodiscard]] void* release() noexcept { return std::exchange(handle_, nullptr); }

  private:
    void* handle_ = nullptr;
};

// Holds a block's bytes in place. Without a block, or if the system refuses, there are none. A
// system may have rounded the size of a block up.
class LockedBlock {
  public:
    explicit LockedBlock(const GlobalBlock& block);
    LockedBlock(const LockedBlock&) = delete;
    LockedBlock& operator=(const LockedBlock&) = delete;
    ~LockedBlock();
    [[nodiscard]] std::span<std::uint8_t> bytes() const { return bytes_; }

  private:
    void* handle_;
    std::span<std::uint8_t> bytes_;
};

// A resource of a program or library.
struct ResourceName {
    void* module = nullptr;  // null: the running program
    std::u16string_view name;
    std::u16string_view type = u"DATA";
};

// A copy of the resource. None if there is no such resource, it is empty, or memory is short.
[[nodiscard]] GlobalBlock copyResource(const ResourceName& resource);
// Enters a resource where the system knows none; `bytes` must stay for the rest of the process's
// life. One entered later takes the place of an equal name. False, with nothing done, where
// resources are part of the program file. Any thread.
bool addResource(const ResourceName& resource, std::span<const std::uint8_t> bytes);

// How the pixels of a bitmap lie. With 32 bits a pixel is blue, green, red, alpha.
struct BitmapLayout {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t bitsPerPixel = 0;
    std::size_t stride = 0;        // bytes from one row to the next, at least those of a row
    std::uint8_t* bits = nullptr;  // null if the system keeps the pixels to itself
};

// Owns one bitmap, or none.
class BitmapHandle {
  public:
    BitmapHandle() = default;
    // Takes the handle over; null makes none.
    explicit BitmapHandle(void* handle) : handle_(handle) {}
    BitmapHandle(BitmapHandle&& other) noexcept : handle_(other.release()) {}
    BitmapHandle& operator=(BitmapHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~BitmapHandle();

    // All zero, top row first; 24 or 32 bits a pixel. None for other depths, sizes below 1 or
    // beyond what can be addressed, and without memory.
    [[nodiscard]] static BitmapHandle create(std::int32_t width, std::int32_t height,
                                             std::int32_t bitsPerPixel = 32);

    explicit operator bool() const { return handle_ != nullptr; }
    [[nodiscard]] void* handle() const { return handle_; }
    [[nodiscard]] void* release() noexcept { return std::exchange(handle_, nullptr); }
    // All zero without a bitmap.
    [[nodiscard]] BitmapLayout layout() const;

  private:
    void* handle_ = nullptr;
};

// Bytes of a row, rounded up to a multiple of four, times rows; 0 if a size is below 1 or the
// product passes what can be addressed.
[[nodiscard]] std::size_t paddedBitmapBytes(std::int32_t width, std::int32_t height,
                                            std::int32_t bitsPerPixel);

}  // namespace brushwork::platform
