// FillAlgorithm: paints a memory image with a colour or a gradient.
//
//     FillParameters parameters;
//     parameters.kind = FillKind::Linear;
//     parameters.endX = 2048.0f;
//     parameters.right = 2048;
//     parameters.bottom = 100;
//     parameters.stops = &stops;
//     FillAlgorithm fill;
//     fill.setup(&parameters, image);
//     fill.run();
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "brushwork/ref.h"
#include "fill/gradient_stops.h"
#include "fill/gradient_table.h"
#include "image/work/il_memory_img.h"

namespace brushwork {

enum class FillKind : std::int32_t { Solid = 0, Linear = 1, Radial = 2 };

struct FillParameters {
    // In pixels of the image. A linear gradient runs from start to end, a radial one from the start
    // outward, to the end's distance. Without a distance between them a linear gradient is all
    // first colour; a radial one is last colour but for the row and column of its start.
    float startX = 0.0f, startY = 0.0f, endX = 0.0f, endY = 0.0f;
    FillKind kind = FillKind::Solid;
    std::uint32_t color = 0;             // a pixel, for the solid kind
    std::int32_t width = 0, height = 0;  // of the image, for the solid kind
    std::int32_t left = 0, top = 0;      // the rectangle that a gradient paints, cut to the image;
    std::int32_t right = 0, bottom = 0;  // right and bottom lie outside
    bool dither = false;                 // noise in place of steps between the colours
    const GradientStops* stops = nullptr;  // borrowed; for gradients
};

class FillAlgorithm {
  public:
    FillAlgorithm() = default;
    FillAlgorithm(const FillAlgorithm&) = delete;
    FillAlgorithm& operator=(const FillAlgorithm&) = delete;
    virtual ~FillAlgorithm();

    // The parameters must outlive the run; they are read then.
    virtual void setup(const FillParameters* parameters, const Ref<ilMemoryImg>& image);
    // Replaces pixels. False, with nothing painted, without parameters, image or stops, for an
    // image without four interleaved channels of bytes or a buffer on a 4-byte boundary, and for an
    // unknown kind.
    virtual bool run();

  private:
    struct Area {
        std::int32_t left, top, right, bottom;
        [[nodiscard]] bool isEmpty() const { return left >= right || top >= bottom; }
    };
    [[nodiscard]] Area area() const;
    bool fillSolid();
    bool fillGradient();
    void buildTable();
    template <class Ramp>
    void paint(const Ramp& ramp);

    const FillParameters* parameters_ = nullptr;
    Ref<ilMemoryImg> image_;
    std::int32_t tableSize_ = 8192;
    std::int32_t channelStride_ = 4;  // bytes
    std::unique_ptr<std::uint32_t[]> table8_;
    std::unique_ptr<DeepColor[]> table16_;
    std::uint32_t firstColor_ = 0, lastColor_ = 0;
};

}  // namespace brushwork
