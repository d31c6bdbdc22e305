// NearestFilter: the pixel in which the place lies.
#pragma once

#include "tiled/resample_filter.h"

namespace brushwork {

class NearestFilter final : public ResampleFilter {
  public:
    explicit NearestFilter(EdgeMode edge) : ResampleFilter(FilterNearest, edge, 1, 1) {}
    [[nodiscard]] Ref<ResampleFilter> clone() const override;
    void sample1(std::uint8_t* out, double x, double y) override;
    void sample4(std::uint8_t* out, double x, double y) override;

  private:
    ~NearestFilter() override = default;
};

}  // namespace brushwork
