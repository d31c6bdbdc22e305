// ToneAnalysis: what the tone adjustments need to know of an image, kept between calls.
//
// While a user drags a slider the same pixels are adjusted again and again; an analysis converts
// them once. It belongs to whoever holds it, in a slot that is handed to each adjustment:
//
//     Ref<ToneAnalysis> slot;
//     image->apply(&parm, slot);  // fills the slot
//     image->apply(&parm, slot);  // finds it filled
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "brushwork/ref.h"
#include "brushwork/reference_count.h"
#include "image/filter/tone_records.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

class ToneAnalysis final : public zn::ReferenceCount {
  public:
    // Of width * height premultiplied pixels, rows without padding. With a former analysis its
    // statistics stand in place of what these pixels would give. Null without memory and for a size
    // below 1.
    [[nodiscard]] static Ref<ToneAnalysis> make(const std::uint32_t* pixels, std::int32_t width,
                                                std::int32_t height,
                                                const ToneAnalysis* former = nullptr);
    // What the slot holds, if it is of that many pixels; else it gets a new analysis.
    [[nodiscard]] static Ref<ToneAnalysis> in(Ref<ToneAnalysis>& slot, const std::uint32_t* pixels,
                                              std::int32_t width, std::int32_t height);
    // Analyses that the process has made.
    [[nodiscard]] static std::uint64_t madeCount();

    // Hands all of these pixels out, pixelCount() of them, beside their records, block by block. A
    // record belongs to the pixel's number, so an image of other proportions will do.
    void walk(std::uint32_t* pixels, const std::function<void(const ToneBlock&)>& visit) const;

    [[nodiscard]] std::uint32_t pixelCount() const { return pixelCount_; }
    // The statistics count pixels that aren't transparent.
    // How many have each value, rounded.
    [[nodiscard]] const std::array<std::int32_t, 256>& histogram() const { return histogram_; }
    [[nodiscard]] float minValue() const { return minValue_; }  // 255 without any pixel
    // The least value in the histogram; 128 if it is empty.
    [[nodiscard]] float medianValue() const { return medianValue_; }
    [[nodiscard]] float maxValue() const { return maxValue_; }  // 0 without any pixel
    // Four 32-bit words a pixel: hue, saturation, value, 0, row behind row. An image that is wider
    // or higher than a smart image can take is folded to rows of another length.
    [[nodiscard]] ilSmartImage& hsvStore() const { return *hsvStore_; }
    [[nodiscard]] std::int32_t width() const { return width_; }
    [[nodiscard]] std::int32_t height() const { return height_; }

  private:
    ToneAnalysis(std::int32_t width, std::int32_t height);
    ~ToneAnalysis() override;
    bool convert(const std::uint32_t* pixels);
    void count(const std::uint32_t* pixels, const float* records, std::size_t count);
    void visitPage(std::uint32_t* pixels, std::size_t x, std::size_t y,
                   const std::function<void(const ToneBlock&)>& visit) const;
    [[nodiscard]] std::vector<float> recordsOf(const ToneBlock& block, std::size_t x,
                                               std::size_t y) const;
    [[nodiscard]] std::size_t rowCount() const;
    [[nodiscard]] std::size_t rowLength(std::size_t row) const;

    std::uint32_t pixelCount_;
    std::array<std::int32_t, 256> histogram_{};
    float minValue_ = 255.0f;
    float medianValue_ = 128.0f;
    float maxValue_ = 0.0f;
    Ref<ilSmartImage> hsvStore_;
    std::int32_t width_;
    std::int32_t height_;
    std::size_t rowPixels_;  // pixels whose records make a row of the store
};

}  // namespace brushwork
