#include "fill/page_reach.h"

#include <utility>

namespace brushwork {
namespace {

constexpr std::int32_t lastLine = pageSide - 1;

BitRow bit(std::int32_t index, bool on) {
    BitRow row;
    if (on) row.set(index);
    return row;
}

}  // namespace

inline void PageReach::noteSides(std::int32_t y, BitRow added) {
    if (added.test(0) && !entered_.left.test(y)) left_.left.set(y);
    if (added.test(lastLine) && !entered_.right.test(y)) left_.right.set(y);
    if (y == 0) left_.above |= added & ~entered_.above;
    if (y == lastLine) left_.below |= added & ~entered_.below;
}

// Sweeps up and down, so that what spreads far needs few rounds.
PageBorderBitMask PageReach::run(const FloodFillWaves& waves, Front& front) {
    left_ = {};
    for (const auto& wave : waves) enter(front, *wave);
    while (front.rows.any()) {
        sweep<1>(front);
        sweep<-1>(front);
    }
    return left_;
}

void PageReach::enter(Front& front, const FloodFillWave& wave) {
    for (std::int32_t i = 0; i < wave.length; ++i) {
        const std::int32_t x = wave.elementX(i) - wave.dx;
        const std::int32_t y = wave.elementY(i) - wave.dy;
        if (x < 0) {
            entered_.left.set(y);
            front.add(y, bit(0, true));
        } else if (x > lastLine) {
            entered_.right.set(y);
            front.add(y, bit(lastLine, true));
        } else if (y < 0) {
            entered_.above.set(x);
            front.add(0, bit(x, true));
        } else if (y > lastLine) {
            entered_.below.set(x);
            front.add(lastLine, bit(x, true));
        } else {
            start(front, x, y);
        }
    }
}

// The pixel needs not be open.
void PageReach::start(Front& front, std::int32_t x, std::int32_t y) {
    const BitRow place = bit(x, true);
    filled_[static_cast<std::size_t>(y)] |= place;
    noteSides(y, place);
    front.add(y, place.beside());
    if (y > 0) front.add(y - 1, place);
    if (y < lastLine) front.add(y + 1, place);
}

// Through the rows with seeds in one direction. What a row hands to the next goes there at once.
template <std::int32_t step>
void PageReach::sweep(Front& front) {
    const auto isRow = [](std::int32_t y) { return y >= 0 && y <= lastLine; };
    BitRow rows = front.rows;
    BitRow carried;
    std::int32_t y = step > 0 ? rows.next(0) : rows.previous(lastLine);
    while (isRow(y)) {
        rows.clear(y);
        BitRow& waiting = front.seeds[static_cast<std::size_t>(y)];
        const BitRow seeds = openIn(y, std::exchange(waiting, {}) | carried);
        carried = {};
        if (seeds.any()) {
            BitRow& filled = filled_[static_cast<std::size_t>(y)];
            const BitRow added = spread(seeds, open(y) & ~filled);
            filled |= added;
            noteSides(y, added);
            if (isRow(y - step)) {
                const BitRow behind = openIn(y - step, added);
                if (behind.any()) {
                    front.seeds[static_cast<std::size_t>(y - step)] |= behind;
                    rows.set(y - step);
                }
            }
            if (isRow(y + step)) carried = openIn(y + step, added);
        }
        if (carried.any())
            y += step;
        else
            y = step > 0 ? rows.next(y + 1) : rows.previous(y - 1);
    }
    front.rows = rows;
}

BitRow PageReach::entered(std::int32_t y) const {
    BitRow row = bit(0, entered_.left.test(y)) | bit(lastLine, entered_.right.test(y));
    if (y == 0) row |= entered_.above;
    if (y == lastLine) row |= entered_.below;
    return row;
}

BitRow PageReach::filledAround(std::int32_t y) const {
    BitRow row;
    if (y > 0) row |= filled(y - 1);
    if (y < lastLine) row |= filled(y + 1);
    return row;
}

BitRow PageReach::tried(std::int32_t y) const {
    return filled(y) | filled(y).beside() | filledAround(y) | entered(y);
}

BitRow PageReach::besideTried(std::int32_t y) const {
    BitRow row = filledAround(y).beside();
    row |= bit(0, entered_.left.beside().test(y)) | bit(lastLine, entered_.right.beside().test(y));
    if (y == 0) row |= entered_.above.beside();
    if (y == lastLine) row |= entered_.below.beside();
    return row;
}

}  // namespace brushwork
