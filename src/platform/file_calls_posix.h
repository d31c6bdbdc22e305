// What the POSIX files of file_calls share.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "platform/file_calls.h"

namespace brushwork::platform {

// A path as the system takes it. One with a zero unit in it becomes the empty path, which no call
// finds.
class NativePath {
  public:
    explicit NativePath(std::u16string_view path);
    [[nodiscard]] const char* c_str() const { return text_.c_str(); }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_;
};

class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() { (void)close(); }
    [[nodiscard]] bool isOpen() const { return number_ >= 0; }
    [[nodiscard]] int get() const { return number_; }
    [[nodiscard]] int detach() { return std::exchange(number_, -1); }
    // False if the system reports a late failure.
    bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_ = -1;
};

// Opens with O_CLOEXEC, again after an interruption. `errno` tells of a failure.
[[nodiscard]] FileDescriptor openDescriptor(const std::string& path, int flags,
                                            unsigned int permissions = 0666);

// Whole blocks through interruptions and partial transfers. Reading answers how many bytes came,
// fewer at the end of the file, or -1.
[[nodiscard]] ssize_t readBlock(int file, void* buffer, std::size_t count);
[[nodiscard]] bool writeBlock(int file, const void* bytes, std::size_t count);
// The same at a place of the file, without moving its current one. Reading answers how many bytes
// came, fewer at the end or after a failure.
[[nodiscard]] std::size_t readPlace(int file, std::uint64_t offset, void* buffer,
                                    std::size_t count);
[[nodiscard]] bool writePlace(int file, std::uint64_t offset, const void* bytes, std::size_t count);
// Copies from the current place to the end.
[[nodiscard]] bool copyDescriptor(int from, int to);

// Makes and opens an empty file of a new name: `stem`, hexadecimal digits, ".tmp". `path` receives
// the name. With `errno` and a closed descriptor after a failure.
[[nodiscard]] FileDescriptor openUniqueFile(const std::string& stem, unsigned int permissions,
                                            std::string& path);

// From errno to the numbers of the Windows C runtime and of the Windows system.
[[nodiscard]] CallResult errnoResult(int error);
[[nodiscard]] CallResult systemResult(int error);

}  // namespace brushwork::platform
