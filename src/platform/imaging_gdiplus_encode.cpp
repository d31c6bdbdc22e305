#include "platform/imaging_gdiplus_encode.h"

#include <windows.h>

#include <atomic>
#include <memory>
#include <string>

#include "platform/clean_up.h"
#include "platform/imaging_gdiplus_calls.h"
#include "platform/imaging_gdiplus_gif.h"
#include "platform/wide_text_win32.h"

namespace brushwork::platform::gdiplus {

namespace {

constexpr Guid encoderQuality{
    0x1d5be4b5, 0xfa4a, 0x452d, {0x9c, 0xdd, 0x5d, 0xb3, 0x51, 0x05, 0xe7, 0xeb}};

ImagingStatus makeTrueColour(const EncodeRequest& request, BitmapOwner& bitmap) {
    constexpr auto format = static_cast<std::uint32_t>(PixelFormat::Argb32);
    const ImagingStatus status = makeBitmap(request.width, request.height, format, bitmap);
    if (status != ImagingStatus::Ok) return status;
    LockedBits bits(bitmap.get(), request.width, request.height, lockForWriting, format);
    if (bits.status() != ImagingStatus::Ok) return bits.status();
    for (std::int32_t y = 0; y < request.height; ++y)
        if (!request.source->getRow(y, bits.row(y))) return ImagingStatus::Aborted;
    return bits.unlock();
}

// An empty file of its own beside `path`; empty text if the directory takes none.
std::wstring createBeside(const std::wstring& path) {
    static std::atomic<unsigned> counter{0};
    const std::size_t separator = path.find_last_of(L"\\/:");
    const std::wstring directory =
        separator == std::wstring::npos ? std::wstring() : path.substr(0, separator + 1);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::wstring name = directory + L"~bw" + std::to_wstring(::GetCurrentProcessId()) +
                                  L"-" + std::to_wstring(::GetTickCount()) + L"-" +
                                  std::to_wstring(counter.fetch_add(1)) + L".tmp";
        const HANDLE file = ::CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            ::CloseHandle(file);
            return name;
        }
        if (::GetLastError() != ERROR_FILE_EXISTS) break;
    }
    return {};
}

// Deletes its file unless it has been kept, also when the process is ended in between.
class PartialFile {
  public:
    explicit PartialFile(std::wstring path) : path_(std::move(path)), text_(fromWide(path_)) {
        notePartialFile(text_);
    }
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;
    ~PartialFile() {
        if (!kept_) ::DeleteFileW(path_.c_str());
        dropPartialFile(text_);
    }
    [[nodiscard]] const std::wstring& path() const { return path_; }
    void keep() { kept_ = true; }

  private:
    std::wstring path_;
    std::u16string text_;
    bool kept_ = false;
};

std::unique_ptr<PartialFile> makePartialBeside(const std::wstring& path) {
    const EndingHold hold;  // until the file is noted
    std::wstring name = createBeside(path);
    return name.empty() ? nullptr : std::make_unique<PartialFile>(std::move(name));
}

ImagingStatus save(Bitmap* bitmap, const std::wstring& path, const EncoderRecord& encoder,
                   const EncodeRequest& request) {
    if (!request.quality)
        return GdipSaveImageToFile(bitmap, path.c_str(), &encoder.classId, nullptr);
    std::int32_t quality = *request.quality;
    EncoderParameters parameters;
    parameters.parameter.id = encoderQuality;
    parameters.parameter.value = &quality;
    return GdipSaveImageToFile(bitmap, path.c_str(), &encoder.classId, &parameters);
}

// Only a file that is there already can be written in such a directory; the platform decides.
ImagingStatus saveInPlace(Bitmap* bitmap, const std::wstring& path, const EncoderRecord& encoder,
                          const EncodeRequest& request) {
    if (::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES)
        return save(bitmap, path, encoder, request);
    PartialFile partial(path);
    const ImagingStatus status = save(bitmap, path, encoder, request);
    if (status == ImagingStatus::Ok) partial.keep();
    return status;
}

ImagingStatus saveBeside(Bitmap* bitmap, const std::wstring& path, const EncoderRecord& encoder,
                         const EncodeRequest& request) {
    const std::unique_ptr<PartialFile> partial = makePartialBeside(path);
    if (!partial) return saveInPlace(bitmap, path, encoder, request);
    const std::wstring& temporary = partial->path();
    const ImagingStatus status = save(bitmap, temporary, encoder, request);
    if (status != ImagingStatus::Ok) return status;
    if (!::MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING))
        return ImagingStatus::GenericError;
    partial->keep();
    return ImagingStatus::Ok;
}

}  // namespace

ImagingStatus encodeFile(std::u16string_view path, const EncoderRecord& encoder,
                         const EncodeRequest& request) {
    if (request.width < 1 || request.height < 1 || !request.source || holdsTerminator(path))
        return ImagingStatus::InvalidParameter;
    // The platform counts the bytes of a bitmap in 32 bits.
    if (std::uint64_t{4} * static_cast<std::uint32_t>(request.width) *
            static_cast<std::uint32_t>(request.height) >
        INT32_MAX)
        return ImagingStatus::OutOfMemory;

    BitmapOwner bitmap;
    ImagingStatus status = encoder.formatId == imageFormatGif ? makePaletteBitmap(request, bitmap)
                                                              : makeTrueColour(request, bitmap);
    if (status != ImagingStatus::Ok) return status;
    // A resolution that the platform refuses is no reason to lose the picture.
    if (request.hasResolution)
        (void)GdipBitmapSetResolution(bitmap.get(), request.xResolution, request.yResolution);
    return saveBeside(bitmap.get(), toWide(path), encoder, request);
}

}  // namespace brushwork::platform::gdiplus
