// SolidFilter: the same pixel everywhere.
#pragma once

#include "tiled/resample_filter.h"

namespace brushwork {

// Needs no reader. One channel takes the first byte.
class SolidFilter final : public ResampleFilter {
  public:
    explicit SolidFilter(EdgeMode edge) : ResampleFilter(FilterSolid, edge, 1, 1) {}
    [[nodiscard]] Ref<ResampleFilter> clone() const override;
    void sample1(std::uint8_t* out, double x, double y) override;
    void sample4(std::uint8_t* out, double x, double y) override;

    // The lowest byte is the first in memory.
    void setPixel(std::uint32_t pixel) { pixel_ = pixel; }
    [[nodiscard]] std::uint32_t pixel() const { return pixel_; }

  private:
    ~SolidFilter() override = default;

    std::uint32_t pixel_ = 0xFF00FF00;  // opaque green
};

}  // namespace brushwork
