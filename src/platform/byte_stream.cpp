#include "platform/byte_stream.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/swap_io.h"

namespace brushwork::platform {

namespace {

class MemorySource final : public ByteSource {
  public:
    explicit MemorySource(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    [[nodiscard]] std::uint64_t size() const override { return bytes_.size(); }
    [[nodiscard]] std::size_t readAt(std::uint64_t offset, void* buffer,
                                     std::size_t count) override {
        if (offset >= bytes_.size()) return 0;
        const auto start = static_cast<std::size_t>(offset);
        const std::size_t given = std::min(count, bytes_.size() - start);
        if (given > 0) std::memcpy(buffer, bytes_.data() + start, given);
        return given;
    }

  private:
    std::span<const std::uint8_t> bytes_;
};

class FileSource final : public ByteSource {
  public:
    explicit FileSource(PositionedFile file) : file_(std::move(file)), size_(file_.size()) {}
    [[nodiscard]] std::uint64_t size() const override { return size_; }
    [[nodiscard]] std::size_t readAt(std::uint64_t offset, void* buffer,
                                     std::size_t count) override {
        return file_.readAt(offset, buffer, count);
    }

  private:
    PositionedFile file_;
    std::uint64_t size_;
};

}  // namespace

std::unique_ptr<ByteSource> openFileSource(std::u16string_view path) {
    PositionedFile file;
    if (!file.open(path, PositionedFile::Mode::Read)) return nullptr;
    return std::make_unique<FileSource>(std::move(file));
}

std::unique_ptr<ByteSource> openMemorySource(std::span<const std::uint8_t> bytes) {
    return std::make_unique<MemorySource>(bytes);
}

}  // namespace brushwork::platform
