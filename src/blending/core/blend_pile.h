// BlendPile: runs of several blenders over one target, put off and then done together, cell by
// cell: what one leaves in a cell of the target is at hand for the next, and the cells are shared
// between threads.
//
//     BlendPile pile(target, 0, 0);
//     pile.add(*lower, {picture.get(), 40, 25, true}, box);  // as with that source lower->run(box)
//     pile.add(*upper, {other.get(), 0, 0, true}, box);
//     pile.run();
//
// The pixels are those of the runs one after another. Blenders are bound to no image, and keep
// their settings until run(), which the destructor doesn't call; sources stay as they are as long.
// A pile belongs to one thread.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <vector>

#include "blending/core/generic_blender.h"
#include "blending/core/input_pages.h"
#include "image/smart/il_smart_image.h"

namespace brushwork::npc {

class BlendPile {
  public:
    // Cells lie on a grid of this many pixels.
    static constexpr std::int32_t cellSide = 128;

    struct Source {
        ilSmartImage* image;  // of four channels
        std::int32_t x, y;    // where its pixel (0, 0) lies
        bool skipsEmpty;      // pixels of 0 change nothing
    };

    // The target's pixel (0, 0) lies at (x, y).
    BlendPile(ilImage& target, std::int32_t x, std::int32_t y);
    BlendPile(const BlendPile&) = delete;
    BlendPile& operator=(const BlendPile&) = delete;

    // The box lies in one cell. Calls run() first where the pile would keep more pages at a time
    // than other runs do. False if there is nothing to blend.
    bool add(GenericBlender& blender, const Source& source, const ilTile& box);
    // What lies outside an image that has bounds, or in a page that can't be had, stays untouched;
    // short of memory, the rest is left out.
    void run();

  private:
    static constexpr std::size_t none = ~std::size_t{0};

    // Of one page of a source; those of a cell are chained.
    struct Piece {
        const GenericBlender* blender;
        std::uint8_t* pixels;  // of the page, from its corner; or one that stands for all
        bool isConstant;
        std::int64_t x, y;    // the page's corner
        std::uint64_t cells;  // of the page: those that are blended, as in SmartPage
        WideBox box;
        std::size_t next = none;
    };
    struct Cell {
        std::int64_t x, y;
        std::size_t first = none, last = none;    // of pieces_
        std::size_t firstView = 0, lastView = 0;  // of views_, the end outside
    };
    class Work;

    bool addPage(GenericBlender& blender, const Source& source, std::int64_t x, std::int64_t y,
                 const WideBox& box);
    void chain(const Piece& piece);
    [[nodiscard]] Cell& cellAt(std::int64_t x, std::int64_t y);
    void lockTarget(InputPages& target);
    void lockTarget(InputPages& target, Cell& cell, const WideBox& box);
    void work(const InputPages& target) const;
    void clear();

    BlendSlot target_;
    std::vector<Piece> pieces_;
    std::vector<Cell> cells_;
    std::size_t lastCell_ = 0;  // that something was put in
    KeptPages kept_;
    std::deque<std::array<std::uint32_t, 8>> constants_;
    std::vector<PageView> views_;  // of the target's pages
};

}  // namespace brushwork::npc
