#include "bridge/raw_pixel_file.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "foundation/files/file.h"
#include "platform/clean_up.h"

namespace brushwork {

namespace {

// Large enough for few system calls, small enough to stay in the second-level cache.
constexpr std::size_t blockBytes = 256 * 1024;

std::int32_t rowsPerBlock(std::size_t rowBytes, std::int32_t height) {
    const std::size_t rows = std::max<std::size_t>(1, blockBytes / rowBytes);
    return static_cast<std::int32_t>(std::min<std::size_t>(rows, static_cast<std::size_t>(height)));
}

}  // namespace

std::optional<std::uint64_t> pixelFileBytes(std::int32_t width, std::int32_t height,
                                            std::int32_t channels) {
    if (width < 1 || height < 1 || channels < 1) return std::nullopt;
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    const auto bytesEach = static_cast<std::uint64_t>(channels);
    constexpr auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (pixels > limit / bytesEach) return std::nullopt;
    return pixels * bytesEach;
}

RawPixelWriter::~RawPixelWriter() {
    if (path_.empty()) return;
    file_.close();
    static_cast<void>(znOS::File::remove(znString::IString(path_)));
    platform::dropPartialFile(path_);
}

bool RawPixelWriter::create(std::u16string_view path, std::int32_t width, std::int32_t height) {
    const auto bytes = pixelFileBytes(width, height, 4);
    const platform::EndingHold hold;  // until the file is noted
    if (!bytes || !file_.open(path, platform::PositionedFile::Mode::CreateNew)) return false;
    path_ = path;
    platform::notePartialFile(path_);
    rowBytes_ = static_cast<std::size_t>(width) * 4;
    height_ = height;
    blockRows_ = rowsPerBlock(rowBytes_, height);
    block_.resize(rowBytes_ * static_cast<std::size_t>(blockRows_));
    return file_.resize(*bytes);
}

bool RawPixelWriter::putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) {
    for (const std::int32_t end = y + count; y < end; ++y, bgra += rowBytes_) {
        const bool continues = gathered_ > 0 && y == firstRow_ + gathered_;
        if (!continues || gathered_ == blockRows_) {
            if (!flush()) return false;
            firstRow_ = y;
        }
        ++gathered_;
        // The block fills from its end, so that it lies as the file does.
        std::memcpy(block_.data() + rowBytes_ * static_cast<std::size_t>(blockRows_ - gathered_),
                    bgra, rowBytes_);
    }
    return true;
}

bool RawPixelWriter::flush() {
    if (gathered_ == 0) return true;
    const auto lowest = static_cast<std::uint64_t>(height_ - (firstRow_ + gathered_));
    const std::size_t start = rowBytes_ * static_cast<std::size_t>(blockRows_ - gathered_);
    const bool written = file_.writeAt(lowest * rowBytes_, block_.data() + start,
                                       rowBytes_ * static_cast<std::size_t>(gathered_));
    gathered_ = 0;
    return written;
}

bool RawPixelWriter::finish() {
    if (!flush() || !file_.close()) return false;
    path_.clear();
    return true;
}

bool RawPixelReader::open(std::u16string_view path, std::int32_t width, std::int32_t height,
                          std::int32_t channels) {
    if (channels > 4) return false;
    const auto bytes = pixelFileBytes(width, height, channels);
    if (!bytes || static_cast<std::uint64_t>(width) > std::numeric_limits<std::size_t>::max() / 4)
        return false;
    if (!file_.open(path, platform::PositionedFile::Mode::Read) || file_.size() < *bytes)
        return false;
    rowBytes_ = static_cast<std::size_t>(width) * 4;
    packedRow_ = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    height_ = height;
    blockRows_ = rowsPerBlock(packedRow_, height);
    block_.resize(packedRow_ * static_cast<std::size_t>(blockRows_));
    return true;
}

bool RawPixelReader::getRow(std::int32_t y, std::uint8_t* bgra) {
    return readPacked(static_cast<std::uint64_t>(y) * rowBytes_, bgra, rowBytes_);
}

bool RawPixelReader::readPacked(std::uint64_t offset, std::uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        const std::uint64_t row = offset / packedRow_;
        if (row >= static_cast<std::uint64_t>(height_)) {
            std::memset(bytes, 0, count);
            return true;
        }
        const auto within = static_cast<std::size_t>(offset % packedRow_);
        const std::size_t part = std::min(count, packedRow_ - within);
        if (!loadBlock(static_cast<std::int32_t>(row))) return false;
        const auto below = static_cast<std::size_t>(blockFirst_ + blockCount_ - 1 -
                                                    static_cast<std::int32_t>(row));
        std::memcpy(bytes, block_.data() + below * packedRow_ + within, part);
        offset += part;
        bytes += part;
        count -= part;
    }
    return true;
}

bool RawPixelReader::loadBlock(std::int32_t packedRow) {
    if (blockFirst_ >= 0 && packedRow >= blockFirst_ && packedRow < blockFirst_ + blockCount_)
        return true;
    blockFirst_ = packedRow;
    blockCount_ = std::min(blockRows_, height_ - packedRow);
    const auto lowest = static_cast<std::uint64_t>(height_ - (blockFirst_ + blockCount_));
    const std::size_t bytes = packedRow_ * static_cast<std::size_t>(blockCount_);
    if (file_.readAt(lowest * packedRow_, block_.data(), bytes) == bytes) return true;
    blockFirst_ = -1;
    return false;
}

}  // namespace brushwork
