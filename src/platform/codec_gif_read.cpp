#include "platform/codec_gif_read.h"

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "platform/codec_limits.h"

namespace brushwork::platform {

namespace {

constexpr int noTransparency = -1;

// Sides are below 2^16 and positions too, so that sums of both stay far inside an int.
struct Frame {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool interlaced = false;
    int right() const { return left + width; }
    int bottom() const { return top + height; }
};

// Interlaced rows come in four passes.
constexpr std::array<int, 4> passStart{0, 4, 2, 1};
constexpr std::array<int, 4> passStep{8, 8, 4, 2};

class GifReader final : public PictureReader {
  public:
    explicit GifReader(ByteSource& source) : source_(source) {}
    ~GifReader() override { DGifCloseFile(gif_, nullptr); }
    GifReader(const GifReader&) = delete;
    GifReader& operator=(const GifReader&) = delete;

    [[nodiscard]] ImagingStatus readHeader(PictureHeader& header) override;
    [[nodiscard]] ImagingStatus readPixels(RowSink& sink) override;

  private:
    [[nodiscard]] bool findFrame();
    [[nodiscard]] bool readExtension();
    [[nodiscard]] bool takeFrame();
    void takeScreen();
    void takeColours();
    [[nodiscard]] bool coversScreen() const;
    [[nodiscard]] ImagingStatus readRow(int frameRow, RowSink& sink);
    [[nodiscard]] ImagingStatus failure() const;

    static int onRead(GifFileType* gif, GifByteType* out, int count);
    int fetch(GifByteType* out, int count);
    [[nodiscard]] std::uint64_t position() const { return nextOffset_ - (bufferEnd_ - bufferAt_); }

    ByteSource& source_;
    GifFileType* gif_ = nullptr;
    Frame frame_;
    int width_ = 0;
    int height_ = 0;
    int transparent_ = noTransparency;
    bool indicesExceedTable_ = false;
    std::array<std::uint32_t, 256> colours_{};  // 0xAArrggbb, 0 for transparent
    bool grey_ = true;
    std::unique_ptr<std::uint8_t[]> indices_;  // a row of the frame
    std::unique_ptr<std::uint8_t[]> row_;      // a row of the screen

    std::uint64_t nextOffset_ = 0;  // of the source, behind the buffered bytes
    std::size_t bufferAt_ = 0;
    std::size_t bufferEnd_ = 0;
    std::array<std::uint8_t, 16384> buffer_;
};

int GifReader::onRead(GifFileType* gif, GifByteType* out, int count) {
    return static_cast<GifReader*>(gif->UserData)->fetch(out, count);
}

int GifReader::fetch(GifByteType* out, int count) {
    int done = 0;
    while (done < count) {
        if (bufferAt_ == bufferEnd_) {
            bufferAt_ = 0;
            bufferEnd_ = source_.readAt(nextOffset_, buffer_.data(), buffer_.size());
            nextOffset_ += bufferEnd_;
            if (bufferEnd_ == 0) break;
        }
        const std::size_t part =
            std::min(static_cast<std::size_t>(count - done), bufferEnd_ - bufferAt_);
        std::memcpy(out + done, buffer_.data() + bufferAt_, part);
        bufferAt_ += part;
        done += static_cast<int>(part);
    }
    return done;
}

ImagingStatus GifReader::failure() const {
    const bool memory = gif_ != nullptr && gif_->Error == D_GIF_ERR_NOT_ENOUGH_MEM;
    return memory ? ImagingStatus::OutOfMemory : ImagingStatus::GenericError;
}

ImagingStatus GifReader::readHeader(PictureHeader& header) {
    int error = 0;
    gif_ = DGifOpen(this, onRead, &error);
    if (gif_ == nullptr) {
        return error == D_GIF_ERR_NOT_ENOUGH_MEM ? ImagingStatus::OutOfMemory
                                                 : ImagingStatus::GenericError;
    }
    if (!findFrame() || !takeFrame()) return failure();
    header.width = width_;
    header.height = height_;
    header.grey = grey_;
    header.alpha = transparent_ != noTransparency || indicesExceedTable_ || !coversScreen();
    return ImagingStatus::Ok;
}

bool GifReader::findFrame() {
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(gif_, &type) != GIF_OK) return false;
        if (type == IMAGE_DESC_RECORD_TYPE) return DGifGetImageHeader(gif_) == GIF_OK;
        if (type != EXTENSION_RECORD_TYPE || !readExtension()) return false;
    }
}

// Blocks are read one by one, and all but a graphic control are dropped.
bool GifReader::readExtension() {
    int code = 0;
    GifByteType* block = nullptr;  // its length, then its bytes
    if (DGifGetExtension(gif_, &code, &block) != GIF_OK) return false;
    if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr) {
        GraphicsControlBlock control{};
        if (DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
            transparent_ = control.TransparentColor;
    }
    while (block != nullptr)
        if (DGifGetExtensionNext(gif_, &block) != GIF_OK) return false;
    return true;
}

bool GifReader::takeFrame() {
    const GifImageDesc& image = gif_->Image;
    frame_ = {image.Left, image.Top, image.Width, image.Height, image.Interlace};
    if (frame_.width < 1 || frame_.height < 1) return false;
    if (image.ColorMap == nullptr && gif_->SColorMap == nullptr) return false;
    takeScreen();
    takeColours();
    // A code stands for at most 4096 pixels and, where it stands for more than a few, takes more
    // than a byte: a frame beyond that bound is known to be cut off.
    const auto pixels =
        static_cast<std::uint64_t>(frame_.width) * static_cast<std::uint64_t>(frame_.height);
    const std::uint64_t left = source_.size() - std::min(source_.size(), position());
    return pixels / 4096 <= left && areaIsPaidFor(frame_.width, frame_.height, source_.size());
}

void GifReader::takeScreen() {
    width_ = gif_->SWidth;
    height_ = gif_->SHeight;
    if (width_ == 0 || width_ < frame_.width) width_ = frame_.right();
    if (height_ == 0 || height_ < frame_.height) height_ = frame_.bottom();
}

void GifReader::takeColours() {
    const ColorMapObject* map =
        gif_->Image.ColorMap != nullptr ? gif_->Image.ColorMap : gif_->SColorMap;
    const int count = std::clamp(map->ColorCount, 0, 256);
    for (int i = 0; i < count; ++i) {
        const GifColorType& colour = map->Colors[i];
        grey_ = grey_ && colour.Red == colour.Green && colour.Green == colour.Blue;
        colours_[static_cast<std::size_t>(i)] =
            0xFF000000U | static_cast<std::uint32_t>(colour.Red) << 16 |
            static_cast<std::uint32_t>(colour.Green) << 8 | colour.Blue;
    }
    if (transparent_ != noTransparency) colours_[static_cast<std::size_t>(transparent_) & 0xFF] = 0;
    // The last byte read is the code size, which says how high an index may be.
    const int codeSize = bufferAt_ > 0 ? std::min<int>(buffer_[bufferAt_ - 1], 8) : 8;
    indicesExceedTable_ = (1 << codeSize) > count;
}

bool GifReader::coversScreen() const {
    return frame_.left == 0 && frame_.top == 0 && frame_.right() >= width_ &&
           frame_.bottom() >= height_;
}

ImagingStatus GifReader::readPixels(RowSink& sink) {
    indices_.reset(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(frame_.width)]);
    row_.reset(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(width_) * 4]());
    if (!indices_ || !row_) return ImagingStatus::OutOfMemory;
    const std::size_t passes = frame_.interlaced ? passStart.size() : 1;
    for (std::size_t pass = 0; pass < passes; ++pass) {
        const int step = frame_.interlaced ? passStep[pass] : 1;
        for (int y = passStart[pass]; y < frame_.height; y += step) {
            const ImagingStatus status = readRow(y, sink);
            if (status != ImagingStatus::Ok) return status;
        }
    }
    return ImagingStatus::Ok;
}

// A row outside the screen is decoded too: whether the data is whole shows only at its end.
ImagingStatus GifReader::readRow(int frameRow, RowSink& sink) {
    if (DGifGetLine(gif_, indices_.get(), frame_.width) != GIF_OK) return failure();
    const int y = frame_.top + frameRow;
    const int visible = std::min(frame_.right(), width_) - frame_.left;
    if (y >= height_ || visible < 1) return ImagingStatus::Ok;
    std::uint8_t* out = row_.get() + static_cast<std::size_t>(frame_.left) * 4;
    std::uint32_t any = 0;
    for (int x = 0; x < visible; ++x, out += 4) {
        const std::uint32_t colour = colours_[indices_[static_cast<std::size_t>(x)]];
        any |= colour;
        std::memcpy(out, &colour, sizeof colour);
    }
    if (any == 0) return ImagingStatus::Ok;
    return sink.putRows(y, 1, row_.get()) ? ImagingStatus::Ok : ImagingStatus::GenericError;
}

}  // namespace

std::unique_ptr<PictureReader> makeGifReader(ByteSource& source) {
    return std::make_unique<GifReader>(source);
}

}  // namespace brushwork::platform
