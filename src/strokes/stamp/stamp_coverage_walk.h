// The wider form of the coverage walk, over one set of vector instructions. Included by the files
// that are compiled for it.
#pragma once

#include "strokes/stamp/stamp_coverage.h"

namespace brushwork::npc {

// `Lanes` has `count` lanes of Floats or Ints: see stamp_lanes_sse2.h.
template <class Lanes>
class CoverageWalk {
  public:
    using Floats = typename Lanes::Floats;
    using Ints = typename Lanes::Ints;

    static void run(const CoverageJob& job) {
        noteKernelForm(Lanes::level);
        CoverageWalk walk(job);
        for (std::int32_t row = 0; row < job.rows; row += Lanes::count) walk.runGroup(row);
    }

  private:
    static constexpr std::int32_t blockColumns = 16;

    explicit CoverageWalk(const CoverageJob& job)
        : job_(job),
          stepU_(Lanes::set(job.map.xx)),
          stepV_(Lanes::set(job.map.yx)),
          last_(Lanes::set(static_cast<float>(job.profile.last))) {
        // Half a block's length in brush space, with room for what the walk rounds off.
        constexpr float half = 0.5f * (blockColumns - 1);
        const float lengths = job.map.xx * job.map.xx + job.map.yx * job.map.yx;
        const float reach = half * Lanes::rootOf(lengths) + 1.0f / 32.0f;
        toMiddleU_ = Lanes::set(half * job.map.xx);
        toMiddleV_ = Lanes::set(half * job.map.yx);
        const float solid = static_cast<float>(job.profile.solidEnd) / 16.0f - reach;
        const float empty = static_cast<float>(job.profile.emptyBegin) / 16.0f + reach;
        solidBelow_ = Lanes::set(solid > 0.0f ? solid * solid : 0.0f);
        const bool everEmpty = job.profile.emptyBegin <= job.profile.last;
        emptyAbove_ = Lanes::set(everEmpty ? empty * empty : Lanes::infinity());
    }

    void runGroup(std::int32_t row) {
        Floats rows = Lanes::rowNumbers(job_.firstRow + row);
        u_ = Lanes::add(Lanes::mul(Lanes::set(job_.map.xy), rows), Lanes::set(job_.map.x0));
        v_ = Lanes::add(Lanes::mul(Lanes::set(job_.map.yy), rows), Lanes::set(job_.map.y0));
        std::uint8_t* const out = job_.pixels + static_cast<std::ptrdiff_t>(row) * job_.rowBytes;
        const std::int32_t count = job_.rows - row < Lanes::count ? job_.rows - row : Lanes::count;
        std::int32_t column = 0;
        for (; column < job_.rowBytes; column += blockColumns) {
            Ints block[4];
            if (column >= job_.width || runBlock(job_.width - column, block)) break;
            Lanes::storeBlock(block, out + column, job_.rowBytes, count);
        }
        for (; column < job_.rowBytes; column += blockColumns) {
            const Ints block[4] = {Lanes::zero(), Lanes::zero(), Lanes::zero(), Lanes::zero()};
            Lanes::storeBlock(block, out + column, job_.rowBytes, count);
        }
    }

    // The next columns, of which `columns` belong to the mask. True if they and all behind are
    // empty: the rows lead away from the middle.
    bool runBlock(std::int32_t columns, Ints (&block)[4]) {
        const Floats u = Lanes::add(u_, toMiddleU_), v = Lanes::add(v_, toMiddleV_);
        const Floats square = Lanes::add(Lanes::mul(u, u), Lanes::mul(v, v));
        if (Lanes::allLess(emptyAbove_, square)) {
            const Floats outward = Lanes::add(Lanes::mul(u, stepU_), Lanes::mul(v, stepV_));
            if (Lanes::allLess(Lanes::set(0.0f), outward)) return true;
            stepOver(block, Lanes::zero());
        } else if (columns >= blockColumns && Lanes::allLess(square, solidBelow_)) {
            stepOver(block, Lanes::ones());
        } else {
            for (std::int32_t four = 0; four < 4; ++four)
                block[four] = four * 4 < columns ? lookUpFour(columns - four * 4) : Lanes::zero();
        }
        return false;
    }

    void stepOver(Ints (&block)[4], Ints value) {
        for (Ints& part : block) part = value;
        for (std::int32_t n = 0; n < blockColumns; ++n) step();
    }

    void step() {
        u_ = Lanes::add(u_, stepU_);
        v_ = Lanes::add(v_, stepV_);
    }

    Ints lookUpFour(std::int32_t columns) {
        const Ints a = lookUp(), b = lookUp(), c = lookUp(), d = lookUp();
        return Lanes::firstColumns(Lanes::pack(a, b, c, d), columns);
    }

    Ints lookUp() {
        const Floats square = Lanes::add(Lanes::mul(u_, u_), Lanes::mul(v_, v_));
        step();
        return Lanes::fetch(job_.profile.entries, Lanes::place(square, last_));
    }

    const CoverageJob& job_;
    Floats stepU_, stepV_, last_;
    Floats toMiddleU_, toMiddleV_, solidBelow_, emptyAbove_;
    Floats u_, v_;
};

}  // namespace brushwork::npc
