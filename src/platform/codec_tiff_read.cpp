#include "platform/codec_tiff_read.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "platform/codec_tiff_bands.h"
#include "platform/codec_tiff_handle.h"
#include "platform/codec_tiff_layout.h"

namespace brushwork::platform {

namespace {

class TiffReader final : public PictureReader {
  public:
    explicit TiffReader(ByteSource& source) : source_(source) {}

    ImagingStatus readHeader(PictureHeader& header) override {
        handle_ = TiffHandle::openForReading(source_);
        if (!handle_) return ImagingStatus::GenericError;
        const ImagingStatus status = readTiffLayout(*handle_, source_, layout_);
        if (status != ImagingStatus::Ok) {
            handle_ = nullptr;
            return status;
        }
        const TiffColour colour = layout_.pixels.colour;
        header.width = layout_.width;
        header.height = layout_.height;
        header.xResolution = layout_.xResolution > 0 ? layout_.xResolution : defaultResolution;
        header.yResolution = layout_.yResolution > 0 ? layout_.yResolution : defaultResolution;
        header.alpha = layout_.pixels.alpha != TiffAlpha::None;
        header.grey = !header.alpha &&
                      (colour == TiffColour::BlackIsZero || colour == TiffColour::WhiteIsZero);
        return ImagingStatus::Ok;
    }

    ImagingStatus readPixels(RowSink& sink) override {
        if (!handle_) return ImagingStatus::WrongState;
        // A strange tag that the library complained about is no fault of the pixels.
        handle_->forgetDamage();
        const auto bands = makeTiffBands(layout_, *handle_, source_);
        if (!bands) return ImagingStatus::GenericError;
        const auto height = static_cast<std::uint32_t>(layout_.height);
        const std::uint32_t most = bands->bandRows();
        std::vector<std::uint8_t> bgra(static_cast<std::size_t>(layout_.width) * 4 * most);
        for (std::uint32_t y = 0; y < height; y += most) {
            const std::uint32_t rows = std::min(most, height - y);
            if (!bands->read(y, rows, bgra.data())) return ImagingStatus::GenericError;
            if (!sink.putRows(static_cast<std::int32_t>(y), static_cast<std::int32_t>(rows),
                              bgra.data()))
                return ImagingStatus::Aborted;
        }
        return ImagingStatus::Ok;
    }

  private:
    ByteSource& source_;
    std::unique_ptr<TiffHandle> handle_;
    TiffLayout layout_;
};

}  // namespace

std::unique_ptr<PictureReader> makeTiffReader(ByteSource& source) {
    return std::make_unique<TiffReader>(source);
}

}  // namespace brushwork::platform
