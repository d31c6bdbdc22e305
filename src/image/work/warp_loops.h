// The loops that warp a picture into a target: one a sampler and channel count.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/work/quad_solver.h"
#include "image/work/sampling_kernels.h"

namespace brushwork {

// A box of pixels to write. Pixel (x, y) of the plane lies at
// pixels + (y - originY) * rowBytes + (x - originX) * channels.
struct WarpTarget {
    std::uint8_t* pixels = nullptr;
    std::int32_t width = 0, height = 0;
    std::ptrdiff_t rowBytes = 0;
    std::int32_t originX = 0, originY = 0;
};

// Solves the middle of every pixel of the target and samples the source there; a pixel that doesn't
// map stays as it is. Source and target must not overlap. False, with nothing written, for another
// mode than the three, for channels other than 1 or 4, and for a source without pixels.
[[nodiscard]] bool warpPixels(const QuadSolver& solver, const SampleSource& source, SampleMode mode,
                              std::int32_t channels, const WarpTarget& target);

}  // namespace brushwork
