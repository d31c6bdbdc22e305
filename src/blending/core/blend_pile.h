// BlendPile: runs of several blenders over one target, put off and then done together, cell by
// cell: what one leaves in a cell of the target is at hand for the next, and the cells are shared
// between threads.
//
//     BlendPile pile(target, 0, 0);
//     pile.add(*lower, box);  // as lower->run(box)
//     pile.add(*upper, box);
//     pile.run();
//
// The pixels are those of the runs one after another. Blenders have no mask image and no second
// planes, and keep their settings until run(), which the destructor doesn't call. A pile belongs to
// one thread.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <vector>

#include "blending/core/generic_blender.h"
#include "blending/core/input_pages.h"

namespace brushwork::npc {

class BlendPile {
  public:
    // Cells lie on a grid of this many pixels.
    static constexpr std::int32_t cellSide = 128;

    // The target's pixel (0, 0) lies at (x, y); blenders needn't be bound to it.
    BlendPile(ilImage& target, std::int32_t x, std::int32_t y);
    BlendPile(const BlendPile&) = delete;
    BlendPile& operator=(const BlendPile&) = delete;

    // The box lies in one cell. Calls run() first where the pile would lock more pages at a time
    // than other runs do.
    void add(GenericBlender& blender, const ilTile& box);
    // With this constant source; the blender has no source image.
    void addConstant(GenericBlender& blender, std::uint32_t pixel, const ilTile& box);
    // What lies outside an image that has bounds, or in a page that can't be had, stays untouched;
    // short of memory, the rest is left out.
    void run();

  private:
    static constexpr std::size_t none = ~std::size_t{0};

    struct Source {
        GenericBlender* blender;
        InputPages pages;
        PageView view;  // the latest of them
    };
    struct Piece {
        GenericBlender* blender;
        Source* source;  // null: the pixel
        std::uint32_t pixel;
        std::size_t cell;
        WideBox box;
    };
    // A piece within one page of its source; those of a cell are chained.
    struct Layered {
        const GenericBlender* blender;
        WorkPlane source;
        bool isConstant;
        WideBox box;
        std::size_t next;
    };
    struct Cell {
        std::int64_t x, y;
        std::size_t first = none, last = none;  // of layered_
        std::size_t begin = 0, end = 0;         // of parts_
    };
    // And within one page of the target.
    struct Part {
        const GenericBlender* blender;
        std::int64_t y;
        WorkRecord record;
    };

    void put(GenericBlender& blender, bool isConstant, std::uint32_t pixel, const ilTile& box);
    [[nodiscard]] Source* sourceOf(GenericBlender& blender);
    [[nodiscard]] std::size_t cellOf(const ilTile& box);
    void lockSources();
    void chain(const Piece& piece, const WideBox& box, const WorkPlane& source);
    void lockTarget(InputPages& target);
    void work() const;
    void blendRows(const Cell& cell, std::int64_t fromY, std::int64_t toY) const;
    void clear();

    BlendSlot target_;
    std::vector<Piece> pieces_;
    std::deque<Source> sources_;
    std::vector<Cell> cells_;
    std::size_t lastCell_ = 0;   // that something was put in
    std::size_t pageCount_ = 0;  // of sources, about
    std::deque<std::array<std::uint32_t, 8>> constants_;
    std::vector<Layered> layered_;
    std::vector<Part> parts_;
};

}  // namespace brushwork::npc
