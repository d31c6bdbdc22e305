#include "fill/doodle_walk.h"

#include <algorithm>
#include <new>

namespace brushwork {
namespace {

// What lies between two neighbours, as seen from the one before.
enum class Ground { Closed, Flat, Ramp };

Ground groundOf(std::int32_t next, std::int32_t previous) {
    if (next > previous) return Ground::Ramp;
    return next == 0 && previous == 0 ? Ground::Flat : Ground::Closed;
}

bool rises(std::int32_t next, std::int32_t previous) {
    return groundOf(next, previous) != Ground::Closed;
}

}  // namespace

DoodleWalk::DoodleWalk(FillSurface& source, FillSurface& mask, const FloodBox& clip,
                       const ColorTarget& target, std::int32_t tolerance)
    : source_(source), mask_(mask), clip_(clip), target_(target), tolerance_(tolerance) {}

void DoodleWalk::run(std::int32_t x, std::int32_t y) {
    dirty_ = {};
    seeds_.assign(1, {x, y});
    while (!seeds_.empty()) {
        const Seed seed = seeds_.back();
        seeds_.pop_back();
        mark(seed.x, seed.y);
        const std::int32_t right = grow(seed.x, seed.y, 1, clip_.right);
        const std::int32_t left = grow(seed.x, seed.y, -1, clip_.left);
        dirty_.grow(left, right, seed.y);
        if (seed.y > clip_.top) seedRow(left, right, seed.y, seed.y - 1);
        if (seed.y < clip_.bottom) seedRow(left, right, seed.y, seed.y + 1);
    }
}

// Marks from the seed on as long as the distance rises. Answers the last place.
std::int32_t DoodleWalk::grow(std::int32_t x, std::int32_t y, std::int32_t step, std::int32_t end) {
    std::int32_t previous = height(x, y);
    while (x != end && !isMarked(x + step, y)) {
        const std::int32_t next = height(x + step, y);
        if (!rises(next, previous)) break;
        x += step;
        previous = next;
        mark(x, y);
    }
    return x;
}

// Seeds the last place of each run over which the walk can step from row `from` to row y. Where
// flat ground turns into a ramp one run ends and another begins: from a crest no walk leads back to
// the ground before it. The first mark in the row ends the search.
void DoodleWalk::seedRow(std::int32_t left, std::int32_t right, std::int32_t from, std::int32_t y) {
    Ground run = Ground::Closed;
    for (std::int32_t x = left; x <= right + 1; ++x) {
        const bool done = x > right || isMarked(x, y);
        const Ground ground = done ? Ground::Closed : groundOf(height(x, y), height(x, from));
        if (run != Ground::Closed && ground != run) {
            try {
                seeds_.push_back({x - 1, y});
            } catch (const std::bad_alloc&) {
                return;
            }
        }
        run = ground;
        if (done) return;
    }
}

std::int32_t DoodleWalk::distance(std::int32_t x, std::int32_t y) {
    return colorDistance(source_.get(x, y), target_);
}

std::int32_t DoodleWalk::height(std::int32_t x, std::int32_t y) {
    const std::int32_t value = distance(x, y);
    return !target_.isGrey && value <= tolerance_ ? 0 : value;
}

bool DoodleWalk::isMarked(std::int32_t x, std::int32_t y) {
    return mask_.get(x, y) != 0;
}

void DoodleWalk::mark(std::int32_t x, std::int32_t y) {
    const std::int32_t value = distance(x, y);
    const auto share = static_cast<std::int32_t>((1.0 - value * 0.003921569) * 255.0);
    mask_.put(x, y, static_cast<std::uint32_t>(value <= tolerance_ ? 255 : std::max(share, 1)));
}

}  // namespace brushwork
