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
          top_(static_cast<float>(job.table.height + 1)),
          stepU_(Lanes::set(job.map.xx)),
          stepV_(Lanes::set(job.map.yx)) {}

    // Where the rows begin; answers how many of the lanes are rows of the job.
    std::int32_t begin(std::int32_t row) {
        const Floats rows = Lanes::rowNumbers(job_.firstRow + row);
        u_ = Lanes::add(Lanes::mul(Lanes::set(job_.map.xy), rows), Lanes::set(job_.map.x0));
        v_ = Lanes::add(Lanes::mul(Lanes::set(job_.map.yy), rows), Lanes::set(job_.map.y0));
        const std::int32_t left = job_.rows - row;
        return left < Lanes::count ? left : Lanes::count;
    }

    Spots nextSpots(const TableView& table) {
        const Ints inside = Lanes::insideOf(u_, v_, right_, top_);
        const Ints column = Lanes::truncated(u_), row = Lanes::truncated(v_);
        const Floats full = Lanes::set(256.0f);
        const Ints a = Lanes::truncated(Lanes::mul(full, Lanes::fractionOf(u_, column)));
        const Ints b = Lanes::truncated(Lanes::mul(full, Lanes::fractionOf(v_, row)));
        const Ints cell = Lanes::indexOf(column, row, table.cellsPerRow());
        u_ = Lanes::add(u_, stepU_);
        v_ = Lanes::add(v_, stepV_);
        return {Lanes::both(cell, inside), Lanes::both(Lanes::weightsOf(a), inside),
                Lanes::weightsOf(Lanes::both(b, inside))};
    }

    Ints nextFactors(const TableView& table) {
        const Spots at = nextSpots(table);
        return Lanes::blendCells(Lanes::fetchCells(table.cells, at.cell), at.across, at.along);
    }

    Ints nextFour(const TableView& table) {
        const Ints a = nextFactors(table), b = nextFactors(table);
        const Ints c = nextFactors(table), d = nextFactors(table);
        return Lanes::pack(a, b, c, d);
    }

    void shapeGroup(std::int32_t row) {
        const std::int32_t rows = begin(row);
        std::uint8_t* out = job_.pixels + static_cast<std::ptrdiff_t>(row) * job_.rowBytes;
        SamplingWalk walk = *this;  // registers, which no store can change
        const TableView table = job_.table;
        const std::int32_t rowBytes = job_.rowBytes;
        std::int32_t left = job_.width;
        for (; left >= blockColumns; left -= blockColumns, out += blockColumns) {
            const Ints block[4] = {walk.nextFour(table), walk.nextFour(table), walk.nextFour(table),
                                   walk.nextFour(table)};
            Lanes::multiplyBlock(block, out, rowBytes, rows);
        }
        if (left <= 0) return;
        Ints block[4];
        for (std::int32_t four = 0; four < 4; ++four)
            block[four] = four * 4 < left ? walk.nextFour(table) : Lanes::zero();
        Lanes::multiplyBlock(block, out, rowBytes, rows);
    }

    void colorGroup(std::int32_t row) {
        const std::int32_t rows = begin(row);
        std::uint8_t* const out = job_.pixels + static_cast<std::ptrdiff_t>(row) * job_.rowBytes;
        if (rows == Lanes::count)
            colorColumns(out, Lanes::count);
        else
            colorColumns(out, rows);
        for (std::int32_t n = 0; n < rows; ++n)
            for (std::int32_t byte = job_.width * 4; byte < job_.rowBytes; ++byte)
                out[static_cast<std::ptrdiff_t>(n) * job_.rowBytes + byte] = 0;
    }

    // Inlined, so that a full group of rows asks for none of them.
    [[gnu::always_inline]] void colorColumns(std::uint8_t* out, std::int32_t rows) {
        SamplingWalk walk = *this;
        const TableView table = job_.table;
        const std::int32_t rowBytes = job_.rowBytes;
        for (std::int32_t left = job_.width; left > 0; --left, out += 4) {
            const Spots at = walk.nextSpots(table);
            Lanes::storePixels(table.cells, at.cell, at.across, at.along, out, rowBytes, rows);
        }
    }

    const SamplingJob& job_;
    float right_, top_;
    Floats stepU_, stepV_, u_, v_;
};

}  // namespace brushwork::npc
