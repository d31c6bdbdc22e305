#include "platform/codec_tiff_layout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

#include "platform/codec_limits.h"

namespace brushwork::platform {

namespace {

constexpr std::uint32_t mostWidth = 1U << 22;
// Decoded bytes of a tile, a row, or a strip that has to be decoded at once.
constexpr std::uint64_t mostChunkBytes = std::uint64_t{64} << 20;
// A row of tiles as 32-bit pixels.
constexpr std::uint64_t mostBandBytes = std::uint64_t{128} << 20;
// Chunks may share their bytes (blank tiles do), but each use costs time.
constexpr std::uint64_t freeReadBytes = std::uint64_t{64} << 20;
constexpr std::uint64_t mostReadings = 8;
// Decoded bytes that come free, and how many more each byte of the file pays for.
constexpr std::uint64_t freeDecodedBytes = std::uint64_t{512} << 20;
constexpr std::uint64_t decodedBytesPerByte = 256;

constexpr ImagingStatus unsupported = ImagingStatus::UnknownImageFormat;
constexpr ImagingStatus damaged = ImagingStatus::GenericError;

template <typename T>
std::optional<T> field(TIFF* tiff, std::uint32_t tag) {
    T value{};
    if (TIFFGetField(tiff, tag, &value) != 1) return std::nullopt;
    return value;
}

template <typename T>
T fieldOrDefault(TIFF* tiff, std::uint32_t tag, T fallback) {
    T value{};
    return TIFFGetFieldDefaulted(tiff, tag, &value) == 1 ? value : fallback;
}

std::uint64_t divideUp(std::uint64_t value, std::uint64_t by) {
    return (value + by - 1) / by;
}

// The schemes whose decoders stay within the rows they are asked for. Old-style JPEG, JBIG, LERC
// and the luminance codings are not among them.
bool knownCompression(std::uint16_t scheme) {
    constexpr std::array<std::uint16_t, 14> known{
        COMPRESSION_NONE,      COMPRESSION_CCITTRLE,    COMPRESSION_CCITTRLEW,
        COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4,   COMPRESSION_LZW,
        COMPRESSION_JPEG,      COMPRESSION_PACKBITS,    COMPRESSION_ADOBE_DEFLATE,
        COMPRESSION_DEFLATE,   COMPRESSION_THUNDERSCAN, COMPRESSION_LZMA,
        COMPRESSION_ZSTD,      COMPRESSION_WEBP,
    };
    return std::find(known.begin(), known.end(), scheme) != known.end() &&
           TIFFIsCODECConfigured(scheme) == 1;
}

bool isFax(std::uint16_t scheme) {
    return scheme >= COMPRESSION_CCITTRLE && scheme <= COMPRESSION_CCITTFAX4;
}

float dotsPerInch(TIFF* tiff, std::uint32_t tag) {
    const float value = field<float>(tiff, tag).value_or(0.0F);
    const auto unit = fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    if (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER) return 0.0F;
    const float dots = unit == RESUNIT_CENTIMETER ? value * 2.54F : value;
    return std::isfinite(dots) && dots > 0.0F ? dots : 0.0F;
}

std::optional<TiffColour> colourOf(TIFF* tiff, std::uint16_t scheme, std::uint32_t samples) {
    const auto photometric = field<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC);
    if (!photometric) {
        if (samples >= 3) return TiffColour::Rgb;
        return isFax(scheme) ? TiffColour::WhiteIsZero : TiffColour::BlackIsZero;
    }
    switch (*photometric) {
        case PHOTOMETRIC_MINISWHITE: return TiffColour::WhiteIsZero;
        case PHOTOMETRIC_MINISBLACK: return TiffColour::BlackIsZero;
        case PHOTOMETRIC_RGB: return TiffColour::Rgb;
        case PHOTOMETRIC_PALETTE: return TiffColour::Palette;
        case PHOTOMETRIC_YCBCR: return TiffColour::YCbCr;
        case PHOTOMETRIC_SEPARATED:
            if (fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_INKSET, INKSET_CMYK) == INKSET_CMYK)
                return TiffColour::Cmyk;
            return std::nullopt;
        default: return std::nullopt;
    }
}

std::optional<TiffSampleKind> kindOf(TIFF* tiff) {
    switch (fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT)) {
        case SAMPLEFORMAT_UINT:
        case SAMPLEFORMAT_VOID: return TiffSampleKind::Unsigned;
        case SAMPLEFORMAT_INT: return TiffSampleKind::Signed;
        case SAMPLEFORMAT_IEEEFP: return TiffSampleKind::Float;
        default: return std::nullopt;
    }
}

void readAlpha(TIFF* tiff, TiffPixelFormat& pixels) {
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1 || !kinds) return;
    const std::uint32_t colours = tiffColourSamples(pixels.colour);
    for (std::uint32_t i = 0; i < count && colours + i < pixels.samples; ++i) {
        if (kinds[i] != EXTRASAMPLE_ASSOCALPHA && kinds[i] != EXTRASAMPLE_UNASSALPHA) continue;
        pixels.alpha =
            kinds[i] == EXTRASAMPLE_ASSOCALPHA ? TiffAlpha::Premultiplied : TiffAlpha::Straight;
        pixels.alphaSample = colours + i;
        return;
    }
}

// Palettes hold 16-bit levels whose high byte is the 8-bit one, whether a writer made them by
// times 256 or by times 257. Some writers put the 8-bit levels there as they are.
bool readPalette(TIFF* tiff, TiffPixelFormat& pixels) {
    const std::uint16_t* red = nullptr;
    const std::uint16_t* green = nullptr;
    const std::uint16_t* blue = nullptr;
    if (pixels.bits > 16 || TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue) != 1 ||
        !red || !green || !blue)
        return false;
    const std::size_t size = std::size_t{1} << pixels.bits;
    const auto small = [size](const std::uint16_t* levels) {
        return std::all_of(levels, levels + size, [](std::uint16_t v) { return v < 256; });
    };
    const int shift = small(red) && small(green) && small(blue) ? 0 : 8;
    const auto level = [shift](std::uint16_t v) { return static_cast<std::uint8_t>(v >> shift); };
    pixels.palette.resize(size);
    for (std::size_t i = 0; i < size; ++i)
        pixels.palette[i] = {level(blue[i]), level(green[i]), level(red[i])};
    return true;
}

bool readYcbcr(TIFF* tiff, TiffYcbcr& ycbcr) {
    const float* values = nullptr;
    if (TIFFGetFieldDefaulted(tiff, TIFFTAG_YCBCRCOEFFICIENTS, &values) == 1 && values)
        std::copy_n(values, ycbcr.luma.size(), ycbcr.luma.begin());
    values = nullptr;
    if (TIFFGetFieldDefaulted(tiff, TIFFTAG_REFERENCEBLACKWHITE, &values) == 1 && values)
        std::copy_n(values, ycbcr.reference.size(), ycbcr.reference.begin());
    const auto& pairs = ycbcr.reference;
    for (std::size_t i = 0; i < pairs.size(); i += 2)
        if (!(std::abs(pairs[i]) < 1e6F && std::abs(pairs[i + 1]) < 1e6F) ||
            std::abs(pairs[i + 1] - pairs[i]) < 1.0F)
            return false;
    return std::all_of(ycbcr.luma.begin(), ycbcr.luma.end(),
                       [](float weight) { return weight > 0.0001F && weight < 1.0F; });
}

// How one pixel is stored. JPEG data in YCbCr comes from the library as RGB.
ImagingStatus readPixelFormat(TIFF* tiff, std::uint16_t scheme, TiffLayout& layout) {
    TiffPixelFormat& pixels = layout.pixels;
    pixels.bits = fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    pixels.samples = fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    const auto kind = kindOf(tiff);
    const auto colour = colourOf(tiff, scheme, pixels.samples);
    if (!kind || !colour) return unsupported;
    pixels.kind = *kind;
    pixels.colour = *colour;
    if (*colour == TiffColour::Palette && !readPalette(tiff, pixels)) return damaged;
    if (*colour == TiffColour::YCbCr) {
        if (scheme == COMPRESSION_JPEG && !layout.separate) {
            pixels.colour = TiffColour::Rgb;
        } else {
            std::uint16_t across = 2;
            std::uint16_t down = 2;
            TIFFGetFieldDefaulted(tiff, TIFFTAG_YCBCRSUBSAMPLING, &across, &down);
            layout.chromaX = across;
            layout.chromaY = down;
            if (!readYcbcr(tiff, pixels.ycbcr)) return damaged;
        }
    }
    readAlpha(tiff, pixels);
    if (!TiffPixels::supports(pixels)) return unsupported;
    const auto power = [](std::uint32_t n) { return n == 1 || n == 2 || n == 4; };
    if (!power(layout.chromaX) || !power(layout.chromaY)) return damaged;
    if (layout.sharesChroma() && (layout.separate || pixels.samples != 3)) return unsupported;
    return ImagingStatus::Ok;
}

// How the picture is cut into strips or tiles.
ImagingStatus readChunks(TIFF* tiff, TiffLayout& layout) {
    const auto width = static_cast<std::uint32_t>(layout.width);
    const auto height = static_cast<std::uint32_t>(layout.height);
    if (layout.tiled) {
        layout.chunkWidth = field<std::uint32_t>(tiff, TIFFTAG_TILEWIDTH).value_or(0);
        layout.chunkHeight = field<std::uint32_t>(tiff, TIFFTAG_TILELENGTH).value_or(0);
    } else {
        layout.chunkWidth = width;
        layout.chunkHeight =
            std::min(height, fieldOrDefault<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP, height));
    }
    if (layout.chunkWidth == 0 || layout.chunkWidth > mostWidth || layout.chunkHeight == 0)
        return damaged;
    layout.chunksAcross = static_cast<std::uint32_t>(divideUp(width, layout.chunkWidth));
    layout.chunksDown = static_cast<std::uint32_t>(divideUp(height, layout.chunkHeight));

    // Up to 2^22 * 32 * 64 bits, times 2^32 rows: within 64 bits.
    const std::uint64_t samples = layout.separate ? 1 : layout.pixels.samples;
    if (layout.sharesChroma()) {
        const std::uint64_t block = std::uint64_t{layout.chromaX} * layout.chromaY + 2;
        layout.chunkBytes = divideUp(layout.chunkWidth, layout.chromaX) *
                            divideUp(layout.chunkHeight, layout.chromaY) * block;
    } else {
        layout.rowBytes = divideUp(samples * layout.chunkWidth * layout.pixels.bits, 8);
        layout.chunkBytes = layout.rowBytes * layout.chunkHeight;
    }
    if (layout.rowBytes > mostChunkBytes) return ImagingStatus::OutOfMemory;
    const std::uint64_t band = std::uint64_t{width} * 4 * std::min(layout.chunkHeight, height);
    if (layout.tiled && band > mostBandBytes) return ImagingStatus::OutOfMemory;
    if ((layout.tiled || layout.sharesChroma()) &&
        layout.chunkBytes > mostChunkBytes / layout.planes())
        return ImagingStatus::OutOfMemory;
    return ImagingStatus::Ok;
}

// The library must be of one mind with us on the sizes it will fill.
bool sizesAgree(TIFF* tiff, const TiffLayout& layout) {
    const std::uint64_t chunks =
        std::uint64_t{layout.planes()} * layout.chunksDown * layout.chunksAcross;
    if (layout.tiled)
        return TIFFNumberOfTiles(tiff) == chunks && TIFFTileSize64(tiff) == layout.chunkBytes;
    if (TIFFNumberOfStrips(tiff) != chunks) return false;
    if (layout.sharesChroma())
        return TIFFVStripSize64(tiff, layout.chunkHeight) == layout.chunkBytes;
    return TIFFScanlineSize64(tiff) == layout.rowBytes;
}

bool chunksLieWithin(TIFF* tiff, const TiffPixels& pixels, const TiffLayout& layout,
                     std::uint64_t fileBytes) {
    std::uint64_t room = fileBytes * mostReadings + freeReadBytes;
    for (std::uint32_t plane = 0; plane < layout.planes(); ++plane) {
        if (layout.separate && !pixels.uses(plane)) continue;
        for (std::uint32_t down = 0; down < layout.chunksDown; ++down) {
            const std::uint64_t least = layout.compressed || layout.sharesChroma() ? 1
                                        : layout.tiled ? layout.chunkBytes
                                                       : layout.rowBytes * layout.rowsAt(down);
            for (std::uint32_t across = 0; across < layout.chunksAcross; ++across) {
                const std::uint32_t chunk = layout.chunk(plane, across, down);
                int failed = 0;
                const std::uint64_t offset = TIFFGetStrileOffsetWithErr(tiff, chunk, &failed);
                if (failed != 0) return false;
                const std::uint64_t bytes = TIFFGetStrileByteCountWithErr(tiff, chunk, &failed);
                if (failed != 0 || offset == 0 || offset > fileBytes) return false;
                if (bytes < least || bytes > fileBytes - offset || bytes > room) return false;
                room -= bytes;
            }
        }
    }
    return true;
}

bool decodedBytesArePaidFor(const TiffLayout& layout, std::uint64_t fileBytes) {
    const double all = static_cast<double>(layout.chunkBytes) * layout.planes() *
                       layout.chunksDown * layout.chunksAcross;
    return all <= static_cast<double>(freeDecodedBytes) +
                      static_cast<double>(decodedBytesPerByte) * static_cast<double>(fileBytes);
}

}  // namespace

std::uint32_t TiffLayout::rowsAt(std::uint32_t down) const {
    return std::min(chunkHeight, static_cast<std::uint32_t>(height) - down * chunkHeight);
}

void chooseTiffJpegColour(TiffHandle& handle) {
    const auto is = [&](std::uint32_t tag, std::uint16_t value) {
        return field<std::uint16_t>(handle.get(), tag) == value;
    };
    if (is(TIFFTAG_COMPRESSION, COMPRESSION_JPEG) && is(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_YCBCR) &&
        is(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG))
        TIFFSetField(handle.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
}

ImagingStatus readTiffLayout(TiffHandle& handle, const ByteSource& source, TiffLayout& layout) {
    TIFF* const tiff = handle.get();
    const std::uint32_t width = field<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH).value_or(0);
    const std::uint32_t height = field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH).value_or(0);
    if (width == 0 || height == 0) return damaged;
    if (width > mostWidth || height > INT32_MAX) return ImagingStatus::OutOfMemory;
    layout.width = static_cast<std::int32_t>(width);
    layout.height = static_cast<std::int32_t>(height);
    if (!areaIsPaidFor(layout.width, layout.height, source.size()))
        return ImagingStatus::OutOfMemory;

    const auto scheme = fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    if (!knownCompression(scheme)) return unsupported;
    layout.compressed = scheme != COMPRESSION_NONE;
    layout.tiled = TIFFIsTiled(tiff) != 0;
    const auto order = fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
    layout.reversedBits = order == FILLORDER_LSB2MSB;
    layout.xResolution = dotsPerInch(tiff, TIFFTAG_XRESOLUTION);
    layout.yResolution = dotsPerInch(tiff, TIFFTAG_YRESOLUTION);

    chooseTiffJpegColour(handle);
    const auto planar =
        fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    layout.separate = planar == PLANARCONFIG_SEPARATE &&
                      fieldOrDefault<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1) > 1;
    if (const auto status = readPixelFormat(tiff, scheme, layout); status != ImagingStatus::Ok)
        return status;
    if (const auto status = readChunks(tiff, layout); status != ImagingStatus::Ok) return status;
    if (!decodedBytesArePaidFor(layout, source.size())) return ImagingStatus::OutOfMemory;
    const TiffPixels pixels(layout.pixels);
    if (!sizesAgree(tiff, layout) || !chunksLieWithin(tiff, pixels, layout, source.size()))
        return damaged;
    return ImagingStatus::Ok;
}

}  // namespace brushwork::platform
