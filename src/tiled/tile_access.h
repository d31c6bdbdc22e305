// Access to one node: separating a shared tile, changing its kind, and the accessors that pixel
// readers and writers hold.
#pragma once

#include "tiled/tiled_image.h"

namespace brushwork::znTiledImage {

// Gives the node a tile that nobody else holds, a copy if need be. An empty node stays empty.
// False, with the node unchanged: no memory.
[[nodiscard]] bool prepareWrite(TileNode& node);

enum class Contents { Drop, Keep };

// Changes what kind of tile the node holds; nothing happens if it is of that kind. What is kept is
// the solid value, or the image's fill of an empty cell; a filled tile doesn't know a value, so it
// turns into one of the fill. Without keeping, a solid tile is zero and a filled one is any.
// False, with the node unchanged: no memory.
[[nodiscard]] bool setKind(TileNode& node, TileKind kind, const Image& image, Contents contents);

// A solid tile of that value, of bytesPerPixel() bytes. False, with the node unchanged: no memory.
[[nodiscard]] bool makeSolid(TileNode& node, const void* pixel);

// One pixel of the node's tile: of a filled one that at (x, y) from the cell's corner, of a solid
// one its value, of an empty cell the image's fill.
[[nodiscard]] const void* constPixel(const TileNode& node, const Image& image, std::int32_t x,
                                     std::int32_t y);

// Locks a node's tile for reading while it lives. It is no holder: a writer that comes later
// doesn't take it for one. The node outlives it, and its tile isn't replaced meanwhile.
class TileNodeReader final : public zn::ReferenceCount {
  public:
    explicit TileNodeReader(const TileNode& node);
    ~TileNodeReader() override;

    [[nodiscard]] const TileNode& node() const { return node_; }

  private:
    const TileNode& node_;
};

// The same for writing: the tile is separated first.
class TileNodeWriter final : public zn::ReferenceCount {
  public:
    explicit TileNodeWriter(TileNode& node);
    ~TileNodeWriter() override;

    // False: there was no memory to separate the tile, which must not be written.
    [[nodiscard]] bool isReady() const { return ready_; }
    [[nodiscard]] TileNode& node() const { return node_; }

  private:
    TileNode& node_;
    bool ready_;
};

}  // namespace brushwork::znTiledImage
