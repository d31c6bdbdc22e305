// ConvolutionKernel: the square kernel that an ilConvolutionImg filters with.
//
// Built from three numbers it sharpens: to each pixel it adds `sharpness` times the difference
// between the pixel and the Gaussian mean of its neighbourhood. A sharpness of exactly -1 asks for
// the fast blur instead, for which the kernel only tells the size. A kernel can also be given as a
// table of weights.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork {

class ConvolutionKernel {
  public:
    // `radius` in pixels, at least 0; the Gaussian's deviation is sigma * radius, with sigma at
    // least 0.00001. Smaller values, and not-a-number, are raised to that.
    ConvolutionKernel(float sharpness, float radius, float sigma);
    // Copies size * size weights, row by row; sharpness, radius and sigma become 0.5, 1.5 and
    // 1/3 and don't describe them. Null weights or a side beyond largestSide make a kernel without
    // any.
    ConvolutionKernel(const float* weights, std::uint32_t size);
    ConvolutionKernel(const ConvolutionKernel& other);
    ConvolutionKernel& operator=(const ConvolutionKernel& other) = delete;

    // Each builds the weights anew.
    void setSharpness(float sharpness);
    void setRadius(float radius);
    void setSigma(float sigma);

    [[nodiscard]] float sharpness() const { return sharpness_; }
    [[nodiscard]] float radius() const { return radius_; }
    [[nodiscard]] float sigma() const { return sigma_; }
    // Side of the kernel: one more than twice the whole part of the radius, or as given.
    [[nodiscard]] std::uint32_t size() const { return size_; }
    // Whether the weights were made from the three numbers.
    [[nodiscard]] bool isBuilt() const { return built_ != 0; }

    // size * size weights that sum to 1 unless they were given. Null if the kernel has none, for
    // want of memory or because its side is beyond largestSide: such a kernel can only blur.
    [[nodiscard]] const float* weights() const { return data(weights_); }
    // The same in units of 1/2048, fractions cut off; null unless every weight lies strictly
    // within 15.999511 of zero.
    [[nodiscard]] const std::int16_t* fixedWeights() const { return data(fixedWeights_); }

    // Logs the three numbers and the weights, a row a line.
    void print() const;
    // Nothing happens if `dest` is null or the kernel has no weights.
    void copyWeights(float* dest) const;

    static constexpr std::uint32_t largestSide = 4095;  // 64 MiB of weights

  private:
    template <class T>
    static const T* data(const std::vector<T>& values) {
        return values.empty() ? nullptr : values.data();
    }
    void build() noexcept;
    void copyFrom(const float* weights) noexcept;
    void fillWeights();
    void fillGaussian();
    void fillFixed();

    std::vector<float> weights_;
    std::vector<std::int16_t> fixedWeights_;
    std::uint32_t size_ = 0;
    std::uint32_t built_ = 0;
    float sharpness_ = 0.5f;
    float radius_ = 1.5f;
    float sigma_ = 0.33333334f;
};

}  // namespace brushwork
