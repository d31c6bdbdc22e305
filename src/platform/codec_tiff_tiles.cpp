#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "platform/codec_tiff_bands.h"

namespace brushwork::platform {

namespace {

// A band is a row of tiles; each tile is decoded into one buffer and converted to its place.
class TileBands final : public TiffBands {
  public:
    TileBands(const TiffLayout& layout, TiffHandle& handle)
        : layout_(layout),
          handle_(handle),
          pixels_(layout.pixels),
          tiles_(layout.planes()),
          triples_(layout.sharesChroma() ? std::size_t{layout.chunkWidth} * 3 : 0),
          rows_(layout.planes()) {
        for (std::uint32_t i = 0; i < tiles_.size(); ++i)
            if (used(i)) tiles_[i].resize(static_cast<std::size_t>(layout.chunkBytes));
    }

    std::uint32_t bandRows() const override { return layout_.rowsAt(0); }

    bool read(std::uint32_t y, std::uint32_t rows, std::uint8_t* bgra) override {
        for (std::uint32_t across = 0; across < layout_.chunksAcross; ++across) {
            for (std::uint32_t plane = 0; plane < tiles_.size(); ++plane)
                if (used(plane) && !decode(plane, across, y / layout_.chunkHeight)) return false;
            place(across, rows, bgra);
        }
        return true;
    }

  private:
    bool used(std::uint32_t plane) const { return !layout_.separate || pixels_.uses(plane); }

    bool decode(std::uint32_t plane, std::uint32_t across, std::uint32_t down) {
        const auto size = static_cast<tmsize_t>(layout_.chunkBytes);
        const std::uint32_t tile = layout_.chunk(plane, across, down);
        return TIFFReadEncodedTile(handle_.get(), tile, tiles_[plane].data(), size) == size &&
               !handle_.damaged();
    }

    void place(std::uint32_t across, std::uint32_t rows, std::uint8_t* bgra) {
        const auto width = static_cast<std::uint32_t>(layout_.width);
        const std::uint32_t x = across * layout_.chunkWidth;
        const std::uint32_t count = std::min(layout_.chunkWidth, width - x);
        for (std::uint32_t i = 0; i < rows; ++i)
            pixels_.convert(row(i, count), count, bgra + (std::size_t{i} * width + x) * 4);
    }

    std::span<const std::uint8_t* const> row(std::uint32_t number, std::uint32_t count) {
        if (layout_.sharesChroma()) {
            spreadTiffChroma(layout_, tiles_[0].data(), number, count, triples_.data());
            rows_[0] = triples_.data();
            return rows_;
        }
        const std::size_t offset = static_cast<std::size_t>(layout_.rowBytes) * number;
        for (std::uint32_t i = 0; i < tiles_.size(); ++i)
            rows_[i] = used(i) ? tiles_[i].data() + offset : nullptr;
        return rows_;
    }

    const TiffLayout& layout_;
    TiffHandle& handle_;
    TiffPixels pixels_;
    std::vector<std::vector<std::uint8_t>> tiles_;  // by plane
    std::vector<std::uint8_t> triples_;
    std::vector<const std::uint8_t*> rows_;
};

}  // namespace

std::unique_ptr<TiffBands> makeTiffTileBands(const TiffLayout& layout, TiffHandle& handle) {
    return std::make_unique<TileBands>(layout, handle);
}

}  // namespace brushwork::platform
