// TileNode: one cell of a grid, and the tile that it holds.
#pragma once

#include "tiled/tile.h"

namespace brushwork::znTiledImage {

class TileNode : public zn::ReferenceCount {
  public:
    // A tile of this node's pixel type, not yet held by it: a solid one of zero bytes, a filled one
    // of any. Null for TileKind::None and without memory.
    [[nodiscard]] virtual Ref<Tile> makeTile(TileKind kind) const = 0;

    [[nodiscard]] TileKind kind() const { return tile ? tile->kind() : TileKind::None; }

    Ref<Tile> tile;  // null: an empty cell, which reads as the image's fill

  protected:
    ~TileNode() override;
};

// T: unsigned char or znImage::Byte4.
template <class T>
class TypedTileNode final : public TileNode {
  public:
    TypedTileNode() = default;
    ~TypedTileNode() override = default;
    [[nodiscard]] Ref<Tile> makeTile(TileKind kind) const override;
};

extern template class TypedTileNode<unsigned char>;
extern template class TypedTileNode<znImage::Byte4>;

}  // namespace brushwork::znTiledImage
