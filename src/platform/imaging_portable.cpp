#include "platform/imaging_portable.h"

#include <algorithm>
#include <array>
#include <new>
#include <vector>

#include "platform/byte_stream.h"
#include "platform/codec.h"
#include "platform/codec_bmp.h"
#include "platform/codec_gif.h"
#include "platform/codec_jpeg.h"
#include "platform/codec_png.h"
#include "platform/codec_tiff.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t headBytes = 32;
constexpr std::size_t formatCount = 5;

const std::array<const Codec*, formatCount>& codecs() {
    static const std::array<const Codec*, formatCount> all{&bmpCodec(), &jpegCodec(), &gifCodec(),
                                                           &tiffCodec(), &pngCodec()};
    return all;
}

const Codec* recognise(ByteSource& source) {
    std::array<std::uint8_t, headBytes> head{};
    const std::size_t count = source.readAt(0, head.data(), head.size());
    for (const Codec* codec : codecs())
        if (codec->recognises(std::span(head).first(count))) return codec;
    return nullptr;
}

// Premultiplies rows on their way to another sink, a block at a time.
class PremultiplyingSink final : public RowSink {
  public:
    PremultiplyingSink(RowSink& target, std::int32_t width)
        : target_(target), rowBytes_(static_cast<std::size_t>(width) * 4) {}

    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        const std::size_t bytes = rowBytes_ * static_cast<std::size_t>(count);
        block_.assign(bgra, bgra + bytes);
        premultiply(block_.data(), bytes / 4);
        return target_.putRows(y, count, block_.data());
    }

  private:
    RowSink& target_;
    std::size_t rowBytes_;
    std::vector<std::uint8_t> block_;
};

// Refuses rows outside the picture before they reach the caller's sink.
class CheckedSink final : public RowSink {
  public:
    CheckedSink(RowSink& target, std::int32_t height) : target_(target), height_(height) {}

    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        if (y < 0 || count < 1 || y > height_ - count) return false;
        return target_.putRows(y, count, bgra);
    }

  private:
    RowSink& target_;
    std::int32_t height_;
};

class PortablePicture final : public Picture {
  public:
    // The reader refers to the source, so the source is the older member.
    PortablePicture(std::unique_ptr<ByteSource> source, const Codec& codec)
        : source_(std::move(source)), codec_(codec), reader_(codec.makeReader(*source_)) {}

    ImagingStatus readHeader() { return reader_->readHeader(header_); }

    std::int32_t width() const override { return header_.width; }
    std::int32_t height() const override { return header_.height; }
    float xResolution() const override { return header_.xResolution; }
    float yResolution() const override { return header_.yResolution; }
    Guid rawFormat() const override { return codec_.encoder.formatId; }
    bool isGrey() const override { return header_.grey; }

    ImagingStatus readRows(PixelFormat format, RowSink& sink) override {
        if (format == PixelFormat::Rgb24) return ImagingStatus::InvalidParameter;
        if (consumed_) return ImagingStatus::WrongState;
        consumed_ = true;
        CheckedSink checked(sink, header_.height);
        try {
            if (format == PixelFormat::Argb32 || !header_.alpha)
                return reader_->readPixels(checked);
            PremultiplyingSink premultiplied(checked, header_.width);
            return reader_->readPixels(premultiplied);
        } catch (const std::bad_alloc&) {
            return ImagingStatus::OutOfMemory;
        }
    }

  private:
    std::unique_ptr<ByteSource> source_;
    const Codec& codec_;
    std::unique_ptr<PictureReader> reader_;
    PictureHeader header_;
    bool consumed_ = false;
};

std::unique_ptr<Picture> openSource(std::unique_ptr<ByteSource> source, ImagingStatus& status) {
    try {
        const Codec* codec = recognise(*source);
        if (!codec) {
            status = ImagingStatus::UnknownImageFormat;
            return nullptr;
        }
        auto picture = std::make_unique<PortablePicture>(std::move(source), *codec);
        status = picture->readHeader();
        if (status == ImagingStatus::Ok && (picture->width() < 1 || picture->height() < 1))
            status = ImagingStatus::InvalidParameter;
        if (status != ImagingStatus::Ok) return nullptr;
        return picture;
    } catch (const std::bad_alloc&) {
        status = ImagingStatus::OutOfMemory;
        return nullptr;
    }
}

class PortableImagingService final : public ImagingService {
  public:
    PortableImagingService() {
        for (std::size_t i = 0; i < formatCount; ++i) records_[i] = codecs()[i]->encoder;
    }

    // There is no platform to start; the token only has to differ from "none".
    ImagingStatus start(std::uintptr_t& token) override {
        token = 1;
        return ImagingStatus::Ok;
    }
    void stop(std::uintptr_t) override {}

    std::unique_ptr<Picture> openFile(std::u16string_view path, ImagingStatus& status) override {
        auto source = openFileSource(path);
        if (source) return openSource(std::move(source), status);
        status = ImagingStatus::FileNotFound;
        return nullptr;
    }

    std::unique_ptr<Picture> openMemory(std::span<const std::uint8_t> bytes,
                                        ImagingStatus& status) override {
        return openSource(openMemorySource(bytes), status);
    }

    std::span<const EncoderRecord> encoders() override { return records_; }

    ImagingStatus saveFile(std::u16string_view path, const Guid& encoder,
                           const EncodeRequest& request) override {
        const auto codec = std::find_if(codecs().begin(), codecs().end(), [&](const Codec* each) {
            return each->encoder.classId == encoder;
        });
        if (codec == codecs().end()) return ImagingStatus::UnknownImageFormat;
        if (request.width < 1 || request.height < 1 || !request.source)
            return ImagingStatus::InvalidParameter;
        try {
            const auto target = createFileTarget(path);
            if (!target) return ImagingStatus::GenericError;
            const ImagingStatus status = (*codec)->write(request, *target);
            if (status != ImagingStatus::Ok) return status;
            return target->commit() ? ImagingStatus::Ok : ImagingStatus::GenericError;
        } catch (const std::bad_alloc&) {
            return ImagingStatus::OutOfMemory;
        }
    }

  private:
    std::array<EncoderRecord, formatCount> records_;
};

}  // namespace

void premultiply(std::uint8_t* bgra, std::size_t count) {
    for (std::uint8_t* end = bgra + count * 4; bgra != end; bgra += 4) {
        const unsigned alpha = bgra[3];
        if (alpha == 255) continue;
        for (int channel = 0; channel < 3; ++channel)
            bgra[channel] = static_cast<std::uint8_t>((alpha * bgra[channel] + 127) / 255);
    }
}

ImagingService& imagingService() {
    static PortableImagingService service;
    return service;
}

}  // namespace brushwork::platform
