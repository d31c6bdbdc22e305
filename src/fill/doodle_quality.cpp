#include "fill/doodle_quality.h"

#include <cstdlib>

#include "brushwork/ref.h"
#include "foundation/services/log.h"
#include "image/filter/il_convolution_img.h"

namespace brushwork {
namespace {

class SpikeCount {
  public:
    void start() { seen_ = 0; }
    void next(std::int32_t value) {
        if (seen_ >= 2 && differs(middle_, first_) && differs(middle_, value)) ++count_;
        first_ = middle_;
        middle_ = value;
        if (seen_ < 2) ++seen_;
    }
    [[nodiscard]] std::int32_t count() const { return count_; }

  private:
    static bool differs(std::int32_t a, std::int32_t b) { return std::abs(a - b) > 128; }
    std::int32_t first_ = 0, middle_ = 0;
    int seen_ = 0;
    std::int32_t count_ = 0;
};

void smooth(ilSmartImage& mask, const FloodBox& box) {
    const ilTile area =
        flatTile(box.left, box.top, box.right - box.left + 1, box.bottom - box.top + 1);
    const Ref<ilConvolutionImg> copy(new ilConvolutionImg(area.nx, area.ny, 1));
    if (!copy->data()) return;
    if (mask.readRegion(area, copy->data(), area) != ImageOk) return;
    if (copy->convolve(ConvolutionKernel(-1.0f, 1.5f, 0.33333334f)) != ImageOk) return;
    mask.writeRegion(area, copy->data(), area);
}

}  // namespace

std::int32_t countSpikes(FillSurface& mask, const FloodBox& box) {
    SpikeCount spikes;
    const auto valueAt = [&](std::int32_t x, std::int32_t y) {
        return static_cast<std::int32_t>(mask.get(x, y));
    };
    for (std::int32_t y = box.top; y <= box.bottom; ++y) {
        spikes.start();
        for (std::int32_t x = box.left; x <= box.right; ++x) spikes.next(valueAt(x, y));
    }
    for (std::int32_t x = box.left; x <= box.right; ++x) {
        spikes.start();
        for (std::int32_t y = box.top; y <= box.bottom; ++y) spikes.next(valueAt(x, y));
    }
    return spikes.count();
}

void revertToBasicFill(FillSurface& source, ilSmartImage& mask, FillSurface& maskSurface,
                       const FloodBox& box, const ColorTarget& target, std::int32_t tolerance) {
    log("Reverting to BasicFill!\n");
    for (std::int32_t y = box.top; y <= box.bottom; ++y)
        for (std::int32_t x = box.left; x <= box.right; ++x)
            if (maskSurface.get(x, y) != 0 && colorDistance(source.get(x, y), target) > tolerance)
                maskSurface.put(x, y, 0);
    maskSurface.forget();
    smooth(mask, box);
}

}  // namespace brushwork
