#include "tiled/tile_container.h"

#include <new>
#include <utility>
#include <vector>

namespace brushwork::znTiledImage {
namespace {

std::uint64_t cellCount(const CellRect& cells) {
    return static_cast<std::uint64_t>(cells.w) * static_cast<std::uint64_t>(cells.h);
}

}  // namespace

TileContainer::~TileContainer() = default;

std::size_t TileContainer::indexIn(const CellRect& cells, std::int32_t x, std::int32_t y) {
    if (x < cells.x || y < cells.y || x - cells.x >= cells.w || y - cells.y >= cells.h)
        return noIndex;
    return static_cast<std::size_t>(y - cells.y) * static_cast<std::size_t>(cells.w) +
           static_cast<std::size_t>(x - cells.x);
}

TileNode* TileContainer::nodeOfCell(std::int32_t x, std::int32_t y) {
    return nodeAt(indexIn(cells_, x, y));
}

const TileNode* TileContainer::constNodeOfCell(std::int32_t x, std::int32_t y) const {
    return constNodeAt(indexIn(cells_, x, y));
}

template <class T>
std::size_t TypedTileContainer<T>::nodeCount() const {
    return static_cast<std::size_t>(cellCount(cells_));
}

template <class T>
TileNode* TypedTileContainer<T>::nodeAt(std::size_t index) {
    return index < nodeCount() ? &nodes_[index] : nullptr;
}

template <class T>
const TileNode* TypedTileContainer<T>::constNodeAt(std::size_t index) const {
    return index < nodeCount() ? &nodes_[index] : nullptr;
}

template <class T>
bool TypedTileContainer<T>::setRect(const PixelRect& rect) {
    const CellRect cells = cellsOf(rect);
    if (cells == cells_) return true;
    if (cellCount(cells) > mostCells) return false;
    const auto needed = static_cast<std::size_t>(cellCount(cells));
    try {
        std::vector<Ref<Tile>> former(nodeCount());
        std::unique_ptr<TypedTileNode<T>[]> grown;
        if (needed > allocated_) grown = std::make_unique<TypedTileNode<T>[]>(needed);
        for (std::size_t i = 0; i < former.size(); ++i) former[i].swap(nodes_[i].tile);
        if (grown) {
            nodes_ = std::move(grown);
            allocated_ = needed;
        } else {
            for (std::size_t i = 0; i < allocated_; ++i) nodes_[i].tile.reset();
        }
        place(cells, former.data());
    } catch (const std::bad_alloc&) {
        return false;
    }
    cells_ = cells;
    return true;
}

// Former tiles into their cells; those that have none any more behind the grid.
template <class T>
void TypedTileContainer<T>::place(const CellRect& cells, const Ref<Tile>* former) {
    auto behind = static_cast<std::size_t>(cellCount(cells));
    for (std::int32_t y = 0; y < cells_.h; ++y) {
        for (std::int32_t x = 0; x < cells_.w; ++x, ++former) {
            if (!*former) continue;
            const std::size_t index = indexIn(cells, cells_.x + x, cells_.y + y);
            if (index != noIndex)
                nodes_[index].tile = *former;
            else if (behind < allocated_)
                nodes_[behind++].tile = *former;
        }
    }
}

template class TypedTileContainer<unsigned char>;
template class TypedTileContainer<znImage::Byte4>;

}  // namespace brushwork::znTiledImage
