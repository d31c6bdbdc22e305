// The imaging service: pictures in files or streams, to and from rows of 32-bit pixels.
//
// One implementation per system stands behind imagingService(): the portable codecs, or the flat
// GDI+ interface on Windows. Its numbers (statuses, pixel formats, format identifiers) are those of
// GDI+ on every system, because they travel through interfaces above.
//
// A pixel is four bytes: blue, green, red, alpha. A row is width * 4 bytes, without padding. Rows
// are numbered from the top of the picture, 0 to height - 1.
//
// Nothing here throws. One thread uses a picture at a time; the service itself has no state.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace brushwork::platform {

// Status numbers of the imaging platform.
enum class ImagingStatus : std::int32_t {
    Ok = 0,
    GenericError = 1,
    InvalidParameter = 2,
    OutOfMemory = 3,
    InsufficientBuffer = 5,
    NotImplemented = 6,
    Win32Error = 7,
    WrongState = 8,
    Aborted = 9,
    FileNotFound = 10,
    ValueOverflow = 11,
    AccessDenied = 12,
    UnknownImageFormat = 13,
    NotInitialized = 18,
};

// In memory order of a 128-bit Windows GUID: {d1-d2-d3-d4[0]d4[1]-d4[2..7]}.
struct Guid {
    std::uint32_t d1 = 0;
    std::uint16_t d2 = 0;
    std::uint16_t d3 = 0;
    std::uint8_t d4[8] = {};
    friend bool operator==(const Guid&, const Guid&) = default;
};

// The published identifiers of the five file formats.
inline constexpr Guid imageFormatBmp{
    0xb96b3cab, 0x0728, 0x11d3, {0x9d, 0x7b, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
inline constexpr Guid imageFormatJpeg{
    0xb96b3cae, 0x0728, 0x11d3, {0x9d, 0x7b, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
inline constexpr Guid imageFormatPng{
    0xb96b3caf, 0x0728, 0x11d3, {0x9d, 0x7b, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
inline constexpr Guid imageFormatGif{
    0xb96b3cb0, 0x0728, 0x11d3, {0x9d, 0x7b, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
inline constexpr Guid imageFormatTiff{
    0xb96b3cb1, 0x0728, 0x11d3, {0x9d, 0x7b, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

enum class PixelFormat : std::uint32_t {
    Rgb24 = 0x21808,    // blue, green, red
    Argb32 = 0x26200A,  // straight alpha
    Pargb32 = 0xE200B,  // premultiplied: (a * c + 127) / 255 of each colour
};

// Receives the rows of a picture, each at most once and in any order. A row that is never handed
// over is fully transparent (four zero bytes a pixel): a reader may leave blank rows out.
class RowSink {
  public:
    virtual ~RowSink() = default;
    // `bgra` holds `count` rows, y and those below it, one behind the other. False ends the
    // reading, which then fails.
    [[nodiscard]] virtual bool putRows(std::int32_t y, std::int32_t count,
                                       const std::uint8_t* bgra) = 0;
};

// Gives the rows of a picture to an encoder, in any order and as often as it asks.
class RowSource {
  public:
    virtual ~RowSource() = default;
    [[nodiscard]] virtual bool getRow(std::int32_t y, std::uint8_t* bgra) = 0;
};

// An opened picture whose header has been read. Its width and height are at least 1.
class Picture {
  public:
    virtual ~Picture() = default;
    [[nodiscard]] virtual std::int32_t width() const = 0;
    [[nodiscard]] virtual std::int32_t height() const = 0;
    // Dots per inch; 96 where the file says nothing usable.
    [[nodiscard]] virtual float xResolution() const = 0;
    [[nodiscard]] virtual float yResolution() const = 0;
    [[nodiscard]] virtual Guid rawFormat() const = 0;
    // True if the file stores grey levels only.
    [[nodiscard]] virtual bool isGrey() const = 0;
    // Decodes the picture, once: a second call answers WrongState. `format` is one of the two
    // 32-bit formats. After a failure the sink may have got some of the rows.
    [[nodiscard]] virtual ImagingStatus readRows(PixelFormat format, RowSink& sink) = 0;
};

struct EncoderRecord {
    Guid classId;
    Guid formatId;
    std::u16string_view mimeType;
    std::u16string_view formatName;  // "BMP", "JPEG", ...
};

// What an encoder is told. `source` gives straight alpha (Argb32).
struct EncodeRequest {
    std::int32_t width = 0;
    std::int32_t height = 0;
    RowSource* source = nullptr;
    std::optional<std::int32_t> quality;  // 0 to 100, used by JPEG alone
    float xResolution = 96.0F;            // dots per inch, above 0
    float yResolution = 96.0F;
    // Both were asked for. If not, a format or platform may keep a default of its own.
    bool hasResolution = false;
};

class ImagingService {
  public:
    virtual ~ImagingService() = default;

    // Start and stop of the platform behind the service; the token goes to the matching stop.
    [[nodiscard]] virtual ImagingStatus start(std::uintptr_t& token) = 0;
    virtual void stop(std::uintptr_t token) = 0;

    // Null with a status other than Ok if the file can't be opened or isn't a picture.
    [[nodiscard]] virtual std::unique_ptr<Picture> openFile(std::u16string_view path,
                                                            ImagingStatus& status) = 0;
    // The same from bytes in memory, which must outlive the picture.
    [[nodiscard]] virtual std::unique_ptr<Picture> openMemory(std::span<const std::uint8_t> bytes,
                                                              ImagingStatus& status) = 0;

    // Always the same records in the same order.
    [[nodiscard]] virtual std::span<const EncoderRecord> encoders() = 0;

    // Writes the picture beside `path` and puts it in place when it is whole, so that a file that
    // was there before survives a failure.
    [[nodiscard]] virtual ImagingStatus saveFile(std::u16string_view path, const Guid& encoder,
                                                 const EncodeRequest& request) = 0;
};

[[nodiscard]] ImagingService& imagingService();

}  // namespace brushwork::platform
