#include "platform/codec_png_read.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "platform/codec_limits.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t inputBytes = std::size_t{64} << 10;
constexpr std::size_t blockBytes = std::size_t{256} << 10;
constexpr std::uint32_t dataChunk = 0x49444154;  // "IDAT"

// libpng reports errors by longjmp. Every call into it therefore happens inside a step, a member
// function run by attempt(); steps and the callbacks below hold nothing with a destructor, and all
// state that outlives a step is in members.
class PngReader : public PictureReader {
  public:
    explicit PngReader(ByteSource& source) : source_(source) {}
    ~PngReader() override { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    [[nodiscard]] ImagingStatus readHeader(PictureHeader& header) override;
    [[nodiscard]] ImagingStatus readPixels(RowSink& sink) override;

  private:
    bool attempt(void (PngReader::*step)());
    [[nodiscard]] ImagingStatus failure() const;

    void headerStep();
    void transformStep();
    void rowsStep();
    void passesStep();
    void endStep();

    void setLimits();
    void readResolution();
    bool sizeIsSane() const;
    bool allocate(std::size_t rows);
    bool handOver(std::size_t blockRows);
    void fetch(png_bytep out, std::size_t count);

    static void onRead(png_structp png, png_bytep out, std::size_t count);
    [[noreturn]] static void onError(png_structp png, png_const_charp text);
    static void onWarning(png_structp, png_const_charp) {}
    static png_voidp onAllocate(png_structp png, png_alloc_size_t count);
    static void onFree(png_structp, png_voidp memory) { std::free(memory); }

    ByteSource& source_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    PictureHeader header_;
    RowSink* sink_ = nullptr;
    std::unique_ptr<std::uint8_t[]> rows_;     // a block of them, or all if interlaced
    std::unique_ptr<std::uint8_t[]> passRow_;  // interlaced: one row of one pass
    std::size_t stride_ = 0;
    std::int32_t rowsHeld_ = 0;
    bool interlaced_ = false;
    bool outOfMemory_ = false;
    bool sourceEnded_ = false;

    std::uint64_t nextOffset_ = 0;  // of the source, behind the buffered bytes
    std::size_t bufferAt_ = 0;
    std::size_t bufferEnd_ = 0;
    std::array<std::uint8_t, inputBytes> buffer_;
};

bool PngReader::attempt(void (PngReader::*step)()) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    (this->*step)();
    return true;
}

ImagingStatus PngReader::failure() const {
    return outOfMemory_ ? ImagingStatus::OutOfMemory : ImagingStatus::GenericError;
}

void PngReader::onError(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

png_voidp PngReader::onAllocate(png_structp png, png_alloc_size_t count) {
    void* memory = std::malloc(count);
    if (memory == nullptr) static_cast<PngReader*>(png_get_mem_ptr(png))->outOfMemory_ = true;
    return memory;
}

void PngReader::onRead(png_structp png, png_bytep out, std::size_t count) {
    static_cast<PngReader*>(png_get_io_ptr(png))->fetch(out, count);
}

void PngReader::fetch(png_bytep out, std::size_t count) {
    while (count > 0) {
        if (bufferAt_ == bufferEnd_) {
            bufferAt_ = 0;
            bufferEnd_ = source_.readAt(nextOffset_, buffer_.data(), buffer_.size());
            nextOffset_ += bufferEnd_;
            if (bufferEnd_ == 0) {
                sourceEnded_ = nextOffset_ >= source_.size();
                png_error(png_, "no more bytes");
            }
        }
        const std::size_t part = std::min(count, bufferEnd_ - bufferAt_);
        std::memcpy(out, buffer_.data() + bufferAt_, part);
        bufferAt_ += part;
        out += part;
        count -= part;
    }
}

ImagingStatus PngReader::readHeader(PictureHeader& header) {
    png_ = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, this, onError, onWarning, this,
                                    onAllocate, onFree);
    if (png_ != nullptr) info_ = png_create_info_struct(png_);
    if (info_ == nullptr) return ImagingStatus::OutOfMemory;
    if (!attempt(&PngReader::headerStep)) return failure();
    if (!sizeIsSane()) return ImagingStatus::GenericError;
    header = header_;
    return ImagingStatus::Ok;
}

void PngReader::headerStep() {
    png_set_read_fn(png_, this, onRead);
    setLimits();
    png_read_info(png_, info_);
    header_.width = static_cast<std::int32_t>(png_get_image_width(png_, info_));
    header_.height = static_cast<std::int32_t>(png_get_image_height(png_, info_));
    const int colour = png_get_color_type(png_, info_);
    header_.grey = (colour & (PNG_COLOR_MASK_COLOR | PNG_COLOR_MASK_PALETTE)) == 0;
    header_.alpha =
        (colour & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    interlaced_ = png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
    readResolution();
}

// Of the chunks that may be absent only tRNS and pHYs are looked at; the others, compressed texts
// and profiles among them, are skipped without being kept or unpacked.
void PngReader::setLimits() {
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    static constexpr png_byte resolutionChunk[] = "pHYs";
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_AS_DEFAULT, resolutionChunk, 1);
    png_set_chunk_malloc_max(png_, std::size_t{8} << 20);
    png_set_benign_errors(png_, 1);
    // A row of 32-bit pixels must be a 32-bit signed number of bytes.
    png_set_user_limits(png_, std::numeric_limits<std::int32_t>::max() / 4,
                        std::numeric_limits<std::int32_t>::max());
}

void PngReader::readResolution() {
    png_uint_32 x = 0;
    png_uint_32 y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(png_, info_, &x, &y, &unit) == 0) return;
    if (unit != PNG_RESOLUTION_METER || x == 0 || y == 0) return;
    constexpr double metresPerInch = 0.0254;
    header_.xResolution = static_cast<float>(x * metresPerInch);
    header_.yResolution = static_cast<float>(y * metresPerInch);
}

// Deflate packs at most 1032 bytes into one, so a file that is too short for its size is known to
// be truncated before anything is allocated for it.
bool PngReader::sizeIsSane() const {
    const std::uint64_t rawRow = png_get_rowbytes(png_, info_);
    const auto height = static_cast<std::uint64_t>(header_.height);
    constexpr std::uint64_t bestRatio = 1032;
    if (rawRow == 0 || source_.size() < rawRow * height / bestRatio) return false;
    return areaIsPaidFor(header_.width, header_.height, source_.size());
}

ImagingStatus PngReader::readPixels(RowSink& sink) {
    sink_ = &sink;
    stride_ = static_cast<std::size_t>(header_.width) * 4;
    const auto height = static_cast<std::size_t>(header_.height);
    const std::size_t blockRows = std::clamp<std::size_t>(blockBytes / stride_, 1, 64);
    if (!attempt(&PngReader::transformStep)) return failure();
    if (!allocate(interlaced_ ? height : std::min(blockRows, height))) {
        return ImagingStatus::OutOfMemory;
    }
    if (!attempt(interlaced_ ? &PngReader::passesStep : &PngReader::rowsStep)) return failure();
    if (!attempt(&PngReader::endStep)) {
        // The picture is whole if nothing but chunks behind its data are missing.
        const bool insideData = png_get_io_chunk_type(png_) == dataChunk &&
                                (png_get_io_state(png_) & PNG_IO_MASK_LOC) != PNG_IO_CHUNK_HDR;
        if (!sourceEnded_ || insideData) return failure();
    }
    return !interlaced_ || handOver(blockRows) ? ImagingStatus::Ok : failure();
}

// In blocks all the same, because a sink may need room of its own for each.
bool PngReader::handOver(std::size_t blockRows) {
    const auto most = static_cast<std::int32_t>(blockRows);
    for (std::int32_t y = 0; y < header_.height;) {
        const std::int32_t count = std::min(most, header_.height - y);
        if (!sink_->putRows(y, count, rows_.get() + static_cast<std::size_t>(y) * stride_)) {
            return false;
        }
        y += count;
    }
    return true;
}

bool PngReader::allocate(std::size_t rows) {
    if (rows > std::numeric_limits<std::ptrdiff_t>::max() / stride_) return false;
    rowsHeld_ = static_cast<std::int32_t>(rows);
    // Not zeroed: every pixel is written before it is handed over.
    rows_.reset(new (std::nothrow) std::uint8_t[rows * stride_]);
    if (interlaced_) passRow_.reset(new (std::nothrow) std::uint8_t[stride_]);
    return rows_ != nullptr && (!interlaced_ || passRow_ != nullptr);
}

void PngReader::transformStep() {
    png_set_expand(png_);
    png_set_scale_16(png_);
    png_set_gray_to_rgb(png_);
    png_set_bgr(png_);
    png_set_add_alpha(png_, 0xff, PNG_FILLER_AFTER);
    png_start_read_image(png_);
}

void PngReader::rowsStep() {
    for (std::int32_t y = 0; y < header_.height;) {
        const std::int32_t count = std::min(rowsHeld_, header_.height - y);
        for (std::int32_t i = 0; i < count; ++i) {
            png_read_row(png_, rows_.get() + static_cast<std::size_t>(i) * stride_, nullptr);
        }
        if (!sink_->putRows(y, count, rows_.get())) png_error(png_, "refused by the sink");
        y += count;
    }
}

// Each pass is read as the small picture it is and spread over the whole one, so that a pixel is
// written once. libpng leaves empty passes out, as this must too.
void PngReader::passesStep() {
    const auto width = static_cast<std::uint32_t>(header_.width);
    const auto height = static_cast<std::uint32_t>(header_.height);
    for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass) {
        const std::uint32_t columns = PNG_PASS_COLS(width, pass);
        if (columns == 0) continue;
        for (std::uint32_t i = 0; i < PNG_PASS_ROWS(height, pass); ++i) {
            png_read_row(png_, passRow_.get(), nullptr);
            std::uint8_t* row = rows_.get() + PNG_ROW_FROM_PASS_ROW(i, pass) * stride_;
            for (std::uint32_t j = 0; j < columns; ++j) {
                const std::size_t x = PNG_COL_FROM_PASS_COL(j, pass);
                std::memcpy(row + x * 4, passRow_.get() + std::size_t{j} * 4, 4);
            }
        }
    }
}

// Checks the end of the picture data and all chunks behind it.
void PngReader::endStep() {
    png_read_end(png_, nullptr);
}

}  // namespace

std::unique_ptr<PictureReader> makePngReader(ByteSource& source) {
    return std::make_unique<PngReader>(source);
}

}  // namespace brushwork::platform
