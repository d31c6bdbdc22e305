#include "platform/bmp_run_length.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "platform/bmp_rows.h"
#include "platform/codec_limits.h"

namespace brushwork::platform {

namespace {

class ByteCursor {
  public:
    ByteCursor(ByteSource& source, std::uint64_t offset) : source_(source), offset_(offset) {}

    [[nodiscard]] bool get(unsigned& byte) {
        if (at_ == end_ && !fill()) return false;
        byte = buffer_[at_++];
        return true;
    }

  private:
    bool fill() {
        at_ = 0;
        end_ = source_.readAt(offset_, buffer_.data(), buffer_.size());
        offset_ += end_;
        return end_ > 0;
    }

    ByteSource& source_;
    std::uint64_t offset_;
    std::size_t at_ = 0;
    std::size_t end_ = 0;
    std::array<std::uint8_t, 16384> buffer_;
};

class RunLengthReader {
  public:
    RunLengthReader(ByteSource& source, const BmpHeader& header, RowSink& sink)
        : header_(header),
          input_(source, header.pixelOffset),
          converter_(header, header.packing == BmpPacking::RunLength24 ? 24 : 8),
          block_(sink, header),
          width_(static_cast<std::size_t>(header.width)),
          pixelBytes_(header.packing == BmpPacking::RunLength24 ? 3 : 1) {}

    [[nodiscard]] ImagingStatus read() {
        row_.reset(new (std::nothrow) std::uint8_t[width_ * pixelBytes_]());
        if (!row_ || !block_.allocate()) return ImagingStatus::OutOfMemory;
        while (y_ < header_.height) {
            if (!step()) return isComplete() ? ImagingStatus::Ok : ImagingStatus::GenericError;
        }
        return ImagingStatus::Ok;
    }

  private:
    // The last row may lack its end mark.
    bool isComplete() {
        return inputEnded_ && y_ == header_.height - 1 && x_ == width_ && finishRows(1);
    }

    bool get(unsigned& byte) {
        inputEnded_ = !input_.get(byte);
        return !inputEnded_;
    }

    bool step() {
        unsigned count = 0;
        unsigned code = 0;
        if (!get(count)) return false;
        if (count > 0) return run(count);
        if (!get(code)) return false;
        if (code > 2) return literal(code);
        if (code == 2) return skip();
        x_ = 0;
        return finishRows(code == 0 ? 1 : header_.height - y_);
    }

    bool run(unsigned count) {
        if (count > width_ - x_) return false;
        std::array<unsigned, 3> value{};
        for (std::size_t i = 0; i < pixelBytes_; ++i)
            if (!get(value[i])) return false;
        std::uint8_t* out = row_.get() + x_ * pixelBytes_;
        if (header_.packing == BmpPacking::RunLength8) {
            std::memset(out, static_cast<int>(value[0]), count);
        } else if (header_.packing == BmpPacking::RunLength4) {
            for (unsigned i = 0; i < count; ++i) out[i] = nibble(value[0], i);
        } else {
            for (std::size_t i = 0; i < count * pixelBytes_; ++i)
                out[i] = static_cast<std::uint8_t>(value[i % pixelBytes_]);
        }
        x_ += count;
        return true;
    }

    bool literal(unsigned count) {
        if (count > width_ - x_) return false;
        const bool nibbles = header_.packing == BmpPacking::RunLength4;
        const std::size_t bytes = nibbles ? (count + 1) / 2 : count * pixelBytes_;
        std::uint8_t* out = row_.get() + x_ * pixelBytes_;
        unsigned byte = 0;
        for (std::size_t i = 0; i < bytes; ++i) {
            if (!get(byte)) return false;
            if (!nibbles) {
                *out++ = static_cast<std::uint8_t>(byte);
                continue;
            }
            *out++ = nibble(byte, 0);
            if (i * 2 + 1 < count) *out++ = nibble(byte, 1);
        }
        x_ += count;
        // Literals are filled to an even number of bytes; at the very end the filling may be
        // missing.
        return bytes % 2 == 0 || get(byte);
    }

    bool skip() {
        unsigned right = 0;
        unsigned rows = 0;
        if (!get(right) || !get(rows)) return false;
        if (right > width_ - x_ || static_cast<std::int32_t>(rows) > header_.height - y_)
            return false;
        x_ += right;
        return finishRows(static_cast<std::int32_t>(rows));
    }

    bool finishRows(std::int32_t count) {
        for (; count > 0; --count, ++y_) {
            converter_.convert(row_.get(), block_.nextRow());
            if (!block_.rowDone()) return false;
            std::memset(row_.get(), 0, width_ * pixelBytes_);
        }
        return true;
    }

    static std::uint8_t nibble(unsigned byte, unsigned which) {
        return static_cast<std::uint8_t>(which % 2 == 0 ? byte >> 4 : byte & 15);
    }

    const BmpHeader& header_;
    ByteCursor input_;
    BmpRowConverter converter_;
    BmpRowBlock block_;
    std::size_t width_;
    std::size_t pixelBytes_;
    std::size_t x_ = 0;
    std::int32_t y_ = 0;  // rows finished, in the order of the file
    bool inputEnded_ = false;
    std::unique_ptr<std::uint8_t[]> row_;
};

}  // namespace

bool runLengthIsPlausible(const BmpHeader& header, std::uint64_t fileBytes) {
    const auto pixels =
        static_cast<std::uint64_t>(header.width) * static_cast<std::uint64_t>(header.height);
    constexpr std::uint64_t freePixels = std::uint64_t{1} << 20;
    constexpr std::uint64_t pixelsPerByte = 4096;
    return (pixels <= freePixels || (pixels - freePixels) / pixelsPerByte <= fileBytes) &&
           areaIsPaidFor(header.width, header.height, fileBytes);
}

ImagingStatus readRunLength(ByteSource& source, const BmpHeader& header, RowSink& sink) {
    return RunLengthReader(source, header, sink).read();
}

}  // namespace brushwork::platform
