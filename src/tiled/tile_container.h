// TileContainer: the flat grid of an image's cells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "tiled/tile_node.h"

namespace brushwork::znTiledImage {

class TileContainer : public zn::ReferenceCount {
  protected:
    ~TileContainer() override;

  public:
    // Most cells of one grid: 2^24, an area of half a million pixels square.
    static constexpr std::uint64_t mostCells = std::uint64_t{1} << 24;

    // Slots, in this order. The grid's cells, row by row from the lower left.
    [[nodiscard]] virtual std::size_t nodeCount() const = 0;
    // Null from nodeCount() on.
    [[nodiscard]] virtual TileNode* nodeAt(std::size_t index) = 0;
    [[nodiscard]] virtual const TileNode* constNodeAt(std::size_t index) const = 0;
    // Lays the grid over the cells of a pixel rectangle. Cells that lie in the old grid and the new
    // one keep their tiles, others are empty. Nodes are added as the grid grows, and stay when it
    // shrinks, with the tiles that still find room behind the grid; those can't be reached, and go
    // with the next change. False, with nothing changed: too many cells, or no memory.
    [[nodiscard]] virtual bool setRect(const PixelRect& rect) = 0;

    [[nodiscard]] const CellRect& cells() const { return cells_; }
    // The node of a cell; null outside the grid.
    [[nodiscard]] TileNode* nodeOfCell(std::int32_t x, std::int32_t y);
    [[nodiscard]] const TileNode* constNodeOfCell(std::int32_t x, std::int32_t y) const;

  protected:
    static constexpr std::size_t noIndex = ~std::size_t{0};
    [[nodiscard]] static std::size_t indexIn(const CellRect& cells, std::int32_t x, std::int32_t y);

    CellRect cells_;
};

// T: unsigned char or znImage::Byte4.
template <class T>
class TypedTileContainer final : public TileContainer {
  public:
    TypedTileContainer() = default;
    [[nodiscard]] std::size_t nodeCount() const override;
    [[nodiscard]] TileNode* nodeAt(std::size_t index) override;
    [[nodiscard]] const TileNode* constNodeAt(std::size_t index) const override;
    [[nodiscard]] bool setRect(const PixelRect& rect) override;

    // Nodes there are, those behind the grid among them.
    [[nodiscard]] std::size_t allocatedNodes() const { return allocated_; }

  private:
    ~TypedTileContainer() override = default;
    void place(const CellRect& cells, const Ref<Tile>* former);

    std::unique_ptr<TypedTileNode<T>[]> nodes_;
    std::size_t allocated_ = 0;
};

extern template class TypedTileContainer<unsigned char>;
extern template class TypedTileContainer<znImage::Byte4>;

}  // namespace brushwork::znTiledImage
