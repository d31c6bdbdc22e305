#include "image/work/warp_loops.h"

#include <algorithm>
#include <bit>

#include "image/work/solver_rows.h"

namespace brushwork {
namespace {

// The target is walked in blocks, so that the source lines that a turned block reads, some hundred
// pieces of a few hundred bytes, are still in cache and their pages still known for the next row;
// whole rows would touch a new line and page almost every pixel. Narrower blocks measured slower:
// their runs are too short for the samplers.
constexpr std::int32_t blockWidth = SolvedRow::capacity;
constexpr std::int32_t blockHeight = 64;

struct WarpJob {
    const RowSolver& solver;
    const SampleSource& source;
    SampleRun sample;
    float shift;
    std::size_t channels;
};

void sampleMapped(const WarpJob& job, const SolvedRow& row, std::uint8_t* out) {
    std::uint64_t rest = row.mapped;
    for (int at = 0; rest != 0;) {
        const int gap = std::countr_zero(rest);
        at += gap;
        rest >>= gap;
        const int run = std::countr_one(rest);
        const auto first = static_cast<std::size_t>(at);
        job.sample(job.source, row.x + first, row.y + first, static_cast<std::size_t>(run),
                   out + first * job.channels);
        at += run;
        rest = run == 64 ? 0 : rest >> run;
    }
}

void warpBlock(const WarpJob& job, const WarpTarget& target, std::int32_t left,
               std::int32_t bottom) {
    const std::int32_t width = std::min(target.width - left, blockWidth);
    const std::int32_t height = std::min(target.height - bottom, blockHeight);
    SolvedRow row;
    for (std::int32_t y = bottom; y < bottom + height; ++y) {
        job.solver.solve({target.originX + left, target.originY + y, width, job.shift}, row);
        sampleMapped(
            job, row,
            target.pixels + y * target.rowBytes + static_cast<std::size_t>(left) * job.channels);
    }
}

}  // namespace

bool warpPixels(const QuadSolver& solver, const SampleSource& source, SampleMode mode,
                std::int32_t channels, const WarpTarget& target) {
    const auto index = static_cast<std::int32_t>(mode);
    if (index < 0 || index > 2 || (channels != 1 && channels != 4)) return false;
    if (!source.pixels || source.width < 1 || source.height < 1) return false;
    const SamplingKernels& kernels = samplingKernels();
    const RowSolver rows(solver);
    // A solver's places count from the picture's corner, those of the samplers that mix pixels
    // from the middle of its first pixel.
    const WarpJob job{rows, source, channels == 4 ? kernels.four[index] : kernels.one[index],
                      mode == SampleMode::Nearest ? 0.0f : 0.5f,
                      static_cast<std::size_t>(channels)};
    for (std::int32_t y = 0; y < target.height; y += blockHeight)
        for (std::int32_t x = 0; x < target.width; x += blockWidth) warpBlock(job, target, x, y);
    return true;
}

}  // namespace brushwork
