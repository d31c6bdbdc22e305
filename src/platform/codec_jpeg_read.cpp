#include "platform/codec_jpeg_read.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <span>

#include "platform/codec_jpeg_coefficients.h"
#include "platform/codec_jpeg_errors.h"
#include "platform/codec_jpeg_exif.h"
#include "platform/codec_jpeg_scans.h"
#include "platform/codec_jpeg_source.h"
#include "platform/codec_limits.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t blockBytes = std::size_t{256} << 10;
constexpr std::size_t leastBlockRows = 16;
constexpr std::size_t mostBlockRows = 64;
// Coefficients of this size stay in memory even if the picture itself is smaller.
constexpr std::uint64_t smallCoefficients = std::uint64_t{16} << 20;
constexpr std::size_t mostExifBytes = 65533;

class JpegReader : public PictureReader {
  public:
    explicit JpegReader(ByteSource& source) : source_(source) {
        info_.reader = this;
        info_.err = &errors_;
    }
    ~JpegReader() override { jpeg_destroy_decompress(&info_); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    [[nodiscard]] ImagingStatus readHeader(PictureHeader& header) override;
    [[nodiscard]] ImagingStatus readPixels(RowSink& sink) override;

  private:
    struct Info : jpeg_decompress_struct {
        JpegReader* reader = nullptr;
    };

    bool attempt(void (JpegReader::*step)());
    void headerStep();
    void startStep() { jpeg_start_decompress(&info_); }
    void rowsStep();
    void finishStep() { jpeg_finish_decompress(&info_); }

    bool chooseColours();
    void readResolution();
    void takeExif();
    [[nodiscard]] bool coefficientsAreLarge() const;
    void convertInks(std::uint8_t* pixels, std::size_t count) const;

    JpegErrors errors_;
    JpegSource source_;
    JpegScanGuard guard_;
    JpegCoefficientStore coefficients_;
    Info info_{};
    bool manyScans_ = false;

    PictureHeader header_;
    RowSink* sink_ = nullptr;
    std::unique_ptr<std::uint8_t[]> rows_;
    std::size_t stride_ = 0;
    std::size_t blockRows_ = 0;

    std::size_t exifBytes_ = 0;
    std::array<std::uint8_t, mostExifBytes> exif_;
};

// See codec_jpeg_errors.h for what a step is.
bool JpegReader::attempt(void (JpegReader::*step)()) {
    if (setjmp(errors_.jump) != 0) return false;
    (this->*step)();
    return true;
}

ImagingStatus JpegReader::readHeader(PictureHeader& header) {
    if (!attempt(&JpegReader::headerStep)) return errors_.status();
    header_.width = static_cast<std::int32_t>(info_.image_width);
    header_.height = static_cast<std::int32_t>(info_.image_height);
    header_.grey = info_.num_components == 1;
    if (!areaIsPaidFor(header_.width, header_.height, source_.size()) ||
        !jpegBlocksFit(info_, source_.size()) || !chooseColours()) {
        return ImagingStatus::GenericError;
    }
    readResolution();
    header = header_;
    return ImagingStatus::Ok;
}

void JpegReader::headerStep() {
    jpeg_create_decompress(&info_);
    info_.src = &source_;
    jpeg_set_marker_processor(&info_, JPEG_APP0 + 1, [](j_decompress_ptr info) -> boolean {
        static_cast<Info*>(info)->reader->takeExif();
        return TRUE;
    });
    jpeg_read_header(&info_, TRUE);
    manyScans_ = jpeg_has_multiple_scans(&info_) != 0;
}

// Keeps the first Exif segment. Other APP1 segments, of which there may be many, are skipped.
void JpegReader::takeExif() {
    std::uint8_t length[2];
    source_.take(&info_, length, 2);
    const std::size_t count = static_cast<std::size_t>(length[0]) << 8 | length[1];
    if (count < 2) failJpeg(jpegCommon(&info_), JpegFailure::Refused);
    std::size_t left = count - 2;
    constexpr std::size_t signatureBytes = 6;
    if (exifBytes_ == 0 && left >= signatureBytes) {
        source_.take(&info_, exif_.data(), signatureBytes);
        left -= signatureBytes;
        if (std::equal(exif_.begin(), exif_.begin() + 4, "Exif")) {
            source_.take(&info_, exif_.data() + signatureBytes, left);
            exifBytes_ = signatureBytes + left;
            left = 0;
        }
    }
    source_.skip(&info_, left);
}

// False for a colour space without a meaning.
bool JpegReader::chooseColours() {
    info_.dct_method = JDCT_ISLOW;
    info_.do_fancy_upsampling = TRUE;
    // Coefficients that no scan told stay zero instead of being guessed from their neighbours.
    info_.do_block_smoothing = FALSE;
    switch (info_.jpeg_color_space) {
        case JCS_GRAYSCALE:
        case JCS_RGB:
        case JCS_YCbCr: info_.out_color_space = JCS_EXT_BGRA; return true;
        case JCS_CMYK:
        case JCS_YCCK: info_.out_color_space = JCS_CMYK; return true;
        default: return false;
    }
}

void JpegReader::readResolution() {
    constexpr int perInch = 1;
    constexpr int perCentimetre = 2;
    const bool unitKnown = info_.density_unit == perInch || info_.density_unit == perCentimetre;
    if (info_.saw_JFIF_marker != 0 && unitKnown && info_.X_density > 0 && info_.Y_density > 0) {
        const double factor = info_.density_unit == perCentimetre ? 2.54 : 1.0;
        header_.xResolution = static_cast<float>(info_.X_density * factor);
        header_.yResolution = static_cast<float>(info_.Y_density * factor);
        return;
    }
    const std::optional<ExifResolution> exif = exifResolution(std::span(exif_).first(exifBytes_));
    if (!exif) return;
    header_.xResolution = exif->x;
    header_.yResolution = exif->y;
}

ImagingStatus JpegReader::readPixels(RowSink& sink) {
    sink_ = &sink;
    stride_ = static_cast<std::size_t>(header_.width) * 4;
    blockRows_ = std::min(static_cast<std::size_t>(header_.height),
                          std::clamp(blockBytes / stride_, leastBlockRows, mostBlockRows));
    rows_.reset(new (std::nothrow) std::uint8_t[blockRows_ * stride_]);
    if (rows_ == nullptr) return ImagingStatus::OutOfMemory;
    const bool toFile = manyScans_ && coefficientsAreLarge();
    if (toFile && !coefficients_.install(&info_)) return ImagingStatus::GenericError;
    guard_.watch(&info_, source_.size(), toFile ? 2 : 1);
    if (!attempt(&JpegReader::startStep)) return errors_.status();
    if (manyScans_ && !guard_.sawAllComponents(info_)) return ImagingStatus::GenericError;
    if (!attempt(&JpegReader::rowsStep)) return errors_.status();
    // Only the end marker proves that the picture was not cut short.
    if (!attempt(&JpegReader::finishStep)) return errors_.status();
    return ImagingStatus::Ok;
}

bool JpegReader::coefficientsAreLarge() const {
    const std::uint64_t picture = static_cast<std::uint64_t>(stride_) * info_.image_height;
    return jpegCoefficientBytes(info_) > std::max(picture, smallCoefficients);
}

void JpegReader::rowsStep() {
    while (info_.output_scanline < info_.output_height) {
        const JDIMENSION top = info_.output_scanline;
        const auto count =
            static_cast<JDIMENSION>(std::min<std::size_t>(blockRows_, info_.output_height - top));
        while (info_.output_scanline < top + count) {
            std::array<JSAMPROW, mostBlockRows> lines;
            const JDIMENSION done = info_.output_scanline - top;
            for (JDIMENSION i = done; i < count; ++i) lines[i] = rows_.get() + i * stride_;
            jpeg_read_scanlines(&info_, lines.data() + done, count - done);
        }
        if (info_.out_color_space == JCS_CMYK) convertInks(rows_.get(), count * stride_ / 4);
        if (!sink_->putRows(static_cast<std::int32_t>(top), static_cast<std::int32_t>(count),
                            rows_.get())) {
            failJpeg(jpegCommon(&info_), JpegFailure::Refused);
        }
    }
}

// Cyan, magenta, yellow, black to blue, green, red, opaque. Files with Adobe's marker store the
// light that passes each ink, others the ink itself.
void JpegReader::convertInks(std::uint8_t* pixels, std::size_t count) const {
    const unsigned flip = info_.saw_Adobe_marker != 0 ? 0 : 0xff;
    const auto mix = [](unsigned light, unsigned black) {
        const unsigned product = light * black + 128;
        return static_cast<std::uint8_t>((product + (product >> 8)) >> 8);  // rounded / 255
    };
    for (std::uint8_t* pixel = pixels; pixel != pixels + count * 4; pixel += 4) {
        const unsigned black = pixel[3] ^ flip;
        const std::uint8_t red = mix(pixel[0] ^ flip, black);
        pixel[0] = mix(pixel[2] ^ flip, black);
        pixel[1] = mix(pixel[1] ^ flip, black);
        pixel[2] = red;
        pixel[3] = 0xff;
    }
}

}  // namespace

std::unique_ptr<PictureReader> makeJpegReader(ByteSource& source) {
    return std::make_unique<JpegReader>(source);
}

}  // namespace brushwork::platform
