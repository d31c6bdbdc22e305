#include "platform/codec_tiff_write.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/codec_tiff_handle.h"

namespace brushwork::platform {

namespace {

constexpr std::uint64_t stripBytes = 128 * 1024;
// LZW writes at most 12 bits for 8, and its tables and the directory need some room as well.
constexpr std::uint64_t mostClassicBytes = 0xFFFFFFFFU / 3 * 2 - (std::uint64_t{64} << 20);

class TiffWriter {
  public:
    explicit TiffWriter(const EncodeRequest& request)
        : request_(request), row_(static_cast<std::size_t>(request.width) * 4) {}

    ImagingStatus write(ByteTarget& target) {
        if (!findAlpha()) return ImagingStatus::Aborted;
        samples_ = alpha_ ? 4 : 3;
        const std::uint64_t rowBytes = static_cast<std::uint64_t>(request_.width) * samples_;
        const bool big = rowBytes > mostClassicBytes / static_cast<std::uint64_t>(request_.height);
        handle_ = TiffHandle::openForWriting(target, big);
        if (!handle_) return ImagingStatus::GenericError;
        rowsPerStrip_ = static_cast<std::uint32_t>(std::clamp<std::uint64_t>(
            stripBytes / rowBytes, 1, static_cast<std::uint64_t>(request_.height)));
        if (!describe()) return ImagingStatus::GenericError;
        if (const auto status = writeStrips(); status != ImagingStatus::Ok) return status;
        const bool whole = TIFFWriteDirectory(handle_->get()) == 1 && !handle_->damaged();
        return whole ? ImagingStatus::Ok : ImagingStatus::GenericError;
    }

  private:
    bool findAlpha() {
        for (std::int32_t y = 0; y < request_.height && !alpha_; ++y) {
            if (!request_.source->getRow(y, row_.data())) return false;
            for (std::size_t i = 3; i < row_.size() && !alpha_; i += 4) alpha_ = row_[i] != 255;
        }
        return true;
    }

    template <typename... Values>
    bool set(std::uint32_t tag, Values... values) {
        return TIFFSetField(handle_->get(), tag, values...) == 1;
    }

    bool describe() {
        const std::uint16_t straight = EXTRASAMPLE_UNASSALPHA;
        return set(TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(request_.width)) &&
               set(TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(request_.height)) &&
               set(TIFFTAG_BITSPERSAMPLE, 8) && set(TIFFTAG_SAMPLESPERPIXEL, samples_) &&
               set(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
               set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
               set(TIFFTAG_ROWSPERSTRIP, rowsPerStrip_) &&
               set(TIFFTAG_COMPRESSION, COMPRESSION_LZW) &&
               set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
               set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) &&
               set(TIFFTAG_XRESOLUTION, static_cast<double>(request_.xResolution)) &&
               set(TIFFTAG_YRESOLUTION, static_cast<double>(request_.yResolution)) &&
               (!alpha_ || set(TIFFTAG_EXTRASAMPLES, 1, &straight));
    }

    ImagingStatus writeStrips() {
        const auto height = static_cast<std::uint32_t>(request_.height);
        const std::size_t rowBytes = static_cast<std::size_t>(request_.width) * samples_;
        std::vector<std::uint8_t> strip(rowBytes * rowsPerStrip_);
        std::uint32_t number = 0;
        for (std::uint32_t y = 0; y < height; y += rowsPerStrip_, ++number) {
            const std::uint32_t rows = std::min(rowsPerStrip_, height - y);
            for (std::uint32_t i = 0; i < rows; ++i) {
                if (!request_.source->getRow(static_cast<std::int32_t>(y + i), row_.data()))
                    return ImagingStatus::Aborted;
                packRow(&strip[i * rowBytes]);
            }
            const auto bytes = static_cast<tmsize_t>(rowBytes * rows);
            if (TIFFWriteEncodedStrip(handle_->get(), number, strip.data(), bytes) != bytes ||
                handle_->damaged())
                return ImagingStatus::GenericError;
        }
        return ImagingStatus::Ok;
    }

    void packRow(std::uint8_t* out) const {
        for (std::size_t i = 0; i < row_.size(); i += 4, out += samples_) {
            out[0] = row_[i + 2];
            out[1] = row_[i + 1];
            out[2] = row_[i];
            if (alpha_) out[3] = row_[i + 3];
        }
    }

    const EncodeRequest& request_;
    std::unique_ptr<TiffHandle> handle_;
    std::vector<std::uint8_t> row_;
    bool alpha_ = false;
    std::uint32_t samples_ = 3;
    std::uint32_t rowsPerStrip_ = 1;
};

}  // namespace

ImagingStatus writeTiff(const EncodeRequest& request, ByteTarget& target) {
    constexpr auto mostPixels = static_cast<std::uint64_t>(PTRDIFF_MAX) / 4;
    if (request.width < 1 || request.height < 1 || !request.source ||
        static_cast<std::uint64_t>(request.width) > mostPixels)
        return ImagingStatus::InvalidParameter;
    return TiffWriter(request).write(target);
}

}  // namespace brushwork::platform
