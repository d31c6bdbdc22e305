// BilinearFilter: four pixels mixed by 255ths.
//
// The four are those around the nearest pixel corner (ix, iy), the place plus a half rounded down.
// The distance from that corner, from -0.5 up to 0.5, times 255 and cut to a whole number, is taken
// modulo 256: left of the corner the mix goes from the left pixel's middle to the right pixel, and
// right of it from the left pixel to the middle. All of the fraction is defined by that.
#pragma once

#include "tiled/resample_filter.h"

namespace brushwork {

class BilinearFilter final : public ResampleFilter {
  public:
    explicit BilinearFilter(EdgeMode edge) : ResampleFilter(FilterBilinear, edge, 2, 2) {}
    [[nodiscard]] Ref<ResampleFilter> clone() const override;
    void sample1(std::uint8_t* out, double x, double y) override;
    void sample4(std::uint8_t* out, double x, double y) override;
    void sampleRow4(std::uint8_t* out, const SampleRow& row) override;

  private:
    ~BilinearFilter() override = default;
};

}  // namespace brushwork
