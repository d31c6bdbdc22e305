// BicubicFilter: 4 by 4 pixels weighted by the cubic kernel, and the kernel.
#pragma once

#include "tiled/bicubic_rows.h"
#include "tiled/cubic_sums.h"
#include "tiled/resample_filter.h"

namespace brushwork {

// The kernel with a = -0.75; 0 from a distance of 2 on.
[[nodiscard]] double cubic(double t);
// Weight i is that of the pixel `first + i` from pixel `base`, for a sample at `place`, with the
// kernel stretched by 1 / scale.
void cubicWeights(double place, std::int32_t base, std::int32_t first, double scale,
                  std::int32_t count, double* weights);

// Sums run in double, rows first, and round half to even; with four channels 1e-8 is added before.
class BicubicFilter final : public ResampleFilter {
  public:
    explicit BicubicFilter(EdgeMode edge) : ResampleFilter(FilterBicubic, edge, 4, 4) {}
    [[nodiscard]] Ref<ResampleFilter> clone() const override;
    void sample1(std::uint8_t* out, double x, double y) override;
    void sample4(std::uint8_t* out, double x, double y) override;
    void sampleRow4(std::uint8_t* out, const SampleRow& row) override;

  private:
    ~BicubicFilter() override = default;
    static void sampleExactly(const CubicSums& sums, const BicubicChunk& chunk, int n,
                              std::uint8_t* out);
};

}  // namespace brushwork
