// Bytes of a picture file: what a codec reads from and writes to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace brushwork::platform {

// A file or a block of memory, read at any place. Not for two threads at once.
class ByteSource {
  public:
    virtual ~ByteSource() = default;
    [[nodiscard]] virtual std::uint64_t size() const = 0;
    // Reads up to `count` bytes from `offset` on and answers how many came: fewer only at the end
    // or after an error, 0 beyond the end.
    [[nodiscard]] virtual std::size_t readAt(std::uint64_t offset, void* buffer,
                                             std::size_t count) = 0;
};

// Null if the file can't be opened for reading or isn't a regular file.
[[nodiscard]] std::unique_ptr<ByteSource> openFileSource(std::u16string_view path);
// `bytes` must outlive the source.
[[nodiscard]] std::unique_ptr<ByteSource> openMemorySource(std::span<const std::uint8_t> bytes);

// A file under construction, written at any place. It stands beside its target under a name of its
// own; commit() renames it onto the target. Destroyed without commit(), it is deleted.
class ByteTarget {
  public:
    virtual ~ByteTarget() = default;
    [[nodiscard]] virtual bool writeAt(std::uint64_t offset, const void* bytes,
                                       std::size_t count) = 0;
    [[nodiscard]] virtual std::size_t readAt(std::uint64_t offset, void* buffer,
                                             std::size_t count) = 0;
    // One behind the last byte written.
    [[nodiscard]] virtual std::uint64_t size() const = 0;
    [[nodiscard]] virtual bool commit() = 0;
};

// Symbolic links are followed, and an existing file's rights stay. For a pipe or a device, or where
// the directory takes no new files but the old one may be written, the file under construction is a
// temporary one, whose bytes commit() writes into the target in order. Null if the target is a
// directory, may not be written, or no file can be made.
[[nodiscard]] std::unique_ptr<ByteTarget> createFileTarget(std::u16string_view path);

}  // namespace brushwork::platform
