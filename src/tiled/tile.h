// Tiles: the pixels of one cell of 128 by 128, as one value or as a full block.
//
// Several nodes may hold a tile; who writes to one that has another holder takes a copy first
// (prepareWrite). Tiles have no lock: an image is used by one thread at a time, or read by several.
#pragma once

#include <cstddef>
#include <cstdint>

#include "brushwork/ref.h"
#include "brushwork/reference_count.h"
#include "tiled/byte4.h"
#include "tiled/tile_cells.h"

namespace brushwork::znTiledImage {

enum class TileKind : std::int32_t { None = 0, Solid = 1, Filled = 2 };

class Tile : public zn::ReferenceCount {
  protected:
    ~Tile() override;

  public:
    // Slots, in this order. The tiles of this program stay in memory: locking does nothing.
    virtual void lock(bool write);
    virtual void unlock(bool write);
    [[nodiscard]] virtual std::size_t bytesPerPixel() const = 0;
    // A figure for cost models, the same for all tiles.
    [[nodiscard]] virtual std::size_t objectBytes() const = 0;
    // The pixels, rows from the bottom without padding; of a solid tile the one pixel.
    [[nodiscard]] virtual void* data() = 0;
    [[nodiscard]] virtual const void* constData() const = 0;
    // How many pixels data() holds: 1 or 16384; times bytesPerPixel() its bytes.
    [[nodiscard]] virtual std::size_t memoryBytes() const = 0;

    [[nodiscard]] TileKind kind() const { return kind_; }
    [[nodiscard]] bool isFilled() const { return kind_ == TileKind::Filled; }

  protected:
    explicit Tile(TileKind kind) : kind_(kind) {}

  private:
    TileKind kind_;
};

// T: unsigned char or znImage::Byte4.
template <class T>
class TypedTileSolid final : public Tile {
  public:
    // All bytes zero.
    TypedTileSolid() : Tile(TileKind::Solid) {}
    [[nodiscard]] std::size_t bytesPerPixel() const override { return sizeof(T); }
    [[nodiscard]] std::size_t objectBytes() const override { return 16; }
    [[nodiscard]] void* data() override { return &pixel_; }
    [[nodiscard]] const void* constData() const override { return &pixel_; }
    [[nodiscard]] std::size_t memoryBytes() const override { return 1; }

  private:
    T pixel_{};
};

template <class T>
class TypedTileFilled final : public Tile {
  public:
    // Pixels of any value; null without memory.
    [[nodiscard]] static Ref<Tile> make();
    [[nodiscard]] std::size_t bytesPerPixel() const override { return sizeof(T); }
    [[nodiscard]] std::size_t objectBytes() const override { return 16; }
    [[nodiscard]] void* data() override { return block_; }
    [[nodiscard]] const void* constData() const override { return block_; }
    [[nodiscard]] std::size_t memoryBytes() const override { return tilePixels; }

  private:
    explicit TypedTileFilled(void* block) : Tile(TileKind::Filled), block_(block) {}
    ~TypedTileFilled() override;

    void* block_;  // the memory manager's
};

extern template class TypedTileSolid<unsigned char>;
extern template class TypedTileSolid<znImage::Byte4>;
extern template class TypedTileFilled<unsigned char>;
extern template class TypedTileFilled<znImage::Byte4>;

}  // namespace brushwork::znTiledImage
