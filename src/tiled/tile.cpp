#include "tiled/tile.h"

#include <new>

#include "tiled/tile_memory.h"

namespace brushwork::znTiledImage {

Tile::~Tile() = default;

void Tile::lock(bool) {}

void Tile::unlock(bool) {}

template <class T>
Ref<Tile> TypedTileFilled<T>::make() {
    MemoryManager& memory = MemoryManager::instance();
    void* const block = memory.allocate(sizeof(T) * tilePixels);
    if (!block) return nullptr;
    auto* const tile = new (std::nothrow) TypedTileFilled(block);
    if (!tile) memory.release(block);
    return Ref<Tile>(tile);
}

template <class T>
TypedTileFilled<T>::~TypedTileFilled() {
    MemoryManager::instance().release(block_);
}

template class TypedTileSolid<unsigned char>;
template class TypedTileSolid<znImage::Byte4>;
template class TypedTileFilled<unsigned char>;
template class TypedTileFilled<znImage::Byte4>;

}  // namespace brushwork::znTiledImage
