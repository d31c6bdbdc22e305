// SmartImageFloodFillAlg: the fill of the paint tool. From a pixel of a smart image it makes a mask
// of coverage with soft edges, page by page.
//
//     SmartImageFloodFillAlg flood;
//     flood.setImages(picture, mask);      // a mask of one channel, as a rule a new one
//     flood.setTolerance(24);
//     flood.setSeed(x, y);
//     flood.run();
//
// What a run reaches are the pixels that connect with the seed in the four directions over pixels
// nearer to its colour than the tolerance, within the picture's bounds as of setImages. The mask
// keeps what it had: coverage only rises, and what was covered before bounds a flood as an edge
// does. Mask pages that the flood doesn't reach aren't touched.
//
// A page of one value, whole in the picture and whole in the mask, is filled in one step, and then
// never entered again. One that is too far from the seed's colour gets soft edges at its border
// only, as any other page.
//
// One thread, under the image lock for all of a run. Nothing is reported: a seed outside the
// picture, or images that don't fit, do nothing; pages that can't be had bound the flood.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "brushwork/ref.h"
#include "fill/coverage_table.h"
#include "fill/flood_fill_wave.h"
#include "fill/page_grid.h"
#include "fill/page_queue.h"
#include "fill/page_reach.h"
#include "fill/wave_loop.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

class SmartImageFloodFillAlg {
  public:
    // How pages are flooded. Both give the same mask.
    enum class Method {
        Waves,  // pixel by pixel: the definition
        Rows,   // by rows of bits, a page's coverage written once at the end
    };

    SmartImageFloodFillAlg();
    SmartImageFloodFillAlg(const SmartImageFloodFillAlg&) = delete;
    SmartImageFloodFillAlg& operator=(const SmartImageFloodFillAlg&) = delete;
    virtual ~SmartImageFloodFillAlg();

    // A source of 1 or 4 channels and a mask of 1, two images; both are kept alive. The seed's
    // pixel and all pages are read by run().
    void setImages(ilSmartImage& source, ilSmartImage& mask);
    void setSeed(std::int32_t x, std::int32_t y);
    // Distances from this on stop the flood; 32 at first. 0 fills exact matches.
    void setTolerance(std::uint8_t tolerance);
    void setSmoothEdges(bool smooth);
    void setMethod(Method method) { method_ = method; }
    void run();

    [[nodiscard]] const CoverageTable& table() const { return table_; }

  protected:
    using Waves = FloodFillWaves;
    // The mask's page that is flooded. The mask has `coverage` all over a page that isn't mixed;
    // neither is looked up for one that has a reach.
    struct MaskPage {
        std::int32_t index;
        ilTile tile;
        ilTile inside;  // what of it lies in the picture, from the page's corner
        bool mixed;
        std::uint8_t coverage;
    };

    // Turns what waits at a page's border into waves on the stack.
    virtual void takeWaves(std::int32_t page, std::int32_t x, std::int32_t y);
    // Runs the waves in the page with its corner at (x, y), and hands what leaves to its
    // neighbours.
    virtual void floodPage(MaskPage& maskPage, std::int32_t x, std::int32_t y, Waves& waves);
    // After each page; does nothing.
    virtual void afterPage(std::int32_t page, std::int32_t x, std::int32_t y);
    // Which of the waiting pages comes next; the smallest number. The mask doesn't depend on it.
    [[nodiscard]] virtual std::int32_t nextPage(const PageQueue& waiting);

  private:
    class PageInput;
    // What a run knows of a page.
    struct PageState {
        std::unique_ptr<PageReach> reach;  // Rows, a page with an edge in it
        bool closed = false;               // filled whole, or can't be had: nothing enters any more
    };

    [[nodiscard]] bool prepare();
    void startAtSeed();
    void enterPage(std::int32_t index);
    [[nodiscard]] MaskPage maskPageOf(std::int32_t index);
    // The constant shortcut. Empty: the page is to be flooded pixel by pixel.
    [[nodiscard]] std::optional<PageBorderBitMask> fillWhole(const MaskPage& maskPage,
                                                             const PageInput& input);
    [[nodiscard]] PageBorderBitMask runWaves(const MaskPage& maskPage, const PageInput& input,
                                             Waves& waves);
    [[nodiscard]] PageBorderBitMask runRows(const MaskPage& maskPage, const PageInput& input,
                                            Waves& waves);
    void handOn(const MaskPage& maskPage, const PageBorderBitMask& sides);
    void handTo(std::int32_t x, std::int32_t y, BitRow PageBorderBitMask::*side, BitRow bits);
    void coverPages();
    void coverPage(std::int32_t index, const PageReach& reach);
    void forget();
    [[nodiscard]] FloodedPage flooded(const MaskPage& maskPage, const PageInput& input,
                                      std::uint8_t* coverage) const;

    Ref<ilSmartImage> source_;
    Ref<ilSmartImage> mask_;
    ilTile bounds_;
    std::int32_t seedX_ = -1, seedY_ = -1;
    bool smoothEdges_ = true;
    Method method_ = Method::Rows;
    ColorTarget target_;
    std::uint8_t tolerance_ = 32;
    CoverageTable table_;
    std::vector<std::unique_ptr<PageBorderBitMask>> pageMasks_;
    PageQueue pending_;
    PageGrid grid_;
    std::vector<PageState> states_;
    Waves waves_;
    // A flood enters pages ten thousand times: what the last entry used serves the next.
    Waves spareWaves_;
    std::unique_ptr<PageBorderBitMask> spareMask_;
    PageReach::Front front_;
};

}  // namespace brushwork
