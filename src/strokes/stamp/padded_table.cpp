#include "strokes/stamp/padded_table.h"

#include <cstring>

namespace brushwork::npc {
namespace {

constexpr std::int64_t mostCells = std::int64_t{1} << 28;

// Row Y of cells from the source rows Y - 1 and Y, either null outside the image.
template <std::size_t Pixel>
void layRow(const std::uint8_t* below, const std::uint8_t* here, std::int32_t width,
            std::uint8_t* out) {
    const std::size_t last = static_cast<std::size_t>(width), cell = 4 * Pixel;
    const auto layPair = [&](const std::uint8_t* row, std::uint8_t* corners) {
        std::memset(corners, 0, Pixel);
        if (!row) {
            for (std::size_t x = 0; x <= last; ++x) std::memset(corners + x * cell, 0, 2 * Pixel);
            return;
        }
        std::memcpy(corners + Pixel, row, Pixel);
        for (std::size_t x = 1; x < last; ++x)
            std::memcpy(corners + x * cell, row + (x - 1) * Pixel, 2 * Pixel);
        std::memcpy(corners + last * cell, row + (last - 1) * Pixel, Pixel);
        std::memset(corners + last * cell + Pixel, 0, Pixel);
    };
    layPair(below, out);
    layPair(here, out + 2 * Pixel);
}

template <std::size_t Pixel>
void lay(const std::uint8_t* pixels, std::int32_t width, std::int32_t height, std::uint8_t* out) {
    const std::size_t rowBytes = static_cast<std::size_t>(width) * Pixel;
    const std::size_t cellBytes = (static_cast<std::size_t>(width) + 1) * 4 * Pixel;
    const std::uint8_t* below = nullptr;
    for (std::int32_t y = 0; y <= height; ++y, out += cellBytes) {
        const std::uint8_t* here =
            y < height ? pixels + static_cast<std::size_t>(y) * rowBytes : nullptr;
        layRow<Pixel>(below, here, width, out);
        below = here;
    }
}

}  // namespace

void PaddedTable::clear() {
    image_.reset();
    cells_.reset();
    width_ = height_ = 0;
}

bool PaddedTable::reserve(std::size_t bytes) {
    if (!cells_ || cells_->bytes() < bytes) cells_ = std::make_unique<ImageBuffer>(bytes);
    return cells_->data() != nullptr;
}

bool PaddedTable::build(const Ref<ilImage>& image) {
    const std::int32_t width = image->sizeX(), height = image->sizeY();
    if (image_ == image && width_ == width && height_ == height) return true;
    image_.reset();
    const std::int32_t channels = image->channels();
    const bool fits = (channels == 1 || channels == 4) && width > 0 && height > 0 &&
                      (std::int64_t{width} + 1) * (std::int64_t{height} + 1) <= mostCells;
    if (!fits) {
        clear();
        return false;
    }
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const std::size_t cells =
        (static_cast<std::size_t>(width) + 1) * (static_cast<std::size_t>(height) + 1);
    const auto pixel = static_cast<std::size_t>(channels);
    const ImageBuffer read(pixels * pixel);
    ilImageConfig config;
    config.dataType = TypeUChar;
    config.order = OrderInterleaved;
    config.channels = channels;
    const ilTile box = flatTile(0, 0, width, height);
    if (!read.data() || !reserve(cells * 4 * pixel) ||
        image->readRegion(box, read.data(), box, &config) != ImageOk) {
        clear();
        return false;
    }
    if (channels == 1)
        lay<1>(read.data(), width, height, cells_->data());
    else
        lay<4>(read.data(), width, height, cells_->data());
    image_ = image;
    width_ = width;
    height_ = height;
    return true;
}

}  // namespace brushwork::npc
