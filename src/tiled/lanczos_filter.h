// LanczosFilter: the cubic kernel, stretched over a larger footprint. In spite of its name there is
// no sinc in it.
#pragma once

#include <vector>

#include "tiled/resample_filter.h"

namespace brushwork {

// Sums as in BicubicFilter. Four channels are multiplied by the normaliser; one channel isn't, and
// grows brighter with the footprint.
class LanczosFilter final : public ResampleFilter {
  public:
    static constexpr std::int32_t mostFootprint = 1024;

    explicit LanczosFilter(EdgeMode edge);
    // With tables and factors.
    [[nodiscard]] Ref<ResampleFilter> clone() const override;
    // At least 4 by 4, at most mostFootprint.
    void setFootprint(std::int32_t w, std::int32_t h) override;
    void sample1(std::uint8_t* out, double x, double y) override;
    void sample4(std::uint8_t* out, double x, double y) override;
    void sampleRow4(std::uint8_t* out, const SampleRow& row) override;

    [[nodiscard]] double scaleX() const { return scaleX_; }
    [[nodiscard]] double scaleY() const { return scaleY_; }
    [[nodiscard]] double normaliser() const { return normaliser_; }

  private:
    ~LanczosFilter() override = default;

    // Of one channel out of `channels`, from the gathered block and the weights.
    [[nodiscard]] double sumOf(std::size_t channel, std::size_t channels) const;
    // Corner of the block for a place; computes the weights.
    struct Corner {
        std::int32_t x, y;
    };
    [[nodiscard]] Corner weigh(double x, double y);

    std::vector<double> weightsX_, weightsY_;
    std::vector<std::uint8_t> block_;
    std::int32_t firstX_ = 0, firstY_ = 0;
    double scaleX_ = 1, scaleY_ = 1;
    double normaliser_ = 1;
};

}  // namespace brushwork
