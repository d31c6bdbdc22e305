// PositionedFile: an unbuffered file that is read and written at any place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace brushwork::platform {

class PositionedFile {
  public:
    enum class Mode {
        Read,       // must exist as a regular file; never waits on a pipe or a device
        ReadWrite,  // must exist as a regular file
        CreateNew,  // must not exist; only its owner may read it
        // The same for a file that no other process needs. While it is open removeIfAbandoned()
        // knows it as in use; where the system can do that it goes with its process.
        CreateOwned,
    };

    PositionedFile() = default;
    PositionedFile(PositionedFile&& other) noexcept;
    PositionedFile& operator=(PositionedFile&& other) noexcept;
    ~PositionedFile();

    // Closes what was open. False leaves the object closed.
    [[nodiscard]] bool open(std::u16string_view path, Mode mode);
    [[nodiscard]] bool isOpen() const noexcept { return handle_ != closed; }
    // False if the system reported a late write error.
    bool close() noexcept;

    // How many bytes came: fewer than asked for only at the end or after an error.
    [[nodiscard]] std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t count);
    // True if all bytes went out.
    [[nodiscard]] bool writeAt(std::uint64_t offset, const void* bytes, std::size_t count);
    // 0 if it can't be told.
    [[nodiscard]] std::uint64_t size() const;
    // Bytes that come into being read as zero and take no room where the system can do that.
    [[nodiscard]] bool resize(std::uint64_t size);

  private:
    static constexpr std::intptr_t closed = -1;
    std::intptr_t handle_ = closed;
};

// Removes a file that was made by CreateOwned if the process that had it open is certainly gone: a
// file of this user alone, on a disk of this machine, that nobody holds. False leaves it as it is.
// The caller knows by the name that it was made so.
bool removeIfAbandoned(std::u16string_view path);

}  // namespace brushwork::platform
