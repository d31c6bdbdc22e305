// The wider forms of the samplers, over one set of vector instructions; the lanes are rows.
// Included by the files that are compiled for it.
#pragma once

#include <cstddef>

#include "strokes/stamp/stamp_sampling.h"

namespace brushwork::npc {

template <class Lanes>
class SamplingWalk {
  public:
    static void shape(const SamplingJob& job) {
        noteKernelForm(Lanes::level);
        SamplingWalk walk(job);
        for (std::int32_t row = 0; row < job.rows; row += Lanes::count) walk.shapeGroup(row);
    }

    static void colors(const SamplingJob& job) {
        noteKernelForm(Lanes::level);
        SamplingWalk walk(job);
        for (std::int32_t row = 0; row < job.rows; row += Lanes::count) walk.colorGroup(row);
    }

  private:
    using Floats = typename Lanes::Floats;
    using Ints = typename Lanes::Ints;
    static constexpr std::int32_t blockColumns = 16;

    // Cell 0 without weights across, which reads as 0, for what lies outside.
    struct Spots {
        Ints cell, across, along;
    };

    explicit SamplingWalk(const SamplingJob& job)
        : job_(job),
          right_(static_cast<float>(job.table.width + 1)),
          top_(static_cast<float>(job.table.height + 1)) {}

    // Where the rows begin; answers how many of the lanes are rows of the job.
    std::int32_t begin(std::int32_t row) {
        const Floats rows = Lanes::rowNumbers(job_.firstRow + row);
        u_ = Lanes::add(Lanes::mul(Lanes::set(job_.map.xy), rows), Lanes::set(job_.map.x0));
        v_ = Lanes::add(Lanes::mul(Lanes::set(job_.map.yy), rows), Lanes::set(job_.map.y0));
        const std::int32_t left = job_.rows - row;
        return left < Lanes::count ? left : Lanes::count;
    }

    Spots nextSpots() {
        const Ints inside = Lanes::insideOf(u_, v_, right_, top_);
        const Ints column = Lanes::truncated(u_), row = Lanes::truncated(v_);
        const Floats full = Lanes::set(256.0f);
        const Ints a = Lanes::truncated(Lanes::mul(full, Lanes::fractionOf(u_, column)));
        const Ints b = Lanes::truncated(Lanes::mul(full, Lanes::fractionOf(v_, row)));
        const Ints cell = Lanes::indexOf(column, row, job_.table.width + 1);
        u_ = Lanes::add(u_, Lanes::set(job_.map.xx));
        v_ = Lanes::add(v_, Lanes::set(job_.map.yx));
        return {Lanes::both(cell, inside), Lanes::both(Lanes::weightsOf(a), inside),
                Lanes::weightsOf(Lanes::both(b, inside))};
    }

    Ints nextFactors() {
        const Spots at = nextSpots();
        return Lanes::blendCells(Lanes::fetchCells(job_.table.cells, at.cell), at.across, at.along);
    }

    void shapeGroup(std::int32_t row) {
        const std::int32_t rows = begin(row);
        std::uint8_t* const out = job_.pixels + static_cast<std::ptrdiff_t>(row) * job_.rowBytes;
        for (std::int32_t column = 0; column < job_.width; column += blockColumns) {
            Ints block[4];
            for (std::int32_t four = 0; four < 4; ++four) {
                if (column + four * 4 >= job_.width) {
                    block[four] = Lanes::zero();
                    continue;
                }
                const Ints a = nextFactors(), b = nextFactors();
                const Ints c = nextFactors(), d = nextFactors();
                block[four] = Lanes::pack(a, b, c, d);
            }
            Lanes::multiplyBlock(block, out + column, job_.rowBytes, rows);
        }
    }

    void colorGroup(std::int32_t row) {
        const std::int32_t rows = begin(row);
        std::uint8_t* const out = job_.pixels + static_cast<std::ptrdiff_t>(row) * job_.rowBytes;
        std::uint32_t cell[Lanes::count], across[Lanes::count], along[Lanes::count];
        for (std::int32_t column = 0; column < job_.width; ++column) {
            const Spots at = nextSpots();
            Lanes::storeInts(cell, at.cell);
            Lanes::storeInts(across, at.across);
            Lanes::storeInts(along, at.along);
            Lanes::storePixels(job_.table.cells, cell, across, along,
                               out + static_cast<std::ptrdiff_t>(column) * 4, job_.rowBytes, rows);
        }
        for (std::int32_t n = 0; n < rows; ++n)
            for (std::int32_t byte = job_.width * 4; byte < job_.rowBytes; ++byte)
                out[static_cast<std::ptrdiff_t>(n) * job_.rowBytes + byte] = 0;
    }

    const SamplingJob& job_;
    float right_, top_;
    Floats u_, v_;
};

}  // namespace brushwork::npc
