#include "tiled/pixel_writer.h"

#include "tiled/tile_iterator.h"

namespace brushwork::znTiledImage {

PixelWriter::PixelWriter(Image& image, const PixelRect& rect)
    : rect_(common(rect, pixelsOfCells(image.constContainer().cells()))), cells_(cellsOf(rect_)) {}

PixelWriter::~PixelWriter() = default;

template <class T>
TypedPixelWriter<T>::TypedPixelWriter(Image& image, const PixelRect& rect)
    : PixelWriter(image, rect),
      originX_(cells_.x * tileSide),
      originY_(cells_.y * tileSide),
      tableWidth_(static_cast<std::size_t>(cells_.w)) {
    if (image.bytesPerPixel() != sizeof(T)) {
        complete_ = false;
        return;
    }
    for (TypedTileIteratorRect<Image> cell(image, rect_); cell.valid(); cell.next()) {
        TileNode& node = cell.node();
        const bool filled = setKind(node, TileKind::Filled, image, Contents::Keep);
        const TileNodeWriter& writer = writers_.emplace_back(node);
        if (!filled || !writer.isReady()) complete_ = false;
        table_.push_back(filled ? static_cast<T*>(node.tile->data()) : nullptr);
    }
}

template class TypedPixelWriter<unsigned char>;
template class TypedPixelWriter<znImage::Byte4>;

}  // namespace brushwork::znTiledImage
