// ResampleFilter: turns a place between the pixels of a tiled image into a pixel.
//
//     const Ref<ResampleFilter> filter = makeFilter(FilterBicubic, EdgeClamp);
//     if (!filter->begin(&reader, x0, y0, x1, y1)) giveUp();
//     filter->sample4(pixel, x, y);
//     filter->end();
//
// Pixel (i, j) has its centre at (i + 0.5, j + 0.5). Places beyond 2^30 count as that far away,
// not-a-number as 0. One thread uses a filter at a time; others take a clone, and begin that.
//
// To add a filter: derive, give it a code, clone and sample4 (sample1 if it knows one channel), and
// a row in makeFilter.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "brushwork/resource.h"
#include "tiled/edge_modes.h"
#include "tiled/pixel_reader.h"
#include "tiled/sample_chunk.h"
#include "tiled/tile_seams.h"

namespace brushwork {

enum FilterCode : std::int32_t {
    FilterNearest = 0,
    FilterBilinear = 1,
    FilterBicubic = 2,
    FilterLanczos = 3,
    FilterSolid = 4,
    FilterBase = 5,  // the base class, which can't be made
};

// A run of equally spaced places: each is the one before it plus the step.
struct SampleRow {
    double x, y;    // the first
    double dx, dy;  // to the next
    std::int32_t count;
};

class ResampleFilter : public Resource {
  protected:
    ~ResampleFilter() override;

  public:
    // Slots behind those of Resource, in this order.
    // The same type, edge mode and footprint; not begun.
    [[nodiscard]] virtual Ref<ResampleFilter> clone() const = 0;
    // Pixels that a sample looks at. LanczosFilter alone computes with it.
    virtual void setFootprint(std::int32_t w, std::int32_t h);
    // Reads from now on the pixels from (x0, y0) to (x1, y1), both included, which the reader must
    // cover; without a reader every sample is 0. The reader is borrowed until end(). False, with
    // nothing changed: begun already, not covered, or no pixel.
    virtual bool begin(const znTiledImage::PixelReader* reader, std::int32_t x0, std::int32_t y0,
                       std::int32_t x1, std::int32_t y1);
    virtual void end();
    // One byte, or four, at a place. 0 if the reader's pixels have another size.
    virtual void sample1(std::uint8_t* out, double x, double y);
    virtual void sample4(std::uint8_t* out, double x, double y) = 0;
    // A row of pixels side by side, each the byte or bytes that a single sample would give.
    virtual void sampleRow1(std::uint8_t* out, const SampleRow& row);
    virtual void sampleRow4(std::uint8_t* out, const SampleRow& row);

    [[nodiscard]] std::int32_t type() const { return type_; }
    [[nodiscard]] EdgeMode edgeMode() const { return edgeMode_; }
    [[nodiscard]] std::int32_t footprintW() const { return footprintW_; }
    [[nodiscard]] std::int32_t footprintH() const { return footprintH_; }
    [[nodiscard]] bool isStarted() const { return started_; }
    [[nodiscard]] const SampleRect& rect() const { return rect_; }
    // Begins as `other` has begun; false if that hasn't.
    bool beginLike(const ResampleFilter& other);

  protected:
    // A null edge mode means the outside one.
    ResampleFilter(std::int32_t code, EdgeMode edge, std::int32_t footprintX,
                   std::int32_t footprintY);

    // The whole number at or below a place.
    [[nodiscard]] static std::int32_t floorOf(double place);
    // Half to even, cut to a byte.
    [[nodiscard]] static std::uint8_t roundedByte(double value);
    // The pixel by the edge mode; null where it counts as 0.
    [[nodiscard]] const std::uint8_t* pixel1(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] const std::uint8_t* pixel4(std::int32_t x, std::int32_t y) const;
    // A block of pixels by the edge mode, rows without padding; refused ones are 0.
    void gather1(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                 std::uint8_t* out) const;
    void gather4(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h,
                 std::uint8_t* out) const;
    // The same with rows `stride` bytes apart.
    void gather4(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h, std::uint8_t* out,
                 std::size_t stride) const;
    // Whether all places of a row are numbers within 2^28 of zero.
    [[nodiscard]] static bool isTame(const SampleRow& row);
    // Sets what of the source will be needed after this row.
    static void lookAhead(const SampleRow& row, SampleChunk& chunk);
    // The next places of a row, for a kernel to work out: `x` and `y` move on.
    static void takePlaces(const SampleRow& row, int count, double& x, double& y,
                           SampleChunk& chunk);
    // Blocks of `side` by `side` pixels, 2 or 4. ix and iy are the places moved by `half` and
    // rounded down; `shift` leads from them to a block's corner.
    struct BlockShape {
        std::int32_t side, shift;
        double half;
    };
    // Points `first` at the blocks of the places up to `count`. False, with nothing placed: no
    // block has a pixel.
    [[nodiscard]] bool placeBlocks(SampleChunk& chunk, int count, const BlockShape& shape,
                                   PointBlocks point);
    // The first of `w` by `h` pixels of four bytes, in rows of 512 bytes, if they all lie in the
    // rectangle and in one block; else null.
    [[nodiscard]] const std::uint8_t* block4(std::int32_t x, std::int32_t y, std::int32_t w,
                                             std::int32_t h) const {
        if (!words_ || x < rect_.minX || y < rect_.minY || x + w - 1 > rect_.maxX ||
            y + h - 1 > rect_.maxY)
            return nullptr;
        const znImage::Byte4* const pixel = words_->blockAt(x, y, w, h);
        return pixel ? pixel->bytes.data() : nullptr;
    }

  private:
    [[nodiscard]] bool isApart(std::int32_t x, std::int32_t y, std::int32_t w,
                               std::int32_t h) const;
    // The blocks that stand in one tile, or across one border, by their corners.
    struct BlockWindow {
        std::int32_t left = 0, bottom = 0;
        std::uint32_t width = 0, height = 0;
        const std::uint8_t* corner = nullptr;

        [[nodiscard]] bool has(std::int32_t x, std::int32_t y) const {
            return static_cast<std::uint32_t>(x - left) < width &&
                   static_cast<std::uint32_t>(y - bottom) < height;
        }
    };
    [[nodiscard]] BlockWindow windowAt(std::int32_t x, std::int32_t y, std::int32_t side) const;
    [[nodiscard]] BlockWindow seamAt(std::int32_t x, std::int32_t y, std::int32_t side);
    // The first place behind number n that the window, which has that one, hasn't.
    [[nodiscard]] static int runEnd(const BlockWindow& window, const SampleChunk& chunk, int n,
                                    int count, const BlockShape& shape);
    [[nodiscard]] int placeBox(SampleChunk& chunk, int n, int count, const BlockShape& shape) const;
    [[nodiscard]] const std::uint8_t* copyBox(std::int32_t x, std::int32_t y, std::int32_t w,
                                              std::int32_t h, std::uint8_t* room) const;
    void gatherRun4(std::int32_t x, std::int32_t y, std::int32_t w, std::uint8_t* out) const;

    std::int32_t type_;
    EdgeMode edgeMode_;
    std::int32_t footprintW_, footprintH_;
    bool started_ = false;
    SampleRect rect_;
    const znTiledImage::PixelReader* reader_ = nullptr;
    // The reader, if its pixels are of that size.
    const znTiledImage::TypedPixelReader<unsigned char>* bytes_ = nullptr;
    const znTiledImage::TypedPixelReader<znImage::Byte4>* words_ = nullptr;
    TileSeams seams_;
};

}  // namespace brushwork
