#include "platform/codec_bmp.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>

#include "platform/bmp_header.h"
#include "platform/bmp_rows.h"
#include "platform/bmp_run_length.h"
#include "platform/bmp_write.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t readBytes = std::size_t{128} << 10;

// True if every pixel is there. Only the filling behind the very last row may be missing.
bool holdsPlainRows(const BmpHeader& header, std::uint64_t fileBytes) {
    if (header.pixelOffset > fileBytes) return false;
    const std::uint64_t held = fileBytes - header.pixelOffset;
    if (held < header.rowBytes()) return false;
    return static_cast<std::uint64_t>(header.height) - 1 <=
           (held - header.rowBytes()) / header.stride();
}

ImagingStatus readPlain(ByteSource& source, const BmpHeader& header, RowSink& sink) {
    const std::size_t stride = header.stride();
    const auto height = static_cast<std::size_t>(header.height);
    const std::size_t blockRows = std::clamp<std::size_t>(readBytes / stride, 1, height);
    const std::unique_ptr<std::uint8_t[]> packed(new (std::nothrow)
                                                     std::uint8_t[blockRows * stride]);
    BmpRowBlock block(sink, header);
    if (!packed || !block.allocate()) return ImagingStatus::OutOfMemory;
    const BmpRowConverter converter(header, header.bits);

    std::uint64_t offset = header.pixelOffset;
    for (std::size_t done = 0; done < height;) {
        const std::size_t count = std::min(blockRows, height - done);
        const std::size_t wanted = (count - 1) * stride + header.rowBytes();
        if (source.readAt(offset, packed.get(), wanted) != wanted)
            return ImagingStatus::GenericError;
        for (std::size_t i = 0; i < count; ++i) {
            converter.convert(packed.get() + i * stride, block.nextRow());
            if (!block.rowDone()) return ImagingStatus::GenericError;
        }
        offset += count * stride;
        done += count;
    }
    return ImagingStatus::Ok;
}

class BmpReader final : public PictureReader {
  public:
    explicit BmpReader(ByteSource& source) : source_(source) {}

    [[nodiscard]] ImagingStatus readHeader(PictureHeader& header) override {
        if (!readBmpHeader(source_, header_)) return ImagingStatus::GenericError;
        const bool whole = isPlain() ? holdsPlainRows(header_, source_.size())
                                     : runLengthIsPlausible(header_, source_.size());
        if (!whole) return ImagingStatus::GenericError;
        header.width = header_.width;
        header.height = header_.height;
        header.xResolution = header_.xResolution;
        header.yResolution = header_.yResolution;
        header.grey = header_.isGrey();
        header.alpha = header_.hasAlpha();
        return ImagingStatus::Ok;
    }

    [[nodiscard]] ImagingStatus readPixels(RowSink& sink) override {
        return isPlain() ? readPlain(source_, header_, sink)
                         : readRunLength(source_, header_, sink);
    }

  private:
    [[nodiscard]] bool isPlain() const { return header_.packing == BmpPacking::Plain; }

    ByteSource& source_;
    BmpHeader header_;
};

bool recognises(std::span<const std::uint8_t> head) {
    return head.size() >= 18 && head[0] == 'B' && head[1] == 'M';
}

std::unique_ptr<PictureReader> makeReader(ByteSource& source) {
    return std::make_unique<BmpReader>(source);
}

constexpr Guid encoderClass{
    0x557cf400, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

}  // namespace

const Codec& bmpCodec() {
    static constexpr Codec codec{
        {encoderClass, imageFormatBmp, u"image/bmp", u"BMP"}, recognises, makeReader, writeBmp};
    return codec;
}

}  // namespace brushwork::platform
