#include "image/filter/kernel_passes.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "foundation/services/vector_level.h"
#include "image/filter/kernel_rows.h"

namespace brushwork {
namespace {

// --- The definition: the sum at one lane as a byte.

std::uint8_t boundedByte(std::int32_t value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

struct FloatTotal {
    float sum = 0.0f;
    void add(std::uint8_t pixel, float weight) { sum += static_cast<float>(pixel) * weight; }
    [[nodiscard]] std::uint8_t byte() const {
        if (!(sum > 0.0f)) return 0;
        return sum >= 255.0f ? 255 : static_cast<std::uint8_t>(sum);
    }
};

std::int32_t fixedTap(std::uint8_t pixel, std::int16_t weight) {
    return (std::int32_t{pixel} * 128 * weight) >> 16;
}

// Wraps like any 32-bit register; only kernels of more than 131,000 extreme weights get there.
struct FixedTotal32 {
    std::uint32_t sum = 0;
    void add(std::uint8_t pixel, std::int16_t weight) {
        sum += static_cast<std::uint32_t>(fixedTap(pixel, weight));
    }
    [[nodiscard]] std::uint8_t byte() const {
        return boundedByte(static_cast<std::int32_t>(sum) >> 2);
    }
};

struct FixedTotal16 {
    std::int32_t sum = 0;
    void add(std::uint8_t pixel, std::int16_t weight) {
        sum = std::clamp(sum + fixedTap(pixel, weight), -32768, 32767);
    }
    [[nodiscard]] std::uint8_t byte() const { return boundedByte(sum >> 2); }
};

template <class Total, class Weight>
void kernelRow(const KernelRow<Weight>& row) {
    noteKernelForm(VectorLevel::Scalar);
    for (std::size_t lane = 0; lane < row.lanes; ++lane) {
        Total total;
        for (std::size_t j = 0; j < row.size; ++j) {
            for (std::size_t i = 0; i < row.size; ++i) {
                total.add(row.source[lane + j * row.stride + i * row.channels],
                          row.weights[j * row.size + i]);
            }
        }
        row.target[lane] = total.byte();
    }
}

// --- The choice of a form, and the walk over the rows.

template <class Weight>
using RowForm = void (*)(const KernelRow<Weight>&);

template <class Weight>
struct RowForms {
    RowForm<Weight> scalar;
    RowForm<Weight> sse2;
    RowForm<Weight> avx2;

    [[nodiscard]] RowForm<Weight> at(VectorLevel level) const {
        if (level == VectorLevel::Avx2) return avx2;
        return level == VectorLevel::Sse2 ? sse2 : scalar;
    }
};

constexpr RowForms<float> floatForms = {kernelRow<FloatTotal, float>, kernelRowFloatSse2,
                                        kernelRowFloatAvx2};
constexpr RowForms<std::int16_t> fixedForms16 = {kernelRow<FixedTotal16, std::int16_t>,
                                                 kernelRowFixedSse2, kernelRowFixedAvx2};
constexpr RowForms<std::int16_t> fixedForms32 = {kernelRow<FixedTotal32, std::int16_t>, nullptr,
                                                 nullptr};

struct Picture {
    const std::uint8_t* source;
    std::uint8_t* target;
    int width;
    int height;
    std::size_t channels;
};

template <class Weight>
void convolve(const Picture& picture, const Weight* weights, int size,
              const RowForms<Weight>& forms, VectorLevel level) {
    if (picture.width < 1 || picture.height < 1) return;
    const std::size_t stride = static_cast<std::size_t>(picture.width) * picture.channels;
    // The whole of it: less to get wrong than four bands, and small beside the filter.
    std::memcpy(picture.target, picture.source, stride * static_cast<std::size_t>(picture.height));
    const int half = size >> 1;
    if (size < 1 || picture.width <= 2 * std::int64_t{half} ||
        picture.height <= 2 * std::int64_t{half}) {
        return;
    }
    const auto side = static_cast<std::size_t>(size);
    const auto band = static_cast<std::size_t>(half);
    const std::size_t lanes = stride - 2 * band * picture.channels;
    const auto form = forms.at(lanes < kernelRowLanes ? VectorLevel::Scalar : level);
    const auto rows = static_cast<std::size_t>(picture.height) - 2 * band;
    for (std::size_t y = 0; y < rows; ++y) {
        form({picture.source + y * stride,
              picture.target + (y + band) * stride + band * picture.channels, lanes, stride,
              picture.channels, weights, side});
    }
}

// Whether no partial total can leave 16 bits, whatever the pixels: then 16-bit lanes with or
// without saturation and 32-bit ones agree.
bool staysIn16Bits(const std::int16_t* weights, int size) {
    const std::int64_t taps = std::int64_t{std::max(size, 0)} * size;
    std::int64_t bound = 0;
    for (std::int64_t i = 0; i < taps && bound <= 32767; ++i) {
        bound += ((255 * 128 * std::abs(int{weights[i]})) >> 16) + 1;
    }
    return bound <= 32767;
}

}  // namespace

void convolveFloat1(const std::uint8_t* source, std::uint8_t* target, int width, int height,
                    const float* weights, int size) noexcept {
    convolve({source, target, width, height, 1}, weights, size, floatForms, vectorLevel());
}

void convolveFloat4(const std::uint8_t* source, std::uint8_t* target, int width, int height,
                    const float* weights, int size) noexcept {
    convolve({source, target, width, height, 4}, weights, size, floatForms, vectorLevel());
}

void convolveFixed1(const std::uint8_t* source, std::uint8_t* target, int width, int height,
                    const std::int16_t* weights, int size) noexcept {
    const Picture picture{source, target, width, height, 1};
    const VectorLevel level = vectorLevel();
    if (level != VectorLevel::Scalar && staysIn16Bits(weights, size)) {
        convolve(picture, weights, size, fixedForms16, level);
    } else {
        convolve(picture, weights, size, fixedForms32, VectorLevel::Scalar);
    }
}

void convolveFixed4(const std::uint8_t* source, std::uint8_t* target, int width, int height,
                    const std::int16_t* weights, int size) noexcept {
    convolve({source, target, width, height, 4}, weights, size, fixedForms16, vectorLevel());
}

}  // namespace brushwork
