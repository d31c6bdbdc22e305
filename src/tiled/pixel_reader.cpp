#include "tiled/pixel_reader.h"

#include <cstring>

namespace brushwork::znTiledImage {

PixelReader::PixelReader(const Image& image, const PixelRect& rect)
    : image_(image), rect_(rect), cells_(cellsOf(rect)) {}

PixelReader::~PixelReader() = default;

bool PixelReader::covers(std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1) const {
    return x0 >= rect_.x && y0 >= rect_.y && x1 < std::int64_t{rect_.x} + rect_.w &&
           y1 < std::int64_t{rect_.y} + rect_.h;
}

template <class T>
TypedPixelReader<T>::TypedPixelReader(const Image& image, const PixelRect& rect)
    : PixelReader(image, rect) {
    const bool fits = image.bytesPerPixel() == sizeof(T);
    if (fits) std::memcpy(&fill_, image.constFillValue(), sizeof fill_);
    constexpr auto most = static_cast<std::int64_t>(TileContainer::mostCells);
    if (std::int64_t{cells_.w} * cells_.h > most) {
        cells_ = common(cells_, image.constContainer().cells());
        rect_ = common(rect_, pixelsOfCells(cells_));
    }
    originX_ = cells_.x * tileSide;
    originY_ = cells_.y * tileSide;
    tableWidth_ = static_cast<std::size_t>(cells_.w);
    table_.reserve(tableWidth_ * static_cast<std::size_t>(cells_.h));
    for (std::int32_t y = 0; y < cells_.h; ++y) {
        for (std::int32_t x = 0; x < cells_.w; ++x) {
            Cell cell{&fill_, 0};
            const TileNode* const node =
                fits ? image.constContainer().constNodeOfCell(cells_.x + x, cells_.y + y) : nullptr;
            if (node) readers_.emplace_back(*node);
            if (node && node->tile) {
                cell.pixels = static_cast<const T*>(node->tile->constData());
                if (node->tile->isFilled()) cell.mask = tilePixels - 1;
            }
            table_.push_back(cell);
        }
    }
}

template class TypedPixelReader<unsigned char>;
template class TypedPixelReader<znImage::Byte4>;

Ref<PixelReader> makePixelReader(const Image& image, const PixelRect& rect) {
    if (image.pixelKind() == PixelKind::Byte4)
        return makeRef<TypedPixelReader<znImage::Byte4>>(image, rect);
    return makeRef<TypedPixelReader<unsigned char>>(image, rect);
}

}  // namespace brushwork::znTiledImage
