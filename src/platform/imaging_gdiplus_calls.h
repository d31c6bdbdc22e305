// The flat GDI+ calls in use, declared by hand with our own status and identifier types, which have
// the same bytes. The C++ header of the platform would bring its own min, max and class names.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "platform/imaging.h"

namespace brushwork::platform::gdiplus {

struct Bitmap;  // never defined: a handle

enum : std::uint32_t { formatIndexed8 = 0x30803, formatIsIndexed = 0x10000 };
enum : std::uint32_t { lockForReading = 1, lockForWriting = 2 };
enum : std::uint32_t { imageFlagGrey = 0x40 };
enum : std::uint32_t { paletteHasAlpha = 1 };
enum : std::uint32_t { valueTypeLong = 4 };

struct StartupInput {
    std::uint32_t version = 1;
    void* debugEventCallback = nullptr;
    std::int32_t suppressBackgroundThread = 0;
    std::int32_t suppressExternalCodecs = 0;
};

struct Rect {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

struct BitmapData {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::int32_t stride = 0;  // below zero where rows are stored from the bottom up
    std::uint32_t pixelFormat = 0;
    void* scan0 = nullptr;  // the top row
    std::uintptr_t reserved = 0;
};

// The largest palette there is; the platform's own type ends in an open array.
struct Palette256 {
    std::uint32_t flags = 0;
    std::uint32_t count = 0;
    std::uint32_t entries[256] = {};  // 0xAARRGGBB
};

struct CodecInfo {
    Guid classId;
    Guid formatId;
    const wchar_t* codecName;
    const wchar_t* dllName;
    const wchar_t* formatDescription;
    const wchar_t* filenameExtension;
    const wchar_t* mimeType;
    std::uint32_t flags;
    std::uint32_t version;
    std::uint32_t signatureCount;
    std::uint32_t signatureSize;
    const std::uint8_t* signaturePattern;
    const std::uint8_t* signatureMask;
};

struct EncoderParameter {
    Guid id;
    std::uint32_t valueCount = 1;
    std::uint32_t valueType = valueTypeLong;
    void* value = nullptr;
};

// A block with one parameter.
struct EncoderParameters {
    std::uint32_t count = 1;
    EncoderParameter parameter;
};

static_assert(sizeof(Guid) == 16);
static_assert(sizeof(BitmapData) == 16 + 2 * sizeof(void*));
static_assert(sizeof(Palette256) == 8 + 256 * 4);
static_assert(sizeof(CodecInfo) == 48 + 7 * sizeof(void*));
static_assert(sizeof(EncoderParameters) == 24 + 2 * sizeof(void*));

extern "C" {
ImagingStatus __stdcall GdiplusStartup(std::uintptr_t* token, const StartupInput* input,
                                       void* output);
void __stdcall GdiplusShutdown(std::uintptr_t token);

ImagingStatus __stdcall GdipCreateBitmapFromFile(const wchar_t* path, Bitmap** bitmap);
ImagingStatus __stdcall GdipCreateBitmapFromStream(IStream* stream, Bitmap** bitmap);
ImagingStatus __stdcall GdipCreateBitmapFromScan0(std::int32_t width, std::int32_t height,
                                                  std::int32_t stride, std::uint32_t format,
                                                  std::uint8_t* scan0, Bitmap** bitmap);
ImagingStatus __stdcall GdipDisposeImage(Bitmap* bitmap);

ImagingStatus __stdcall GdipGetImageWidth(Bitmap* bitmap, std::uint32_t* width);
ImagingStatus __stdcall GdipGetImageHeight(Bitmap* bitmap, std::uint32_t* height);
ImagingStatus __stdcall GdipGetImageHorizontalResolution(Bitmap* bitmap, float* resolution);
ImagingStatus __stdcall GdipGetImageVerticalResolution(Bitmap* bitmap, float* resolution);
ImagingStatus __stdcall GdipGetImageRawFormat(Bitmap* bitmap, Guid* format);
ImagingStatus __stdcall GdipGetImagePixelFormat(Bitmap* bitmap, std::uint32_t* format);
ImagingStatus __stdcall GdipGetImageFlags(Bitmap* bitmap, std::uint32_t* flags);
ImagingStatus __stdcall GdipGetImagePaletteSize(Bitmap* bitmap, std::int32_t* bytes);
ImagingStatus __stdcall GdipGetImagePalette(Bitmap* bitmap, Palette256* palette,
                                            std::int32_t bytes);
ImagingStatus __stdcall GdipSetImagePalette(Bitmap* bitmap, const Palette256* palette);

ImagingStatus __stdcall GdipBitmapLockBits(Bitmap* bitmap, const Rect* area, std::uint32_t mode,
                                           std::uint32_t format, BitmapData* data);
ImagingStatus __stdcall GdipBitmapUnlockBits(Bitmap* bitmap, BitmapData* data);
ImagingStatus __stdcall GdipBitmapSetResolution(Bitmap* bitmap, float x, float y);

ImagingStatus __stdcall GdipGetImageEncodersSize(std::uint32_t* count, std::uint32_t* bytes);
ImagingStatus __stdcall GdipGetImageEncoders(std::uint32_t count, std::uint32_t bytes,
                                             CodecInfo* encoders);
ImagingStatus __stdcall GdipSaveImageToFile(Bitmap* bitmap, const wchar_t* path,
                                            const Guid* encoder,
                                            const EncoderParameters* parameters);
}

struct DisposeBitmap {
    void operator()(Bitmap* bitmap) const { (void)GdipDisposeImage(bitmap); }
};
using BitmapOwner = std::unique_ptr<Bitmap, DisposeBitmap>;

// An empty bitmap.
[[nodiscard]] inline ImagingStatus makeBitmap(std::int32_t width, std::int32_t height,
                                              std::uint32_t format, BitmapOwner& bitmap) {
    Bitmap* made = nullptr;
    const ImagingStatus status =
        GdipCreateBitmapFromScan0(width, height, 0, format, nullptr, &made);
    bitmap.reset(made);
    return status == ImagingStatus::Ok && !made ? ImagingStatus::GenericError : status;
}

// The whole bitmap, locked for as long as the object lives.
class LockedBits {
  public:
    LockedBits(Bitmap* bitmap, std::int32_t width, std::int32_t height, std::uint32_t mode,
               std::uint32_t format)
        : bitmap_(bitmap) {
        const Rect all{0, 0, width, height};
        status_ = GdipBitmapLockBits(bitmap, &all, mode, format, &data_);
        locked_ = status_ == ImagingStatus::Ok;
        if (locked_ && !data_.scan0) status_ = ImagingStatus::GenericError;
    }
    LockedBits(const LockedBits&) = delete;
    LockedBits& operator=(const LockedBits&) = delete;
    ~LockedBits() { (void)unlock(); }

    [[nodiscard]] ImagingStatus status() const { return status_; }
    [[nodiscard]] std::int32_t stride() const { return data_.stride; }
    [[nodiscard]] std::uint8_t* row(std::int32_t y) const {
        return static_cast<std::uint8_t*>(data_.scan0) + std::ptrdiff_t{y} * data_.stride;
    }
    // Hands written pixels to the bitmap. A second call does nothing.
    [[nodiscard]] ImagingStatus unlock() {
        if (!locked_) return ImagingStatus::Ok;
        locked_ = false;
        return GdipBitmapUnlockBits(bitmap_, &data_);
    }

  private:
    Bitmap* bitmap_;
    BitmapData data_;
    ImagingStatus status_ = ImagingStatus::Ok;
    bool locked_ = false;
};

}  // namespace brushwork::platform::gdiplus
