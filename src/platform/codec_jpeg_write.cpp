#include "platform/codec_jpeg_write.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "platform/codec_jpeg_errors.h"

namespace brushwork::platform {

namespace {

constexpr std::int32_t defaultQuality = 75;
constexpr std::int32_t largestSide = 65500;

// Hands libjpeg's output to a ByteTarget through a fixed buffer.
class JpegTarget : public jpeg_destination_mgr {
  public:
    explicit JpegTarget(ByteTarget& target);

  private:
    void begin();
    void write(j_compress_ptr info, std::size_t count);

    ByteTarget& target_;
    std::uint64_t offset_ = 0;
    std::array<std::uint8_t, std::size_t{64} << 10> buffer_;
};

JpegTarget::JpegTarget(ByteTarget& target) : jpeg_destination_mgr(), target_(target) {
    init_destination = [](j_compress_ptr info) { static_cast<JpegTarget*>(info->dest)->begin(); };
    empty_output_buffer = [](j_compress_ptr info) -> boolean {
        auto* self = static_cast<JpegTarget*>(info->dest);
        self->write(info, self->buffer_.size());  // whatever free_in_buffer says
        return TRUE;
    };
    term_destination = [](j_compress_ptr info) {
        auto* self = static_cast<JpegTarget*>(info->dest);
        self->write(info, self->buffer_.size() - self->free_in_buffer);
    };
}

void JpegTarget::begin() {
    next_output_byte = buffer_.data();
    free_in_buffer = buffer_.size();
}

void JpegTarget::write(j_compress_ptr info, std::size_t count) {
    if (count > 0 && !target_.writeAt(offset_, buffer_.data(), count)) {
        failJpeg(jpegCommon(info), JpegFailure::FileAccess);
    }
    offset_ += count;
    begin();
}

class JpegWriter {
  public:
    JpegWriter(const EncodeRequest& request, ByteTarget& target)
        : request_(request), target_(target) {
        info_.err = &errors_;
    }
    ~JpegWriter() { jpeg_destroy_compress(&info_); }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

    [[nodiscard]] ImagingStatus write();

  private:
    bool attempt(void (JpegWriter::*step)());
    void startStep();
    void rowsStep();

    const EncodeRequest& request_;
    JpegErrors errors_;
    JpegTarget target_;
    jpeg_compress_struct info_{};
    std::unique_ptr<std::uint8_t[]> row_;
};

ImagingStatus JpegWriter::write() {
    const auto sideFits = [](std::int32_t side) { return side >= 1 && side <= largestSide; };
    if (!sideFits(request_.width) || !sideFits(request_.height) || request_.source == nullptr) {
        return ImagingStatus::InvalidParameter;
    }
    row_.reset(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(request_.width) * 4]);
    if (row_ == nullptr) return ImagingStatus::OutOfMemory;
    const bool written = attempt(&JpegWriter::startStep) && attempt(&JpegWriter::rowsStep);
    return written ? ImagingStatus::Ok : errors_.status();
}

// See codec_jpeg_errors.h for what a step is.
bool JpegWriter::attempt(void (JpegWriter::*step)()) {
    if (setjmp(errors_.jump) != 0) return false;
    (this->*step)();
    return true;
}

void JpegWriter::startStep() {
    jpeg_create_compress(&info_);
    info_.dest = &target_;
    info_.image_width = static_cast<JDIMENSION>(request_.width);
    info_.image_height = static_cast<JDIMENSION>(request_.height);
    info_.input_components = 4;
    info_.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&info_);  // YCbCr, chroma at half size both ways
    jpeg_set_quality(&info_, std::clamp(request_.quality.value_or(defaultQuality), 1, 100), TRUE);
    const auto density = [](float perInch) {
        // Not-a-number fails the first comparison.
        if (!(perInch >= 1.0F)) return UINT16{1};
        return static_cast<UINT16>(std::lround(std::min(perInch, 65535.0F)));
    };
    info_.density_unit = 1;
    info_.X_density = density(request_.xResolution);
    info_.Y_density = density(request_.yResolution);
    jpeg_start_compress(&info_, TRUE);
}

void JpegWriter::rowsStep() {
    for (std::int32_t y = 0; y < request_.height; ++y) {
        if (!request_.source->getRow(y, row_.get())) {
            failJpeg(jpegCommon(&info_), JpegFailure::Refused);
        }
        JSAMPROW line = row_.get();
        jpeg_write_scanlines(&info_, &line, 1);
    }
    jpeg_finish_compress(&info_);
}

}  // namespace

ImagingStatus writeJpeg(const EncodeRequest& request, ByteTarget& target) {
    return JpegWriter(request, target).write();
}

}  // namespace brushwork::platform
