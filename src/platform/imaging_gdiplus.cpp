#include <windows.h>
// The stream interface needs the header above.
#include <objidl.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <new>
#include <vector>

#include "platform/imaging_gdiplus_calls.h"
#include "platform/imaging_gdiplus_encode.h"
#include "platform/wide_text_win32.h"

namespace brushwork::platform {

namespace {

using namespace gdiplus;

constexpr float fallbackResolution = 96.0F;
constexpr std::int32_t rowsPerHandOver = 64;

struct ReleaseStream {
    void operator()(IStream* stream) const { stream->Release(); }
};
using StreamOwner = std::unique_ptr<IStream, ReleaseStream>;

// A stream over a copy of the bytes. Null if there is no memory for it.
StreamOwner makeStream(std::span<const std::uint8_t> bytes) {
    const HGLOBAL block = ::GlobalAlloc(GMEM_MOVEABLE, std::max<std::size_t>(bytes.size(), 1));
    if (!block) return nullptr;
    void* target = ::GlobalLock(block);
    IStream* stream = nullptr;
    if (target) {
        if (!bytes.empty()) std::memcpy(target, bytes.data(), bytes.size());
        ::GlobalUnlock(block);
        // From its success on the stream owns the block.
        if (SUCCEEDED(::CreateStreamOnHGlobal(block, TRUE, &stream))) return StreamOwner(stream);
    }
    ::GlobalFree(block);
    return nullptr;
}

bool isGreyEntry(std::uint32_t argb) {
    return (argb & 0xFF) == ((argb >> 8) & 0xFF) && (argb & 0xFF) == ((argb >> 16) & 0xFF);
}

// Every entry is a grey. False for pictures without a palette.
bool hasGreyPalette(Bitmap* bitmap) {
    std::uint32_t format = 0;
    if (GdipGetImagePixelFormat(bitmap, &format) != ImagingStatus::Ok) return false;
    if ((format & formatIsIndexed) == 0) return false;
    Palette256 palette;
    std::int32_t bytes = 0;
    if (GdipGetImagePaletteSize(bitmap, &bytes) != ImagingStatus::Ok) return false;
    if (bytes < 0 || static_cast<std::size_t>(bytes) > sizeof palette) return false;
    if (GdipGetImagePalette(bitmap, &palette, bytes) != ImagingStatus::Ok) return false;
    const std::size_t count = std::min<std::size_t>(palette.count, std::size(palette.entries));
    return count != 0 && std::all_of(palette.entries, palette.entries + count, isGreyEntry);
}

float usableResolution(ImagingStatus(__stdcall* ask)(Bitmap*, float*), Bitmap* bitmap) {
    float resolution = 0.0F;
    if (ask(bitmap, &resolution) != ImagingStatus::Ok) return fallbackResolution;
    return std::isfinite(resolution) && resolution > 0.0F ? resolution : fallbackResolution;
}

class GdiPlusPicture final : public Picture {
  public:
    GdiPlusPicture(BitmapOwner bitmap, StreamOwner stream)
        : stream_(std::move(stream)), bitmap_(std::move(bitmap)) {}

    // Reads the size. Anything but Ok makes the picture unusable.
    ImagingStatus readSize() {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        ImagingStatus status = GdipGetImageWidth(bitmap_.get(), &width);
        if (status == ImagingStatus::Ok) status = GdipGetImageHeight(bitmap_.get(), &height);
        if (status != ImagingStatus::Ok) return status;
        if (width < 1 || height < 1 || width > INT32_MAX / 4 || height > INT32_MAX)
            return ImagingStatus::InvalidParameter;
        width_ = static_cast<std::int32_t>(width);
        height_ = static_cast<std::int32_t>(height);
        return ImagingStatus::Ok;
    }

    std::int32_t width() const override { return width_; }
    std::int32_t height() const override { return height_; }
    float xResolution() const override {
        return usableResolution(GdipGetImageHorizontalResolution, bitmap_.get());
    }
    float yResolution() const override {
        return usableResolution(GdipGetImageVerticalResolution, bitmap_.get());
    }

    Guid rawFormat() const override {
        Guid format;
        if (GdipGetImageRawFormat(bitmap_.get(), &format) != ImagingStatus::Ok) return {};
        return format;
    }

    bool isGrey() const override {
        std::uint32_t flags = 0;
        if (GdipGetImageFlags(bitmap_.get(), &flags) == ImagingStatus::Ok &&
            (flags & imageFlagGrey) != 0)
            return true;
        return hasGreyPalette(bitmap_.get());
    }

    ImagingStatus readRows(PixelFormat format, RowSink& sink) override {
        if (format == PixelFormat::Rgb24) return ImagingStatus::InvalidParameter;
        if (consumed_) return ImagingStatus::WrongState;
        consumed_ = true;
        LockedBits bits(bitmap_.get(), width_, height_, lockForReading,
                        static_cast<std::uint32_t>(format));
        if (bits.status() != ImagingStatus::Ok) return bits.status();
        const std::int32_t step = bits.stride() == width_ * 4 ? rowsPerHandOver : 1;
        for (std::int32_t y = 0; y < height_;) {
            const std::int32_t count = std::min(step, height_ - y);
            if (!sink.putRows(y, count, bits.row(y))) return ImagingStatus::Aborted;
            y += count;
        }
        return bits.unlock();
    }

  private:
    StreamOwner stream_;  // read from until the bitmap is gone
    BitmapOwner bitmap_;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    bool consumed_ = false;
};

std::unique_ptr<Picture> makePicture(Bitmap* opened, StreamOwner stream, ImagingStatus& status) {
    BitmapOwner bitmap(opened);
    if (status != ImagingStatus::Ok) return nullptr;
    if (!bitmap) {
        status = ImagingStatus::GenericError;
        return nullptr;
    }
    try {
        auto picture = std::make_unique<GdiPlusPicture>(std::move(bitmap), std::move(stream));
        status = picture->readSize();
        if (status != ImagingStatus::Ok) return nullptr;
        return picture;
    } catch (const std::bad_alloc&) {
        status = ImagingStatus::OutOfMemory;
        return nullptr;
    }
}

bool isMissing(const std::wstring& path) {
    if (::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return false;
    const DWORD error = ::GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

class GdiPlusImagingService final : public ImagingService {
  public:
    ImagingStatus start(std::uintptr_t& token) override {
        const StartupInput input;
        return GdiplusStartup(&token, &input, nullptr);
    }
    void stop(std::uintptr_t token) override { GdiplusShutdown(token); }

    std::unique_ptr<Picture> openFile(std::u16string_view path, ImagingStatus& status) override {
        status = ImagingStatus::InvalidParameter;
        if (holdsTerminator(path)) return nullptr;
        try {
            const std::wstring name = toWide(path);
            Bitmap* bitmap = nullptr;
            status = GdipCreateBitmapFromFile(name.c_str(), &bitmap);
            // The platform's own answer for a missing file differs from release to release.
            if (status != ImagingStatus::Ok && isMissing(name))
                status = ImagingStatus::FileNotFound;
            return makePicture(bitmap, nullptr, status);
        } catch (const std::bad_alloc&) {
            status = ImagingStatus::OutOfMemory;
            return nullptr;
        }
    }

    std::unique_ptr<Picture> openMemory(std::span<const std::uint8_t> bytes,
                                        ImagingStatus& status) override {
        StreamOwner stream = makeStream(bytes);
        if (!stream) {
            status = ImagingStatus::OutOfMemory;
            return nullptr;
        }
        Bitmap* bitmap = nullptr;
        status = GdipCreateBitmapFromStream(stream.get(), &bitmap);
        return makePicture(bitmap, std::move(stream), status);
    }

    // The platform tells its encoders only while it is started; they are asked for until it does.
    std::span<const EncoderRecord> encoders() override {
        const std::lock_guard guard(listing_);
        try {
            if (records_.empty()) listEncoders();
        } catch (const std::bad_alloc&) {
            return {};
        }
        return records_;
    }

    ImagingStatus saveFile(std::u16string_view path, const Guid& encoder,
                           const EncodeRequest& request) override {
        const auto all = encoders();
        const auto record = std::find_if(all.begin(), all.end(), [&](const EncoderRecord& each) {
            return each.classId == encoder;
        });
        if (record == all.end()) return ImagingStatus::UnknownImageFormat;
        try {
            return encodeFile(path, *record, request);
        } catch (const std::bad_alloc&) {
            return ImagingStatus::OutOfMemory;
        }
    }

  private:
    struct Names {
        std::u16string mimeType;
        std::u16string formatName;
    };

    void listEncoders() {
        std::uint32_t count = 0;
        std::uint32_t bytes = 0;
        if (GdipGetImageEncodersSize(&count, &bytes) != ImagingStatus::Ok) return;
        if (count == 0 || bytes / sizeof(CodecInfo) < count) return;
        // The strings stand behind the records in the same block.
        std::vector<CodecInfo> block(bytes / sizeof(CodecInfo) + 1);
        if (GdipGetImageEncoders(count, bytes, block.data()) != ImagingStatus::Ok) return;
        std::vector<Names> names(count);
        std::vector<EncoderRecord> records(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            const CodecInfo& codec = block[i];
            names[i].mimeType = fromWide(codec.mimeType ? codec.mimeType : L"");
            names[i].formatName = fromWide(codec.formatDescription ? codec.formatDescription : L"");
            records[i] = {codec.classId, codec.formatId, names[i].mimeType, names[i].formatName};
        }
        names_.swap(names);
        records_.swap(records);
    }

    std::mutex listing_;
    std::vector<Names> names_;  // what the records' views look at
    std::vector<EncoderRecord> records_;
};

}  // namespace

ImagingService& imagingService() {
    static GdiPlusImagingService service;
    return service;
}

}  // namespace brushwork::platform
