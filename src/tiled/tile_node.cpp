#include "tiled/tile_node.h"

#include <new>

namespace brushwork::znTiledImage {

TileNode::~TileNode() = default;

template <class T>
Ref<Tile> TypedTileNode<T>::makeTile(TileKind kind) const {
    switch (kind) {
        case TileKind::Solid: return Ref<Tile>(new (std::nothrow) TypedTileSolid<T>);
        case TileKind::Filled: return TypedTileFilled<T>::make();
        case TileKind::None: break;
    }
    return nullptr;
}

template class TypedTileNode<unsigned char>;
template class TypedTileNode<znImage::Byte4>;

}  // namespace brushwork::znTiledImage
