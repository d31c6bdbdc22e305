#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/codec_tiff_bands.h"

namespace brushwork::platform {

namespace {

constexpr std::uint64_t bandBytes = 128 * 1024;

// Rows of which both the pixels and the samples fit a band, at least one.
std::uint32_t rowsInBand(const TiffLayout& layout) {
    const std::uint64_t row =
        std::max(layout.rowBytes * layout.planes(), static_cast<std::uint64_t>(layout.width) * 4);
    const std::uint64_t rows = std::max<std::uint64_t>(bandBytes / row, 1);
    return static_cast<std::uint32_t>(std::min(rows, static_cast<std::uint64_t>(layout.height)));
}

// Room for some rows of each plane that is used.
class PlaneRows {
  public:
    PlaneRows(const TiffLayout& layout, const TiffPixels& pixels, std::uint32_t rows)
        : rowBytes_(static_cast<std::size_t>(layout.rowBytes)),
          planes_(layout.planes()),
          at_(layout.planes()) {
        for (std::uint32_t i = 0; i < planes_.size(); ++i)
            if (!layout.separate || pixels.uses(i)) planes_[i].resize(rowBytes_ * rows);
    }

    std::uint32_t count() const { return static_cast<std::uint32_t>(planes_.size()); }
    bool used(std::uint32_t plane) const { return !planes_[plane].empty(); }
    std::uint8_t* row(std::uint32_t plane, std::uint32_t row) {
        return used(plane) ? planes_[plane].data() + rowBytes_ * row : nullptr;
    }
    // The same row of all planes.
    std::span<const std::uint8_t* const> rowOfAll(std::uint32_t number) {
        for (std::uint32_t i = 0; i < count(); ++i) at_[i] = row(i, number);
        return at_;
    }

  private:
    std::size_t rowBytes_;
    std::vector<std::vector<std::uint8_t>> planes_;
    std::vector<const std::uint8_t*> at_;
};

class RawStripBands final : public TiffBands {
  public:
    RawStripBands(const TiffLayout& layout, TiffHandle& handle, ByteSource& source)
        : layout_(layout),
          handle_(handle),
          source_(source),
          pixels_(layout.pixels),
          bandRows_(rowsInBand(layout)),
          rows_(layout, pixels_, bandRows_) {}

    std::uint32_t bandRows() const override { return bandRows_; }

    bool read(std::uint32_t y, std::uint32_t rows, std::uint8_t* bgra) override {
        const auto width = static_cast<std::uint32_t>(layout_.width);
        for (std::uint32_t plane = 0; plane < rows_.count(); ++plane)
            if (rows_.used(plane) && !readPlane(plane, y, rows)) return false;
        for (std::uint32_t i = 0; i < rows; ++i)
            pixels_.convert(rows_.rowOfAll(i), width, bgra + std::size_t{i} * width * 4);
        return true;
    }

  private:
    // Reads as many rows at once as lie in one strip.
    bool readPlane(std::uint32_t plane, std::uint32_t y, std::uint32_t rows) {
        for (std::uint32_t done = 0; done < rows;) {
            const std::uint32_t strip = (y + done) / layout_.chunkHeight;
            const std::uint32_t below = (y + done) % layout_.chunkHeight;
            const std::uint32_t part = std::min(rows - done, layout_.chunkHeight - below);
            const std::uint64_t offset =
                TIFFGetStrileOffset(handle_.get(), layout_.chunk(plane, 0, strip));
            const auto bytes = static_cast<std::size_t>(layout_.rowBytes * part);
            std::uint8_t* at = rows_.row(plane, done);
            if (source_.readAt(offset + layout_.rowBytes * below, at, bytes) != bytes) return false;
            toHostOrder(at, bytes);
            done += part;
        }
        return true;
    }

    void toHostOrder(std::uint8_t* at, std::size_t bytes) {
        const auto size = static_cast<tmsize_t>(bytes);
        if (layout_.reversedBits) TIFFReverseBits(at, size);
        if (TIFFIsByteSwapped(handle_.get()) == 0) return;
        const std::size_t width = layout_.pixels.bits / 8;
        if (layout_.pixels.bits % 8 != 0 || width == 1) return;
        for (std::size_t i = 0; i + width <= bytes; i += width)
            std::reverse(at + i, at + i + width);
    }

    const TiffLayout& layout_;
    TiffHandle& handle_;
    ByteSource& source_;
    TiffPixels pixels_;
    std::uint32_t bandRows_;
    PlaneRows rows_;
};

class DecodedStripBands final : public TiffBands {
  public:
    DecodedStripBands(const TiffLayout& layout, TiffHandle& handle)
        : layout_(layout),
          pixels_(layout.pixels),
          row_(layout, pixels_, 1),
          handles_(row_.count()) {
        handles_[0] = &handle;
    }

    // The first handle serves the first plane, which always counts.
    bool openFurtherHandles(ByteSource& source) {
        for (std::uint32_t plane = 1; plane < row_.count(); ++plane) {
            if (!row_.used(plane)) continue;
            further_.push_back(TiffHandle::openForReading(source));
            if (!further_.back()) return false;
            handles_[plane] = further_.back().get();
            handles_[plane]->forgetDamage();
        }
        return true;
    }

    std::uint32_t bandRows() const override { return rowsInBand(layout_); }

    bool read(std::uint32_t y, std::uint32_t rows, std::uint8_t* bgra) override {
        const auto width = static_cast<std::uint32_t>(layout_.width);
        for (std::uint32_t i = 0; i < rows; ++i) {
            for (std::uint32_t plane = 0; plane < row_.count(); ++plane)
                if (row_.used(plane) && !readRow(plane, y + i)) return false;
            pixels_.convert(row_.rowOfAll(0), width, bgra + std::size_t{i} * width * 4);
        }
        return true;
    }

  private:
    bool readRow(std::uint32_t plane, std::uint32_t y) {
        TiffHandle& handle = *handles_[plane];
        const auto sample = static_cast<std::uint16_t>(plane);
        return TIFFReadScanline(handle.get(), row_.row(plane, 0), y, sample) == 1 &&
               !handle.damaged();
    }

    const TiffLayout& layout_;
    TiffPixels pixels_;
    PlaneRows row_;
    std::vector<TiffHandle*> handles_;  // by plane
    std::vector<std::unique_ptr<TiffHandle>> further_;
};

class SharedChromaStripBands final : public TiffBands {
  public:
    SharedChromaStripBands(const TiffLayout& layout, TiffHandle& handle)
        : layout_(layout),
          handle_(handle),
          pixels_(layout.pixels),
          strip_(static_cast<std::size_t>(layout.chunkBytes)),
          triples_(static_cast<std::size_t>(layout.width) * 3) {}

    std::uint32_t bandRows() const override { return rowsInBand(layout_); }

    bool read(std::uint32_t y, std::uint32_t rows, std::uint8_t* bgra) override {
        const auto width = static_cast<std::uint32_t>(layout_.width);
        for (std::uint32_t i = 0; i < rows; ++i) {
            const std::uint32_t below = (y + i) % layout_.chunkHeight;
            if (below == 0 && !decode((y + i) / layout_.chunkHeight)) return false;
            spreadTiffChroma(layout_, strip_.data(), below, width, triples_.data());
            const std::array<const std::uint8_t*, 1> planes{triples_.data()};
            pixels_.convert(planes, width, bgra + std::size_t{i} * width * 4);
        }
        return true;
    }

  private:
    bool decode(std::uint32_t strip) {
        const tmsize_t size = TIFFVStripSize(handle_.get(), layout_.rowsAt(strip));
        if (size <= 0 || static_cast<std::uint64_t>(size) > layout_.chunkBytes) return false;
        return TIFFReadEncodedStrip(handle_.get(), strip, strip_.data(), size) == size &&
               !handle_.damaged();
    }

    const TiffLayout& layout_;
    TiffHandle& handle_;
    TiffPixels pixels_;
    std::vector<std::uint8_t> strip_;
    std::vector<std::uint8_t> triples_;
};

}  // namespace

// A block holds its luma row by row, then its two chroma samples.
void spreadTiffChroma(const TiffLayout& layout, const std::uint8_t* chunk, std::uint32_t row,
                      std::uint32_t width, std::uint8_t* triples) {
    const std::size_t lumas = std::size_t{layout.chromaX} * layout.chromaY;
    const std::size_t blocksAcross = (layout.chunkWidth + layout.chromaX - 1) / layout.chromaX;
    const std::uint8_t* block = chunk + blocksAcross * (lumas + 2) * (row / layout.chromaY);
    const std::size_t line = std::size_t{row % layout.chromaY} * layout.chromaX;
    for (std::uint32_t x = 0; x < width; block += lumas + 2)
        for (std::uint32_t i = 0; i < layout.chromaX && x < width; ++i, ++x, triples += 3) {
            triples[0] = block[line + i];
            triples[1] = block[lumas];
            triples[2] = block[lumas + 1];
        }
}

std::unique_ptr<TiffBands> makeTiffBands(const TiffLayout& layout, TiffHandle& handle,
                                         ByteSource& source) {
    if (layout.tiled) return makeTiffTileBands(layout, handle);
    if (layout.sharesChroma()) return std::make_unique<SharedChromaStripBands>(layout, handle);
    if (!layout.compressed) return std::make_unique<RawStripBands>(layout, handle, source);
    auto bands = std::make_unique<DecodedStripBands>(layout, handle);
    if (!bands->openFurtherHandles(source)) return nullptr;
    return bands;
}

}  // namespace brushwork::platform
