// PaintOps: the drawing state of an image, and the operations that draw into it.
//
//     const Ref<PaintOps> ops(new SoftPaintOps(layerImage));
//     ops->setBlendFactors(FactorOne, FactorOneLessSourceAlpha);  // over
//     ops->drawImage(picture, 40, 60);
//     ops->setColor(255, 0, 0, 255);
//     ops->fill(flatTile(0, 0, 100, 20));
//
// A painter is set up like a graphics context: target image, factor pair, zoom, scale and bias of
// what comes in, colour. State stays until it is changed.
//
// This class draws nothing itself. It hands what it can to its child, another painter, or to its
// image; classes below it override the slots they do better. To put something between callers and a
// painter, derive from this class, set the painter as child and override what is to be watched.
//
// Operations answer -1 for done and 0 for nothing drawn or refused. Where there is nothing to do
// because there is neither child nor image, the answer is -1, too. Coordinates are pixels of the
// target before the zoom. Only the document's thread paints.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "blending/paint/paint_source.h"
#include "blending/paint/paint_state.h"
#include "brushwork/ref.h"
#include "brushwork/resource.h"
#include "image/chain/il_image.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

// Changes the pixels of a box in place; false: they are to stay as they were.
using PixelChange = std::function<bool(ilSPMemoryImg& pixels)>;

class PaintOps : public Resource {
  public:
    static constexpr std::int32_t done = -1;
    static constexpr std::int32_t nothingDrawn = 0;

    // Holds the image, which may be null. Nothing can be drawn before a child is set.
    explicit PaintOps(ilImage* image = nullptr);

  protected:
    ~PaintOps() override;

  public:
    // Slots 9 to 69, in this order.

    // Colour.
    // Puts the current colour in place of all that lies in bounds(), whatever the pair.
    virtual std::int32_t clear();
    // A word a channel, of which the low byte counts: red, green, blue, alpha, premultiplied. A
    // target of one channel uses the first.
    virtual std::int32_t setColor(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                                  std::uint32_t fourth);
    // The same of as many words as the target has channels: four, or one.
    virtual std::int32_t setColor(const std::uint32_t* words);
    // A mark for the code that hands painters out. It doesn't keep anyone from drawing.
    virtual std::int32_t setLocked(bool locked);
    [[nodiscard]] virtual bool locked();

    // Blending.
    // A hook for derived classes, called before the blending is switched. Does nothing.
    virtual std::int32_t blendingChanges();
    // The pair (0 or 1, 7), the negation of the flag first, and the write mask the flag.
    virtual std::int32_t enableBlend(bool enable);
    // Unknown factors are kept; an operation that has no path for them is refused.
    virtual std::int32_t setBlendFactors(std::int32_t source, std::int32_t target);

    // Pixels.
    // Copies a box of imageForRead() to the buffer, rows without padding. -1 for pixels read, else
    // 0. Coordinates are the image's own, without the zoom.
    virtual std::int32_t readPixels(std::int32_t x, std::int32_t y, std::int32_t width,
                                    std::int32_t height, void* buffer, const PaintFormat& format);
    // Draws one pixel value of the target's channels over the box, with the current pair. The box
    // is the image's own, without the zoom, and is cut to the limit of setBounds.
    virtual std::int32_t fillRegion(const ilTile& box, const ilPixel& pixel);
    // Draws a rectangle of the source. Zooms: the painter's places and stretches the rectangle, the
    // call's stretches the source inside it. `rows` is the distance of two rows of a memory source
    // in bytes, 0 for rows without padding; an image doesn't need it.
    virtual std::int32_t rect_copy(std::int32_t x, std::int32_t y, std::int32_t width,
                                   std::int32_t height, const PaintSource& source,
                                   const PaintFormat& format, std::size_t rows, float zoomX,
                                   float zoomY);
    // For derived classes: called by nobody here. Does nothing.
    virtual std::int32_t drawHook();
    // All of the image, its corner at (x, y): rect_copy over its bounds. -1 for null.
    virtual std::int32_t drawImage(ilImage* source, std::int32_t x, std::int32_t y);
    // The target. Borrowed; null without one.
    [[nodiscard]] virtual ilImage* image();
    // The box that setBounds gave, else that of the target's pixels. Empty without a target. A
    // smart target without a limit is drawn on outside it, too, and grows.
    virtual void bounds(ilTile& box);

    // Zoom.
    // Counts requests to ignore the zoom; true adds one, but only while both zooms are 1, and false
    // takes one back. Answers the count, which is never below 0.
    virtual std::int32_t pushZoomOff(bool off);
    [[nodiscard]] virtual bool isUnzoomed();
    [[nodiscard]] virtual BlendFactors blendFactors();

    // The target and its attributes.
    // Takes another target; the state stays. The former one is released.
    virtual std::int32_t setImage(ilImage* image);
    // Limits drawing to a box of the image; an empty one takes the limit away.
    virtual std::int32_t setBounds(const ilTile& box);
    // Brackets a series of operations. A painter that guards parts of its target does so once for
    // the series.
    virtual std::int32_t beginAccess();
    virtual std::int32_t endAccess();
    // Of the target; -1 without one.
    [[nodiscard]] virtual std::int32_t channels();
    // The target's fill; ImageNotAllowed as its setFill says, -1 without a target.
    virtual std::int32_t setFill(const ilPixel& pixel);

    // The stroke image: colours for sources of one channel. Its pixels lie where the target's do.
    [[nodiscard]] virtual ilImage* strokeImage();
    // Null takes it away.
    virtual std::int32_t setStrokeImage(ilImage* image);
    // With it on a source of one channel puts the stroke image's pixels in place of the target's in
    // proportion, instead of drawing them over it.
    virtual std::int32_t setPreview(bool preview);
    [[nodiscard]] virtual bool preview();
    // What shows the box as it is to be seen: the target, or an overlaid copy that lasts until the
    // next call. Borrowed.
    [[nodiscard]] virtual ilImage* imageForRead(const ilTile& box);

    // The current colour, a word a channel; it lasts as long as the painter.
    [[nodiscard]] virtual const std::uint32_t* color();
    // The same; `count` gets the target's channels.
    [[nodiscard]] virtual const std::uint32_t* color(std::int32_t& count);

    // What pixels go through.
    // Refused (0) unless both are positive numbers.
    virtual std::int32_t setZoom(float x, float y);
    virtual std::int32_t setScaleBias(const ScaleBias& scaleBias);
    // Draws the current colour with the box as its coverage, and a border of that many pixels
    // around the box in which it fades (soft_edge_box.h). At the copying pair it is drawn over.
    virtual std::int32_t drawSoftBox(const ilTile& box, std::int32_t border);
    // An image that is kept beside the target by whoever paints.
    [[nodiscard]] virtual ilImage* backup();
    virtual std::int32_t setBackup(ilImage* image);
    // Reads the box, lets `change` have its pixels and writes them back.
    virtual std::int32_t applyColorAdjust(const ilTile& box, const PixelChange& change);

    // The brush, for the code that picks a stroke's mode.
    [[nodiscard]] virtual bool isMarker();        // kind 1
    virtual std::int32_t setMarker(bool marker);  // kind 1 or 0
    [[nodiscard]] virtual float mixRate0();       // 0 to 1: what a wet brush picks up
    virtual std::int32_t setMixRate0(float rate);
    [[nodiscard]] virtual float mixRate1();
    virtual std::int32_t setMixRate1(float rate);
    [[nodiscard]] virtual float mixRate2();
    virtual std::int32_t setMixRate2(float rate);
    [[nodiscard]] virtual bool isWet();              // any kind but 0
    [[nodiscard]] virtual bool isGlow();             // kind 9
    [[nodiscard]] virtual bool isSmudge();           // kind 2
    [[nodiscard]] virtual bool isColorSmudge();      // kind 3
    [[nodiscard]] virtual bool isPastel();           // kind 6
    [[nodiscard]] virtual bool isMarkerColorless();  // kind 4
    [[nodiscard]] virtual std::int32_t brushKind();
    virtual std::int32_t setBrushKind(std::int32_t kind);

    // Draws the current colour over the box, as fillRegion does.
    virtual std::int32_t fill(const ilTile& box);

    // Strokes.
    // The stroke image while it holds paint that the target hasn't yet: a smart child of the
    // target. Null otherwise.
    [[nodiscard]] virtual ilImage* pendingStroke();
    // Gives the pending stroke to the target and lets go of it. 0 if none is pending.
    virtual std::int32_t commitStroke();
    // 1: what is drawn over a 4-channel target keeps its alpha.
    virtual std::int32_t setLockAlpha(std::int32_t lock);
    [[nodiscard]] virtual std::int32_t lockAlpha();
    // Brings everything that was drawn to the target.
    virtual std::int32_t flush();
    // A series of operations that belong together: access, and flush at its end.
    virtual std::int32_t beginBatch();
    virtual std::int32_t endBatch();

    // Beside the slots.

    // The painter that draws; null for none. A child must not lead back here.
    void setChild(PaintOps* child) { child_ = Ref<PaintOps>(child); }
    [[nodiscard]] PaintOps* child() const { return child_.get(); }
    // Of the painter that draws.
    [[nodiscard]] const PaintState& state() const;
    // The box of setBounds; empty: no limit.
    [[nodiscard]] const ilTile& clip() const;
    // A rectangle as rect_copy places it in the image. False if nothing is left of it.
    [[nodiscard]] bool place(std::int32_t x, std::int32_t y, std::int32_t width,
                             std::int32_t height, ilTile& box) const;

  protected:
    PaintState state_;
    Ref<ilImage> image_;
    ilTile clip_;
    std::int32_t zoomOff_ = 0;

  private:
    Ref<PaintOps> child_;
};

}  // namespace brushwork
