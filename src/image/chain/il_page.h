// Pages: the locked blocks in which an image hands out its pixels.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

template <class T>
struct ilXYZCstruct {
    T x{}, y{}, z{}, c{};
    friend bool operator==(const ilXYZCstruct&, const ilXYZCstruct&) = default;
};

// The pixels of one block. x, y, z are the block's origin in the image and c its first channel;
// memory images put their sizes there instead, since their one page is the whole buffer.
//
// A page bears a signature while it lives. Code that was handed a page asks isValid first and takes
// an invalid one for a page without data.
class ilPage : public ilXYZCstruct<std::int32_t> {
  public:
    static constexpr std::uint32_t liveSignature = 0xFACE1234;
    static constexpr std::uint32_t deadSignature = 0xDEADBEEF;

    // The page borrows `data`.
    ilPage(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t c, std::uint8_t* data);
    ilPage(const ilPage&) = delete;
    ilPage& operator=(const ilPage&) = delete;
    virtual ~ilPage();  // overwrites coordinates, signature and data pointer

    [[nodiscard]] bool isValid() const { return signature_ == liveSignature; }
    // Null for an invalid page.
    [[nodiscard]] std::uint8_t* data() const { return isValid() ? data_ : nullptr; }

  protected:
    void setData(std::uint8_t* data) { data_ = data; }
    void invalidate();  // as the destructor does

  private:
    std::uint32_t signature_ = liveSignature;
    std::uint8_t* data_;
};

// A page that owns its buffer, which is aligned to 64 bytes and not cleared. data() is null if
// there was no memory for it.
class ilImagePage final : public ilPage {
  public:
    ilImagePage(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t c, std::size_t bytes);
    ~ilImagePage() override;

  private:
    std::uint8_t* buffer_;
    std::size_t bytes_;
};

// One entry of a lock list. The caller fills in the place, the lock the rest.
struct PageLockRequest {
    std::int32_t x = 0, y = 0, z = 0, c = 0;
    std::int32_t status = 0;
    ilPage* page = nullptr;  // null outside the image; gone after the unlock
};

enum LockMode : std::uint32_t {
    LockRead = 0x0,     // every lock lets read
    LockWrite = 0x200,  // pixels will be changed in place
    // Bits of a region lock that its page locks don't see.
    LockRegionBits = 0xC00,
};

}  // namespace brushwork
