#include "tiled/tile_container.h"

#include <gtest/gtest.h>

#include <cstring>

#include "image/memory/allocation_gate.h"
#include "tiled/tile_access.h"
#include "tiled/tiled_image.h"

namespace brushwork::znTiledImage {
namespace {

TEST(TileCells, AreTheFloorOnBothSidesOfZero) {
    EXPECT_EQ(cellOf(0), 0);
    EXPECT_EQ(cellOf(127), 0);
    EXPECT_EQ(cellOf(128), 1);
    EXPECT_EQ(cellOf(-1), -1);
    EXPECT_EQ(cellOf(-128), -1);
    EXPECT_EQ(cellOf(-129), -2);
    EXPECT_EQ(cellsOf({-129, 127, 130, 2}), (CellRect{-2, 0, 3, 2}));
    EXPECT_TRUE(isEmpty(cellsOf({5, 5, 0, 9})));
    // Beyond 32 bits.
    EXPECT_EQ(cellsOf({2147483647, -2147483647 - 1, 100, 2147483647}).w, 1);
    EXPECT_TRUE(isEmpty(common({0, 0, 10, 10}, {10, 0, 5, 5})));
}

TEST(TypedTile, HasTheFiguresOfItsKind) {
    const TypedTileNode<znImage::Byte4> node;
    const Ref<Tile> solid = node.makeTile(TileKind::Solid);
    EXPECT_EQ(solid->memoryBytes(), 1u);
    EXPECT_EQ(solid->objectBytes(), 16u);
    EXPECT_EQ(solid->bytesPerPixel(), 4u);
    const Ref<Tile> filled = TypedTileNode<unsigned char>().makeTile(TileKind::Filled);
    EXPECT_EQ(filled->memoryBytes(), 16384u);
    EXPECT_EQ(filled->objectBytes(), 16u);
    std::memset(filled->data(), 7, 65536);  // a whole page, whatever the pixels
    EXPECT_FALSE(node.makeTile(TileKind::None));
}

TEST(TileContainer, KeepsTilesOfCommonCells) {
    const auto grid = makeRef<TypedTileContainer<unsigned char>>();
    EXPECT_EQ(grid->nodeCount(), 0u);
    EXPECT_EQ(grid->nodeAt(0), nullptr);
    ASSERT_TRUE(grid->setRect({-128, 0, 384, 256}));  // cells -1..1 by 0..1
    ASSERT_EQ(grid->nodeCount(), 6u);
    std::vector<Ref<Tile>> tiles;
    for (std::size_t i = 0; i < 6; ++i) {
        grid->nodeAt(i)->tile = grid->nodeAt(i)->makeTile(TileKind::Solid);
        tiles.push_back(grid->nodeAt(i)->tile);
    }
    ASSERT_TRUE(grid->setRect({0, 128, 300, 130}));  // cells 0..2 by 1..2
    EXPECT_EQ(grid->nodeCount(), 6u);
    EXPECT_EQ(grid->nodeOfCell(0, 1)->tile, tiles[4]);
    EXPECT_EQ(grid->nodeOfCell(1, 1)->tile, tiles[5]);
    EXPECT_FALSE(grid->nodeOfCell(2, 1)->tile);
    EXPECT_FALSE(grid->nodeOfCell(0, 2)->tile);
    EXPECT_EQ(grid->nodeOfCell(-1, 1), nullptr);
    EXPECT_EQ(tiles[0]->refCount(), 1u);  // no room behind a grid as large
    // Smaller: the array stays, and so do tiles that can't be reached any more.
    ASSERT_TRUE(grid->setRect({128, 128, 1, 1}));
    EXPECT_EQ(grid->nodeCount(), 1u);
    EXPECT_EQ(grid->allocatedNodes(), 6u);
    EXPECT_EQ(grid->nodeAt(0)->tile, tiles[5]);
    EXPECT_EQ(grid->nodeAt(1), nullptr);
    EXPECT_EQ(tiles[4]->refCount(), 2u);
    // Larger again: none of them shows up in a cell that was given up.
    ASSERT_TRUE(grid->setRect({-128, 0, 384, 256}));
    for (std::size_t i = 0; i < 5; ++i) EXPECT_FALSE(grid->nodeAt(i)->tile) << i;
    EXPECT_EQ(grid->nodeAt(5)->tile, tiles[5]);
    EXPECT_EQ(tiles[4]->refCount(), 1u);
    EXPECT_FALSE(grid->setRect({0, 0, 2147483647, 2147483647}));
    EXPECT_EQ(grid->nodeCount(), 6u);
}

TEST(TileAccess, ChangesKinds) {
    const Ref<Image> image = makeImage(4);
    const znImage::Byte4 fill{{1, 2, 3, 4}};
    const znImage::Byte4 value{{9, 8, 7, 6}};
    image->setFillValue(&fill);
    const auto pixelOf = [&](const TileNode& node, std::int32_t x) {
        return *static_cast<const znImage::Byte4*>(constPixel(node, *image, x, x));
    };
    TypedTileNode<znImage::Byte4> node;
    EXPECT_EQ(pixelOf(node, 0), fill);
    ASSERT_TRUE(setKind(node, TileKind::Filled, *image, Contents::Keep));
    EXPECT_EQ(pixelOf(node, 0), fill);
    EXPECT_EQ(pixelOf(node, 127), fill);
    const Ref<Tile> same = node.tile;
    ASSERT_TRUE(setKind(node, TileKind::Filled, *image, Contents::Keep));
    EXPECT_EQ(node.tile, same);
    ASSERT_TRUE(makeSolid(node, &value));
    ASSERT_TRUE(setKind(node, TileKind::Filled, *image, Contents::Keep));
    EXPECT_EQ(pixelOf(node, 127), value);
    // A block has no single value: the fill.
    ASSERT_TRUE(setKind(node, TileKind::Solid, *image, Contents::Keep));
    EXPECT_EQ(pixelOf(node, 5), fill);
    ASSERT_TRUE(setKind(node, TileKind::None, *image, Contents::Keep));
    EXPECT_FALSE(node.tile);
    ASSERT_TRUE(setKind(node, TileKind::Solid, *image, Contents::Drop));
    EXPECT_EQ(pixelOf(node, 5), znImage::Byte4{});
}

TEST(TileAccess, SeparatesBeforeWriting) {
    const Ref<Image> image = makeImage(1);
    TypedTileNode<unsigned char> a, b;
    const unsigned char value = 77;
    ASSERT_TRUE(makeSolid(a, &value));
    ASSERT_TRUE(setKind(a, TileKind::Filled, *image, Contents::Keep));
    const Ref<Tile>& tile = a.tile;
    const void* const address = tile->data();
    {
        const TileNodeWriter alone(a);
        EXPECT_TRUE(alone.isReady());
    }
    EXPECT_EQ(a.tile->data(), address);  // one holder: no copy
    b.tile = a.tile;
    {
        const TileNodeReader reader(b);
        EXPECT_EQ(reader.node().tile->refCount(), 2u);
    }
    const TileNodeWriter writer(b);
    EXPECT_NE(b.tile->data(), address);
    EXPECT_EQ(a.tile->refCount(), 1u);
    EXPECT_EQ(std::memcmp(a.tile->data(), b.tile->data(), 16384), 0);
}

TEST(TileAccess, WithoutMemoryNothingChanges) {
    const Ref<Image> image = makeImage(4);
    TypedTileNode<znImage::Byte4> a, b;
    ASSERT_TRUE(setKind(a, TileKind::Filled, *image, Contents::Keep));
    b.tile = a.tile;
    TypedTileNode<znImage::Byte4> empty;
    setAllocationRefusal(+[]() noexcept { return true; });
    EXPECT_FALSE(prepareWrite(b));
    EXPECT_FALSE(TileNodeWriter(b).isReady());
    EXPECT_FALSE(setKind(empty, TileKind::Filled, *image, Contents::Keep));
    setAllocationRefusal(nullptr);
    EXPECT_EQ(b.tile, a.tile);
    EXPECT_FALSE(empty.tile);
}

TEST(TiledImage, SwapsAndShares) {
    const Ref<Image> a = makeImage(1);
    const Ref<Image> b = makeImage(1);
    const Ref<Image> other = makeImage(4);
    EXPECT_FALSE(makeImage(3));
    const unsigned char fill = 5;
    ASSERT_TRUE(a->setRect({-10, -10, 20, 20}));
    a->setFillValue(&fill);
    ASSERT_TRUE(setKind(*a->container().nodeAt(3), TileKind::Filled, *a, Contents::Keep));
    a->swap(*other);
    EXPECT_EQ(a->container().nodeCount(), 4u);
    a->swap(*b);
    EXPECT_EQ(a->container().nodeCount(), 0u);
    EXPECT_EQ(b->rect(), (PixelRect{-10, -10, 20, 20}));
    EXPECT_EQ(*static_cast<const unsigned char*>(b->constFillValue()), 5);
    const Ref<Image> copy = b->share();
    EXPECT_EQ(copy->container().nodeAt(3)->tile, b->container().nodeAt(3)->tile);
    EXPECT_EQ(copy->container().nodeAt(3)->tile->refCount(), 2u);
}

}  // namespace
}  // namespace brushwork::znTiledImage
