// Streams, sinks and sources over plain vectors, for the tests of the codecs.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "platform/byte_stream.h"
#include "platform/codec.h"
#include "platform/imaging.h"

namespace brushwork::platform::test {

using Bytes = std::vector<std::uint8_t>;

// Bytes in memory. `failFrom` makes every read that touches that offset or a later one come short.
class SpanSource : public ByteSource {
  public:
    explicit SpanSource(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    [[nodiscard]] std::uint64_t size() const override { return bytes_.size(); }
    [[nodiscard]] std::size_t readAt(std::uint64_t offset, void* buffer,
                                     std::size_t count) override {
        const std::uint64_t end = std::min<std::uint64_t>(bytes_.size(), failFrom);
        if (offset >= end) return 0;
        const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(count, end - offset));
        std::memcpy(buffer, bytes_.data() + offset, part);
        return part;
    }

    std::uint64_t failFrom = UINT64_MAX;

  private:
    std::span<const std::uint8_t> bytes_;
};

// A file under construction in memory. A write that would reach beyond `failFrom` bytes fails.
class VectorTarget : public ByteTarget {
  public:
    [[nodiscard]] bool writeAt(std::uint64_t offset, const void* data, std::size_t count) override {
        if (offset + count > failFrom) return false;
        if (offset + count > bytes.size()) bytes.resize(static_cast<std::size_t>(offset + count));
        if (count > 0) std::memcpy(bytes.data() + offset, data, count);
        return true;
    }
    [[nodiscard]] std::size_t readAt(std::uint64_t offset, void* buffer,
                                     std::size_t count) override {
        return SpanSource(bytes).readAt(offset, buffer, count);
    }
    [[nodiscard]] std::uint64_t size() const override { return bytes.size(); }
    [[nodiscard]] bool commit() override { return committed = true; }

    Bytes bytes;
    bool committed = false;
    std::uint64_t failFrom = UINT64_MAX;
};

// Keeps the rows that a reader hands over. Refuses rows outside the picture (`outside` counts
// them), counts rows that came twice, and ends the reading at row `failAt`.
class PictureBuffer : public RowSink {
  public:
    PictureBuffer(std::int32_t w, std::int32_t h)
        : width(w),
          height(h),
          bgra(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * 4),
          seen_(static_cast<std::size_t>(h)) {}
    [[nodiscard]] bool putRows(std::int32_t y, std::int32_t count,
                               const std::uint8_t* rows) override {
        if (y < 0 || count < 1 || y > height - count) {
            ++outside;
            return false;
        }
        if (failAt >= y && failAt < y + count) return false;
        for (std::int32_t i = y; i < y + count; ++i) {
            if (std::exchange(seen_[static_cast<std::size_t>(i)], 1) != 0) ++twice;
        }
        const std::size_t stride = static_cast<std::size_t>(width) * 4;
        std::memcpy(bgra.data() + static_cast<std::size_t>(y) * stride, rows,
                    static_cast<std::size_t>(count) * stride);
        ++calls;
        return true;
    }
    [[nodiscard]] std::int32_t rowsSeen() const {
        return static_cast<std::int32_t>(std::count(seen_.begin(), seen_.end(), 1));
    }

    std::int32_t width;
    std::int32_t height;
    Bytes bgra;
    int twice = 0;
    int outside = 0;
    int calls = 0;
    std::int32_t failAt = -1;

  private:
    Bytes seen_;
};

// Gives the rows of a picture in memory; row `failAt` fails.
class BufferSource : public RowSource {
  public:
    BufferSource(std::int32_t w, std::int32_t h, Bytes pixels)
        : width(w), height(h), bgra(std::move(pixels)) {}
    [[nodiscard]] bool getRow(std::int32_t y, std::uint8_t* row) override {
        if (y < 0 || y >= height || y == failAt) return false;
        const std::size_t stride = static_cast<std::size_t>(width) * 4;
        std::memcpy(row, bgra.data() + static_cast<std::size_t>(y) * stride, stride);
        return true;
    }

    std::int32_t width;
    std::int32_t height;
    Bytes bgra;
    std::int32_t failAt = -1;
};

// One whole reading. `picture` has the size of the header, or 0 x 0 where that was refused.
struct Decoded {
    ImagingStatus headerStatus = ImagingStatus::GenericError;
    ImagingStatus status = ImagingStatus::GenericError;  // of the pixels
    PictureHeader header;
    PictureBuffer picture{0, 0};

    [[nodiscard]] bool ok() const {
        return headerStatus == ImagingStatus::Ok && status == ImagingStatus::Ok;
    }
};

// Pictures of more than `maxPixels` are not decoded (status Aborted).
inline Decoded decode(const Codec& codec, std::span<const std::uint8_t> bytes,
                      std::uint64_t maxPixels = 64'000'000) {
    Decoded result;
    SpanSource source(bytes);
    const std::unique_ptr<PictureReader> reader = codec.makeReader(source);
    result.headerStatus = reader->readHeader(result.header);
    if (result.headerStatus != ImagingStatus::Ok) return result;
    const auto w = static_cast<std::uint64_t>(result.header.width);
    const auto h = static_cast<std::uint64_t>(result.header.height);
    if (w * h > maxPixels) {
        result.status = ImagingStatus::Aborted;
        return result;
    }
    result.picture = PictureBuffer(result.header.width, result.header.height);
    result.status = reader->readPixels(result.picture);
    return result;
}

}  // namespace brushwork::platform::test
