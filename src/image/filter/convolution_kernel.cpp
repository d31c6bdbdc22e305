#include "image/filter/convolution_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <string>

#include "foundation/services/log.h"

namespace brushwork {
namespace {

constexpr float leastSigma = 0.00001f;
constexpr float fixedBound = 15.999511f;  // times 2048 the largest 16-bit number

// Not-a-number is no more than the bound either.
float atLeast(float value, float bound) {
    return value > bound ? value : bound;
}

std::uint32_t sideOf(float radius) {
    constexpr float farthest = 1073741823.0f;  // as a float 2^30: the side must stay an int
    if (radius >= farthest) return 0x7FFFFFFF;
    return 2 * static_cast<std::uint32_t>(radius) + 1;
}

std::string decimal(float value) {
    char text[64];
    std::snprintf(text, sizeof text, "%f", static_cast<double>(value));
    return text;
}

}  // namespace

ConvolutionKernel::ConvolutionKernel(float sharpness, float radius, float sigma)
    : sharpness_(sharpness), radius_(atLeast(radius, 0.0f)), sigma_(atLeast(sigma, leastSigma)) {
    build();
}

ConvolutionKernel::ConvolutionKernel(const float* weights, std::uint32_t size) {
    if (!weights || size > largestSide) return;
    size_ = size;
    copyFrom(weights);
}

ConvolutionKernel::ConvolutionKernel(const ConvolutionKernel& other)
    : size_(other.size_),
      built_(other.built_),
      sharpness_(other.sharpness_),
      radius_(other.radius_),
      sigma_(other.sigma_) {
    if (other.weights()) copyFrom(other.weights());
}

void ConvolutionKernel::setSharpness(float sharpness) {
    sharpness_ = sharpness;
    build();
}

void ConvolutionKernel::setRadius(float radius) {
    radius_ = atLeast(radius, 0.0f);
    build();
}

void ConvolutionKernel::setSigma(float sigma) {
    sigma_ = atLeast(sigma, leastSigma);
    build();
}

void ConvolutionKernel::build() noexcept try {
    size_ = sideOf(radius_);
    built_ = 0;
    fixedWeights_.clear();
    weights_.clear();
    if (size_ > largestSide) return;
    weights_.resize(std::size_t{size_} * size_);
    fillWeights();
    built_ = 1;
    fillFixed();
} catch (const std::exception&) {
    // No memory: what there is of the weights stands.
}

void ConvolutionKernel::copyFrom(const float* weights) noexcept try {
    weights_.assign(weights, weights + std::size_t{size_} * size_);
    fillFixed();
} catch (const std::exception&) {
    // As in build.
}

void ConvolutionKernel::fillWeights() {
    const std::size_t centre = weights_.size() / 2;
    if (sharpness_ == 0.0f || radius_ == 0.0f) {
        weights_[centre] = 1.0f;
        return;
    }
    fillGaussian();
    float sum = 0.0f;
    for (const float weight : weights_) sum += weight;
    const float scale = -(sharpness_ / sum);
    for (float& weight : weights_) weight *= scale;
    weights_[centre] += sharpness_ + 1.0f;
}

void ConvolutionKernel::fillGaussian() {
    const float deviation = sigma_ * radius_;
    const float k = -0.5f / (deviation * deviation);
    const std::size_t half = size_ / 2;
    for (std::size_t dy = 0; dy <= half; ++dy) {
        for (std::size_t dx = 0; dx <= half; ++dx) {
            const auto distance = static_cast<float>(dx * dx + dy * dy);
            // The centre is 1 even where k overflowed.
            const float weight = distance == 0.0f ? 1.0f : std::exp(distance * k);
            weights_[(half + dy) * size_ + half + dx] = weight;
            weights_[(half + dy) * size_ + half - dx] = weight;
            weights_[(half - dy) * size_ + half + dx] = weight;
            weights_[(half - dy) * size_ + half - dx] = weight;
        }
    }
}

void ConvolutionKernel::fillFixed() {
    fixedWeights_.clear();
    const bool fits = std::all_of(weights_.begin(), weights_.end(), [](float weight) {
        return weight > -fixedBound && weight < fixedBound;
    });
    if (!fits) return;
    fixedWeights_.reserve(weights_.size());
    for (const float weight : weights_) {
        fixedWeights_.push_back(static_cast<std::int16_t>(weight * 2048.0f));
    }
}

void ConvolutionKernel::print() const try {
    const int side = static_cast<int>(size_);
    log("Sharpness = %f, radius = %f, sigma = %f, Size = %dx%d\n", static_cast<double>(sharpness_),
        static_cast<double>(radius_), static_cast<double>(sigma_), side, side);
    std::string row;
    for (std::size_t i = 0; i < weights_.size(); ++i) {
        row += weights_[i] < 0.5f ? " " : "  ";
        row += decimal(weights_[i]);
        if ((i + 1) % size_ != 0) continue;
        log("%s\n", row.c_str());
        row.clear();
    }
    log("\n");
} catch (const std::exception&) {
    // No memory for a line of text.
}

void ConvolutionKernel::copyWeights(float* dest) const {
    if (!dest || weights_.empty()) return;
    std::copy(weights_.begin(), weights_.end(), dest);
}

}  // namespace brushwork
