// The exact sums of the filters with the cubic kernel, four channels at once: each channel sees the
// operations of the scalar definition, in double and in the same order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/services/vector_level.h"

namespace brushwork {

// A block of pixels of four bytes, and the weights of its columns and rows. Rows first; then
// everything times the factor, 1e-8 more, rounded half to even and cut to a byte.
struct CubicBlock {
    const std::uint8_t* first;  // the lower left pixel
    std::size_t stride;         // bytes from row to row
    std::int32_t width, height;
    const double* weightsX;
    const double* weightsY;
    double factor;
};

// A block of 4 by 4, and where its first column and row lie from the sample.
struct CubicSample {
    const std::uint8_t* first;
    std::size_t stride;
    double startX, startY;
};

struct CubicSums {
    // weights[i] = cubic((start + i) * scale). Writes up to a multiple of four.
    void (*weigh)(double start, double scale, std::int32_t count, double* weights);
    void (*sum4)(const CubicBlock& block, std::uint8_t* out);
    // Both at once, unstretched.
    void (*sample4)(const CubicSample& sample, std::uint8_t* out);
};

// Null at VectorLevel::Scalar.
[[nodiscard]] const CubicSums* cubicSums(VectorLevel level = vectorLevel());
extern const CubicSums cubicSumsSse2;
extern const CubicSums cubicSumsAvx2;

}  // namespace brushwork
