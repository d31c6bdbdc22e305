// The loops of cubic sums. D is a type of four doubles.
#pragma once

#include "tiled/cubic_sums.h"

namespace brushwork {

template <class D>
class CubicSumsWalk {
    static D cubic(D t) {
        const D d = D::size(t);
        const D dd = d * d;
        const D ddd = dd * d;
        const D inner = D(1.25) * ddd - D(2.25) * dd + D(1);
        const D outer = D(-0.75) * (ddd - D(5) * dd + D(8) * d - D(4));
        return D::select(d, 1, inner, D::select(d, 2, outer, D(0)));
    }

    [[gnu::always_inline]] static D sumOf(const CubicBlock& block, std::int32_t width,
                                          std::int32_t height) {
        D sum(0);
        const std::uint8_t* row = block.first;
        for (std::int32_t j = 0; j < height; ++j, row += block.stride) {
            D across(0);
            for (std::int32_t i = 0; i < width; ++i)
                across = across + D::ofPixel(row + 4 * i) * D(block.weightsX[i]);
            sum = sum + across * D(block.weightsY[j]);
        }
        return sum;
    }

  public:
    static void weigh(double start, double scale, std::int32_t count, double* weights) {
        for (std::int32_t i = 0; i < count; i += 4)
            cubic((D(start) + D::countFrom(i)) * D(scale)).store(weights + i);
    }

    static void sample4(const CubicSample& sample, std::uint8_t* out) {
        double weightsX[4];
        double weightsY[4];
        cubic(D(sample.startX) + D::countFrom(0)).store(weightsX);
        cubic(D(sample.startY) + D::countFrom(0)).store(weightsY);
        const D sum = sumOf({sample.first, sample.stride, 4, 4, weightsX, weightsY, 1.0}, 4, 4);
        (sum + D(1e-8)).storeBytes(out);
    }

    static void sum4(const CubicBlock& block, std::uint8_t* out) {
        noteKernelForm(D::level);
        // The size of most blocks, unrolled.
        const bool four = block.width == 4 && block.height == 4;
        const D sum = four ? sumOf(block, 4, 4) : sumOf(block, block.width, block.height);
        (sum * D(block.factor) + D(1e-8)).storeBytes(out);
    }
};

}  // namespace brushwork
