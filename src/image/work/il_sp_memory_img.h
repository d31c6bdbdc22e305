// ilSPMemoryImg: the engine's working buffer. A memory image that can scale, warp, reduce, turn and
// tone its pixels.
//
//     const Ref<ilSPMemoryImg> picture(new ilSPMemoryImg(width, height, 4));
//     picture->setScale(0.37f, 0.37f);
//     picture->setSampleModes(SampleMode::Bicubic, SampleMode::Bicubic);
//     picture->scaleAllInto(smaller->scaledTarget());
//
// All but the region access of ilMemoryImg works on bytes: pixels of one byte (1 channel) or of
// four (red, green, blue, alpha, premultiplied), interleaved, of plane 0. For other images these
// operations answer ImageNotAllowed, or no result, and change nothing.
#pragma once

#include <cstdint>
#include <string_view>

#include "brushwork/ref.h"
#include "image/work/il_memory_img.h"
#include "image/work/quad_solver.h"
#include "image/work/sampling_kernels.h"
#include "image/work/sampling_tables.h"

namespace brushwork {

// Which warp of four corners is meant.
enum class WarpKind {
    Automatic,  // a parallelogram's straight map; the bilinear map for any other quad
    Corners,    // always the bilinear map
};

class ilSPMemoryImg : public ilMemoryImg {
  public:
    static const ClassDescriptor descriptor;

    ilSPMemoryImg();
    // Sizes, and a buffer of its own, not cleared. The fill pixel is zero, the colour model ABGR
    // whatever the channels.
    ilSPMemoryImg(std::int32_t sizeX, std::int32_t sizeY, std::int32_t channels);
    ilSPMemoryImg(std::int32_t sizeX, std::int32_t sizeY, std::int32_t sizeZ, std::int32_t channels,
                  std::int32_t dataType, std::int32_t order);
    // As ilMemoryImg's.
    explicit ilSPMemoryImg(ilImage* source, Read read = Read::Now);
    // Wraps a buffer of the caller's, which must outlive the image; else as with sizes alone.
    ilSPMemoryImg(void* buffer, std::int32_t sizeX, std::int32_t sizeY, std::int32_t sizeZ,
                  std::int32_t channels, std::int32_t dataType, std::int32_t order);

  protected:
    ~ilSPMemoryImg() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;

    // Slots 25 to 28, in this order. Each answers ImageOk, or ImageUnusable without a target and
    // without pixels.

    // Reads a box of the scaled picture, in its pixels, with the scales and modes set here. What of
    // the box lies outside the scaled picture or doesn't fit the target is left out.
    virtual std::int32_t scaleRegionInto(const Rect<std::int32_t>& box, const ScaledTarget& target);
    // The same of the whole scaled picture.
    virtual std::int32_t scaleAllInto(const ScaledTarget& target);
    // Draws this image into `target` so that its corners (0, 0), (sizeX, 0), (sizeX, sizeY),
    // (0, sizeY) fall on the given points of the target's plane; pixels around stay. The mode of x
    // chooses the sampler. Both images have equally many channels. A quad without an area draws
    // nothing.
    virtual std::int32_t warpInto(const QuadCorners& corners, ilSPMemoryImg* target,
                                  WarpKind kind = WarpKind::Automatic);
    // Reads a region of this image, in its own pixels, at the scales and modes set here, to the
    // corner of `dest`: the pixels of the scaled picture from round(x * scaleX) up to
    // round((x + w) * scaleX), and likewise for y. Negative sizes count as 0, and nothing happens
    // then.
    virtual std::int32_t scaleBoxInto(float x, float y, float w, float h, ilSPMemoryImg* dest);

    void setScale(float x, float y) { tables_.setScale(x, y); }
    void setSampleModes(SampleMode x, SampleMode y) { tables_.setModes(x, y); }
    [[nodiscard]] float scaleX() const { return tables_.scaleX(); }
    [[nodiscard]] float scaleY() const { return tables_.scaleY(); }
    [[nodiscard]] SampleMode sampleModeX() const { return tables_.modeX(); }
    [[nodiscard]] SampleMode sampleModeY() const { return tables_.modeY(); }
    [[nodiscard]] bool tablesDirty() const { return tables_.dirty(); }
    // All of this image as a target of scaling.
    [[nodiscard]] ScaledTarget scaledTarget();
    // As warpInto, through any solver made for this image's sizes.
    std::int32_t warpThrough(const QuadSolver& solver, ilSPMemoryImg* target);

    // Reduced by blocks: a scale up to 1/16, 1/8, 1/4 or 1/2 makes an image of
    // round(size * that fraction), each pixel the mean of its block; what no whole block covers is
    // 0. A scale above 1/2 makes an equal image. Null for a scale not strictly between 0.00001 and
    // 1, where nothing is left, and unless there are 4 channels.
    [[nodiscard]] Ref<ilSPMemoryImg> downsampled(float scale);
    // Scales all of this image into the corner of `dest`, as large as fits with the proportions
    // kept: halved bilinearly while it stays larger than `dest` on both axes, then bicubically.
    // Leaves this image's scale at the halving and its modes at bilinear. False if it can't be
    // done.
    bool scaleInto(ilSPMemoryImg* dest);
    // 1 channel: each block of 4 by 4 becomes its mean; `dest` holds (sizeX >> 2) * (sizeY >> 2)
    // bytes.
    std::int32_t box4x4Into(std::uint8_t* dest);
    // For a look at it while debugging; false if the file can't be written.
    bool writeBmp(std::u16string_view path);

    // In place, in a wrapped buffer too. A person sees the turns as named, since row 0 is the
    // bottom: rotate90 goes against the clock. Turns exchange the sizes.
    std::int32_t rotate90();
    std::int32_t rotateMinus90();
    std::int32_t mirrorX();  // left and right change places
    std::int32_t flipY();    // bottom and top
    // 4 channels: each colour of the un-premultiplied pixel becomes 255 less itself. 1 channel:
    // complement.
    std::int32_t invert();
    // 1 channel. A contrast of -100 to 100 about the middle; brightness is added.
    std::int32_t brightnessContrast(float brightness, float contrast);

    // A number that a user of the image keeps with it, under an index; -1: none yet.
    [[nodiscard]] std::int32_t cachedIndex() const { return cachedIndex_; }
    [[nodiscard]] std::int32_t cachedValue() const { return cachedValue_; }
    void setCached(std::int32_t index, std::int32_t value);

    // Objects of this class in the process, those of derived classes among them. At debug level
    // 8111 each one's coming and going is logged, with the count after it; images over a wrapped
    // buffer only come with a line if both sizes exceed 2000.
    [[nodiscard]] static std::int32_t liveCount();

  private:
    enum class Announce { Yes, No };
    void begin(Announce announce);
    // ImageOk if there are pixels of bytes, `channels` of them, or either 1 or 4 for 0.
    [[nodiscard]] std::int32_t beginKernel(std::int32_t channels = 0);
    [[nodiscard]] std::size_t pixelCount() const;
    [[nodiscard]] SampleSource sampleSource() const;
    using TurnFunction = bool (*)(const std::uint8_t*, std::uint8_t*, std::int32_t, std::int32_t,
                                  std::int32_t);
    std::int32_t turn(TurnFunction function);
    std::int32_t changed();

    SamplingTables tables_;
    std::int32_t cachedIndex_ = -1;
    std::int32_t cachedValue_ = 0;
};

}  // namespace brushwork
